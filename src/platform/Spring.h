#pragma once

// A damped spring from 0 to 1, described like the system's springs: `response` is the period of
// the undamped oscillation in seconds, `dampingFraction` 1 for no overshoot, below 1 to bounce.
// Animations evaluate value() themselves (see SpringAnimation): Qt 6.4 corrupts the heap when it
// copies a sampled BezierSpline easing curve into an animation.
class Spring
{
public:
    Spring(double response, double dampingFraction);

    [[nodiscard]] double value(double seconds) const;
    // When the motion has settled to within 0.1 % for good.
    [[nodiscard]] int durationMs() const { return m_durationMs; }

private:
    double m_omega;
    double m_zeta;
    int m_durationMs;
};
