#pragma once

#include "game/Tier.h"

#include <QRectF>

class QPainter;

// The five monster drawings, one per tier, in a 100 × 100 design space.
namespace MonsterArt {

// Draws the monster of `tier` scaled into `square` (which should be square).
void draw(QPainter &painter, Tier tier, const QRectF &square);

} // namespace MonsterArt
