#pragma once

#include "world/Region.h"
#include "world/ui/Stamps.h"

#include <QPointF>
#include <QRectF>
#include <vector>

class QPainter;

// The small mark of a territory that grew markedly since the remembered scan: a rising chart up
// and to the left of its monster, across from the bounty marker.
namespace GrowthMark {

[[nodiscard]] QPointF anchor(const Region &region);
void paint(QPainter &painter, Stamps &stamps, const std::vector<Region> &regions,
           const QRectF &area);

} // namespace GrowthMark
