#include "world/ui/Stamps.h"

#include "platform/Emoji.h"
#include "platform/PaintScale.h"
#include "world/ui/MonsterArt.h"

#include <QPaintDevice>
#include <QPainter>
#include <cmath>

namespace {

constexpr qsizetype cacheLimit = 512;

QString keyOf(const QString &what, int px, const QColor &tint = QColor())
{
    return what + QLatin1Char('\x1f') + QString::number(px) + QLatin1Char('\x1f') +
           (tint.isValid() ? tint.name(QColor::HexArgb) : QString());
}

} // namespace

double Stamps::scaleOf(const QPainter &painter)
{
    return PaintScale::quantized(painter);
}

void Stamps::makeRoom()
{
    if (m_images.size() >= cacheLimit)
        m_images.clear();
}

const QImage &Stamps::emoji(const QString &emoji, double pixelSize, double scale,
                            const QColor &tint)
{
    const int px = std::max(1, int(std::lround(pixelSize * scale)));
    const QString key = keyOf(emoji, px, tint);
    auto it = m_images.find(key);
    if (it != m_images.end())
        return *it;

    makeRoom();
    const int side = px * 2;
    QImage img(side, side, QImage::Format_ARGB32_Premultiplied);
    img.fill(Qt::transparent);
    {
        QPainter p(&img);
        p.setRenderHint(QPainter::Antialiasing);
        p.setRenderHint(QPainter::TextAntialiasing);
        Emoji::drawCentered(p, emoji, QPointF(side / 2.0, side / 2.0), px);
        if (tint.isValid()) {
            p.setCompositionMode(QPainter::CompositionMode_SourceIn);
            p.fillRect(img.rect(), tint);
        }
    }
    img.setDevicePixelRatio(double(px) / pixelSize);
    return *m_images.insert(key, img);
}

const QImage &Stamps::monster(Tier tier, double size, double scale)
{
    const int px = std::max(1, int(std::lround(size * scale)));
    const QString key = keyOf(QStringLiteral("monster:") + QString::number(Tiers::index(tier)), px);
    auto it = m_images.find(key);
    if (it != m_images.end())
        return *it;

    makeRoom();
    QImage img(px, px, QImage::Format_ARGB32_Premultiplied);
    img.fill(Qt::transparent);
    {
        QPainter p(&img);
        MonsterArt::draw(p, tier, QRectF(0, 0, px, px));
    }
    img.setDevicePixelRatio(double(px) / size);
    return *m_images.insert(key, img);
}

void Stamps::drawEmoji(QPainter &painter, const QString &emoji, QPointF centre, double pixelSize,
                       const QColor &tint)
{
    if (pixelSize <= 0)
        return;
    const QImage &img = this->emoji(emoji, pixelSize, scaleOf(painter), tint);
    const double side = pixelSize * 2;
    painter.drawImage(QRectF(centre.x() - side / 2, centre.y() - side / 2, side, side), img);
}

void Stamps::drawMonster(QPainter &painter, Tier tier, QPointF centre, double size)
{
    if (size <= 0)
        return;
    const QImage &img = monster(tier, size, scaleOf(painter));
    painter.drawImage(QRectF(centre.x() - size / 2, centre.y() - size / 2, size, size), img);
}

void Stamps::drawShadow(QPainter &painter, QPointF centre, double rx, double ry,
                        const QColor &colour)
{
    if (rx <= 0 || ry <= 0)
        return;
    const double scale = scaleOf(painter);
    const int w = std::max(1, int(std::lround(2 * rx * scale)));
    const int h = std::max(1, int(std::lround(2 * ry * scale)));
    const QString key = keyOf(QStringLiteral("shadow:%1x").arg(w), h, colour);
    auto it = m_images.find(key);
    if (it == m_images.end()) {
        makeRoom();
        QImage img(w, h, QImage::Format_ARGB32_Premultiplied);
        img.fill(Qt::transparent);
        {
            QPainter p(&img);
            p.setRenderHint(QPainter::Antialiasing);
            p.setPen(Qt::NoPen);
            p.setBrush(colour);
            p.drawEllipse(QRectF(0, 0, w, h));
        }
        img.setDevicePixelRatio(scale);
        it = m_images.insert(key, img);
    }
    painter.drawImage(QRectF(centre.x() - rx, centre.y() - ry, 2 * rx, 2 * ry), *it);
}
