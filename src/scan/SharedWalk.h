#pragma once

#include "platform/Mounts.h"
#include "scan/Node.h"

#include <atomic>
#include <chrono>
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
// whole subtree is finished. It starts with a walker a core and adds more while the cores sit
// idle, which is what waiting on a cold disk looks like.
class SharedWalk
{
public:
    SharedWalk(Scanner &scanner, int cores, int workers);
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

    static constexpr std::chrono::milliseconds sampleInterval{20};
    static constexpr double idleBelow = 0.75; // share of the cores' time the walk uses

    [[nodiscard]] bool nextTask(int worker, std::deque<Task> &local, Task &task);
    // Lets more walkers take work while the cores are idle; called by one walker only.
    void adjust();
    void share(std::deque<Task> &local);
    void settle(std::shared_ptr<Folder> folder);
    void stop();

    Scanner &m_scanner;
    const int m_cores;
    const int m_workers;        // threads started
    std::atomic<int> m_allowed; // of them, those that may take work
    std::chrono::steady_clock::time_point m_sampledAt;
    double m_sampledCpu = 0;
    std::atomic<bool> m_stopped{false};

    std::mutex m_queueLock;
    std::condition_variable m_queueChanged;
    std::deque<Task> m_queue; // shallowest first: the front holds the biggest shares of work
    std::atomic<std::size_t> m_queued{0};
    int m_idle = 0;
    bool m_done = false;
};
