#include "world/ui/Glow.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>
#include <cmath>
#include <vector>

namespace {

// One box-blur pass along rows (or columns) of a premultiplied ARGB image.
void boxPass(QImage &image, int r, bool horizontal)
{
    const int w = image.width();
    const int h = image.height();
    const int lines = horizontal ? h : w;
    const int length = horizontal ? w : h;
    std::vector<std::uint32_t> src(std::size_t(length), 0);
    const int window = 2 * r + 1;
    for (int line = 0; line < lines; ++line) {
        const auto at = [&](int i) -> QRgb & {
            return horizontal ? reinterpret_cast<QRgb *>(image.scanLine(line))[i]
                              : reinterpret_cast<QRgb *>(image.scanLine(i))[line];
        };
        for (int i = 0; i < length; ++i)
            src[std::size_t(i)] = at(i);
        int sums[4] = {0, 0, 0, 0};
        const auto add = [&](int i, int sign) {
            if (i < 0 || i >= length)
                return;
            const QRgb v = src[std::size_t(i)];
            sums[0] += sign * int(qAlpha(v));
            sums[1] += sign * int(qRed(v));
            sums[2] += sign * int(qGreen(v));
            sums[3] += sign * int(qBlue(v));
        };
        for (int i = -r; i <= r; ++i)
            add(i, 1);
        for (int i = 0; i < length; ++i) {
            at(i) = qRgba(sums[1] / window, sums[2] / window, sums[3] / window, sums[0] / window);
            add(i - r, -1);
            add(i + r + 1, 1);
        }
    }
}

} // namespace

QImage Glow::shadow(const QImage &image, const QColor &color, double radius)
{
    const double dpr = image.devicePixelRatio();
    const int pad = int(std::ceil(radius * 2 * dpr));
    QImage out(image.width() + 2 * pad, image.height() + 2 * pad,
               QImage::Format_ARGB32_Premultiplied);
    out.fill(Qt::transparent);
    {
        // Pixel for pixel: drawn with its ratio, a 2x image would land at half its size, and the
        // glow would sit above and left of its text on a HiDPI screen.
        QImage pixels = image;
        pixels.setDevicePixelRatio(1);
        QPainter p(&out);
        p.drawImage(pad, pad, pixels);
        p.setCompositionMode(QPainter::CompositionMode_SourceIn);
        p.fillRect(out.rect(), color);
    }
    // Three box passes approach a Gaussian whose spread matches the radius.
    const int box = std::max(1, int(std::lround(radius * dpr / 2.0)));
    for (int pass = 0; pass < 3; ++pass) {
        boxPass(out, box, true);
        boxPass(out, box, false);
    }
    out.setDevicePixelRatio(dpr);
    return out;
}

void Glow::drawText(QPainter &painter, const QRectF &box, int flags, const QString &text,
                    const QFont &font, const QColor &color, const QColor &shadowColor,
                    double radius)
{
    if (text.isEmpty())
        return;
    const QFontMetricsF metrics(font);
    const QRectF bounds = metrics.boundingRect(box, flags, text).adjusted(-2, -2, 2, 2);
    const double dpr =
        std::max(1.0, painter.device() ? painter.device()->devicePixelRatioF() : 1.0);
    const double scale = dpr * std::max(painter.transform().m11(), 0.01);
    QImage mask(std::max(1, int(std::ceil(bounds.width() * scale))),
                std::max(1, int(std::ceil(bounds.height() * scale))),
                QImage::Format_ARGB32_Premultiplied);
    mask.setDevicePixelRatio(scale);
    mask.fill(Qt::transparent);
    {
        QPainter p(&mask);
        p.setFont(font);
        p.setPen(Qt::black);
        p.drawText(box.translated(-bounds.topLeft()), flags, text);
    }
    const QImage glow = shadow(mask, shadowColor, radius);
    const double pad = (glow.width() - mask.width()) / 2.0 / scale;
    painter.drawImage(bounds.topLeft() - QPointF(pad, pad), glow);
    painter.save();
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(box, flags, text);
    painter.restore();
}
