#include "magic/ui/AmbientLayer.h"

#include "platform/Appearance.h"

#include <QPaintEvent>
#include <QPainter>
#include <QRadialGradient>
#include <algorithm>
#include <cmath>
#include <utility>

namespace {

constexpr int frameMs = 100; // 10 frames a second: motes drift and twinkle slowly
constexpr int pacedMs = 50;  // how long a pace() holds back the layer's own frames
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
    connect(&m_frames, &QTimer::timeout, this, [this] {
        // Following the map's frames, the next one draws this frame along with its own.
        if (m_paced.isValid() && m_paced.elapsed() < pacedMs)
            m_due = true;
        else
            nextFrame();
    });
    connect(&m_exposure, &WindowExposure::changed, this, &AmbientLayer::updateTimer);
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

void AmbientLayer::setCovered(const QRegion &covered)
{
    if (covered == m_covered)
        return;
    m_covered = covered;
    update();
}

void AmbientLayer::updateTimer()
{
    if (isVisible() && !m_reduceMotion && m_exposure.seen())
        m_frames.start();
    else
        m_frames.stop();
}

void AmbientLayer::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_exposure.watch(window()->windowHandle());
    updateTimer();
}

void AmbientLayer::hideEvent(QHideEvent *event)
{
    QWidget::hideEvent(event);
    updateTimer();
}

void AmbientLayer::pace()
{
    m_paced.start();
    if (std::exchange(m_due, false))
        nextFrame();
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
    // A mote moves less than its size between frames: one rectangle around both places keeps
    // the region (and what is copied to the screen) to one piece per mote.
    const std::vector<QRect> before = AmbientGeometry::moteAreas(m_motes, previous, size());
    const std::vector<QRect> after = AmbientGeometry::moteAreas(m_motes, m_frameTime, size());
    for (std::size_t i = 0; i < before.size() && i < after.size(); ++i) {
        const QRect both = before[i] | after[i];
        if (both.width() <= 2 * after[i].width() && both.height() <= 2 * after[i].height())
            dirty += both;
        else // after a pause
            dirty += QRegion(before[i]) + after[i];
    }
    if (AmbientGeometry::cloudTime(previous) != AmbientGeometry::cloudTime(m_frameTime)) {
        add(AmbientGeometry::cloudAreas(previous, size()));
        add(AmbientGeometry::cloudAreas(m_frameTime, size()));
    }
    update(dirty - m_covered);
}

void AmbientLayer::paintEvent(QPaintEvent *event)
{
    if (m_reduceMotion)
        return;
    QPainter painter(this);
    paintFrame(painter, size(), m_frameTime, Appearance::isDark(palette()),
               event->region() - m_covered);
}

const QImage &AmbientLayer::sprite(QSizeF ellipse, double blur, QColor colour, double scale)
{
    const SpriteKey key{ellipse, blur, colour.rgba(), scale};
    for (const auto &[k, image] : m_sprites) {
        if (k == key)
            return image;
    }
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
    return m_sprites.emplace_back(key, std::move(image)).second;
}

// The soft shapes are drawn once into images and only copied afterwards: filling big radial
// gradients thirty times a second would keep the interface thread busy. Each copy is cropped to
// the pieces of `area` it reaches: a cloud clipped by a scatter of small spots would still cost its
// whole height.
void AmbientLayer::paintFrame(QPainter &painter, QSizeF size, double t, bool dark,
                              const QRegion &area)
{
    const double scale = painter.device() ? painter.device()->devicePixelRatioF() : 1.0;
    const auto stamp = [&](const QRectF &ellipse, double blur, const QColor &colour) {
        const QImage &image = sprite(ellipse.size(), blur, colour, scale);
        const QRectF placed(ellipse.topLeft() - QPointF(blur, blur), QSizeF(image.size()) / scale);
        for (const QRect &piece : area) {
            const QRectF part = placed & QRectF(piece);
            if (!part.isEmpty())
                painter.drawImage(
                    part, image,
                    QRectF((part.topLeft() - placed.topLeft()) * scale, part.size() * scale));
        }
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

void AmbientLayer::paintFrame(QPainter &painter, QSizeF size, double t, bool dark)
{
    paintFrame(painter, size, t, dark, QRegion(QRectF({0, 0}, size).toAlignedRect()));
}
