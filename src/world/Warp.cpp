#include "world/Warp.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace {

// One sine of the warp, sin(cx·x + cy·y + cp·phase), as in operator() below; the last four are
// the rough edge term.
struct Sine
{
    double cx;
    double cy;
    double cp;
};
constexpr std::size_t inlandSines = 6;
constexpr std::array<Sine, 10> sines = {{{0.006, 0.004, 1},
                                         {0.019, -0.015, 1.7},
                                         {0.06, 0.05, 2.3},
                                         {-0.0045, 0.0055, 0.6},
                                         {0.014, 0.018, 2.9},
                                         {-0.047, 0.058, 1.1},
                                         {0.045, 0.05, 3},
                                         {0.09, -0.07, 5},
                                         {-0.04, 0.05, 4},
                                         {0.075, 0.085, 6}}};

// Every rotation adds a few 1e-16 of drift; restarting from exact sines this often keeps the
// stepped points as close to the formula as the warp's own rounding.
constexpr int restartEvery = 32;

} // namespace

double Warp::edgeWeight(double x, double y) const
{
    const double e =
        std::min({x - m_base.left(), m_base.right() - x, y - m_base.top(), m_base.bottom() - y});
    return std::max(1.0 - e / 60.0, 0.0);
}

double Warp::eased(double v, double low, double high) const
{
    if (m_reach <= 0)
        return v;
    // Smooth (tanh) past the knee, so a capped bulge has round shoulders rather than a flat top.
    const double knee = 0.5 * m_reach;
    const double room = m_reach - knee;
    if (v > high + knee)
        return high + knee + room * std::tanh((v - high - knee) / room);
    if (v < low - knee)
        return low - knee - room * std::tanh((low - knee - v) / room);
    return v;
}

QPointF Warp::placed(double x, double y) const
{
    return QPointF(eased(x, m_base.left(), m_base.right()),
                   eased(y, m_base.top(), m_base.bottom())) *
           m_zoom;
}

QPointF Warp::operator()(QPointF point) const
{
    return atBase(point.x() / m_zoom, point.y() / m_zoom);
}

QPointF Warp::atBase(double x, double y) const
{
    const double p = m_phase;
    const auto s = [](double v) { return std::sin(v); };

    const double dx0 = s(0.006 * x + 0.004 * y + p) + 0.45 * s(0.019 * x - 0.015 * y + 1.7 * p) +
                       0.15 * s(0.06 * x + 0.05 * y + 2.3 * p);
    const double dy0 = s(0.0055 * y - 0.0045 * x + 0.6 * p) +
                       0.45 * s(0.014 * x + 0.018 * y + 2.9 * p) +
                       0.15 * s(0.058 * y - 0.047 * x + 1.1 * p);

    const double k = edgeWeight(x, y);
    // Deep inside the land the rough edge term is zero; skipping its four sines changes nothing.
    if (k == 0.0)
        return placed(x + m_amplitude * dx0 / 1.6, y + m_amplitude * dy0 / 1.6);

    const double dx =
        dx0 + k * (0.9 * s(0.045 * x + 0.05 * y + 3 * p) + 0.35 * s(0.09 * x - 0.07 * y + 5 * p));
    const double dy =
        dy0 + k * (0.9 * s(0.05 * y - 0.04 * x + 4 * p) + 0.35 * s(0.075 * x + 0.085 * y + 6 * p));
    return placed(x + m_amplitude * dx / 1.6, y + m_amplitude * dy / 1.6);
}

// Along a line each sine's angle grows by the same step per point, so its sine and cosine follow
// from the previous pair by a rotation: the outlines are most of an island's cost, and calling
// sin for each of their points was nearly all of it.
std::vector<QPointF> Warp::warpedSteps(QPointF from, QPointF to, int n) const
{
    std::vector<QPointF> points;
    if (n <= 0)
        return points;
    points.reserve(static_cast<std::size_t>(n));
    // Stepped at zoom 1, as operator() warps.
    from /= m_zoom;
    to /= m_zoom;
    const QPointF delta = to - from;
    const auto at = [&](int j) { return from + delta * (static_cast<double>(j) / n); };

    std::array<double, sines.size()> stepSin{};
    std::array<double, sines.size()> stepCos{};
    for (std::size_t w = 0; w < sines.size(); ++w) {
        const double step = (sines[w].cx * delta.x() + sines[w].cy * delta.y()) / n;
        stepSin[w] = std::sin(step);
        stepCos[w] = std::cos(step);
    }
    std::array<double, sines.size()> sine{};
    std::array<double, sines.size()> cosine{};
    const auto restart = [&](QPointF q, std::size_t first, std::size_t last) {
        for (std::size_t w = first; w < last; ++w) {
            const double angle = sines[w].cx * q.x() + sines[w].cy * q.y() + sines[w].cp * m_phase;
            sine[w] = std::sin(angle);
            cosine[w] = std::cos(angle);
        }
    };
    const auto rotate = [&](std::size_t count) {
        for (std::size_t w = 0; w < count; ++w) {
            const double s = sine[w] * stepCos[w] + cosine[w] * stepSin[w];
            cosine[w] = cosine[w] * stepCos[w] - sine[w] * stepSin[w];
            sine[w] = s;
        }
    };

    for (int j0 = 0; j0 < n; j0 += restartEvery) {
        const QPointF start = at(j0);
        points.push_back(atBase(start.x(), start.y()));
        restart(start, 0, inlandSines);
        std::size_t live = inlandSines; // the edge sines start where the line nears the coast
        const int j1 = std::min(j0 + restartEvery, n);
        for (int j = j0 + 1; j < j1; ++j) {
            rotate(live);
            const QPointF q = at(j);
            const double k = edgeWeight(q.x(), q.y());
            const double dx0 = sine[0] + 0.45 * sine[1] + 0.15 * sine[2];
            const double dy0 = sine[3] + 0.45 * sine[4] + 0.15 * sine[5];
            if (k == 0.0) {
                points.push_back(
                    placed(q.x() + m_amplitude * dx0 / 1.6, q.y() + m_amplitude * dy0 / 1.6));
                continue;
            }
            if (live == inlandSines) {
                restart(q, inlandSines, sines.size());
                live = sines.size();
            }
            const double dx = dx0 + k * (0.9 * sine[6] + 0.35 * sine[7]);
            const double dy = dy0 + k * (0.9 * sine[8] + 0.35 * sine[9]);
            points.push_back(
                placed(q.x() + m_amplitude * dx / 1.6, q.y() + m_amplitude * dy / 1.6));
        }
    }
    return points;
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
        const int n = std::max(static_cast<int>(std::hypot(delta.x(), delta.y()) / 5.0), 2);
        for (const QPointF p : warpedSteps(from, to, n)) {
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
