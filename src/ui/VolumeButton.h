#pragma once

#include <QToolButton>

class ToggleSwitch;
class QLabel;
class QSlider;
class Popover;

// The sound control: a speaker that shows mute and volume, opening a small panel to change them.
class VolumeButton : public QToolButton
{
    Q_OBJECT

public:
    explicit VolumeButton(QWidget *parent = nullptr);

    [[nodiscard]] QString symbolName() const;
    [[nodiscard]] ToggleSwitch *soundSwitch() const { return m_switch; }
    [[nodiscard]] QSlider *slider() const { return m_slider; }
    [[nodiscard]] Popover *popover() const { return m_popover; }

protected:
    void changeEvent(QEvent *event) override;

private:
    void refreshIcon();

    double m_volume;
    bool m_muted;
    ToggleSwitch *m_switch;
    QSlider *m_slider;
    QLabel *m_low;
    QLabel *m_high;
    Popover *m_popover;
};
