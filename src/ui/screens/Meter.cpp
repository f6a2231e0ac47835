#include "ui/screens/Meter.h"

#include "platform/Appearance.h"
#include "platform/Spring.h"
#include "ui/screens/TextStyle.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

Meter::Meter(QWidget *parent) : QWidget(parent)
{
    setAttribute(Qt::WA_TranslucentBackground);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_delay.setSingleShot(true);
    connect(&m_animation, &QVariantAnimation::valueChanged, this, [this](const QVariant &v) {
        m_shown = v.toDouble();
        update();
    });
}

void Meter::setValue(double value)
{
    animateTo(value, Spring(0.5, 1.0), 0);
}

void Meter::animateTo(double value, const Spring &spring, int delayMs)
{
    m_target = value;
    m_delay.stop();
    m_delay.disconnect(this);
    if (m_reduceMotion) {
        jumpTo(value);
        return;
    }
    if (delayMs <= 0) {
        start(value, spring);
        return;
    }
    connect(&m_delay, &QTimer::timeout, this, [this, value, spring] { start(value, spring); });
    m_delay.start(delayMs);
}

void Meter::start(double value, const Spring &spring)
{
    m_animation.setSpring(spring);
    m_animation.run(m_shown, value);
}

void Meter::jumpTo(double value)
{
    m_delay.stop();
    m_animation.stop();
    m_target = value;
    m_shown = value;
    update();
}

void Meter::setTint(std::optional<AdaptiveColor> tint)
{
    if (tint == m_tint)
        return;
    m_tint = tint;
    update();
}

double Meter::fillWidth(double width, double value)
{
    return std::max(width * std::clamp(value, 0.0, 1.0), stub);
}

QRectF Meter::trackRect(const QRectF &bounds)
{
    return {bounds.left(), bounds.center().y() - barHeight / 2, bounds.width(), barHeight};
}

void Meter::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    const QRectF bar = trackRect(rect());
    const double radius = barHeight / 2;
    p.setBrush(TextStyle::track(palette()));
    p.drawRoundedRect(bar, radius, radius);

    QColor fill;
    if (m_tint) {
        fill = Appearance::resolve(*m_tint, palette());
    } else {
        fill = Appearance::ink(palette());
        fill.setAlphaF(0.4);
    }
    QRectF filled = bar;
    filled.setWidth(fillWidth(bar.width(), m_shown));
    if (layoutDirection() == Qt::RightToLeft)
        filled.moveRight(bar.right());
    p.setBrush(fill);
    p.drawRoundedRect(filled, radius, radius);
}
