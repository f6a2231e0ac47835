#include "ui/LootChips.h"

#include "game/Game.h"
#include "platform/Appearance.h"
#include "platform/Icons.h"
#include "platform/Spring.h"
#include "scan/Fmt.h"
#include "session/Model.h"
#include "ui/TabularLabel.h"
#include "ui/screens/TextStyle.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

LootChips::LootChips(Model &model, Game &game, bool reduceMotion, QWidget *parent)
    : QWidget(parent), m_game(game), m_reduceMotion(reduceMotion), m_icon(new QLabel(this)),
      m_reclaimed(new TabularLabel(this)), m_trash(new QToolButton(this))
{
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(6);

    auto *chip = new QWidget(this);
    auto *chipLayout = new QHBoxLayout(chip);
    chipLayout->setContentsMargins(0, 0, 0, 0);
    chipLayout->setSpacing(4);
    chipLayout->addWidget(m_icon);
    chipLayout->addWidget(m_reclaimed);
    chip->setToolTip(QStringLiteral("Everything you've slain so far"));
    m_reclaimed->setFont(TextStyle::weighted(TextStyle::callout(), QFont::DemiBold));
    layout->addWidget(chip);

    m_trash->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    m_trash->setToolTip(QStringLiteral("Slain items wait in the Trash and still use space. Empty "
                                       "the Trash in your file manager to free it."));
    m_trash->setFont(TextStyle::caption());
    connect(m_trash, &QToolButton::clicked, &model, &Model::openTrash);
    layout->addWidget(m_trash);

    m_count.setSpring(Spring(0.5, 0.85));
    connect(&m_count, &QVariantAnimation::valueChanged, this,
            [this](const QVariant &v) { showReclaimed(v.toDouble()); });
    connect(&game, &Game::reclaimedChanged, this, [this] {
        const double target = static_cast<double>(m_game.reclaimed());
        if (m_reduceMotion) {
            showReclaimed(target);
            return;
        }
        const QVariant from = m_count.state() == QAbstractAnimation::Running
                                  ? m_count.currentValue()
                                  : m_count.endValue();
        m_count.run(from.toDouble(), target);
    });
    connect(&game, &Game::trashedChanged, this, &LootChips::refreshTrash);
    m_count.setEndValue(static_cast<double>(game.reclaimed()));
    showReclaimed(static_cast<double>(game.reclaimed()));
    refreshTrash();
    refreshIcons();
}

void LootChips::showReclaimed(double bytes)
{
    m_reclaimed->setText(Fmt::bytes(bytes <= 0 ? 0 : static_cast<std::uint64_t>(bytes)));
}

void LootChips::refreshTrash()
{
    const std::uint64_t waiting = m_game.trashedBytes();
    m_trash->setVisible(waiting > 0);
    m_trash->setText(Fmt::bytes(waiting) + QStringLiteral(" in Trash"));
    m_trash->setAccessibleName(m_trash->text());
}

void LootChips::refreshIcons()
{
    const QColor ink = Appearance::ink(palette());
    m_icon->setPixmap(
        Icons::symbol(QStringLiteral("sparkles"), QColor(0xED, 0xA1, 0x00), 16).pixmap(16, 16));
    m_trash->setIcon(Icons::symbol(QStringLiteral("trash"), ink, 14));
}

void LootChips::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        refreshIcons();
}
