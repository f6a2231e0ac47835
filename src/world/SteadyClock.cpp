#include "world/SteadyClock.h"

#include <QTimer>
#include <chrono>
#include <cmath>

double SteadyClock::now() const
{
    const auto since = std::chrono::steady_clock::now().time_since_epoch();
    return std::chrono::duration<double>(since).count();
}

void SteadyClock::after(double seconds, QObject *context, std::function<void()> job)
{
    // Rounded up: a job that checks how much time has passed must never run early.
    const auto ms = std::chrono::milliseconds(
        static_cast<std::int64_t>(std::ceil(std::max(seconds, 0.0) * 1000.0)));
    QTimer::singleShot(ms, Qt::PreciseTimer, context, std::move(job));
}
