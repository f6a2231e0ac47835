#pragma once

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <mutex>

// Whether the interface thread is at work right now. While it is, the walking threads wait, so
// the interface has the cores it needs; the rest of the time they run at the ordinary priority,
// so a busy machine does not starve the walk either (a niceness does one or the other: at 19 two
// busy processes slow a scan a hundredfold, at 0 the window stutters).
class Foreground
{
public:
    // A thread that never sleeps (a test's polling loop) must not hold the walkers for good.
    static constexpr std::chrono::milliseconds longestWait{50};

    // Interface thread: called as it starts to work and before it sleeps.
    void setBusy(bool busy);
    [[nodiscard]] bool busy() const { return m_busy.load(std::memory_order_acquire); }
    // Walking thread: returns once the interface thread sleeps, or after longestWait.
    void waitUntilIdle();

private:
    std::atomic<bool> m_busy{false};
    std::mutex m_lock;
    std::condition_variable m_idle;
};
