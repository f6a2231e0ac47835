#include "ui/screens/WelcomeView.h"

#include "game/Game.h"
#include "platform/DisplayName.h"
#include "platform/Emoji.h"
#include "platform/Home.h"
#include "scan/Fmt.h"
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
    m_rememberedColumn = new QVBoxLayout;
    m_rememberedColumn->setSpacing(0);
    column->addSpacing(8);
    column->addLayout(m_rememberedColumn);
    column->addStretch();

    setFocusProxy(m_scanHome);
    connect(&m_game, &Game::heroChanged, this, &WelcomeView::refreshTitle);
    connect(&m_game, &Game::heroNameChanged, this, &WelcomeView::refreshTitle);
    connect(&m_model.memory(), &ScanMemory::rememberedChanged, this,
            &WelcomeView::refreshRemembered);
    refreshTitle();
    refreshRemembered();
}

QString WelcomeView::rememberedText(const SnapshotSummary &scan, const QDateTime &now)
{
    const QString name =
        scan.root == Home::path() ? tr("Home") : DisplayName::of(Node::rootName(scan.root));
    return tr("%1 · %2 · scanned %3").arg(name, Fmt::bytes(scan.size), Fmt::ago(scan.scanned, now));
}

void WelcomeView::refreshRemembered()
{
    // Later, not now: the list may change while one of its buttons is being clicked.
    m_remembered.clear();
    while (QLayoutItem *item = m_rememberedColumn->takeAt(0)) {
        if (QWidget *w = item->widget()) {
            w->hide();
            w->deleteLater();
        }
        delete item;
    }
    const std::vector<SnapshotSummary> scans = m_model.memory().remembered();
    if (scans.empty())
        return;
    auto *heading = new QLabel(tr("Open a folder scanned before"), this);
    heading->setFont(TextStyle::caption());
    heading->setAlignment(Qt::AlignCenter);
    TextStyle::makeSecondary(heading);
    m_rememberedColumn->addWidget(heading);
    const QDateTime now = QDateTime::currentDateTime();
    for (const SnapshotSummary &scan : scans) {
        auto *b = new QPushButton(rememberedText(scan, now), this);
        b->setFlat(true);
        b->setCursor(Qt::PointingHandCursor);
        b->setToolTip(DisplayName::of(scan.root));
        connect(b, &QPushButton::clicked, this,
                [this, root = scan.root] { m_model.reopen(root, m_game); });
        m_rememberedColumn->addWidget(b, 0, Qt::AlignHCenter);
        m_remembered.push_back(b);
    }
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
