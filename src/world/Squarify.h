#pragma once

#include <QRectF>
#include <vector>

// The squarified treemap: one rectangle per value, areas proportional to the values, together
// tiling `bounds`. Values are expected largest first (the tile order); the row test relies on it.
// A zero total or an empty `bounds` gives zero rectangles at the origin.
[[nodiscard]] std::vector<QRectF> squarify(const std::vector<double> &values, const QRectF &bounds);
