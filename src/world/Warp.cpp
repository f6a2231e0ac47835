#include "world/Warp.h"

#include <algorithm>
#include <array>
#include <cmath>

QPointF Warp::operator()(QPointF point) const
{
    const double x = point.x();
    const double y = point.y();
    const double p = m_phase;
    const auto s = [](double v) { return std::sin(v); };

    const double dx0 = s(0.006 * x + 0.004 * y + p) + 0.45 * s(0.019 * x - 0.015 * y + 1.7 * p) +
                       0.15 * s(0.06 * x + 0.05 * y + 2.3 * p);
    const double dy0 = s(0.0055 * y - 0.0045 * x + 0.6 * p) +
                       0.45 * s(0.014 * x + 0.018 * y + 2.9 * p) +
                       0.15 * s(0.058 * y - 0.047 * x + 1.1 * p);

    const double e =
        std::min({x - m_land.left(), m_land.right() - x, y - m_land.top(), m_land.bottom() - y});
    const double k = std::max(1.0 - e / 60.0, 0.0);
    // Deep inside the land the rough edge term is zero; skipping its four sines changes nothing.
    if (k == 0.0)
        return {x + m_amplitude * dx0 / 1.6, y + m_amplitude * dy0 / 1.6};

    const double dx =
        dx0 + k * (0.9 * s(0.045 * x + 0.05 * y + 3 * p) + 0.35 * s(0.09 * x - 0.07 * y + 5 * p));
    const double dy =
        dy0 + k * (0.9 * s(0.05 * y - 0.04 * x + 4 * p) + 0.35 * s(0.075 * x + 0.085 * y + 6 * p));
    return {x + m_amplitude * dx / 1.6, y + m_amplitude * dy / 1.6};
}

QPainterPath Warp::warpedOutline(const QRectF &rect) const
{
    const std::array<QPointF, 4> corners = {
        QPointF(rect.left(), rect.top()), QPointF(rect.right(), rect.top()),
        QPointF(rect.right(), rect.bottom()), QPointF(rect.left(), rect.bottom())};
    QPainterPath path;
    path.setFillRule(Qt::WindingFill);
    path.reserve(static_cast<int>((rect.width() + rect.height()) * 2 / 5) + 9);
    bool first = true;
    for (std::size_t c = 0; c < corners.size(); ++c) {
        const QPointF from = corners[c];
        const QPointF to = corners[(c + 1) % corners.size()];
        const QPointF delta = to - from;
        const double length = std::hypot(delta.x(), delta.y());
        const int n = std::max(static_cast<int>(length / 5.0), 2);
        for (int j = 0; j < n; ++j) {
            const QPointF p = (*this)(from + delta * (static_cast<double>(j) / n));
            if (first)
                path.moveTo(p);
            else
                path.lineTo(p);
            first = false;
        }
    }
    path.closeSubpath();
    return path;
}
