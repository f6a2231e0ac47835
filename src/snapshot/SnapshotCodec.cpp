#include "snapshot/SnapshotCodec.h"

#include "snapshot/ByteReader.h"
#include "snapshot/ByteWriter.h"

#include <QtEndian>
#include <algorithm>
#include <limits>

namespace {

constexpr std::string_view magic("\x89"
                                 "DMS\r\n\x1a\n",
                                 8);
constexpr std::size_t fixedStart = 8 + 4 + 4; // magic, version, header size
constexpr std::size_t checksumSize = 8;
constexpr std::uint64_t maxPayload = 1ULL << 30;
constexpr std::size_t maxName = 4096;
constexpr std::size_t maxPath = 64 * 1024;
constexpr std::uint64_t maxCount = std::uint64_t(std::numeric_limits<std::int64_t>::max());
// zlib cannot shrink anything by more than about this much, so a larger claim is a lie.
constexpr std::uint64_t maxRatio = 1100;
constexpr int compressionLevel = 1; // the fastest; the varints leave little for a slower one

std::uint64_t fnv1a(std::string_view bytes)
{
    std::uint64_t h = 0xcbf29ce484222325ULL;
    for (const char c : bytes) {
        h ^= std::uint8_t(c);
        h *= 0x100000001b3ULL;
    }
    return h;
}

// Allocated sizes are whole blocks of 512 bytes, so most take two bytes less this way.
void putSize(ByteWriter &w, std::uint64_t bytes)
{
    if (bytes % 512 == 0 || bytes >> 63)
        w.number((bytes >> 9) << 1);
    else
        w.number(bytes << 1 | 1);
}

std::uint64_t takeSize(ByteReader &r)
{
    const std::uint64_t n = r.number();
    if (n & 1)
        return n >> 1;
    if ((n >> 1) > (std::numeric_limits<std::uint64_t>::max() >> 9))
        r.fail();
    return (n >> 1) << 9;
}

bool isName(std::string_view name)
{
    return !name.empty() && name != "." && name != ".." &&
           name.find_first_of(std::string_view("/\0", 2)) == std::string_view::npos;
}

bool isRelativePath(std::string_view path)
{
    if (path.empty())
        return false;
    for (std::size_t at = 0; at <= path.size();) {
        const std::size_t slash = std::min(path.find('/', at), path.size());
        if (!isName(path.substr(at, slash - at)))
            return false;
        at = slash + 1;
    }
    return true;
}

std::string_view view(QByteArrayView b)
{
    return {b.data(), std::size_t(b.size())};
}

std::uint32_t readU32(std::string_view at)
{
    return qFromLittleEndian<quint32>(at.data());
}

struct Header
{
    SnapshotSummary summary;
    std::uint64_t bigFiles = 0;
    std::uint64_t payloadSize = 0;
    std::uint64_t payloadChecksum = 0;
    std::size_t end = 0; // where the compressed payload starts
};

std::optional<Header> readHeader(std::string_view file)
{
    if (file.size() < fixedStart || file.substr(0, magic.size()) != magic ||
        readU32(file.substr(8)) != SnapshotCodec::version)
        return std::nullopt;
    const std::uint32_t size = readU32(file.substr(12));
    if (size > SnapshotCodec::headerLimit - fixedStart - checksumSize ||
        file.size() < fixedStart + size + checksumSize)
        return std::nullopt;
    const std::string_view bytes = file.substr(fixedStart, size);
    if (qFromLittleEndian<quint64>(file.data() + fixedStart + size) != fnv1a(bytes))
        return std::nullopt;

    ByteReader r(bytes);
    Header h;
    h.summary.root = std::string(r.bytes(maxPath));
    h.summary.scanned = QDateTime::fromMSecsSinceEpoch(r.signedNumber(), Qt::UTC);
    const std::string_view host = r.bytes(maxName);
    h.summary.host = QString::fromUtf8(host.data(), qsizetype(host.size()));
    h.summary.size = r.number();
    h.summary.files = std::int64_t(r.number(maxCount));
    h.summary.folders = std::int64_t(r.number(std::numeric_limits<Snapshot::Index>::max()));
    h.bigFiles = r.number(maxCount);
    h.payloadSize = r.number(maxPayload);
    h.payloadChecksum = r.number();
    if (!r.ok() || !r.atEnd() || !h.summary.root.starts_with('/') || h.summary.folders < 1)
        return std::nullopt;
    h.end = fixedStart + size + checksumSize;
    return h;
}

// Folder i's place among its siblings: the first one has no name before it.
struct Decoder
{
    ByteReader &r;
    std::size_t n;
    std::vector<Snapshot::Folder> folders;
    std::vector<char> first;
    std::string names;

