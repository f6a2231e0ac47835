#include "magic/ui/AmbientLayer.h"

#include "platform/Appearance.h"

#include <QPainter>
#include <QRadialGradient>
#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int frameMs = 66; // 15 frames a second: motes twinkle slowly
const QColor warmMote = QColor::fromRgbF(1.0f, 0.9f, 0.45f);

// A filled ellipse whose edge is softened over `blur` points on each side, centred on (0, 0).
void softEllipse(QPainter &painter, QSizeF ellipse, double blur, QColor colour)
{
    const double rx = ellipse.width() / 2 + blur;
    const double ry = ellipse.height() / 2 + blur;
    if (rx <= 0 || ry <= 0)
        return;
    // Full inside the shrunk ellipse, half at the true edge, nothing beyond the grown one.
    const double mean = (ellipse.width() + ellipse.height()) / 4;
    const double core = std::max(mean - blur, 0.0) / (mean + blur);
    QRadialGradient g(QPointF(0, 0), 1);
    constexpr int steps = 12;
    for (int i = 0; i <= steps; ++i) {
        const double s = double(i) / steps;
        const double fade = 1 - s * s * (3 - 2 * s);
        QColor c = colour;
        c.setAlphaF(float(colour.alphaF() * fade));
        g.setColorAt(core + (1 - core) * s, c);
    }
    if (core > 0)
        g.setColorAt(0, colour);
    painter.save();
    painter.scale(rx, ry);
    painter.setPen(Qt::NoPen);
    painter.setBrush(g);
    painter.drawEllipse(QPointF(0, 0), 1.0, 1.0);
    painter.restore();
}

} // namespace

AmbientLayer::AmbientLayer(bool reduceMotion, QWidget *parent)
    : QWidget(parent), m_reduceMotion(reduceMotion), m_motes(AmbientGeometry::motes()),
      m_frames(this)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
    setFocusPolicy(Qt::NoFocus);
    m_frames.setInterval(frameMs);
    connect(&m_frames, &QTimer::timeout, this, &AmbientLayer::nextFrame);
    m_clock.start();
}

void AmbientLayer::setReduceMotion(bool on)
{
    if (on == m_reduceMotion)
        return;
    m_reduceMotion = on;
    updateTimer();
    update();
}

void AmbientLayer::updateTimer()
{
    if (isVisible() && !m_reduceMotion)
        m_frames.start();
    else
        m_frames.stop();
}

void AmbientLayer::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    updateTimer();
}

void AmbientLayer::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    updateTimer();
}

void AmbientLayer::nextFrame()
{
    const double previous = std::exchange(m_frameTime, double(m_clock.elapsed()) / 1000.0);
    // Only the two frames' shapes change; the rest of the map stays as it is. What the last frame
    // painted follows from its time and the present size, whatever painted it (a tick, a resize,
    // the hero walking by). The big, soft clouds only when they have moved.
    QRegion dirty;
    const auto add = [&dirty](const std::vector<QRect> &areas) {
        for (const QRect &a : areas)
            dirty += a;
    };
    add(AmbientGeometry::moteAreas(m_motes, previous, size()));
    add(AmbientGeometry::moteAreas(m_motes, m_frameTime, size()));
    if (AmbientGeometry::cloudTime(previous) != AmbientGeometry::cloudTime(m_frameTime)) {
        add(AmbientGeometry::cloudAreas(previous, size()));
        add(AmbientGeometry::cloudAreas(m_frameTime, size()));
    }
    update(dirty);
}

void AmbientLayer::paintEvent(QPaintEvent *)
{
    if (m_reduceMotion)
        return;
    QPainter painter(this);
    paintFrame(painter, size(), m_frameTime, Appearance::isDark(palette()));
}

const QImage &AmbientLayer::sprite(QSizeF ellipse, double blur, QColor colour, double scale)
{
    const QString key = QStringLiteral("%1x%2/%3/%4/%5")
                            .arg(ellipse.width())
                            .arg(ellipse.height())
                            .arg(blur)
                            .arg(colour.rgba())
                            .arg(scale);
    const auto found = m_sprites.constFind(key);
    if (found != m_sprites.cend())
        return *found;
    // Only a handful of sizes are live at once (the window's size picks the clouds').
    if (m_sprites.size() > 16)
        m_sprites.clear();
    const QSizeF logical(ellipse.width() + 2 * blur, ellipse.height() + 2 * blur);
    QImage image(std::max(1, int(std::ceil(logical.width() * scale))),
                 std::max(1, int(std::ceil(logical.height() * scale))),
                 QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(logical.width() / 2, logical.height() / 2);
    softEllipse(painter, ellipse, blur, colour);
    painter.end();
    return *m_sprites.insert(key, image);
}

// The soft shapes are drawn once into images and only copied afterwards: filling big radial
// gradients thirty times a second would keep the interface thread busy.
void AmbientLayer::paintFrame(QPainter &painter, QSizeF size, double t, bool dark)
{
    const double scale = painter.device() ? painter.device()->devicePixelRatioF() : 1.0;
    const auto stamp = [&](const QRectF &ellipse, double blur, const QColor &colour) {
        const QImage &image = sprite(ellipse.size(), blur, colour, scale);
        painter.drawImage(ellipse.topLeft() - QPointF(blur, blur), image);
    };
    painter.save();
    QColor shadow(Qt::black);
    shadow.setAlphaF(dark ? 0.12f : 0.07f);
    for (int c = 0; c < AmbientGeometry::cloudCount; ++c) {
        const QRectF cloud = AmbientGeometry::cloud(c, AmbientGeometry::cloudTime(t), size);
        if (!cloud.isEmpty())
            stamp(cloud, AmbientGeometry::cloudBlur, shadow);
    }
    const QColor mote = dark ? warmMote : QColor(Qt::white);
    for (const AmbientGeometry::Mote &m : m_motes) {
        painter.setOpacity(AmbientGeometry::moteOpacity(m, t));
        stamp(AmbientGeometry::moteRect(m, t, size), AmbientGeometry::moteBlur, mote);
    }
    painter.restore();
}
