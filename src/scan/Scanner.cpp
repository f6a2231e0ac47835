#include "scan/Scanner.h"

#include "platform/Paths.h"
#include "scan/SharedWalk.h"

#include <QThread>
#include <atomic>
#include <cerrno>
#include <dirent.h>
#include <fts.h>
#include <sys/stat.h>
#include <thread>

namespace {

std::uint64_t allocatedBytes(const struct stat &st)
{
    return st.st_blocks > 0 ? static_cast<std::uint64_t>(st.st_blocks) * Scanner::blockUnit : 0;
}

} // namespace

Scanner::Progress Scanner::progress() const
{
    std::lock_guard guard(m_lock);
    return {m_files, m_bytes};
}

Scanner::Gaps Scanner::gaps() const
{
    std::lock_guard guard(m_lock);
    return m_gaps;
}

bool Scanner::cancelled() const
{
    std::lock_guard guard(m_lock);
    return m_cancelled;
}

std::vector<BigFile> Scanner::bigFiles() const
{
    std::lock_guard guard(m_lock);
    return m_bigFiles;
}

std::vector<NodePtr> Scanner::completed() const
{
    std::lock_guard guard(m_lock);
    return m_completed;
}

void Scanner::cancel()
{
    std::lock_guard guard(m_lock);
    m_cancelled = true;
}

bool Scanner::add(std::int64_t files, std::uint64_t bytes)
{
    std::lock_guard guard(m_lock);
    m_files += files;
    m_bytes += bytes;
    return m_cancelled;
}

NodePtr Scanner::scan(const std::string &path)
{
    NodePtr root = Node::create(Node::rootName(path));
    root->setBasePath(path);

    std::vector<NodePtr> topLevel;
    std::vector<BigFile> bigFiles;
    if (DIR *dir = opendir(path.c_str())) {
        while (const dirent *entry = readdir(dir)) {
            const std::string_view name = entry->d_name;
            if (name == "." || name == "..")
                continue;
            const std::string entryPath = Paths::join(path, entry->d_name);
            struct stat st;
            if (lstat(entryPath.c_str(), &st) != 0)
                continue;
            if (S_ISDIR(st.st_mode)) {
                topLevel.push_back(Node::create(std::string(name), root));
                continue;
            }
            const std::uint64_t bytes = allocatedBytes(st);
            root->addLoose(bytes);
            if (bytes >= bigFileThreshold)
                bigFiles.push_back({entryPath, bytes, static_cast<std::int64_t>(st.st_mtime)});
        }
        closedir(dir);
    } else {
        std::lock_guard guard(m_lock);
        m_gaps.rootError = errno;
    }
    reportBigFiles(std::move(bigFiles));
    add(root->looseFiles(), root->looseSize());

    // Virtual file systems hold no disk space; their folders stay empty nodes.
    const auto skipped = path == "/" ? Mounts::virtualMountPoints() : Mounts::PathSet{};

    // A first scan waits on the disk more than on the processor: up to eight walkers a core keep
    // more requests in flight (a bare walk of cold /usr: 1.0 s with eight a core, 1.4 s with
    // one), while a cached tree is walked fastest with one a core.
    const int cores = QThread::idealThreadCount();
    if (m_walk == Walk::shared)
        SharedWalk(*this, cores, 8 * cores).run(topLevel, skipped);
    else
        walkWithFts(topLevel, skipped);

    if (cancelled())
        return nullptr;
    root->setChildren(std::move(topLevel));
    root->finish();
    return root;
}

void Scanner::walkWithFts(const std::vector<NodePtr> &topLevel, const Mounts::PathSet &skipped)
{
    std::atomic<std::size_t> next = 0;
    runWorkers(QThread::idealThreadCount(), [&] {
        for (std::size_t i; (i = next++) < topLevel.size();) {
            const NodePtr &folder = topLevel[i];
            // Folders still queued when the scan is cancelled are not walked; a walk cut short
            // is not reported as completed.
            if (cancelled())
                return;
            const std::string folderPath = folder->path();
            if (!skipped.contains(folderPath) && !scanSubtree(*folder, folderPath))
                continue;
            reportCompleted(folder);
        }
    });
}

