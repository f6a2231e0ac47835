#include "game/Game.h"
#include "magic/Magic.h"
#include "platform/Settings.h"
#include "session/Model.h"
#include "sound/Sound.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"
#include "ui/Breadcrumbs.h"
#include "ui/HeroBadge.h"
#include "ui/LootChips.h"
#include "ui/MainWindow.h"
#include "ui/SegmentedControl.h"
#include "ui/SlayPrompt.h"
#include "ui/TabularLabel.h"
#include "ui/TopBar.h"
#include "ui/VolumeButton.h"
#include "ui/screens/BountyView.h"
#include "ui/screens/ScanningView.h"
#include "ui/screens/ToggleSwitch.h"
#include "ui/screens/WelcomeView.h"
#include "world/ui/WorldView.h"

#include <QLabel>
#include <QMenu>
#include <QMessageBox>
#include <QPushButton>
#include <QSlider>
#include <QToolButton>

using namespace TreeBuilder;

namespace {

constexpr std::uint64_t MB = 1'000'000;

QByteArray sandbox(const char *sub)
{
    return QFile::encodeName(TestSandbox::instance()->root()) + '/' + sub;
}

Advice item(std::uint64_t size)
{
    Advice a;
    a.target = BigFile{"/x/" + std::to_string(size), size, 0};
    a.path = std::get<BigFile>(a.target).path;
    a.size = size;
    return a;
}

} // namespace

class TestMainWindow : public QObject
{
    Q_OBJECT

    std::unique_ptr<Model> m_model;
    std::unique_ptr<Game> m_game;
    std::unique_ptr<Magic> m_magic;
    std::unique_ptr<MainWindow> m_window;
    std::vector<Sound::Sfx> m_played;

    void open(std::optional<std::string> scanPath = std::nullopt,
              std::optional<QString> settingsKept = std::nullopt)
    {
        m_window = std::make_unique<MainWindow>(
            *m_model, *m_game, *m_magic,
            ContentView::Options{std::move(scanPath), std::move(settingsKept), true});
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
    }

    TopBar &bar() { return *m_window->content()->topBar(); }

