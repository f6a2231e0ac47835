#pragma once

#include "game/Tier.h"

#include <QColor>
#include <QHash>
#include <QImage>
#include <QPointF>
#include <QString>

class QPainter;

// Emoji and monsters rendered once per size and resolution, then copied: a colour-font glyph or
// a monster's twenty shapes cost far more to draw than an image, and the map shows hundreds of
// them on every frame.
class Stamps
{
public:
    // Centred on `centre`, `pixelSize` high. A valid `tint` draws the glyph's shape in that one
    // colour (for marks like "〰" that only the emoji font has).
    void drawEmoji(QPainter &painter, const QString &emoji, QPointF centre, double pixelSize,
                   const QColor &tint = QColor());
    // The monster of `tier` in a square of `size` centred on `centre`.
    void drawMonster(QPainter &painter, Tier tier, QPointF centre, double size);
    // A filled ellipse with radii `rx`, `ry` (a monster's shadow).
    void drawShadow(QPainter &painter, QPointF centre, double rx, double ry, const QColor &colour);

    [[nodiscard]] const QImage &emoji(const QString &emoji, double pixelSize, double scale,
                                      const QColor &tint = QColor());

    // The resolution a painter draws at: device pixels per logical unit, in quarter steps of a
    // doubling so that animated scales reuse a handful of images.
    [[nodiscard]] static double scaleOf(const QPainter &painter);

private:
    [[nodiscard]] const QImage &monster(Tier tier, double size, double scale);
    void makeRoom();

    QHash<QString, QImage> m_images;
};
