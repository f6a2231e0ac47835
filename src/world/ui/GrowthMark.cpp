#include "world/ui/GrowthMark.h"

#include <QString>

QPointF GrowthMark::anchor(const Region &region)
{
    if (region.hasMonster()) {
        const double size = region.monsterSize();
        return region.capital + QPointF(-0.75 * size, -0.55 * size);
    }
    return region.capital + QPointF(-14, -14);
}

void GrowthMark::paint(QPainter &painter, Stamps &stamps, const std::vector<Region> &regions,
                       const QRectF &area)
{
    for (const Region &r : regions) {
        if (!r.grown || r.shortSide() <= 30)
            continue;
        const QPointF at = anchor(r);
        if (area.adjusted(-20, -20, 20, 20).contains(at))
            stamps.drawEmoji(painter, QStringLiteral("📈"), at, 15);
    }
}
