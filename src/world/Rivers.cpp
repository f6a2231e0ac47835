#include "world/Rivers.h"

#include <algorithm>
#include <cmath>

namespace {

constexpr double minSharedLength = 60;
constexpr std::size_t maxRivers = 3;

struct Segment
{
    QPointF from;
    QPointF to;
    [[nodiscard]] double length() const { return std::hypot(to.x() - from.x(), to.y() - from.y()); }
};

bool touchesCoast(QPointF p, const QRectF &land)
{
    return std::abs(p.x() - land.left()) < 1.0 || std::abs(p.x() - land.right()) < 1.0 ||
           std::abs(p.y() - land.top()) < 1.0 || std::abs(p.y() - land.bottom()) < 1.0;
}

std::vector<Segment> sharedBorders(const std::vector<Region> &regions)
{
    std::vector<Segment> segments;
    for (std::size_t i = 0; i < regions.size(); ++i) {
        const QRectF &a = regions[i].rect;
        for (std::size_t j = 0; j < regions.size(); ++j) {
            if (i == j)
                continue;
            const QRectF &b = regions[j].rect;
            if (std::abs(a.right() - b.left()) < 0.5) {
                const double y0 = std::max(a.top(), b.top());
                const double y1 = std::min(a.bottom(), b.bottom());
                if (y1 - y0 > minSharedLength)
                    segments.push_back({{a.right(), y0}, {a.right(), y1}});
            }
            if (std::abs(a.bottom() - b.top()) < 0.5) {
                const double x0 = std::max(a.left(), b.left());
                const double x1 = std::min(a.right(), b.right());
                if (x1 - x0 > minSharedLength)
                    segments.push_back({{x0, a.bottom()}, {x1, a.bottom()}});
            }
        }
    }
    return segments;
}

} // namespace

std::vector<QPainterPath> Rivers::trace(const std::vector<Region> &regions, const QRectF &land,
                                        const Warp &warp)
{
    std::vector<Segment> segments = sharedBorders(regions);
    std::erase_if(segments, [&land](const Segment &s) {
        return !touchesCoast(s.from, land) && !touchesCoast(s.to, land);
    });
    std::stable_sort(segments.begin(), segments.end(),
                     [](const Segment &a, const Segment &b) { return a.length() > b.length(); });
    if (segments.size() > maxRivers)
        segments.resize(maxRivers);

    std::vector<QPainterPath> rivers;
    rivers.reserve(segments.size());
    for (const Segment &s : segments) {
        const bool mouthFirst = touchesCoast(s.from, land);
        const QPointF start = mouthFirst ? s.to : s.from;
        const QPointF end = mouthFirst ? s.from : s.to;
        const QPointF delta = end - start;
        const int n = std::max(static_cast<int>(std::hypot(delta.x(), delta.y()) * 0.25), 2);
        const std::vector<QPointF> course = warp.warpedSteps(start, end, n);
        QPainterPath river;
        river.moveTo(course.front());
        for (std::size_t j = 1; j < course.size(); ++j)
            river.lineTo(course[j]);
        river.lineTo(warp(end));
        rivers.push_back(river);
    }
    return rivers;
}
