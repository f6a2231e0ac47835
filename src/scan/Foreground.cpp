#include "scan/Foreground.h"

void Foreground::setBusy(bool busy)
{
    if (m_busy.exchange(busy, std::memory_order_acq_rel) == busy || busy)
        return;
    // Taken so that a walker between its check and its wait cannot miss the news.
    {
        std::lock_guard guard(m_lock);
    }
    m_idle.notify_all();
}

void Foreground::waitUntilIdle()
{
    std::unique_lock lock(m_lock);
    m_idle.wait_for(lock, longestWait, [this] { return !busy(); });
}
