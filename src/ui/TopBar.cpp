#include "ui/TopBar.h"

#include "game/Game.h"
#include "platform/Appearance.h"
#include "platform/Icons.h"
#include "platform/Keys.h"
#include "session/Model.h"
#include "ui/Breadcrumbs.h"
#include "ui/HeroBadge.h"
#include "ui/LootChips.h"
#include "ui/Popover.h"
#include "ui/QuestRing.h"
#include "ui/SegmentedControl.h"
#include "ui/VolumeButton.h"
#include "ui/screens/CharacterSheet.h"

#include <QEvent>
#include <QFrame>
#include <QHBoxLayout>
#include <QToolButton>

namespace {

QToolButton *iconButton(QWidget *parent, const QString &help)
{
    auto *b = new QToolButton(parent);
    b->setAutoRaise(true);
    b->setToolTip(help);
    b->setAccessibleName(help);
    b->setIconSize(QSize(18, 18));
    return b;
}

} // namespace

TopBar::TopBar(Model &model, Game &game, Magic &magic, bool reduceMotion, QWidget *parent)
    : QWidget(parent), m_model(model), m_game(game)
{
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(10, 6, 10, 6);
    row->setSpacing(8);

    m_badge = new HeroBadge(game, reduceMotion, this);
    row->addWidget(m_badge);
    m_sheet = new Popover(new CharacterSheet(game, magic, model.memory()), this);
    connect(m_badge, &HeroBadge::clicked, this, [this] { m_sheet->showBelow(m_badge); });

    m_divider = new QFrame(this);
    m_divider->setFrameShape(QFrame::VLine);
    m_divider->setFixedHeight(28);
    row->addWidget(m_divider);
    m_up = iconButton(this, Keys::display(QStringLiteral("Up one level (Esc or ⌘↑)")));
    connect(m_up, &QToolButton::clicked, &model, &Model::up);
    row->addWidget(m_up);
    m_crumbs = new Breadcrumbs(model, game, this);
    row->addWidget(m_crumbs, 1);
    row->addStretch(0);

    m_mode = new SegmentedControl(QStringLiteral("View"), this);
    m_mode->addSegment(QString(), QIcon(), QStringLiteral("World map"));
    m_mode->addSegment(QString(), QIcon(), QStringLiteral("Ranking"));
    m_mode->addSegment(QString(), QIcon(), QStringLiteral("Bounty board"));
    connect(m_mode, &SegmentedControl::selectedChanged, this,
            [this](int i) { m_model.setMode(Modes::all[std::size_t(i)]); });
    row->addWidget(m_mode);
    m_metric = new SegmentedControl(QStringLiteral("Measure"), this);
    for (const Metric m : Metrics::all)
        m_metric->addSegment(
            Metrics::label(m), QIcon(),
            QStringLiteral("Size territories by disk space or by number of files"));
    connect(m_metric, &SegmentedControl::selectedChanged, this,
            [this](int i) { m_model.setMetric(Metrics::all[std::size_t(i)]); });
    row->addWidget(m_metric);

    m_quest = new QuestRing(game, this);
    row->addWidget(m_quest);
    m_loot = new LootChips(model, game, reduceMotion, this);
    row->addWidget(m_loot);
    m_volume = new VolumeButton(this);
    row->addWidget(m_volume);
    m_folder = iconButton(this, QStringLiteral("Choose another folder"));
    connect(m_folder, &QToolButton::clicked, this, [this] { m_model.chooseFolder(m_game); });
    row->addWidget(m_folder);
    m_rescan = iconButton(this, Keys::display(QStringLiteral("Rescan (⌘R)")));
    connect(m_rescan, &QToolButton::clicked, this, [this] { m_model.scan(m_game); });
    row->addWidget(m_rescan);

    for (const auto signal : {&Model::currentChanged, &Model::rootChanged, &Model::modeChanged,
                              &Model::metricChanged, &Model::adviceChanged, &Model::changed})
        connect(&model, signal, this, &TopBar::refresh);
    refreshIcons();
    refresh();
}

void TopBar::refresh()
{
    const NodePtr current = m_model.current();
    const bool here = current != nullptr;
    for (QWidget *w : {static_cast<QWidget *>(m_divider), static_cast<QWidget *>(m_up),
                       static_cast<QWidget *>(m_crumbs), static_cast<QWidget *>(m_mode),
                       static_cast<QWidget *>(m_metric)})
        w->setVisible(here);
    m_up->setEnabled(here && current->hasParent());
    m_rescan->setVisible(m_model.root() != nullptr);
    m_mode->segment(2)->setText(QStringLiteral("💰 %1").arg(m_model.advice().size()));
    m_mode->setSelected(int(m_model.mode()));
    m_metric->setSelected(int(m_model.metric()));
}

void TopBar::refreshIcons()
{
    const QColor ink = Appearance::ink(palette());
    m_up->setIcon(Icons::symbol(QStringLiteral("chevron.left"), ink, 18));
    m_folder->setIcon(Icons::symbol(QStringLiteral("folder"), ink, 18));
    m_rescan->setIcon(Icons::symbol(QStringLiteral("arrow.clockwise"), ink, 18));
    m_mode->segment(0)->setIcon(Icons::symbol(QStringLiteral("map"), ink, 16));
    m_mode->segment(0)->setToolButtonStyle(Qt::ToolButtonIconOnly);
    m_mode->segment(1)->setIcon(Icons::symbol(QStringLiteral("chart.bar.fill"), ink, 16));
    m_mode->segment(1)->setToolButtonStyle(Qt::ToolButtonIconOnly);
}

void TopBar::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        refreshIcons();
}
