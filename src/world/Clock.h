#pragma once

#include <QObject>
#include <functional>

// Time for the hero: the current time in seconds and delayed main-thread jobs. The hero reads
// time only through this, so tests can step it exactly.
class Clock
{
public:
    virtual ~Clock() = default;

    // Seconds from an arbitrary fixed origin; never goes backwards.
    [[nodiscard]] virtual double now() const = 0;

    // Runs `job` on the main thread once `seconds` have passed, unless `context` is gone by then.
    virtual void after(double seconds, QObject *context, std::function<void()> job) = 0;
};
