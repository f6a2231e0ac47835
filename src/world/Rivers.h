#pragma once

#include "world/Region.h"
#include "world/Warp.h"

#include <QPainterPath>
#include <QRectF>
#include <vector>

namespace Rivers {

// Up to three rivers along the longest borders between territories that reach the coast, each
// flowing from the island's interior out to the sea; open paths with a point every 4 points.
[[nodiscard]] std::vector<QPainterPath> trace(const std::vector<Region> &regions,
                                              const QRectF &land, const Warp &warp);

} // namespace Rivers
