#pragma once

#include "platform/Spring.h"

#include <QVariantAnimation>

// A QVariantAnimation of doubles that moves along a spring. It evaluates the spring itself
// instead of taking Spring::easing(): Qt 6.4 corrupts the heap when it copies a BezierSpline
// easing curve into an animation.
class SpringAnimation : public QVariantAnimation
{
    Q_OBJECT

public:
    explicit SpringAnimation(QObject *parent = nullptr);

    // Also sets the duration to the spring's settling time.
    void setSpring(const Spring &spring);
    // Starts from `from` towards `to` (stopping any run in progress).
    void run(double from, double to);

protected:
    [[nodiscard]] QVariant interpolated(const QVariant &from, const QVariant &to,
                                        qreal progress) const override;

private:
    Spring m_spring{0.5, 1.0};
};
