#include "support/TreeBuilder.h"

#include "platform/Paths.h"
#include "session/Model.h"

#include <QDir>
#include <QProcess>
#include <QTest>
#include <fcntl.h>
#include <ftw.h>
#include <sys/stat.h>
#include <unistd.h>

namespace TreeBuilder {

void makeDir(const QByteArray &path)
{
    if (mkdir(path.constData(), 0755) != 0 && errno != EEXIST)
        qFatal("mkdir %s failed", path.constData());
}

std::uint64_t makeFile(const QByteArray &path, std::uint64_t bytes)
{
    const int fd = open(path.constData(), O_CREAT | O_WRONLY | O_TRUNC, 0644);
    if (fd < 0)
        qFatal("cannot create %s", path.constData());
    if (bytes > 0 && posix_fallocate(fd, 0, off_t(bytes)) != 0) {
        // Some file systems refuse fallocate: write the bytes instead.
        const QByteArray chunk(1 << 20, 'x');
        for (std::uint64_t left = bytes; left > 0;) {
            const auto n = std::min<std::uint64_t>(left, std::uint64_t(chunk.size()));
            if (write(fd, chunk.constData(), n) != ssize_t(n))
                qFatal("cannot write %s", path.constData());
            left -= n;
        }
    }
    close(fd);
    return allocated(path);
}

void makeSparse(const QByteArray &path, std::uint64_t logicalBytes)
{
    const int fd = open(path.constData(), O_CREAT | O_WRONLY | O_TRUNC, 0644);
    if (fd < 0 || ftruncate(fd, off_t(logicalBytes)) != 0)
        qFatal("cannot make sparse %s", path.constData());
    close(fd);
}

void makeSymlink(const QByteArray &target, const QByteArray &link)
{
    if (symlink(target.constData(), link.constData()) != 0)
        qFatal("symlink %s failed", link.constData());
}

void makeHardLink(const QByteArray &existing, const QByteArray &link)
{
    if (::link(existing.constData(), link.constData()) != 0)
        qFatal("link %s failed", link.constData());
}

void makeFifo(const QByteArray &path)
{
    if (mkfifo(path.constData(), 0644) != 0)
        qFatal("mkfifo %s failed", path.constData());
}

void setModified(const QByteArray &path, std::time_t when)
{
    const timespec times[2] = {{when, 0}, {when, 0}};
    if (utimensat(AT_FDCWD, path.constData(), times, AT_SYMLINK_NOFOLLOW) != 0)
        qFatal("utimensat %s failed", path.constData());
}

std::uint64_t allocated(const QByteArray &path)
{
    struct stat st;
    if (lstat(path.constData(), &st) != 0)
        return 0;
    return std::uint64_t(st.st_blocks) * 512;
}

QByteArray readFile(const QByteArray &path)
{
    const int fd = open(path.constData(), O_RDONLY | O_CLOEXEC);
    if (fd < 0)
        return "<unreadable>";
    QByteArray text;
    char buffer[65536];
    for (ssize_t n; (n = read(fd, buffer, sizeof buffer)) > 0;)
        text.append(buffer, n);
    close(fd);
    return text;
}

bool writeFile(const QByteArray &path, const QByteArray &bytes)
{
    QDir().mkpath(QFile::decodeName(path.left(path.lastIndexOf('/'))));
    const int fd = open(path.constData(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0644);
    const bool written =
        fd >= 0 && write(fd, bytes.constData(), std::size_t(bytes.size())) == bytes.size();
    return (fd < 0 || close(fd) == 0) && written;
}

void removeTree(const QByteArray &root)
{
    const QByteArray temp = QFile::encodeName(QDir::tempPath()) + '/';
    if (!root.startsWith(temp) || root.size() <= temp.size() || root.contains("/../"))
        qFatal("refusing to remove %s", root.constData());
    nftw(
        root.constData(),
        [](const char *path, const struct stat *st, int type, FTW *) {
            if (type == FTW_DP || type == FTW_D || type == FTW_DNR) {
                chmod(path, (st->st_mode & 07777) | S_IRWXU);
                rmdir(path);
            } else {
                unlink(path);
            }
            return 0;
        },
        32, FTW_DEPTH | FTW_PHYS | FTW_MOUNT);
}

NodePtr addFolder(const NodePtr &parent, const std::string &name, std::uint64_t looseBytes)
{
    NodePtr n = Node::create(name, parent);
    if (looseBytes > 0)
        n->addLoose(looseBytes);
    n->finish();
    parent->appendChild(n);
    return n;
}

NodePtr memoryTree(const std::string &base,
                   const std::vector<std::pair<std::string, std::uint64_t>> &folders)
{
    NodePtr root = Node::create(Node::rootName(base));
    root->setBasePath(base);
    std::vector<NodePtr> made{root};
    for (const auto &[path, bytes] : folders) {
        const auto slash = path.rfind('/');
        const NodePtr parent = slash == std::string::npos
                                   ? root
                                   : Model::find(root, Paths::join(base, path.substr(0, slash)));
        NodePtr n = Node::create(path.substr(slash + 1), parent);
        if (bytes > 0)
            n->addLoose(bytes);
        parent->appendChild(n);
        made.push_back(n);
    }
    for (auto it = made.rbegin(); it != made.rend(); ++it)
        (*it)->finish();
    return root;
}

Totals findTotals(const QByteArray &root)
{
    QProcess find;
    find.start(QStringLiteral("find"),
               {QFile::decodeName(root), QStringLiteral("-xdev"), QStringLiteral("-not"),
                QStringLiteral("-type"), QStringLiteral("d"), QStringLiteral("-printf"),
                QStringLiteral("%b\\n")});
    if (!find.waitForFinished(300'000))
        qFatal("find did not finish");
    Totals t;
    for (const QByteArray &line : find.readAllStandardOutput().split('\n')) {
        if (line.isEmpty())
            continue;
        t.bytes += line.toULongLong() * 512;
        ++t.files;
    }
    return t;
}

Run reportAsNobody(const QString &folder, const QString &walker)
{
    QProcess p;
    p.start(QStringLiteral("setpriv"),
            {QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"),
             QStringLiteral("--clear-groups"), qEnvironmentVariable("DUSTMERE_BINARY"),
             QStringLiteral("--scan=") + folder, QStringLiteral("--report=json"),
             QStringLiteral("--walker=") + walker});
    if (!p.waitForFinished(60'000))
        return {};
    return {p.exitCode(), p.readAllStandardOutput(), p.readAllStandardError()};
}

} // namespace TreeBuilder
