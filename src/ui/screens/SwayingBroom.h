#pragma once

#include "platform/WindowExposure.h"

#include <QElapsedTimer>
#include <QTimer>
#include <QWidget>

// The broom of the scanning card, rocking about its bottom centre while a scan runs.
class SwayingBroom : public QWidget
{
    Q_OBJECT

public:
    static constexpr double emojiSize = 34;

    explicit SwayingBroom(bool reduceMotion, QWidget *parent = nullptr);

    // Degrees at `seconds`: 18 × sin(6 t).
    [[nodiscard]] static double angle(double seconds);

    [[nodiscard]] QSize sizeHint() const override { return {48, 48}; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void updateTimer();

    bool m_reduceMotion;
    WindowExposure m_exposure;
    QTimer m_frames;
    QElapsedTimer m_clock;
};
