#pragma once

#include <QFont>
#include <QString>

class QPainter;
class QPointF;

// Emoji are drawn with the colour emoji font named first: Qt 6.4's fallback otherwise draws some
// ("☁️", "✒️", "⬆️") in black from a text font.
namespace Emoji {

[[nodiscard]] QFont font(qreal pointSize);
// For text that mixes words and emoji: the text font first, emoji from the colour font.
[[nodiscard]] QFont mixedFont(const QFont &textFont);
// Draws an emoji (or a short emoji string) centred on a point, at a size in pixels.
void drawCentered(QPainter &painter, const QString &emoji, const QPointF &centre, qreal pixelSize);

} // namespace Emoji
