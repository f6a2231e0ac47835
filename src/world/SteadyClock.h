#pragma once

#include "world/Clock.h"

// The monotonic system clock, with delayed jobs on Qt's precise single-shot timers.
class SteadyClock final : public Clock
{
public:
    [[nodiscard]] double now() const override;
    void after(double seconds, QObject *context, std::function<void()> job) override;
};
