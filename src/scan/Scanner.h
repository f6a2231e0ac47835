#pragma once

#include "platform/Mounts.h"
#include "scan/BigFile.h"
#include "scan/Foreground.h"
#include "scan/Node.h"

#include <cstdint>
#include <functional>
#include <mutex>
#include <string>
#include <vector>

// Measures one folder into a size tree. scan() blocks its (background) thread and walks the
// top-level sub-folders in parallel; the lock-guarded counters and lists below are what other
// threads may poll meanwhile. One scanner serves one scan.
class Scanner
{
public:
    static constexpr std::uint64_t blockUnit = 512;
    static constexpr std::uint64_t bigFileThreshold = 25'000'000;
    static constexpr std::int64_t progressBatch = 2'000;

    // How sub-folders are walked: one fts walk per top-level folder, or workers that share every
    // sub-folder over directory descriptors. Both measure the same tree.
    enum class Walk { fts, shared };

    struct Progress
    {
        std::int64_t files = 0;
        std::uint64_t bytes = 0;
        bool operator==(const Progress &) const = default;
    };

    // What a finished walk could not measure: the scanned folder itself when it could not be
    // listed (its errno), and entries skipped because their path is longer than the system takes.
    struct Gaps
    {
        int rootError = 0;
        std::int64_t tooLong = 0;
    };

    [[nodiscard]] Progress progress() const;
    [[nodiscard]] Gaps gaps() const;
    [[nodiscard]] bool cancelled() const;
    [[nodiscard]] std::vector<BigFile> bigFiles() const;
    [[nodiscard]] std::vector<NodePtr> completed() const;
    void cancel();
    // Reports progress and polls for cancellation with one lock acquisition.
    bool add(std::int64_t files, std::uint64_t bytes);

    // The finished root, or nullptr when the scan was cancelled.
    [[nodiscard]] NodePtr scan(const std::string &path);
    // Called on the worker thread with each top-level folder whose subtree is finished, before it
    // is listed as completed; the folder is not changed any more. Set before scan().
    void setOnFolderFinished(std::function<void(const Node &)> callback)
    {
        m_onFolderFinished = std::move(callback);
    }
    void setWalk(Walk walk) { m_walk = walk; }
    // Behind a window: the walking threads wait while the interface works.
    void setForeground(std::shared_ptr<Foreground> foreground)
    {
        m_foreground = std::move(foreground);
    }
    // Runs `work` on `count` new threads and returns when all are done.
    void runWorkers(int count, const std::function<void()> &work) const;
    // Worker side, between folders: waits while the interface works.
    void giveWay() const;
    [[nodiscard]] Walk walk() const { return m_walk; }

    // Worker side: a top-level folder whose subtree is finished, and big files found.
    void reportCompleted(const NodePtr &folder);
    void reportBigFiles(std::vector<BigFile> files);
    void reportTooLong(std::int64_t entries);

    // Walks one top-level folder with fts; false when the walk stopped because the scan was
    // cancelled.
    bool scanSubtree(Node &node, const std::string &path);

private:
    void walkWithFts(const std::vector<NodePtr> &topLevel, const Mounts::PathSet &skipped);

    Walk m_walk = Walk::shared;
    std::shared_ptr<Foreground> m_foreground;
    mutable std::mutex m_lock;
    std::int64_t m_files = 0;
    std::uint64_t m_bytes = 0;
    bool m_cancelled = false;
    Gaps m_gaps;
    std::vector<BigFile> m_bigFiles;
    std::vector<NodePtr> m_completed;
    std::function<void(const Node &)> m_onFolderFinished;
};
