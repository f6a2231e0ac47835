#include "ui/screens/CharacterSheet.h"

#include "game/Achievement.h"
#include "game/Game.h"
#include "magic/Magic.h"
#include "magic/ui/ManaOrbs.h"
#include "platform/Emoji.h"
#include "scan/Fmt.h"
#include "session/ScanMemory.h"
#include "ui/screens/AchievementRow.h"
#include "ui/screens/HeroChoiceButton.h"
#include "ui/screens/Meter.h"
#include "ui/screens/TextStyle.h"
#include "ui/screens/ToggleSwitch.h"

#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace {

constexpr int columnMin = 40;
constexpr int columnGap = 6;

QLabel *text(const QString &s, const QFont &font, QWidget *parent, bool secondary = false)
{
    auto *l = new QLabel(s, parent);
    l->setFont(font);
    l->setTextFormat(Qt::PlainText);
    if (secondary)
        TextStyle::makeSecondary(l);
    return l;
}

} // namespace

const QStringList &CharacterSheet::heroes()
{
    static const QStringList all = {
        QStringLiteral("🧙"), QStringLiteral("🧝"), QStringLiteral("🥷"),
        QStringLiteral("🧚"), QStringLiteral("🦸"), QStringLiteral("🧛"),
        QStringLiteral("🤖"), QStringLiteral("🐱"),    QStringLiteral("🦊"),
        QStringLiteral("🐸"),    QStringLiteral("🧜"), QStringLiteral("🐲"),
    };
    return all;
}

CharacterSheet::CharacterSheet(Game &game, Magic &magic, ScanMemory &memory, QWidget *parent)
    : QScrollArea(parent), m_game(game), m_magic(magic), m_memory(memory), m_content(new QWidget)
{
    setFixedSize(sheetWidth, sheetHeight);
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    viewport()->setAutoFillBackground(false);
    m_content->setAutoFillBackground(false);
    setAccessibleName(tr("Character sheet"));

    auto *column = new QVBoxLayout(m_content);
    column->setContentsMargins(padding, padding, padding, padding);
    column->setSpacing(12);
    column->addWidget(buildHeader());
    column->addWidget(buildHeroGrid());
    column->addWidget(buildStatistics());
    column->addWidget(buildPlaceNames());
    column->addWidget(buildMemory());
    column->addWidget(buildAchievements());
    column->addStretch();
    setWidget(m_content);

    connect(&m_game, &Game::heroChanged, this, &CharacterSheet::refreshHero);
    connect(&m_game, &Game::heroNameChanged, this, &CharacterSheet::refreshHero);
    connect(&m_game, &Game::xpChanged, this, &CharacterSheet::refreshLevel);
    for (const auto signal : {&Game::reclaimedChanged, &Game::trashedChanged, &Game::seenChanged})
        connect(&m_game, signal, this, &CharacterSheet::refreshStatistics);
    connect(&m_magic, &Magic::castsChanged, this, &CharacterSheet::refreshStatistics);
    connect(&m_game, &Game::fantasyNamesChanged, this,
            [this] { m_placeNames->follow(m_game.fantasyNames()); });
    connect(&m_game, &Game::unlockedChanged, this, &CharacterSheet::refreshAchievements);
    connect(&m_memory, &ScanMemory::rememberedChanged, this, &CharacterSheet::refreshMemory);

    refreshHero();
    m_meter->jumpTo(m_game.levelProgress());
    refreshLevel();
    refreshStatistics();
    refreshAchievements();
    refreshMemory();
}

