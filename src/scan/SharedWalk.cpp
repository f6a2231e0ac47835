#include "scan/SharedWalk.h"

#include "scan/Scanner.h"

#include <algorithm>
#include <climits>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

// A folder whose subtree is not finished yet. Its task and each unfinished sub-folder hold it.
struct SharedWalk::Folder
{
    NodePtr node;
    std::shared_ptr<Folder> parent; // null for a top-level folder
    dev_t device = 0;
    ino_t inode = 0;
    dev_t topDevice = 0;            // the walk stays on its top-level folder's device
    std::atomic<int> unfinished{1}; // its own listing plus each unfinished sub-folder

    // A folder that is itself or one of its ancestors would be walked forever (bind mounts).
    [[nodiscard]] bool closesCycle(const struct stat &st) const
    {
        for (const Folder *f = this; f; f = f->parent.get()) {
            if (f->device == st.st_dev && f->inode == st.st_ino)
                return true;
        }
        return false;
    }
};

namespace {

std::uint64_t allocatedBytes(const struct stat &st)
{
    return st.st_blocks > 0 ? static_cast<std::uint64_t>(st.st_blocks) * Scanner::blockUnit : 0;
}

constexpr std::size_t entryBufferBytes = 64 * 1024;

double processCpuSeconds()
{
    timespec t{};
    clock_gettime(CLOCK_PROCESS_CPUTIME_ID, &t);
    return double(t.tv_sec) + double(t.tv_nsec) / 1e9;
}

} // namespace

class SharedWalk::Worker
{
public:
    Worker(SharedWalk &walk, int index) : m_walk(walk), m_index(index) {}

    void run()
    {
        Task task;
        while (m_walk.nextTask(m_index, m_local, task)) {
            list(std::move(task));
            if (m_index == 0)
                m_walk.adjust();
            if (m_walk.m_stopped.load(std::memory_order_relaxed)) {
                for (Task &dropped : m_local)
                    m_walk.settle(std::move(dropped.folder));
                m_local.clear();
                continue;
            }
            m_walk.share(m_local);
            m_walk.m_scanner.giveWay();
        }
        if (!m_walk.m_stopped.load(std::memory_order_relaxed))
            flush();
        m_walk.m_scanner.reportBigFiles(std::move(m_bigFiles));
        m_walk.m_scanner.reportTooLong(m_tooLong);
    }

private:
    void flush()
    {
        if (m_walk.m_scanner.add(m_files, m_bytes))
            m_walk.stop();
        m_files = 0;
        m_bytes = 0;
    }

    void list(Task task)
    {
        Folder &folder = *task.folder;
        if (!folder.parent && m_walk.m_scanner.cancelled()) {
            m_walk.stop(); // a top-level folder still queued at the cancel is not walked
            m_walk.settle(std::move(task.folder));
            return;
        }
        // Reading the descriptor directly spares the DIR buffer and the checks fdopendir makes
        // for every folder.
        const int fd = open(task.path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC);
        if (fd >= 0 && !folder.parent) {
            struct stat st;
            if (fstat(fd, &st) == 0) {
                folder.device = folder.topDevice = st.st_dev;
                folder.inode = st.st_ino;
            }
        }
        // Unreadable folders stay empty nodes, as they do in the fts walk.
        bool going = fd >= 0;
        while (going) {
            const ssize_t filled = getdents64(fd, m_entries.data(), m_entries.size());
            if (filled <= 0)
                break;
            for (ssize_t at = 0; at < filled && going;) {
                const auto *entry = reinterpret_cast<const dirent64 *>(m_entries.data() + at);
                at += entry->d_reclen;
                going = addEntry(task, entry->d_name, fd);
            }
        }
        if (fd >= 0)
            close(fd);
        m_walk.settle(std::move(task.folder));
    }

    // False when the scan was cancelled.
    bool addEntry(const Task &task, const char *name, int fd)
    {
        if (name[0] == '.' && (name[1] == 0 || (name[1] == '.' && name[2] == 0)))
            return true;
        // The fts walk cannot stat an entry whose path is too long; agree with it.
        if (task.path.size() + 1 + std::strlen(name) >= PATH_MAX) {
            ++m_tooLong;
            return true;
        }
        struct stat st;
        if (fstatat(fd, name, &st, AT_SYMLINK_NOFOLLOW) != 0)
            return true;
        if (!S_ISDIR(st.st_mode))
            return addFile(task, name, st);
        addFolder(task, name, st);
        return true;
    }

    void addFolder(const Task &task, const char *name, const struct stat &st)
    {
        Folder &folder = *task.folder;
        if (folder.closesCycle(st))
            return;
        NodePtr node = Node::create(name, folder.node);
        folder.node->appendChild(node);
        // A mount point below the top level is a folder of size 0.
        if (st.st_dev != folder.topDevice) {
            node->finish();
            return;
        }
        auto child = std::make_shared<Folder>();
        child->node = std::move(node);
        child->parent = task.folder;
        child->device = st.st_dev;
        child->inode = st.st_ino;
        child->topDevice = folder.topDevice;
        folder.unfinished.fetch_add(1, std::memory_order_relaxed);
        m_local.push_back({std::move(child), task.path + '/' + name});
    }

