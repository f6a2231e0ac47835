#pragma once

#include "platform/Mounts.h"
#include "scan/Node.h"

#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

class Scanner;

// Walks a scan's top-level folders over directory descriptors (open once per folder, fstatat per
// entry) and lets any idle worker take any pending sub-folder, so a single huge top-level folder
// still keeps every core busy. It counts what the fts walk counts: same nodes, same loose
// counters, same order of children, and a top-level folder is reported completed only once its
// whole subtree is finished.
class SharedWalk
{
public:
    SharedWalk(Scanner &scanner, int workers);
    ~SharedWalk();
    SharedWalk(const SharedWalk &) = delete;
    SharedWalk &operator=(const SharedWalk &) = delete;

    // Returns when every folder is walked or the scan is cancelled. Folders in `skipped` are
    // reported completed without being walked.
    void run(const std::vector<NodePtr> &topLevel, const Mounts::PathSet &skipped);

private:
    struct Folder;
    struct Task
    {
        std::shared_ptr<Folder> folder;
        std::string path;
    };
    class Worker;

    [[nodiscard]] bool nextTask(std::deque<Task> &local, Task &task);
    void share(std::deque<Task> &local);
    void settle(std::shared_ptr<Folder> folder);
    void stop();

    Scanner &m_scanner;
    const int m_workers;
    std::atomic<bool> m_stopped{false};

    std::mutex m_queueLock;
    std::condition_variable m_queueChanged;
    std::deque<Task> m_queue; // shallowest first: the front holds the biggest shares of work
    std::atomic<std::size_t> m_queued{0};
    int m_idle = 0;
    bool m_done = false;
};
