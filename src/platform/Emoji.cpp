#include "platform/Emoji.h"

#include "platform/PaintScale.h"

#include <QFontInfo>
#include <QFontMetricsF>
#include <QGuiApplication>
#include <QPainter>
#include <QPixmapCache>
#include <QThread>
#include <algorithm>
#include <cmath>

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

namespace {

void drawText(QPainter &painter, const QString &emoji, const QPointF &centre, qreal pixelSize,
              const QColor &ink)
{
    QFont f = Emoji::font(12);
    f.setPixelSize(qMax(1, qRound(pixelSize)));
    painter.save();
    painter.setFont(f);
    painter.setPen(ink);
    const QRectF box(centre.x() - pixelSize * 2, centre.y() - pixelSize * 2, pixelSize * 4,
                     pixelSize * 4);
    painter.drawText(box, Qt::AlignCenter, emoji);
    painter.restore();
}

// The emoji drawn once at a resolution, cropped symmetrically about its centre so the image
// centres on the same point as the text would.
QPixmap rendered(const QString &emoji, qreal pixelSize, const QColor &ink, double scale)
{
    const int side = qMax(1, int(std::ceil(pixelSize * 4 * scale)));
    QImage image(side, side, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    {
        QPainter p(&image);
        p.setRenderHint(QPainter::TextAntialiasing);
        p.scale(scale, scale);
        drawText(p, emoji, QPointF(pixelSize * 2, pixelSize * 2), pixelSize, ink);
    }
    int reach = 0; // the largest distance of an inked pixel from the centre, per axis
    int reachY = 0;
    const int c = side / 2;
    for (int y = 0; y < side; ++y) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = 0; x < side; ++x) {
            if (qAlpha(line[x]) == 0)
                continue;
            reach = std::max({reach, c - x, x + 1 - c});
            reachY = std::max({reachY, c - y, y + 1 - c});
        }
    }
    QPixmap pixmap = QPixmap::fromImage(
        image.copy(c - reach, c - reachY, std::max(1, 2 * reach), std::max(1, 2 * reachY)));
    pixmap.setDevicePixelRatio(scale);
    return pixmap;
}

} // namespace

// A colour emoji glyph is a PNG that FreeType decodes on every draw at a size Qt has not cached;
// widgets that animate redraw theirs many times a second, so the drawn glyph is kept instead.
void Emoji::drawCentered(QPainter &painter, const QString &emoji, const QPointF &centre,
                         qreal pixelSize)
{
    // Text draws nothing with no pen, the usual state right after filling a shape.
    const QColor ink =
        painter.pen().style() == Qt::NoPen ? QColor(Qt::black) : painter.pen().color();
    const QTransform &t = painter.worldTransform();
    const bool guiThread =
        QCoreApplication::instance() && QThread::currentThread() == qApp->thread();
    if (!guiThread || !painter.device() || t.type() > QTransform::TxScale || pixelSize <= 0) {
        drawText(painter, emoji, centre, pixelSize, ink);
        return;
    }
    const double scale = PaintScale::quantized(painter);
    const QString key = QStringLiteral("dustmere-emoji/%1/%2/%3/%4")
                            .arg(emoji)
                            .arg(qRound(pixelSize * 8))
                            .arg(scale)
                            .arg(ink.rgba(), 0, 16);
    QPixmap pixmap;
    if (!QPixmapCache::find(key, &pixmap)) {
        pixmap = rendered(emoji, pixelSize, ink, scale);
        QPixmapCache::insert(key, pixmap);
    }
    const QSizeF size = QSizeF(pixmap.size()) / scale;
    painter.save();
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    painter.drawPixmap(QRectF(centre - QPointF(size.width() / 2, size.height() / 2), size), pixmap,
                       QRectF(pixmap.rect()));
    painter.restore();
}
