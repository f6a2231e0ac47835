#include "ui/screens/SpringAnimation.h"

SpringAnimation::SpringAnimation(QObject *parent) : QVariantAnimation(parent)
{
    setDuration(m_spring.durationMs());
}

void SpringAnimation::setSpring(const Spring &spring)
{
    m_spring = spring;
    setDuration(m_spring.durationMs());
}

void SpringAnimation::run(double from, double to)
{
    stop();
    setStartValue(from);
    setEndValue(to);
    start();
}

QVariant SpringAnimation::interpolated(const QVariant &from, const QVariant &to,
                                       qreal progress) const
{
    const double a = from.toDouble();
    const double b = to.toDouble();
    // The last frame lands exactly on the target, whatever the spring's residue.
    if (progress >= 1)
        return b;
    const double seconds = progress * m_spring.durationMs() / 1000.0;
    return a + (b - a) * m_spring.value(seconds);
}