void Scanner::runWorkers(int count, const std::function<void()> &work) const
{
    // Plain threads rather than a Qt pool: they end with the walk, and their synchronisation is
    // visible to the thread sanitizer.
    std::vector<std::jthread> workers;
    for (int i = 0; i < std::max(count, 1); ++i)
        workers.emplace_back(work);
}

void Scanner::giveWay() const
{
    if (m_foreground && m_foreground->busy())
        m_foreground->waitUntilIdle();
}

void Scanner::reportCompleted(const NodePtr &folder)
{
    if (m_onFolderFinished)
        m_onFolderFinished(*folder);
    std::lock_guard guard(m_lock);
    m_completed.push_back(folder);
}

void Scanner::reportTooLong(std::int64_t entries)
{
    if (entries == 0)
        return;
    std::lock_guard guard(m_lock);
    m_gaps.tooLong += entries;
}

void Scanner::reportBigFiles(std::vector<BigFile> files)
{
    if (files.empty())
        return;
    std::lock_guard guard(m_lock);
    m_bigFiles.insert(m_bigFiles.end(), std::make_move_iterator(files.begin()),
                      std::make_move_iterator(files.end()));
}

bool Scanner::scanSubtree(Node &node, const std::string &path)
{
    std::string pathBytes = path; // fts wants a mutable, NUL-terminated array
    char *roots[] = {pathBytes.data(), nullptr};
    FTS *fts = fts_open(roots, FTS_PHYSICAL | FTS_NOCHDIR | FTS_XDEV, nullptr);
    if (!fts)
        return true;

    std::vector<Node *> stack;
    std::vector<BigFile> bigFiles;
    std::int64_t tooLong = 0;
    std::int64_t pendingFiles = 0;
    std::uint64_t pendingBytes = 0;
    bool stopped = false;

    while (FTSENT *entry = fts_read(fts)) {
        switch (entry->fts_info) {
        case FTS_D: {
            giveWay();
            Node *folder = &node;
            if (entry->fts_level != 0) {
                Node *parent = stack.back();
                NodePtr child = Node::create(std::string(entry->fts_name, entry->fts_namelen),
                                             parent->shared_from_this());
                folder = child.get();
                parent->appendChild(std::move(child));
            }
            entry->fts_pointer = folder;
            stack.push_back(folder);
            break;
        }
        case FTS_DP:
        case FTS_DNR:
        case FTS_ERR:
            if (!stack.empty() && entry->fts_pointer && entry->fts_pointer == stack.back()) {
                stack.back()->finish();
                stack.pop_back();
            }
            break;
        case FTS_F:
        case FTS_SL:
        case FTS_SLNONE:
        case FTS_DEFAULT: {
            if (!entry->fts_statp || stack.empty())
                break;
            const std::uint64_t bytes = allocatedBytes(*entry->fts_statp);
            stack.back()->addLoose(bytes);
            if (bytes >= bigFileThreshold && entry->fts_info == FTS_F) {
                bigFiles.push_back({std::string(entry->fts_path, entry->fts_pathlen), bytes,
                                    static_cast<std::int64_t>(entry->fts_statp->st_mtime)});
            }
            ++pendingFiles;
            pendingBytes += bytes;
            if (pendingFiles >= progressBatch) {
                stopped = add(pendingFiles, pendingBytes);
                pendingFiles = 0;
                pendingBytes = 0;
            }
            break;
        }
        case FTS_NS:
            if (entry->fts_errno == ENAMETOOLONG)
                ++tooLong;
            break;
        default:
            break;
        }
        if (stopped)
            break;
    }
    if (!stopped)
        add(pendingFiles, pendingBytes);
    reportBigFiles(std::move(bigFiles));
    reportTooLong(tooLong);
    fts_close(fts);
    return !stopped;
}