    bool shape()
    {
        folders.resize(n);
        first.assign(n, 0);
        first[0] = 1;
        std::uint64_t assigned = 1;
        for (std::size_t i = 0; i < n; ++i) {
            const std::uint64_t count = r.number(n);
            // Every folder but the root is a child of one listed before it, so there are no
            // cycles and no strays.
            if (!r.ok() || i >= assigned || assigned + count > n)
                return false;
            folders[i].firstChild = Snapshot::Index(assigned);
            folders[i].childCount = Snapshot::Index(count);
            if (count > 0)
                first[assigned] = 1;
            assigned += count;
        }
        return assigned == n;
    }

    bool loose()
    {
        for (Snapshot::Folder &f : folders)
            f.looseFiles = std::int64_t(r.number(maxCount));
        for (Snapshot::Folder &f : folders)
            f.looseSize = takeSize(r);
        return r.ok();
    }

    bool readNames()
    {
        std::size_t previousAt = 0;
        std::size_t previousSize = 0;
        for (std::size_t i = 0; i < n; ++i) {
            const std::size_t shared = r.number(first[i] ? 0 : previousSize);
            const std::string_view suffix = r.bytes(maxName - shared);
            if (!r.ok() || names.size() + shared + suffix.size() > 0xffff'ffffULL)
                return false;
            const std::size_t at = names.size();
            names.append(names, previousAt, shared);
            names.append(suffix);
            const std::string_view all(names);
            const std::string_view name = all.substr(at);
            // Siblings strictly ascending: unique, and in the order the lookups rely on.
            if (!(i == 0 ? !name.empty() : isName(name)) ||
                (!first[i] && !(all.substr(previousAt, previousSize) < name)))
                return false;
            folders[i].nameAt = std::uint32_t(at);
            folders[i].nameSize = std::uint16_t(name.size());
            previousAt = at;
            previousSize = name.size();
        }
        return true;
    }

    bool totals()
    {
        for (std::size_t i = n; i-- > 0;) {
            Snapshot::Folder &f = folders[i];
            f.size = f.looseSize;
            f.files = f.looseFiles;
            for (Snapshot::Index c = f.firstChild; c < f.firstChild + f.childCount; ++c) {
                if (__builtin_add_overflow(f.size, folders[c].size, &f.size) ||
                    __builtin_add_overflow(f.files, folders[c].files, &f.files))
                    return false;
            }
        }
        return true;
    }
};

} // namespace

SnapshotCodec::Flat SnapshotCodec::flatten(const Node &root, const std::vector<BigFile> &bigFiles,
                                           const QDateTime &scanned, const QString &host)
{
    Flat flat;
    flat.summary = {root.path(), scanned.toUTC(), host, root.size(), root.files(), 0};

    // Breadth first, siblings by name: the order of the in-memory snapshot. One pass over the
    // nodes writes every column, since touching scattered nodes is what costs.
    std::vector<const Node *> order{&root};
    ByteWriter counts;
    ByteWriter looseFiles;
    ByteWriter looseSizes;
    ByteWriter names;
    names.reserve(1024 * 1024);
    std::vector<char> first{1}; // starts a group of siblings
    for (std::size_t i = 0; i < order.size(); ++i) {
        // Nodes lie scattered in memory: fetch the ones a few steps ahead, then their child
        // lists, then the children the sort will compare, so that waiting overlaps.
        if (i + 16 < order.size()) {
            // A node spans three cache lines; its loose counts sit in the last.
            const auto *ahead = reinterpret_cast<const char *>(order[i + 16]);
            for (int line = 0; line < 3; ++line)
                __builtin_prefetch(ahead + 64 * line);
        }
        if (i + 8 < order.size() && !order[i + 8]->children().empty())
            __builtin_prefetch(order[i + 8]->children().data());
        if (i + 4 < order.size()) {
            for (const NodePtr &c : order[i + 4]->children())
                __builtin_prefetch(c.get());
        }
        const Node &n = *order[i];
        const std::size_t start = order.size();
        for (const NodePtr &c : n.children())
            order.push_back(c.get());
        if (order.size() - start > 1) {
            std::sort(order.begin() + std::ptrdiff_t(start), order.end(),
                      [](const Node *a, const Node *b) { return a->name() < b->name(); });
        }
        first.resize(order.size(), 0);
        if (order.size() > start)
            first[start] = 1;
        counts.number(n.children().size());
        looseFiles.number(std::uint64_t(n.looseFiles()));
        putSize(looseSizes, n.looseSize());

        const std::string_view name = n.name();
        std::size_t shared = 0;
        if (!first[i]) {
            const std::string_view previous = order[i - 1]->name();
            const std::size_t most = std::min(name.size(), previous.size());
            while (shared < most && name[shared] == previous[shared])
                ++shared;
        }
        names.number(shared);
        names.bytes(name.substr(shared));
    }
    flat.summary.folders = std::int64_t(order.size());

    ByteWriter w;
    w.reserve(counts.text().size() + looseFiles.text().size() + looseSizes.text().size() +
              names.text().size() + bigFiles.size() * 64);
    for (const ByteWriter *column : {&counts, &looseFiles, &looseSizes, &names})
        w.raw(column->text());
    const std::string &base = flat.summary.root;
    const std::size_t cut = base == "/" ? 1 : base.size() + 1;
    for (const BigFile &f : bigFiles) {
        if (f.path.size() <= cut || !Paths::isUnder(f.path, base))
            continue;
        w.bytes(std::string_view(f.path).substr(cut));
        putSize(w, f.size);
        w.signedNumber(f.modified);
        ++flat.bigFiles;
    }
    flat.payload = w.take();
    return flat;
}

QByteArray SnapshotCodec::pack(const Flat &flat)
{
    ByteWriter h;
    h.bytes(flat.summary.root);
    h.signedNumber(flat.summary.scanned.toMSecsSinceEpoch());
    h.bytes(flat.summary.host.toStdString());
    h.number(flat.summary.size);
    h.number(std::uint64_t(flat.summary.files));
    h.number(std::uint64_t(flat.summary.folders));
    h.number(flat.bigFiles);
    const QByteArray compressed = qCompress(reinterpret_cast<const uchar *>(flat.payload.data()),
                                            qsizetype(flat.payload.size()), compressionLevel);
    h.number(flat.payload.size());
    h.number(fnv1a(view(compressed)));
    const std::string &header = h.text();
    QByteArray file;
    file.reserve(qsizetype(fixedStart + header.size() + checksumSize) + compressed.size());
    file.append(magic.data(), qsizetype(magic.size()));
    char word[8];
    qToLittleEndian<quint32>(version, word);
    file.append(word, 4);
    qToLittleEndian<quint32>(quint32(header.size()), word);
    file.append(word, 4);
    file.append(header.data(), qsizetype(header.size()));
    qToLittleEndian<quint64>(fnv1a(header), word);
    file.append(word, 8);
    file.append(compressed);
    return file;
}

bool SnapshotCodec::hasMagic(QByteArrayView start)
{
    return view(start).starts_with(magic);
}

std::optional<SnapshotSummary> SnapshotCodec::summary(QByteArrayView file)
{
    std::optional<Header> h = readHeader(view(file));
    if (!h)
        return std::nullopt;
    return std::move(h->summary);
}

std::optional<Snapshot> SnapshotCodec::unpack(QByteArrayView file, std::string_view root)
{
    const std::optional<Header> h = readHeader(view(file));
    if (!h || h->summary.root != root)
        return std::nullopt;
    // qUncompress trusts the size its first four bytes claim and complains on stderr about
    // damage, so only bytes that match the checksum reach it.
    const QByteArrayView compressed = file.sliced(qsizetype(h->end));
    if (compressed.size() < 4 || fnv1a(view(compressed)) != h->payloadChecksum ||
        qFromBigEndian<quint32>(compressed.data()) != h->payloadSize ||
        h->payloadSize > std::uint64_t(compressed.size()) * maxRatio ||
        std::uint64_t(h->summary.folders) > h->payloadSize / 5 + 1)
        return std::nullopt;
    const QByteArray payload =
        qUncompress(reinterpret_cast<const uchar *>(compressed.data()), compressed.size());
    if (std::uint64_t(payload.size()) != h->payloadSize)
        return std::nullopt;

    ByteReader r(view(payload));
    Decoder d{r, std::size_t(h->summary.folders), {}, {}, {}};
    if (!d.shape() || !d.loose() || !d.readNames() || !d.totals() ||
        d.folders[0].size != h->summary.size || d.folders[0].files != h->summary.files)
        return std::nullopt;

    std::vector<BigFile> bigFiles;
    bigFiles.reserve(std::min<std::uint64_t>(h->bigFiles, r.left() / 3));
    for (std::uint64_t i = 0; i < h->bigFiles; ++i) {
        const std::string_view relative = r.bytes(maxPath);
        BigFile f;
        f.size = takeSize(r);
        f.modified = r.signedNumber();
        if (!r.ok() || !isRelativePath(relative))
            return std::nullopt;
        f.path = Paths::join(root, relative);
        bigFiles.push_back(std::move(f));
    }
    if (!r.atEnd())
        return std::nullopt;
    return Snapshot(h->summary, std::move(d.folders), std::move(d.names), std::move(bigFiles));
}
