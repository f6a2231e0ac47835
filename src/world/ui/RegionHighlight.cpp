#include "world/ui/RegionHighlight.h"

#include "world/Player.h"

#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

namespace {

bool touches(QPointF a, QPointF b, const QRectF &r)
{
    return std::max(a.x(), b.x()) >= r.left() && std::min(a.x(), b.x()) <= r.right() &&
           std::max(a.y(), b.y()) >= r.top() && std::min(a.y(), b.y()) <= r.bottom();
}

} // namespace

QPainterPath RegionHighlight::visibleRuns(const QPainterPath &shape, const QRectF &visible)
{
    QPainterPath runs;
    const QRectF area = visible.adjusted(-lineWidth, -lineWidth, lineWidth, lineWidth);
    for (QPolygonF poly : shape.toSubpathPolygons()) {
        if (poly.size() < 2)
            continue;
        if (poly.first() != poly.last())
            poly.append(poly.first());
        bool open = false;
        for (qsizetype i = 0; i + 1 < poly.size(); ++i) {
            if (!touches(poly[i], poly[i + 1], area)) {
                open = false;
                continue;
            }
            if (!open)
                runs.moveTo(poly[i]);
            runs.lineTo(poly[i + 1]);
            open = true;
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
    const QPainterPath runs =
        shape.boundingRect().intersects(visible) ? visibleRuns(shape, visible) : QPainterPath();
    if (runs.isEmpty())
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.strokePath(runs, QPen(ink, lineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
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