    void scan(const QByteArray &tree)
    {
        m_model->setScanPath(tree.toStdString());
        m_model->scan(*m_game);
        QTRY_VERIFY_WITH_TIMEOUT(!m_model->scanning(), 60'000);
        m_played.clear();
    }

private Q_SLOTS:
    void init()
    {
        auto settings = Settings::open();
        settings->clear();
        settings->sync();
        Game::Options o;
        o.play = [](const Sound::Sfx &) {};
        m_game = std::make_unique<Game>(o);
        m_model = std::make_unique<Model>();
        m_model->setSoundPlayer([this](const Sound::Sfx &s) { m_played.push_back(s); });
        m_magic = std::make_unique<Magic>();
        m_played.clear();
    }

    void cleanup() { m_window.reset(); }

    void beforeAnyScanTheWelcomeShowsAndTheBarIsShort()
    {
        // "--scan=" with nothing after it starts nothing; damaged settings are told of once.
        open(std::string(), QStringLiteral("/cfg/dustmere.json.corrupt"));
        auto *notice = m_window->findChild<QMessageBox *>();
        QVERIFY(notice && notice->isVisible());
        QVERIFY(notice->informativeText().contains(QStringLiteral(" /cfg/dustmere.json.corrupt.")));
        notice->close();
        QCOMPARE(m_window->objectName(), QStringLiteral("main"));
        QCOMPARE(m_window->windowTitle(), QStringLiteral("Dustmere"));
        QVERIFY(m_window->minimumSize() == QSize(980, 620));
        QVERIFY(!m_model->scanning());
        QVERIFY(qobject_cast<WelcomeView *>(m_window->content()->mainArea()));
        QVERIFY(bar().heroBadge()->isVisible());
        m_game->gainXP(50 * 120 * 120); // level 121: a three-digit pill still fits the badge
        QVERIFY(QRectF(bar().heroBadge()->rect()).contains(bar().heroBadge()->levelPill()));
        QVERIFY(bar().folderButton()->isVisible());
        QVERIFY(bar().volumeButton()->isVisible());
        QVERIFY(!bar().rescanButton()->isVisible());
        QVERIFY(!bar().modeSwitch()->isVisible());
        QVERIFY(!bar().upButton()->isVisible());
        QVERIFY(!bar().lootChips()->trashChip()->isVisible());
    }

    void theScanArgumentStartsAScanAndTheWindowFollowsIt()
    {
        const QByteArray tree = sandbox("scanned");
        makeDir(tree);
        makeDir(tree + "/a");
        makeFile(tree + "/a/x", 8192);
        open(tree.toStdString());
        QVERIFY(m_model->scanning() || m_model->root());
        if (m_model->scanning()) {
            QCOMPARE(m_window->windowTitle(), QStringLiteral("Charting… — Dustmere"));
            QVERIFY(qobject_cast<ScanningView *>(m_window->content()->mainArea()));
        }
        QTRY_VERIFY_WITH_TIMEOUT(m_model->root(), 30'000);
        QCOMPARE(m_window->windowTitle(), QStringLiteral("scanned — Dustmere"));
        QVERIFY(qobject_cast<WorldView *>(m_window->content()->mainArea()));
        QVERIFY(bar().rescanButton()->isVisible());
        QVERIFY(bar().modeSwitch()->isVisible());
        QVERIFY(!bar().upButton()->isEnabled()); // at the scan root
        QVERIFY(bar().height() < 60);            // one slim row, whatever the trail holds

        // The switches drive the model, and every change clicks.
        m_played.clear();
        bar().modeSwitch()->segment(2)->click();
        QCOMPARE(m_model->mode(), Mode::bounties);
        QVERIFY(qobject_cast<BountyView *>(m_window->content()->mainArea()));
        bar().metricSwitch()->segment(1)->click();
        QCOMPARE(m_model->metric(), Metric::files);
        QCOMPARE(m_played, (std::vector<Sound::Sfx>{Sound::Sfx::click(), Sound::Sfx::click()}));
        QCOMPARE(bar().modeSwitch()->segment(2)->text(), QStringLiteral("💰 0"));

        // A scan while a tree is shown still shows the scanning screen.
        m_model->scan(*m_game);
        QCOMPARE(m_window->windowTitle(), QStringLiteral("Charting… — Dustmere"));
        QVERIFY(qobject_cast<ScanningView *>(m_window->content()->mainArea()));
        QTRY_VERIFY_WITH_TIMEOUT(!m_model->scanning(), 30'000);
    }

    void breadcrumbsAndUp()
    {
        const QByteArray tree = sandbox("crumbs");
        makeDir(tree);
        makeDir(tree + "/a");
        makeDir(tree + "/a/b");
        makeFile(tree + "/a/b/x", 8192);
        makeDir(tree + "/a/__pycache__");
        makeFile(tree + "/a/__pycache__/blob", 26'000'000);
        open();
        scan(tree);
        m_model->go(m_model->node(tree.toStdString() + "/a/b"), *m_game);
        const QList<QToolButton *> crumbs = bar().breadcrumbs()->crumbs();
        QCOMPARE(crumbs.size(), 3);
        QCOMPARE(crumbs[1]->text(), QStringLiteral("a"));
        QVERIFY(crumbs[2]->font().bold() && !crumbs[1]->font().bold());
        QCOMPARE(crumbs[1]->toolTip(), QFile::decodeName(tree + "/a"));
        QVERIFY(bar().breadcrumbs()->sizeLabel()->text().startsWith(QStringLiteral("· ")));
        crumbs[1]->click();
        QCOMPARE(m_model->current()->name(), std::string("a"));
        QVERIFY(bar().upButton()->isEnabled());
        bar().upButton()->click();
        QCOMPARE(m_model->current(), m_model->root());
        // Slaying a bounty rebuilds the trail while the bar changes around it; it stays in view.
        m_model->setDeathDuration(std::chrono::milliseconds(0));
        m_model->slay(m_model->node(tree.toStdString() + "/a/__pycache__"), *m_game);
        QTRY_VERIFY(!m_model->dying());
        for (int pass = 0; pass < 3; ++pass)
            QCoreApplication::sendPostedEvents(); // the bar's layout, then the trail's
        QVERIFY(bar().breadcrumbs()->height() >= bar().breadcrumbs()->crumbs().front()->height());
        QVERIFY(bar().breadcrumbs()->crumbs().front()->isVisible());
    }

    void worldMenuShortcuts()
    {
        open();
        QStringList app;
        for (QAction *a : m_window->appMenu()->actions())
            app << (a->isSeparator() ? QStringLiteral("-") : a->text());
        QCOMPARE(app, (QStringList{QStringLiteral("About Dustmere"), QStringLiteral("-"),
                                   QStringLiteral("Quit")}));
        m_window->appMenu()->actions().front()->trigger();
        QVERIFY(m_window->aboutBox() && m_window->aboutBox()->isVisible());
        m_window->aboutBox()->close();

        QMenu *world = m_window->worldMenu();
        QCOMPARE(world->title(), QStringLiteral("World"));
        QStringList items;
        for (QAction *a : world->actions())
            items << (a->isSeparator() ? QStringLiteral("-") : a->text());
        QCOMPARE(items,
                 (QStringList{QStringLiteral("Up One Level"), QStringLiteral("Rescan"),
                              QStringLiteral("-"), QStringLiteral("Zoom In"),
                              QStringLiteral("Zoom Out"), QStringLiteral("Fit Whole Realm")}));
        for (int i = 0; i < 5; ++i)
            QTest::keyClick(m_window.get(), Qt::Key_Equal, Qt::ControlModifier);
        QCOMPARE(m_model->zoomLevel(), 4);
        QCOMPARE(m_played.size(), 4u); // nothing audible at the limit
        QTest::keyClick(m_window.get(), Qt::Key_0, Qt::ControlModifier);
        QCOMPARE(m_model->zoomLevel(), 0);
        QTest::keyClick(m_window.get(), Qt::Key_Minus, Qt::ControlModifier);
        QCOMPARE(m_played.size(), 4u);
        // Ctrl+Q closes the one window, and with it the application.
        QVERIFY(QGuiApplication::quitOnLastWindowClosed());
        QTest::keyClick(m_window.get(), Qt::Key_Q, Qt::ControlModifier);
        QVERIFY(!m_window->isVisible());
    }

    void confirmingASlayCallsTheRightOperation()
    {
        const QByteArray tree = sandbox("confirm");
        makeDir(tree);
        makeDir(tree + "/victim");
        makeFile(tree + "/victim/x", 8192);
        makeDir(tree + "/spared");
        makeFile(tree + "/spared/x", 8192);
        open();
        scan(tree);

        m_model->setPending(Model::PendingFolder{m_model->node(tree.toStdString() + "/spared")});
        QMessageBox *box = m_window->content()->slayConfirmation();
        QVERIFY(box && box->isVisible());
        QVERIFY(
            box->text().startsWith(QStringLiteral("Slay the Microbe of “spared” and reclaim ")));
        QCOMPARE(box->informativeText(),
                 QStringLiteral("It goes to the Trash, so you can still put it back."));
        box->button(QMessageBox::Cancel)->click();
        QTRY_VERIFY(!m_model->pending());
        QVERIFY(QFile::exists(QFile::decodeName(tree + "/spared")));

        m_model->setPending(Model::PendingFolder{m_model->node(tree.toStdString() + "/victim")});
        box = m_window->content()->slayConfirmation();
        QPushButton *trash = nullptr;
        for (QAbstractButton *b : box->buttons()) {
            if (b->text() == QStringLiteral("Move to Trash"))
                trash = qobject_cast<QPushButton *>(b);
        }
        QVERIFY(trash);
        QCOMPARE(box->buttonRole(trash), QMessageBox::DestructiveRole);
        trash->click();
        QTRY_VERIFY(!m_model->pending());
        QVERIFY(!QFile::exists(QFile::decodeName(tree + "/victim")));
        QVERIFY(m_model->dying());
        QTRY_VERIFY(!m_model->dying());
        // The slay rewarded the game, and a change of `reclaimed` is one mana.
        QVERIFY(m_game->reclaimed() > 0);
        QVERIFY(bar().lootChips()->trashChip()->isVisible());
        QVERIFY(bar().lootChips()->trashChip()->text().endsWith(QStringLiteral(" in Trash")));
    }

    void theErrorAlertClearsTheError()
    {
        open();
        m_model->setError(QStringLiteral("Something refused."));
        QMessageBox *alert = m_window->content()->errorAlert();
        QVERIFY(alert && alert->isVisible());
        QCOMPARE(alert->text(), QStringLiteral("Couldn't slay that one"));
        QCOMPARE(alert->informativeText(), QStringLiteral("Something refused."));
        QVERIFY(alert->width() >= 440); // a sentence reads on wide lines, not in a column
        alert->button(QMessageBox::Ok)->click();
        QTRY_VERIFY(!m_model->error());
    }

    void oneManaPerSlayingAction()
    {
        open();
        m_magic->spend(Spell::fireball);
        const double before = m_magic->mana();
        m_game->slain({MB, MB, MB, MB, MB, MB, MB, MB, MB, MB, MB, MB}, true);
        QCOMPARE(m_magic->mana(), std::min(before + 1, 5.0));
    }

    void promptTexts()
    {
        const std::vector<Advice> items = {item(MB), item(2 * MB), item(3 * MB)};
        QCOMPARE(SlayPrompt::title(Model::PendingBulk{items}),
                 QStringLiteral("Slay all 3 safe items and reclaim 6 MB?"));
        QVERIFY(SlayPrompt::message(Model::PendingBulk{items})
                    .startsWith(QStringLiteral("These are caches")));
        QCOMPARE(SlayPrompt::title(Model::PendingFile{BigFile{"/d/movie.mkv", 3'000'000'000, 0}}),
                 QStringLiteral("Slay “movie.mkv” and reclaim 3 GB?"));
    }

    void volumeControl()
    {
        open();
        VolumeButton *volume = bar().volumeButton();
        QCOMPARE(volume->width(), 18);
        QCOMPARE(volume->symbolName(), QStringLiteral("speaker.wave.2.fill")); // 0.8 by default
        volume->slider()->setValue(40);
        QCOMPARE(volume->symbolName(), QStringLiteral("speaker.wave.2.fill"));
        QCOMPARE(Sound::shared().volume(), 0.4);
        volume->slider()->setValue(39);
        QCOMPARE(volume->symbolName(), QStringLiteral("speaker.wave.1.fill"));
        volume->soundSwitch()->click();
        QVERIFY(Sound::shared().muted());
        QCOMPARE(volume->symbolName(), QStringLiteral("speaker.slash.fill"));
        volume->soundSwitch()->click();
        QVERIFY(!Sound::shared().muted());
    }
};

DUSTMERE_WIDGET_TEST_MAIN(TestMainWindow)
#include "test_main_window.moc"
