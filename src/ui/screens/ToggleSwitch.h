#pragma once

#include <QAbstractButton>
#include <QVariantAnimation>

// A labelled on/off switch: the text at the leading end, the switch at the trailing end.
class ToggleSwitch : public QAbstractButton
{
    Q_OBJECT

public:
    static constexpr int trackWidth = 34;
    static constexpr int trackHeight = 20;

    explicit ToggleSwitch(const QString &text, QWidget *parent = nullptr);

    // Sets the state without emitting toggled(), for following the model.
    void follow(bool on);
    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QRect trackRect() const;

protected:
    void paintEvent(QPaintEvent *event) override;
    bool hitButton(const QPoint &pos) const override;

private:
    double m_knob = 0; // 0 off, 1 on
    QVariantAnimation m_motion;
};
