#include "world/ManualClock.h"

#include <algorithm>

void ManualClock::after(double seconds, QObject *context, std::function<void()> job)
{
    m_jobs.emplace(m_now + std::max(seconds, 0.0), Job{context, std::move(job)});
}

void ManualClock::advance(double seconds)
{
    const double until = m_now + std::max(seconds, 0.0);
    while (!m_jobs.empty() && m_jobs.begin()->first <= until) {
        auto first = m_jobs.begin();
        m_now = std::max(m_now, first->first);
        Job job = std::move(first->second);
        m_jobs.erase(first);
        if (job.context)
            job.run();
    }
    m_now = until;
}