QWidget *CharacterSheet::buildHeader()
{
    auto *box = new QWidget(m_content);
    auto *row = new QHBoxLayout(box);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(12);
    m_heroEmoji = new QLabel(box);
    QFont big = Emoji::font(12);
    big.setPixelSize(46);
    m_heroEmoji->setFont(big);
    m_heroEmoji->setAlignment(Qt::AlignCenter);
    m_heroEmoji->setMinimumWidth(56);
    row->addWidget(m_heroEmoji, 0, Qt::AlignTop);

    auto *column = new QVBoxLayout;
    column->setSpacing(4);
    m_name = new QLineEdit(box);
    m_name->setFrame(false);
    m_name->setPlaceholderText(tr("Hero name"));
    m_name->setAccessibleName(tr("Hero name"));
    m_name->setFont(Emoji::mixedFont(TextStyle::weighted(TextStyle::title3(), QFont::Bold)));
    QPalette clear = m_name->palette();
    clear.setColor(QPalette::Base, Qt::transparent);
    m_name->setPalette(clear);
    m_name->setTextMargins(-2, 0, 0, 0);
    connect(m_name, &QLineEdit::textEdited, this,
            [this](const QString &name) { m_game.setHeroName(name); });
    column->addWidget(m_name);
    m_level = text({}, TextStyle::callout(), box, true);
    column->addWidget(m_level);
    m_meter = new Meter(box);
    m_meter->setTint(Tiers::landColor(Tier::dragon));
    m_meter->setFixedHeight(10);
    column->addWidget(m_meter);
    m_xp = text({}, TextStyle::caption(), box, true);
    column->addWidget(m_xp);
    row->addLayout(column, 1);
    return box;
}

QWidget *CharacterSheet::buildHeroGrid()
{
    auto *box = new QWidget(m_content);
    auto *column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(8);
    column->addWidget(text(tr("Choose your hero"), TextStyle::headline(), box));

    auto *grid = new QGridLayout;
    grid->setHorizontalSpacing(columnGap);
    grid->setVerticalSpacing(columnGap);
    const int available = sheetWidth - 2 * padding;
    const int columns = std::max(1, (available + columnGap) / (columnMin + columnGap));
    for (int i = 0; i < heroes().size(); ++i) {
        auto *button = new HeroChoiceButton(heroes()[i], box);
        connect(button, &HeroChoiceButton::clicked, this, [this, hero = heroes()[i]] {
            if (hero != m_game.hero())
                m_game.setHero(hero);
        });
        m_heroes.push_back(button);
        grid->addWidget(button, i / columns, i % columns, Qt::AlignCenter);
    }
    for (int c = 0; c < columns; ++c)
        grid->setColumnStretch(c, 1);
    column->addLayout(grid);
    return box;
}

QWidget *CharacterSheet::buildStatistics()
{
    auto *box = new QWidget(m_content);
    auto *grid = new QGridLayout(box);
    grid->setContentsMargins(0, 0, 0, 0);
    grid->setHorizontalSpacing(16);
    grid->setVerticalSpacing(8);
    const QStringList labels = {tr("Slain"), tr("In Trash"), tr("Territories found"),
                                tr("Spells cast"), tr("Mana")};
    for (int i = 0; i < labels.size(); ++i) {
        auto *cell = new QVBoxLayout;
        cell->setSpacing(1);
        cell->addWidget(text(labels[i], TextStyle::caption(), box, true));
        if (labels[i] == tr("Mana")) {
            cell->addWidget(new ManaOrbs(m_magic, box), 0, Qt::AlignLeft | Qt::AlignVCenter);
        } else {
            auto *value = text({}, TextStyle::weighted(TextStyle::callout(), QFont::DemiBold), box);
            m_stats.emplace_back(labels[i], value);
            cell->addWidget(value);
        }
        grid->addLayout(cell, i / 3, i % 3, Qt::AlignLeft | Qt::AlignTop);
    }
    for (int c = 0; c < 3; ++c)
        grid->setColumnStretch(c, 1);
    return box;
}

// A switch with a line of explanation under it, in a box of its own.
QWidget *CharacterSheet::switchBox(ToggleSwitch *&toggle, const QString &label,
                                   const QString &explanation)
{
    auto *box = new QWidget(m_content);
    auto *column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(4);
    toggle = new ToggleSwitch(label, box);
    toggle->setFont(TextStyle::body());
    column->addWidget(toggle);
    auto *caption = text(explanation, TextStyle::caption(), box, true);
    caption->setWordWrap(true);
    column->addWidget(caption);
    return box;
}

