#include "world/ui/RegionHighlight.h"

#include "world/Player.h"

#include <QPainter>
#include <QPainterPath>

namespace {

constexpr int chunkSegments = 16;

bool touches(QPointF a, QPointF b, const QRectF &r)
{
    return std::max(a.x(), b.x()) >= r.left() && std::min(a.x(), b.x()) <= r.right() &&
           std::max(a.y(), b.y()) >= r.top() && std::min(a.y(), b.y()) <= r.bottom();
}

} // namespace

void RegionHighlight::prepare(const QPainterPath &shape)
{
    const Key key{shape.boundingRect(), int(shape.elementCount())};
    if (m_key == key)
        return;
    m_key = key;
    m_polygons.clear();
    m_chunks.clear();
    const double m = lineWidth;
    for (QPolygonF poly : shape.toSubpathPolygons()) {
        if (poly.size() < 2)
            continue;
        if (poly.first() != poly.last())
            poly.append(poly.first());
        const int index = int(m_polygons.size());
        const int segments = int(poly.size()) - 1;
        for (int first = 0; first < segments; first += chunkSegments) {
            const int last = std::min(first + chunkSegments, segments);
            // QRectF's union drops empty rectangles, so a point at a time it would stay empty.
            double x0 = poly[first].x(), x1 = x0, y0 = poly[first].y(), y1 = y0;
            for (int i = first + 1; i <= last; ++i) {
                x0 = std::min(x0, poly[i].x());
                x1 = std::max(x1, poly[i].x());
                y0 = std::min(y0, poly[i].y());
                y1 = std::max(y1, poly[i].y());
            }
            m_chunks.push_back(
                {QRectF(QPointF(x0 - m, y0 - m), QPointF(x1 + m, y1 + m)), index, first, last});
        }
        m_polygons.push_back(std::move(poly));
    }
}

QPainterPath RegionHighlight::visibleRuns(const QRectF &visible) const
{
    QPainterPath runs;
    const QRectF area = visible.adjusted(-lineWidth, -lineWidth, lineWidth, lineWidth);
    int openPolygon = -1;
    int openEnd = -1; // the point the open run ends at
    for (const Chunk &chunk : m_chunks) {
        if (!chunk.box.intersects(area))
            continue;
        const QPolygonF &poly = m_polygons[std::size_t(chunk.polygon)];
        for (int i = chunk.first; i < chunk.last; ++i) {
            if (!touches(poly[i], poly[i + 1], area))
                continue;
            if (openPolygon != chunk.polygon || openEnd != i)
                runs.moveTo(poly[i]);
            runs.lineTo(poly[i + 1]);
            openPolygon = chunk.polygon;
            openEnd = i + 1;
        }
    }
    return runs;
}

void RegionHighlight::paint(QPainter &painter, const Player &player, const QColor &ink,
                            const QRectF &visible)
{
    const auto &layout = player.layout();
    const std::optional<int> index = player.regionIndex();
    if (!layout || !index || *index < 0 || *index >= int(layout->regions.size()))
        return;
    const QPainterPath &shape = layout->regions[std::size_t(*index)].shape;
    if (!shape.boundingRect().intersects(visible))
        return;
    prepare(shape);
    const QPainterPath runs = visibleRuns(visible);
    if (runs.isEmpty())
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    // Bevel joins: between thousands of short segments they look the same as round ones, which
    // would cost most of the stroke.
    painter.strokePath(runs, QPen(ink, lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::BevelJoin));
    painter.restore();
}

QRectF RegionHighlight::bounds(const Player &player)
{
    const auto &layout = player.layout();
    const std::optional<int> index = player.regionIndex();
    if (!layout || !index || *index < 0 || *index >= int(layout->regions.size()))
        return {};
    const double m = lineWidth;
    return layout->regions[std::size_t(*index)].shape.boundingRect().adjusted(-m, -m, m, m);
}
