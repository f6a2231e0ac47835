#pragma once

#include <QEasingCurve>

// A damped spring from 0 to 1, described like the system's springs: `response` is the period of
// the undamped oscillation in seconds, `dampingFraction` 1 for no overshoot, below 1 to bounce.
// Used as the easing curve of a QVariantAnimation running for duration().
class Spring
{
public:
    Spring(double response, double dampingFraction);

    [[nodiscard]] double value(double seconds) const;
    // When the motion has settled to within 0.1 % for good.
    [[nodiscard]] int durationMs() const { return m_durationMs; }
    [[nodiscard]] QEasingCurve easing() const;

private:
    double m_omega;
    double m_zeta;
    int m_durationMs;
};
