#include "ui/screens/ToggleSwitch.h"

#include "platform/Appearance.h"
#include "ui/screens/TextStyle.h"

#include <QPainter>
#include <QSignalBlocker>

ToggleSwitch::ToggleSwitch(const QString &text, QWidget *parent) : QAbstractButton(parent)
{
    setText(text);
    setCheckable(true);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::PointingHandCursor);
    setAccessibleName(text);
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    m_motion.setDuration(150);
    m_motion.setEasingCurve(QEasingCurve::OutCubic);
    connect(&m_motion, &QVariantAnimation::valueChanged, this, [this](const QVariant &v) {
        m_knob = v.toDouble();
        update();
    });
    connect(this, &QAbstractButton::toggled, this, [this](bool on) {
        m_motion.stop();
        m_motion.setStartValue(m_knob);
        m_motion.setEndValue(on ? 1.0 : 0.0);
        m_motion.start();
    });
}

void ToggleSwitch::follow(bool on)
{
    const QSignalBlocker block(this);
    setChecked(on);
    m_motion.stop();
    m_knob = on ? 1 : 0;
    update();
}

QSize ToggleSwitch::sizeHint() const
{
    const QFontMetrics fm(font());
    return {fm.horizontalAdvance(text()) + 12 + trackWidth, std::max(fm.height(), trackHeight) + 4};
}

QRect ToggleSwitch::trackRect() const
{
    return {width() - trackWidth - 1, (height() - trackHeight) / 2, trackWidth, trackHeight};
}

bool ToggleSwitch::hitButton(const QPoint &pos) const
{
    return rect().contains(pos);
}

void ToggleSwitch::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QPalette &pal = palette();
    p.setPen(pal.color(isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText));
    p.drawText(QRect(0, 0, trackRect().left() - 12, height()), Qt::AlignLeft | Qt::AlignVCenter,
               text());

    const QRectF track = QRectF(trackRect()).adjusted(0.5, 0.5, -0.5, -0.5);
    const QColor off = TextStyle::track(pal);
    const QColor on = TextStyle::accent(pal);
    QColor fill = off;
    fill.setRedF(off.redF() + (on.redF() - off.redF()) * m_knob);
    fill.setGreenF(off.greenF() + (on.greenF() - off.greenF()) * m_knob);
    fill.setBlueF(off.blueF() + (on.blueF() - off.blueF()) * m_knob);
    fill.setAlphaF(off.alphaF() + (on.alphaF() - off.alphaF()) * m_knob);
    p.setPen(Qt::NoPen);
    p.setBrush(fill);
    p.drawRoundedRect(track, track.height() / 2, track.height() / 2);
    if (hasFocus()) {
        QColor ring = on;
        ring.setAlphaF(0.5);
        p.setPen(QPen(ring, 2));
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(track.adjusted(-2, -2, 2, 2), track.height() / 2 + 2,
                          track.height() / 2 + 2);
        p.setPen(Qt::NoPen);
    }
    const double d = track.height() - 4;
    const double x = track.left() + 2 + (track.width() - 4 - d) * m_knob;
    p.setBrush(QColor(0, 0, 0, 40));
    p.drawEllipse(QRectF(x, track.top() + 2.6, d, d));
    p.setBrush(Qt::white);
    p.drawEllipse(QRectF(x, track.top() + 2, d, d));
}
