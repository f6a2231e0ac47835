#pragma once

#include "platform/AdaptiveColor.h"
#include "ui/screens/SpringAnimation.h"

#include <QTimer>
#include <QWidget>
#include <optional>

// A thin bar: a rounded track and a rounded fill of `value` (clamped to [0, 1]) that never shrinks
// below a small stub, so even an empty meter shows where it starts.
class Meter : public QWidget
{
    Q_OBJECT

public:
    static constexpr double barHeight = 6;
    static constexpr double stub = 6;

    explicit Meter(QWidget *parent = nullptr);

    // The value the meter is heading for, and the one it shows right now.
    [[nodiscard]] double value() const { return m_target; }
    [[nodiscard]] double shownValue() const { return m_shown; }
    // Animates with the meter's own spring (response 0.5 s, no bounce).
    void setValue(double value);
    // Animates with the caller's spring after a delay.
    void animateTo(double value, const Spring &spring, int delayMs);
    void jumpTo(double value);

    // Without a tint the fill takes a neutral colour.
    void setTint(std::optional<AdaptiveColor> tint);
    void setReduceMotion(bool on) { m_reduceMotion = on; }

    [[nodiscard]] static double fillWidth(double width, double value);
    // The bar inside `bounds`: 6 high, vertically centred.
    [[nodiscard]] static QRectF trackRect(const QRectF &bounds);

    [[nodiscard]] QSize sizeHint() const override { return {120, 14}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return {12, 6}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void start(double value, const Spring &spring);

    double m_target = 0;
    double m_shown = 0;
    std::optional<AdaptiveColor> m_tint;
    bool m_reduceMotion = false;
    SpringAnimation m_animation;
    QTimer m_delay;
};