    // False when the scan was cancelled.
    bool addFile(const Task &task, const char *name, const struct stat &st)
    {
        const std::uint64_t bytes = allocatedBytes(st);
        task.folder->node->addLoose(bytes);
        if (bytes >= Scanner::bigFileThreshold && S_ISREG(st.st_mode))
            m_bigFiles.push_back(
                {task.path + '/' + name, bytes, static_cast<std::int64_t>(st.st_mtime)});
        ++m_files;
        m_bytes += bytes;
        if (m_files >= Scanner::progressBatch)
            flush();
        return !m_walk.m_stopped.load(std::memory_order_relaxed);
    }

    SharedWalk &m_walk;
    const int m_index;
    std::vector<char> m_entries = std::vector<char>(entryBufferBytes);
    std::deque<Task> m_local; // depth-first from the back; the front is shared with idle workers
    std::int64_t m_files = 0;
    std::uint64_t m_bytes = 0;
    std::vector<BigFile> m_bigFiles;
    std::int64_t m_tooLong = 0;
};

SharedWalk::SharedWalk(Scanner &scanner, int cores, int workers)
    : m_scanner(scanner), m_cores(std::max(cores, 1)), m_workers(std::max(workers, m_cores)),
      m_allowed(m_cores)
{}

SharedWalk::~SharedWalk() = default;

void SharedWalk::run(const std::vector<NodePtr> &topLevel, const Mounts::PathSet &skipped)
{
    for (const NodePtr &node : topLevel) {
        auto folder = std::make_shared<Folder>();
        folder->node = node;
        std::string path = node->path();
        if (skipped.contains(path))
            settle(std::move(folder)); // virtual file systems hold no disk space
        else
            m_queue.push_back({std::move(folder), std::move(path)});
    }
    m_queued = m_queue.size();

    m_sampledAt = std::chrono::steady_clock::now();
    m_sampledCpu = processCpuSeconds();
    std::atomic<int> index = 0;
    m_scanner.runWorkers(m_workers, [this, &index] { Worker(*this, index++).run(); });
}

void SharedWalk::adjust()
{
    const auto now = std::chrono::steady_clock::now();
    const std::chrono::duration<double> wall = now - m_sampledAt;
    if (wall < sampleInterval || m_allowed.load(std::memory_order_relaxed) >= m_workers)
        return;
    const double cpu = processCpuSeconds();
    const double busy = (cpu - m_sampledCpu) / (wall.count() * m_cores);
    m_sampledAt = now;
    m_sampledCpu = cpu;
    // Cores left idle mean the walkers wait on the disk: more of them keep more requests in
    // flight. A cached tree keeps the cores busy and the walkers few.
    if (busy < idleBelow) {
        std::lock_guard guard(m_queueLock);
        m_allowed.store(std::min(m_workers, 2 * m_allowed.load()));
        m_queueChanged.notify_all();
    }
}

bool SharedWalk::nextTask(int worker, std::deque<Task> &local, Task &task)
{
    if (!local.empty()) {
        task = std::move(local.back());
        local.pop_back();
        return true;
    }
    std::unique_lock lock(m_queueLock);
    ++m_idle;
    for (;;) {
        if (!m_queue.empty() && worker < m_allowed.load(std::memory_order_relaxed) &&
            !m_stopped.load(std::memory_order_relaxed)) {
            --m_idle;
            task = std::move(m_queue.front());
            m_queue.pop_front();
            m_queued.store(m_queue.size(), std::memory_order_relaxed);
            return true;
        }
        // Nobody holds work any more once every worker waits here.
        if (m_done || m_idle == m_workers || m_stopped.load(std::memory_order_relaxed)) {
            m_done = true;
            m_queueChanged.notify_all();
            return false;
        }
        m_queueChanged.wait(lock);
    }
}

void SharedWalk::share(std::deque<Task> &local)
{
    // Only top up the queue while it is short, so busy workers rarely touch the lock.
    if (local.size() < 2 || m_queued.load(std::memory_order_relaxed) >= std::size_t(m_workers))
        return;
    {
        std::lock_guard guard(m_queueLock);
        m_queue.push_back(std::move(local.front()));
        m_queued.store(m_queue.size(), std::memory_order_relaxed);
    }
    local.pop_front();
    // A walker not yet let in would take the wake-up and go back to sleep.
    if (m_allowed.load(std::memory_order_relaxed) < m_workers)
        m_queueChanged.notify_all();
    else
        m_queueChanged.notify_one();
}

void SharedWalk::settle(std::shared_ptr<Folder> folder)
{
    // Climbs iteratively: a deep tree must not finish its folders by recursion.
    while (folder && folder->unfinished.fetch_sub(1, std::memory_order_acq_rel) == 1) {
        folder->node->finish();
        if (!folder->parent && !m_stopped.load(std::memory_order_acquire))
            m_scanner.reportCompleted(folder->node);
        folder = std::move(folder->parent);
    }
}

void SharedWalk::stop()
{
    m_stopped.store(true, std::memory_order_release);
    std::deque<Task> dropped;
    {
        std::lock_guard guard(m_queueLock);
        dropped.swap(m_queue);
        m_queued.store(0, std::memory_order_relaxed);
    }
    m_queueChanged.notify_all();
    for (Task &task : dropped)
        settle(std::move(task.folder));
}
