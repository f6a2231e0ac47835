#include "platform/Spring.h"

#include <algorithm>
#include <cmath>
#include <mutex>
#include <numbers>
#include <vector>

namespace {

// Finding the settling time samples the curve 2,000 times, and every row of a list makes springs
// from the same few pairs: remember the answer per pair.
class SettleTimes
{
public:
    template<typename Compute> int get(double omega, double zeta, Compute compute)
    {
        const std::lock_guard lock(m_mutex);
        for (const Entry &e : m_entries)
            if (e.omega == omega && e.zeta == zeta)
                return e.ms;
        const int ms = compute();
        if (m_entries.size() < capacity)
            m_entries.push_back({omega, zeta, ms});
        return ms;
    }

private:
    static constexpr std::size_t capacity = 64;
    struct Entry
    {
        double omega;
        double zeta;
        int ms;
    };
    std::mutex m_mutex;
    std::vector<Entry> m_entries;
};

} // namespace

Spring::Spring(double response, double dampingFraction)
    : m_omega(2 * std::numbers::pi / std::max(response, 0.01)),
      m_zeta(std::max(dampingFraction, 0.01))
{
    static SettleTimes cache;
    m_durationMs = cache.get(m_omega, m_zeta, [this] {
        double settled = 0;
        for (double t = 0; t < 10; t += 0.005) {
            if (std::abs(1 - value(t)) > 0.001)
                settled = t + 0.005;
        }
        return static_cast<int>(std::ceil(settled * 1000));
    });
}

double Spring::value(double t) const
{
    const double w = m_omega;
    const double z = m_zeta;
    if (z < 1) {
        const double wd = w * std::sqrt(1 - z * z);
        return 1 - std::exp(-z * w * t) * (std::cos(wd * t) + z * w / wd * std::sin(wd * t));
    }
    if (z == 1)
        return 1 - std::exp(-w * t) * (1 + w * t);
    const double s = w * std::sqrt(z * z - 1);
    const double r1 = -z * w + s;
    const double r2 = -z * w - s;
    return 1 - (r2 * std::exp(r1 * t) - r1 * std::exp(r2 * t)) / (r2 - r1);
}
