#pragma once

#include <QColor>
#include <QImage>
#include <QRectF>
#include <QString>

class QFont;
class QPainter;

// Soft shadows and glows: a blurred, single-colour copy of a drawing laid under it.
namespace Glow {

// A copy of `image` in one colour (its alpha kept, times the colour's alpha), blurred by
// `radius` logical pixels. The result is `radius` × 2 larger on each side; same device pixel ratio.
[[nodiscard]] QImage shadow(const QImage &image, const QColor &color, double radius);

// Text in `box` (aligned by `flags`) over its own blurred shadow.
void drawText(QPainter &painter, const QRectF &box, int flags, const QString &text,
              const QFont &font, const QColor &color, const QColor &shadowColor, double radius);

} // namespace Glow
