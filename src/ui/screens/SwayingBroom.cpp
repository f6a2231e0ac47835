#include "ui/screens/SwayingBroom.h"

#include "platform/Emoji.h"

#include <QPainter>
#include <cmath>

SwayingBroom::SwayingBroom(bool reduceMotion, QWidget *parent)
    : QWidget(parent), m_reduceMotion(reduceMotion)
{
    setAttribute(Qt::WA_TranslucentBackground);
    setFixedSize(sizeHint());
    m_frames.setInterval(16);
    connect(&m_frames, &QTimer::timeout, this, qOverload<>(&QWidget::update));
    connect(&m_exposure, &WindowExposure::changed, this, &SwayingBroom::updateTimer);
    m_clock.start();
}

void SwayingBroom::updateTimer()
{
    if (isVisible() && !m_reduceMotion && m_exposure.seen())
        m_frames.start();
    else
        m_frames.stop();
}

double SwayingBroom::angle(double seconds)
{
    return 18 * std::sin(6 * seconds);
}

void SwayingBroom::showEvent(QShowEvent *)
{
    m_exposure.watch(window()->windowHandle());
    updateTimer();
}

void SwayingBroom::hideEvent(QHideEvent *)
{
    updateTimer();
}

void SwayingBroom::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.setRenderHint(QPainter::SmoothPixmapTransform);
    // The emoji's box is emojiSize high and rests on the bottom of the widget; it pivots there.
    const QPointF pivot(width() / 2.0, height() - (height() - emojiSize) / 2);
    p.translate(pivot);
    if (!m_reduceMotion)
        p.rotate(angle(m_clock.elapsed() / 1000.0));
    Emoji::drawCentered(p, QStringLiteral("🧹"), QPointF(0, -emojiSize / 2), emojiSize);
}
