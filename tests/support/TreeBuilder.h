#pragma once

#include "scan/Node.h"

#include <QByteArray>
#include <QFile>
#include <QString>
#include <cstdint>
#include <ctime>
#include <utility>
#include <vector>

// Builds real folder trees for tests. Paths are bytes so names may hold any byte but '/' and NUL.
// Allocated sizes are what the scanner measures, so files are given real blocks with fallocate.
namespace TreeBuilder {

void makeDir(const QByteArray &path);
// A file with at least `bytes` allocated; returns its st_blocks × 512.
std::uint64_t makeFile(const QByteArray &path, std::uint64_t bytes = 0);
void makeSparse(const QByteArray &path, std::uint64_t logicalBytes);
void makeSymlink(const QByteArray &target, const QByteArray &link);
void makeHardLink(const QByteArray &existing, const QByteArray &link);
void makeFifo(const QByteArray &path);
void setModified(const QByteArray &path, std::time_t when);
[[nodiscard]] std::uint64_t allocated(const QByteArray &path);
// A whole file by its byte path ("<unreadable>" when it cannot be read), and written whole,
// its folder made first. The QString forms take a path as Qt names it.
[[nodiscard]] QByteArray readFile(const QByteArray &path);
bool writeFile(const QByteArray &path, const QByteArray &bytes);
[[nodiscard]] inline QByteArray readFile(const QString &path)
{
    return readFile(QFile::encodeName(path));
}
inline bool writeFile(const QString &path, const QByteArray &bytes)
{
    return writeFile(QFile::encodeName(path), bytes);
}

// Removes a test's own folder tree, whatever bytes its names hold. Refuses anything outside the
// temporary folder and never crosses into another mounted file system.
void removeTree(const QByteArray &root);

// A finished folder node with `looseBytes` in one loose file (none for 0), appended to parent:
// for trees built in memory rather than on disk.
NodePtr addFolder(const NodePtr &parent, const std::string &name, std::uint64_t looseBytes = 0);

// A finished tree in memory rooted at `base`: one folder per relative path ("a", "a/b"; parents
// first) with the given loose bytes in one file, sized and ordered as a scan leaves them.
NodePtr memoryTree(const std::string &base,
                   const std::vector<std::pair<std::string, std::uint64_t>> &folders);

// Sum of st_blocks × 512 and count of every non-folder entry below root on root's device, as
// `find -xdev` sees them: an independent measure to compare the scanner against.
struct Totals
{
    std::uint64_t bytes = 0;
    std::int64_t files = 0;
};
[[nodiscard]] Totals findTotals(const QByteArray &root);

// `dustmere --scan=FOLDER --report=json --walker=WALKER` run as the unprivileged user 65534 with
// setpriv (root reads everything, so unreadable folders are only unreadable to someone else).
struct Run
{
    int exitCode = -1;
    QByteArray out;
    QByteArray err;
};
[[nodiscard]] Run reportAsNobody(const QString &folder, const QString &walker);

} // namespace TreeBuilder
