#include "snapshot/SnapshotStore.h"

#include "snapshot/SnapshotCodec.h"

#include <QCryptographicHash>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QStandardPaths>
#include <algorithm>

namespace {

const QString suffix = QStringLiteral(".snapshot");
constexpr int hashLength = 32;
constexpr auto ownerOnly = QFileDevice::ReadOwner | QFileDevice::WriteOwner;

bool isSnapshotName(const QString &name)
{
    if (name.size() != hashLength + suffix.size() || !name.endsWith(suffix))
        return false;
    return std::all_of(name.begin(), name.begin() + hashLength, [](QChar c) {
        return (c >= u'0' && c <= u'9') || (c >= u'a' && c <= u'f');
    });
}

std::optional<SnapshotSummary> readSummary(const QString &file)
{
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly))
        return std::nullopt;
    return SnapshotCodec::summary(f.read(SnapshotCodec::headerLimit));
}

} // namespace

QString SnapshotStore::defaultFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation) +
           QStringLiteral("/dustmere");
}

QString SnapshotStore::fileFor(std::string_view root) const
{
    const QByteArray hash = QCryptographicHash::hash(
        QByteArrayView(root.data(), qsizetype(root.size())), QCryptographicHash::Sha256);
    return m_folder + QLatin1Char('/') + QString::fromLatin1(hash.toHex().left(hashLength)) +
           suffix;
}

bool SnapshotStore::save(const QByteArray &packed, std::string_view root) const
{
    constexpr auto folderMode = ownerOnly | QFileDevice::ExeOwner;
    if (!QDir(m_folder).exists() &&
        !(QDir().mkpath(QFileInfo(m_folder).path()) && QDir().mkdir(m_folder, folderMode)))
        return false;
    // A folder left more open, by hand or by an older program, is closed again.
    QFile::setPermissions(m_folder, folderMode);
    QSaveFile file(fileFor(root));
    if (!file.open(QIODevice::WriteOnly) || !file.setPermissions(ownerOnly) ||
        file.write(packed) != packed.size() || !file.commit())
        return false;
    prune();
    return true;
}

std::optional<Snapshot> SnapshotStore::load(std::string_view root) const
{
    QFile f(fileFor(root));
    if (!f.open(QIODevice::ReadOnly))
        return std::nullopt;
    return SnapshotCodec::unpack(f.readAll(), root);
}

std::optional<SnapshotSummary> SnapshotStore::summary(std::string_view root) const
{
    std::optional<SnapshotSummary> s = readSummary(fileFor(root));
    if (!s || s->root != root)
        return std::nullopt;
    return s;
}

std::vector<SnapshotStore::Entry> SnapshotStore::entries() const
{
    std::vector<Entry> all;
    const QDir dir(m_folder);
    for (const QString &name : dir.entryList(QDir::Files | QDir::Hidden | QDir::System)) {
        if (isSnapshotName(name)) {
            const QString file = dir.filePath(name);
            all.push_back({file, readSummary(file)});
        }
    }
    // The newest scan first; unreadable files last, so they are the first to go.
    std::stable_sort(all.begin(), all.end(), [](const Entry &a, const Entry &b) {
        if (!a.summary || !b.summary)
            return a.summary.has_value() > b.summary.has_value();
        return a.summary->scanned > b.summary->scanned;
    });
    return all;
}

std::vector<SnapshotSummary> SnapshotStore::remembered() const
{
    std::vector<SnapshotSummary> found;
    for (Entry &e : entries()) {
        // A file of one root copied over another's name is not that root's memory.
        if (e.summary && fileFor(e.summary->root) == e.file)
            found.push_back(std::move(*e.summary));
    }
    return found;
}

void SnapshotStore::prune() const
{
    const std::vector<Entry> all = entries();
    for (std::size_t i = kept; i < all.size(); ++i)
        QFile::remove(all[i].file);
}

void SnapshotStore::forgetAll() const
{
    for (const Entry &e : entries())
        QFile::remove(e.file);
}
