#include "platform/Emoji.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>

namespace {

const QString &emojiFamily()
{
    static const QString family = QStringLiteral("Noto Color Emoji");
    return family;
}

// The real family behind a font: in a list of families Qt skips fontconfig aliases such as
// "Sans Serif", and the emoji font (which has digits and spaces) would then draw the text.
QString resolvedFamily(const QFont &font)
{
    return QFontInfo(font).family();
}

} // namespace

QFont Emoji::font(qreal pointSize)
{
    QFont f;
    f.setFamilies({emojiFamily(), resolvedFamily(QGuiApplication::font())});
    f.setPointSizeF(pointSize);
    return f;
}

QFont Emoji::mixedFont(const QFont &textFont)
{
    QFont f = textFont;
    f.setFamilies({resolvedFamily(textFont), emojiFamily()});
    return f;
}

void Emoji::drawCentered(QPainter &painter, const QString &emoji, const QPointF &centre,
                         qreal pixelSize)
{
    QFont f = font(12);
    f.setPixelSize(qMax(1, qRound(pixelSize)));
    painter.save();
    painter.setFont(f);
    // Text draws nothing with no pen, the usual state right after filling a shape.
    if (painter.pen().style() == Qt::NoPen)
        painter.setPen(Qt::black);
    const QRectF box(centre.x() - pixelSize * 2, centre.y() - pixelSize * 2, pixelSize * 4,
                     pixelSize * 4);
    painter.drawText(box, Qt::AlignCenter, emoji);
    painter.restore();
}
