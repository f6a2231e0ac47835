#include "platform/Emoji.h"

#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>

namespace {

const QString &emojiFamily()
{
    static const QString family = QStringLiteral("Noto Color Emoji");
    return family;
}

} // namespace

QFont Emoji::font(qreal pointSize)
{
    QFont f;
    f.setFamilies({emojiFamily(), QGuiApplication::font().family()});
    f.setPointSizeF(pointSize);
    return f;
}

QFont Emoji::mixedFont(const QFont &textFont)
{
    QFont f = textFont;
    f.setFamilies({textFont.family(), emojiFamily()});
    return f;
}

void Emoji::drawCentered(QPainter &painter, const QString &emoji, const QPointF &centre, qreal pixelSize)
{
    QFont f = font(12);
    f.setPixelSize(qMax(1, qRound(pixelSize)));
    painter.save();
    painter.setFont(f);
    const QRectF box(centre.x() - pixelSize * 2, centre.y() - pixelSize * 2, pixelSize * 4, pixelSize * 4);
    painter.drawText(box, Qt::AlignCenter, emoji);
    painter.restore();
}
