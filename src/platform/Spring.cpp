#include "platform/Spring.h"

#include <cmath>
#include <numbers>

Spring::Spring(double response, double dampingFraction)
    : m_omega(2 * std::numbers::pi / std::max(response, 0.01)),
      m_zeta(std::max(dampingFraction, 0.01))
{
    double settled = 0;
    for (double t = 0; t < 10; t += 0.005) {
        if (std::abs(1 - value(t)) > 0.001)
            settled = t + 0.005;
    }
    m_durationMs = static_cast<int>(std::ceil(settled * 1000));
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