QWidget *CharacterSheet::buildPlaceNames()
{
    QWidget *box = switchBox(m_placeNames, tr("Fantasy place names on the map"),
                             tr("Real folder names always show under each place name. Press N "
                                "on the map to name a territory yourself."));
    m_placeNames->follow(m_game.fantasyNames());
    connect(m_placeNames, &ToggleSwitch::toggled, this,
            [this](bool on) { m_game.setFantasyNames(on); });
    return box;
}

QWidget *CharacterSheet::buildMemory()
{
    QWidget *box = switchBox(m_remember, tr("Remember scans"),
                             tr("Shows what grew since the last scan and opens a remembered folder "
                                "at once. Kept in your cache folder, for the 8 most recent "
                                "folders."));
    m_remember->follow(m_memory.enabled());
    connect(m_remember, &ToggleSwitch::toggled, this, [this](bool on) { m_memory.setEnabled(on); });
    m_forget = new QPushButton(tr("Forget remembered scans"), box);
    m_forget->setCursor(Qt::PointingHandCursor);
    m_forget->setMinimumSize(m_forget->sizeHint() + QSize(24, 6));
    connect(m_forget, &QPushButton::clicked, this, [this] { m_memory.forget(); });
    box->layout()->addWidget(m_forget);
    box->layout()->setAlignment(m_forget, Qt::AlignLeft);
    return box;
}

QWidget *CharacterSheet::buildAchievements()
{
    auto *box = new QWidget(m_content);
    auto *column = new QVBoxLayout(box);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(6);
    m_achievementsTitle = text({}, TextStyle::headline(), box);
    column->addWidget(m_achievementsTitle);
    for (const Achievement &a : Achievement::all()) {
        auto *row = new AchievementRow(a, box);
        m_achievements.push_back(row);
        column->addWidget(row);
    }
    return box;
}

void CharacterSheet::refreshHero()
{
    m_heroEmoji->setText(m_game.hero());
    if (m_name->text() != m_game.heroName())
        m_name->setText(m_game.heroName());
    for (HeroChoiceButton *b : m_heroes)
        b->setChecked(b->hero() == m_game.hero());
}

void CharacterSheet::refreshLevel()
{
    const int level = m_game.level();
    m_level->setText(tr("Level %1 · %2").arg(level).arg(m_game.title()));
    m_meter->setValue(m_game.levelProgress());
    m_xp->setText(
        tr("%1 XP · %2 to level %3").arg(m_game.xp()).arg(m_game.xpToNext()).arg(level + 1));
}

void CharacterSheet::refreshStatistics()
{
    for (auto &[label, value] : m_stats) {
        if (label == tr("Slain"))
            value->setText(Fmt::bytes(m_game.reclaimed()));
        else if (label == tr("In Trash"))
            value->setText(Fmt::bytes(m_game.trashedBytes()));
        else if (label == tr("Territories found"))
            value->setText(Fmt::count(std::int64_t(m_game.seen().size())));
        else if (label == tr("Spells cast"))
            value->setText(Fmt::count(m_magic.casts()));
    }
}

void CharacterSheet::refreshAchievements()
{
    const auto &all = Achievement::all();
    int unlocked = 0;
    for (AchievementRow *row : m_achievements) {
        const bool on = m_game.unlocked().contains(row->achievement().id);
        unlocked += on ? 1 : 0;
        row->setUnlocked(on);
    }
    m_achievementsTitle->setText(tr("Achievements · %1/%2").arg(unlocked).arg(all.size()));
}

void CharacterSheet::refreshMemory()
{
    m_remember->follow(m_memory.enabled());
    // Turned off, what was remembered can still be forgotten.
    m_forget->setEnabled(!m_memory.store().remembered().empty());
}

QString CharacterSheet::statistic(const QString &label) const
{
    for (const auto &[name, value] : m_stats)
        if (name == label)
            return value->text();
    return {};
}
