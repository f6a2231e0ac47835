#include "ui/VolumeButton.h"

#include "platform/Appearance.h"
#include "platform/Icons.h"
#include "sound/Sound.h"
#include "ui/Popover.h"
#include "ui/screens/ToggleSwitch.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QSlider>
#include <QVBoxLayout>

VolumeButton::VolumeButton(QWidget *parent)
    : QToolButton(parent), m_volume(Sound::shared().volume()), m_muted(Sound::shared().muted())
{
    setAutoRaise(true);
    setFixedWidth(18);
    setIconSize(QSize(16, 16));
    setToolTip(QStringLiteral("Sound"));
    setAccessibleName(QStringLiteral("Sound"));

    auto *panel = new QWidget;
    auto *column = new QVBoxLayout(panel);
    column->setContentsMargins(14, 12, 14, 12);
    m_switch = new ToggleSwitch(QStringLiteral("Sound effects"), panel);
    m_switch->setChecked(!m_muted);
    column->addWidget(m_switch);
    auto *row = new QHBoxLayout;
    m_low = new QLabel(panel);
    m_high = new QLabel(panel);
    auto *low = m_low;
    auto *high = m_high;
    m_slider = new QSlider(Qt::Horizontal, panel);
    m_slider->setRange(0, 100);
    m_slider->setValue(qRound(m_volume * 100));
    m_slider->setMinimumWidth(160);
    m_slider->setAccessibleName(QStringLiteral("Volume"));
    row->addWidget(low);
    row->addWidget(m_slider);
    row->addWidget(high);
    column->addLayout(row);
    m_popover = new Popover(panel, this);

    connect(m_switch, &ToggleSwitch::toggled, this, [this](bool on) {
        m_muted = !on;
        Sound::shared().setMuted(m_muted);
        refreshIcon();
    });
    connect(m_slider, &QSlider::valueChanged, this, [this](int value) {
        m_volume = value / 100.0;
        Sound::shared().setVolume(m_volume);
        refreshIcon();
    });
    // A sample of the new volume when the user lets go.
    connect(m_slider, &QSlider::sliderReleased, this,
            [] { Sound::shared().play(Sound::Sfx::discover()); });
    connect(this, &QToolButton::clicked, this, [this] {
        if (m_popover->isVisible())
            m_popover->hide();
        else
            m_popover->showBelow(this);
    });
    refreshIcon();
}

QString VolumeButton::symbolName() const
{
    if (m_muted)
        return QStringLiteral("speaker.slash.fill");
    return m_volume < 0.4 ? QStringLiteral("speaker.wave.1.fill")
                          : QStringLiteral("speaker.wave.2.fill");
}

void VolumeButton::refreshIcon()
{
    const QColor ink = Appearance::ink(palette());
    setIcon(Icons::symbol(symbolName(), ink, 16));
    m_low->setPixmap(Icons::symbol(QStringLiteral("speaker.fill"), ink, 14).pixmap(14, 14));
    m_high->setPixmap(Icons::symbol(QStringLiteral("speaker.wave.3.fill"), ink, 14).pixmap(14, 14));
}

void VolumeButton::changeEvent(QEvent *event)
{
    QToolButton::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        refreshIcon();
}
