#include "ui/screens/WelcomeView.h"

#include "game/Game.h"
#include "platform/Emoji.h"
#include "platform/Home.h"
#include "session/Model.h"
#include "ui/screens/ProminentButton.h"
#include "ui/screens/TextStyle.h"
#include "world/ui/MonsterGlyph.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>

namespace {

constexpr int glyphSize = 56;

} // namespace

WelcomeView::WelcomeView(Model &model, Game &game, QWidget *parent)
    : QWidget(parent), m_model(model), m_game(game)
{
    auto *column = new QVBoxLayout(this);
    column->setSpacing(16);
    column->addStretch();

    auto *monsters = new QHBoxLayout;
    monsters->setSpacing(6);
    monsters->addStretch();
    for (const Tier tier : Tiers::all)
        monsters->addWidget(new MonsterGlyph(tier, glyphSize, this));
    monsters->addStretch();
    column->addLayout(monsters);

    m_title = new QLabel(this);
    m_title->setFont(Emoji::mixedFont(TextStyle::weighted(TextStyle::title(), QFont::Bold)));
    m_title->setAlignment(Qt::AlignCenter);
    m_title->setTextFormat(Qt::PlainText);
    column->addWidget(m_title);

    auto *text = new QLabel(
        tr("Scan a folder and it becomes an island to explore. Bigger folders are bigger "
           "monsters —\nslay them (Move to Trash), claim bounties, cast spells and level up."),
        this);
    text->setFont(TextStyle::body());
    text->setAlignment(Qt::AlignCenter);
    TextStyle::makeSecondary(text);
    column->addWidget(text);

    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(10);
    buttons->addStretch();
    m_scanHome = new ProminentButton(tr("Scan Home Folder"), this);
    m_scanHome->setDefault(true);
    m_scanHome->setAutoDefault(true);
    connect(m_scanHome, &QPushButton::clicked, this, [this] {
        m_model.setScanPath(Home::path());
        m_model.scan(m_game);
    });
    buttons->addWidget(m_scanHome);
    m_choose = new QPushButton(tr("Choose Folder…"), this);
    m_choose->setAutoDefault(false);
    m_choose->setFont(TextStyle::body());
    m_choose->setMinimumHeight(m_scanHome->sizeHint().height());
    connect(m_choose, &QPushButton::clicked, this, [this] { m_model.chooseFolder(m_game); });
    buttons->addWidget(m_choose);
    buttons->addStretch();
    column->addLayout(buttons);
    column->addStretch();

    setFocusProxy(m_scanHome);
    connect(&m_game, &Game::heroChanged, this, &WelcomeView::refreshTitle);
    connect(&m_game, &Game::heroNameChanged, this, &WelcomeView::refreshTitle);
    refreshTitle();
}

QString WelcomeView::title() const
{
    return m_title->text();
}

void WelcomeView::refreshTitle()
{
    m_title->setText(
        tr("%1 %2, your disk is full of monsters").arg(m_game.hero(), m_game.heroName()));
}
