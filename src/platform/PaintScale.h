#pragma once

#include <QPaintDevice>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace PaintScale {

// Device pixels per logical unit a painter draws at, rounded up to a quarter step of a doubling,
// so images cached per scale are shared by animated scales.
[[nodiscard]] inline double quantized(const QPainter &painter)
{
    const double device = painter.device() ? painter.device()->devicePixelRatioF() : 1.0;
    const QTransform &t = painter.worldTransform();
    const double scale = device * std::max(std::hypot(t.m11(), t.m12()), 0.01);
    return std::exp2(std::ceil(std::log2(scale) * 4 - 1e-9) / 4);
}

} // namespace PaintScale
