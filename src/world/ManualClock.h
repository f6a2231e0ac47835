#pragma once

#include "world/Clock.h"

#include <QPointer>
#include <cstdint>
#include <map>

// A clock that only moves when told to; delayed jobs run inside advance(), each at its due time.
class ManualClock final : public Clock
{
public:
    explicit ManualClock(double start = 0) : m_now(start) {}

    [[nodiscard]] double now() const override { return m_now; }
    void after(double seconds, QObject *context, std::function<void()> job) override;

    // Moves time forward by `seconds`, running every job that falls due on the way (including
    // jobs those jobs schedule), in due order, with now() at each job's due time.
    void advance(double seconds);

    [[nodiscard]] std::size_t pendingJobs() const { return m_jobs.size(); }

private:
    struct Job
    {
        QPointer<QObject> context;
        std::function<void()> run;
    };

    double m_now;
    std::multimap<double, Job> m_jobs; // equal times keep their scheduling order
};
