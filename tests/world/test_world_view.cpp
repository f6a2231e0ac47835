#include "game/Game.h"
#include "magic/Magic.h"
#include "magic/SpellCaster.h"
#include "session/Model.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"
#include "ui/Popover.h"
#include "world/ManualClock.h"
#include "world/Player.h"
#include "world/ui/HeroPrompt.h"
#include "world/ui/MapControls.h"
#include "world/ui/MiniMap.h"
#include "world/ui/RenameDialog.h"
#include "world/ui/WorldScene.h"
#include "world/ui/WorldView.h"

#include <QAccessible>
#include <QLabel>
#include <QLineEdit>
#include <QMessageBox>
#include <QNativeGestureEvent>
#include <QPointingDevice>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>
#include <cmath>

using namespace TreeBuilder;

namespace {

QByteArray home()
{
    return QFile::encodeName(TestSandbox::instance()->home());
}

double distance(QPointF a, QPointF b)
{
    return std::hypot(a.x() - b.x(), a.y() - b.y());
}

} // namespace

class TestWorldView : public QObject
{
    Q_OBJECT

    std::unique_ptr<Game> m_game;
    std::unique_ptr<Model> m_model;
    std::unique_ptr<Magic> m_magic;
    std::shared_ptr<ManualClock> m_clock;
    std::unique_ptr<QWidget> m_window;
    WorldView *m_view = nullptr;
    QLineEdit *m_elsewhere = nullptr;
    std::vector<Sound::Sfx> m_played;

    [[nodiscard]] Player &player() const { return m_view->player(); }

    [[nodiscard]] const Region &region(const std::string &name) const
    {
        for (const Region &r : player().layout()->regions) {
            if (r.tile.name == name)
                return r;
        }
        qFatal("no territory %s", name.c_str());
    }

    // Puts the hero on a point and lets the view settle (discoveries, rebuilds).
    void stand(QPointF at)
    {
        player().jump(at);
        settle();
    }

    // Lets queued work (a new island, the hero's refresh on it) run, however slow the build.
    void settle()
    {
        for (int i = 0; i < 3; ++i) {
            QCoreApplication::processEvents();
            QTest::qWait(10);
        }
    }

    [[nodiscard]] std::optional<int> regionOf(const Region &r) const
    {
        const auto &regions = player().layout()->regions;
        for (std::size_t i = 0; i < regions.size(); ++i) {
            if (regions[i].tile.id == r.tile.id)
                return int(i);
        }
        return std::nullopt;
    }

    // A point of the territory at least `away` from its monster.
    [[nodiscard]] QPointF farFromMonster(const Region &r, double away) const
    {
        const auto &layout = *player().layout();
        const auto found = std::find_if(layout.regions.begin(), layout.regions.end(),
                                        [&r](const Region &x) { return x.tile.id == r.tile.id; });
        const int index = int(found - layout.regions.begin());
        for (double fy = 0.1; fy < 0.95; fy += 0.05) {
            for (double fx = 0.1; fx < 0.95; fx += 0.05) {
                const QPointF p(r.rect.left() + fx * r.rect.width(),
                                r.rect.top() + fy * r.rect.height());
                if (distance(p, r.capital) > away && layout.regionIndex(p, {}) == index)
                    return p;
            }
        }
        qFatal("territory too small");
    }

    [[nodiscard]] bool played(Sound::Sfx::Kind kind) const
    {
        return std::any_of(m_played.begin(), m_played.end(),
                           [kind](const Sound::Sfx &s) { return s.kind() == kind; });
    }

    [[nodiscard]] QString floater() const
    {
        return player().floater() ? player().floater()->text : QString();
    }

    bool sendKey(QEvent::Type type, int key, const QString &text, bool repeat = false,
                 Qt::KeyboardModifiers modifiers = Qt::NoModifier)
    {
        QKeyEvent event(type, key, modifiers, text, repeat);
        QCoreApplication::sendEvent(m_view, &event);
        return event.isAccepted();
    }

private Q_SLOTS:
    void initTestCase()
    {
        // Music is a protected home folder; games has a folder inside, notes has none.
        makeDir(home() + "/Music");
        makeDir(home() + "/Music/albums");
        makeFile(home() + "/Music/albums/song", 3'000'000);
        makeDir(home() + "/games");
        makeDir(home() + "/games/saves");
        makeFile(home() + "/games/saves/slot", 2'000'000);
        makeFile(home() + "/games/game.bin", 600'000);
        makeDir(home() + "/notes");
        makeFile(home() + "/notes/todo", 1'500'000);
        // Compiled Python files: the advisor posts them as a safe bounty.
        makeDir(home() + "/__pycache__");
        makeFile(home() + "/__pycache__/mod.pyc", 26'000'000);
    }

    void init()
    {
        Game::Options options;
        options.toastDuration = std::chrono::milliseconds(0);
        options.play = [](const Sound::Sfx &) {};
        m_game = std::make_unique<Game>(options);
        m_model = std::make_unique<Model>();
        m_model->setSoundPlayer([this](const Sound::Sfx &s) { m_played.push_back(s); });
        Magic::Options magicOptions;
        magicOptions.tickInterval = std::chrono::milliseconds(0);
        m_magic = std::make_unique<Magic>(magicOptions);
        m_magic->gain(Magic::maxMana);
        m_model->scan(*m_game);
        QTRY_VERIFY_WITH_TIMEOUT(!m_model->scanning(), 60'000);
        QVERIFY(m_model->current());

        m_clock = std::make_shared<ManualClock>(100);
        m_window = std::make_unique<QWidget>();
        auto *column = new QVBoxLayout(m_window.get());
        column->setContentsMargins(0, 0, 0, 0);
        m_elsewhere = new QLineEdit(m_window.get());
        column->addWidget(m_elsewhere);
        m_view = new WorldView(*m_model, *m_game, *m_magic, true, m_clock, m_window.get());
        m_view->setMinimumSize(800, 600);
        column->addWidget(m_view);
        m_window->show();
        QVERIFY(QTest::qWaitForWindowExposed(m_window.get()));
        m_window->activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(m_window.get()));
        settle();
        m_played.clear();
    }

    void cleanup()
    {
        m_window.reset();
        m_view = nullptr;
    }

    void showingTakesFocusAndDiscoversWhereTheHeroStands()
    {
        QVERIFY(m_view->hasFocus());
        QVERIFY(player().layout());
        QCOMPARE(player().pos(), QPointF(0.5, 0.5));
        const auto here = player().currentRegion();
        QVERIFY(here && here->path);
        QVERIFY(m_game->hasSeen(*here->path));
        QCOMPARE(floater(), QStringLiteral("Discovered %1! +3 XP").arg(here->title));
        QCOMPARE(m_view->accessibleName(), QStringLiteral("World map of ") + m_view->realmTitle());

        // Walking onto a territory seen before says nothing more.
        const std::string other = here->tile.name == "notes" ? "games" : "notes";
        stand(region(other).capital);
        QVERIFY(played(Sound::Sfx::Kind::discover));
        m_played.clear();
        stand(here->capital);
        QVERIFY(!played(Sound::Sfx::Kind::discover));
    }

    void realmTitleFollowsCustomAndFantasyNames()
    {
        const std::string path = m_model->current()->path();
        const QString folder =
            QFile::decodeName(QByteArray::fromStdString(m_model->current()->name()));
        QCOMPARE(m_view->realmTitle(), Lore::name(m_model->current()->name(),
                                                  Tiers::ofBytes(m_model->current()->size())));
        m_game->setFantasyNames(false);
        QCOMPARE(m_view->realmTitle(), QStringLiteral("The Realm of ") + folder);
        m_game->rename(path, QStringLiteral("Home Sweet Home"));
        QCOMPARE(m_view->realmTitle(), QStringLiteral("Home Sweet Home"));
        settle();
        QCOMPARE(m_view->accessibleName(), QStringLiteral("World map of Home Sweet Home"));
        m_game->rename(path, QString());
        m_game->setFantasyNames(true);
    }

    void walkingWithAHeldKey()
    {
        const QPointF start = player().heroPoint();
        const auto step = [this] {
            m_clock->advance(0.05);
            player().tick();
        };
        QVERIFY(sendKey(QEvent::KeyPress, Qt::Key_D, QStringLiteral("d")));
        step();
        QCOMPARE(player().heroPoint().x(), start.x() + 13);
        // Auto-repeat arrives as release and press pairs: the key stays held.
        m_clock->advance(0.1);
        QVERIFY(sendKey(QEvent::KeyRelease, Qt::Key_D, QStringLiteral("d"), true));
        QVERIFY(sendKey(QEvent::KeyPress, Qt::Key_D, QStringLiteral("d"), true));
        step();
        QCOMPARE(player().heroPoint().x(), start.x() + 26);
        QVERIFY(!player().facingLeft());

        QVERIFY(sendKey(QEvent::KeyRelease, Qt::Key_D, QStringLiteral("d")));
        step();
        QCOMPARE(player().heroPoint().x(), start.x() + 26);
        QVERIFY(!player().moving());

        // Shift sprints; arrows walk too.
        QVERIFY(sendKey(QEvent::KeyPress, Qt::Key_Left, {}, false, Qt::ShiftModifier));
        step();
        QCOMPARE(player().heroPoint().x(), start.x() + 26 - 468 * 0.05);
        QVERIFY(player().facingLeft());
        QVERIFY(sendKey(QEvent::KeyRelease, Qt::Key_Left, {}));
    }

    void losingFocusReleasesHeldKeys()
    {
        QTest::keyPress(m_view, Qt::Key_D);
        m_clock->advance(0.05);
        player().tick();
        QVERIFY(player().moving());
        m_elsewhere->setFocus();
        QTRY_VERIFY(!m_view->hasFocus());
        const QPointF stopped = player().heroPoint();
        m_clock->advance(0.05);
        player().tick();
        QCOMPARE(player().heroPoint(), stopped);
        QVERIFY(!player().moving());
    }

    void enteringAndLeaving()
    {
        const NodePtr root = m_model->current();
        stand(region("notes").capital);
        QTest::keyClick(m_view, Qt::Key_Return);
        QCOMPARE(m_model->current(), root); // no folders inside notes
        QVERIFY(played(Sound::Sfx::Kind::denied));

        const Region games = region("games");
        stand(games.capital);
        QTest::keyClick(m_view, Qt::Key_Space);
        QCOMPARE(m_model->current()->name(), std::string("games"));
        settle();
        QCOMPARE(player().layout()->regions.front().tile.name, std::string("saves"));
        QCOMPARE(player().heroPoint(), player().layout()->land.center());

        QTest::keyClick(m_view, Qt::Key_Escape);
        QCOMPARE(m_model->current(), root);
        settle();
        // Back on the parent's island, beside the monster of the folder he left and inside its
        // territory, wherever the island's random coast runs.
        const Region again = region("games");
        QVERIFY(distance(player().heroPoint(), again.capital) <= 1.1 * again.monsterSize() + 1e-9);
        QVERIFY(player().currentRegion());
        QCOMPARE(player().currentRegion()->tile.name, std::string("games"));

        QTest::keyClick(m_view, Qt::Key_Escape); // at the root: nowhere to go
        QCOMPARE(m_model->current(), root);
    }

    void doubleClickJumpsAndEnters()
    {
        const Region games = region("games");
        QTest::mouseDClick(m_view, Qt::LeftButton, {},
                           (games.capital + player().cameraOffset()).toPoint());
        QCOMPARE(m_model->current()->name(), std::string("games"));
    }

    void clickWalksThere()
    {
        m_elsewhere->setFocus();
        const QPoint at(120, 430);
        QTest::mouseClick(m_view, Qt::LeftButton, {}, at);
        QVERIFY(m_view->hasFocus());
        QVERIFY(player().target());
        QCOMPARE(*player().target(), player().toWorld(at));
    }

    void fightingNeedsReachAndASlayableFolder()
    {
        const Region games = region("games");
        const double reach = std::max(1.5 * games.monsterSize(), 34.0);
        stand(farFromMonster(games, reach + 5));
        QVERIFY(!player().nearMonster());
        QTest::keyClick(m_view, Qt::Key_F);
        QVERIFY(played(Sound::Sfx::Kind::denied));
        QCOMPARE(floater(), QStringLiteral("Get closer to the monster"));
        QVERIFY(!m_model->pending());

        stand(games.capital);
        QVERIFY(player().nearMonster());
        QVERIFY(!m_view->scene()->hero().prompt()->fightButton()->isHidden());
        QTest::keyClick(m_view, Qt::Key_F);
        QVERIFY(m_model->pending());
        const auto *folder = std::get_if<Model::PendingFolder>(&*m_model->pending());
        QVERIFY(folder && folder->node->name() == "games");
        m_model->setPending(std::nullopt);

        m_played.clear();
        stand(region("Music").capital);
        QVERIFY(player().nearMonster());
        QTest::keyClick(m_view, Qt::Key_F);
        QVERIFY(played(Sound::Sfx::Kind::denied));
        QCOMPARE(floater(), QStringLiteral("This one is protected"));
        QVERIFY(!m_model->pending());
    }

    void numbersCastAndOtherKeysPassOn()
    {
        QVERIFY(!sendKey(QEvent::KeyPress, Qt::Key_7, QStringLiteral("7")));
        QVERIFY(!sendKey(QEvent::KeyPress, Qt::Key_Q, QStringLiteral("q")));
        QVERIFY(!sendKey(QEvent::KeyRelease, Qt::Key_F, QStringLiteral("f")));
        QVERIFY(!sendKey(QEvent::KeyPress, Qt::Key_3, QStringLiteral("3"), true));
        QVERIFY(!sendKey(QEvent::KeyPress, Qt::Key_Equal, QStringLiteral("="), false,
                         Qt::ControlModifier));
        QCOMPARE(m_magic->mana(), Magic::maxMana);

        // 3 is Teleport: to the biggest monster that is not the hero's own (the tiles come
        // largest first).
        stand(region("notes").capital);
        std::string biggest;
        for (const Region &r : player().layout()->regions) {
            if (r.hasMonster() && r.tile.name != "notes" && biggest.empty())
                biggest = r.tile.name;
        }
        QVERIFY(sendKey(QEvent::KeyPress, Qt::Key_3, QStringLiteral("3")));
        QCOMPARE(m_magic->mana(), Magic::maxMana - 1);
        QVERIFY(played(Sound::Sfx::Kind::teleport));
        m_clock->advance(SpellCaster::teleportDelay);
        QCOMPARE(player().currentRegion()->tile.name, biggest);
    }

    void zoomKeysStopAtTheLimits()
    {
        QTest::keyClick(m_view, Qt::Key_Minus);
        QCOMPARE(m_model->zoomLevel(), 0);
        QVERIFY(!played(Sound::Sfx::Kind::click));
        for (int i = 0; i < 6; ++i)
            QTest::keyClick(m_view, i % 2 ? Qt::Key_Plus : Qt::Key_Equal);
        QCOMPARE(m_model->zoomLevel(), Model::maxZoomLevel);
        settle();
        QCOMPARE(player().layout()->size, QSizeF(m_view->size()) * 4.0);
        QVERIFY(!m_view->controls()->zoomInButton()->isEnabled());
        QTest::keyClick(m_view, Qt::Key_Minus);
        QCOMPARE(m_model->zoomLevel(), Model::maxZoomLevel - 1);
    }

    void pinchZoomsPastTheThresholds_data()
    {
        QTest::addColumn<QList<double>>("steps");
        QTest::addColumn<int>("level");
        QTest::newRow("1.1 does nothing") << QList<double>{0.05, 0.05} << 0;
        QTest::newRow("1.2 zooms in") << QList<double>{0.1, 0.1} << 1;
        QTest::newRow("0.9 does nothing") << QList<double>{-0.1} << 0;
    }
    void pinchZoomsPastTheThresholds()
    {
        QFETCH(QList<double>, steps);
        const auto send = [this](Qt::NativeGestureType type, double value) {
            QNativeGestureEvent e(type, QPointingDevice::primaryPointingDevice(), 2, QPointF(),
                                  QPointF(), QPointF(), value, QPointF());
            QCoreApplication::sendEvent(m_view, &e);
        };
        send(Qt::BeginNativeGesture, 0);
        for (const double v : steps)
            send(Qt::ZoomNativeGesture, v);
        QCOMPARE(m_model->zoomLevel(), 0); // nothing until the pinch ends
        send(Qt::EndNativeGesture, 0);
        QTEST(m_model->zoomLevel(), "level");

        m_model->setZoomLevel(2);
        send(Qt::BeginNativeGesture, 0);
        send(Qt::ZoomNativeGesture, -0.2);
        send(Qt::EndNativeGesture, 0);
        QCOMPARE(m_model->zoomLevel(), 1);
    }

    void renamingSavesOrRestoresTheName()
    {
        const Region notes = region("notes");
        stand(notes.capital);
        QTest::keyClick(m_view, Qt::Key_N);
        RenameDialog *dialog = m_view->renameDialog();
        QVERIFY(dialog && dialog->isVisible());
        QCOMPARE(dialog->windowTitle(), QStringLiteral("Name this territory"));
        QCOMPARE(dialog->nameField()->placeholderText(), QStringLiteral("Name"));
        QCOMPARE(dialog->nameField()->text(), notes.title);
        const QList<QLabel *> labels = dialog->findChildren<QLabel *>();
        QVERIFY(std::any_of(labels.begin(), labels.end(), [](QLabel *l) {
            return l->text() == QStringLiteral("Only the name on your map changes. The folder "
                                               "notes keeps its real name on disk.");
        }));
        QVERIFY(m_view->renaming());

        dialog->nameField()->setText(QStringLiteral("Scribe's Nook"));
        QTest::mouseClick(dialog->saveButton(), Qt::LeftButton);
        QCOMPARE(m_game->customName(*notes.path), QStringLiteral("Scribe's Nook"));
        QVERIFY(!m_view->renaming());
        settle();
        QCOMPARE(region("notes").title, QStringLiteral("Scribe's Nook"));
        QCOMPARE(region("notes").subtitle.left(8), QStringLiteral("notes · "));

        // The field starts from the custom name; Cancel changes nothing.
        QTest::keyClick(m_view, Qt::Key_N);
        QTRY_VERIFY(m_view->renameDialog() && m_view->renameDialog() != dialog);
        dialog = m_view->renameDialog();
        QCOMPARE(dialog->nameField()->text(), QStringLiteral("Scribe's Nook"));
        dialog->nameField()->setText(QStringLiteral("Nope"));
        QTest::mouseClick(dialog->cancelButton(), Qt::LeftButton);
        QCOMPARE(m_game->customName(*notes.path), QStringLiteral("Scribe's Nook"));
        QVERIFY(!m_view->renaming());

        // Use default name removes it, and so does saving blanks.
        QTest::keyClick(m_view, Qt::Key_N);
        QTRY_VERIFY(m_view->renameDialog() && m_view->renameDialog()->isVisible());
        QTest::mouseClick(m_view->renameDialog()->defaultButton(), Qt::LeftButton);
        QVERIFY(!m_game->customName(*notes.path));
        settle();
        QCOMPARE(region("notes").title, notes.title);

        m_game->rename(*notes.path, QStringLiteral("Temp"));
        QTest::keyClick(m_view, Qt::Key_N);
        QTRY_VERIFY(m_view->renameDialog() && m_view->renameDialog()->isVisible());
        m_view->renameDialog()->nameField()->setText(QStringLiteral("   "));
        QTest::mouseClick(m_view->renameDialog()->saveButton(), Qt::LeftButton);
        QVERIFY(!m_game->customName(*notes.path));

        // Nothing to rename out at sea.
        stand(QPointF(2, 2));
        QVERIFY(!player().currentRegion());
        QTest::keyClick(m_view, Qt::Key_N);
        QVERIFY(!m_view->renaming());
    }

    void promptShowsWhatTheHeroCanDo()
    {
        const HeroPrompt *prompt = m_view->scene()->hero().prompt();
        stand(region("games").capital);
        QVERIFY(!prompt->isHidden());
        QVERIFY(!prompt->enterButton()->isHidden());
        QVERIFY(!prompt->fightButton()->isHidden());
        QVERIFY(!prompt->renameButton()->isHidden());
        QCOMPARE(prompt->renameButton()->toolTip(), QStringLiteral("Name this territory (N)"));

        const Region notes = region("notes");
        stand(farFromMonster(notes, std::max(1.5 * notes.monsterSize(), 34.0) + 5));
        QVERIFY(prompt->enterButton()->isHidden());
        QVERIFY(prompt->fightButton()->isHidden());
        QVERIFY(!prompt->renameButton()->isHidden());
        QCOMPARE(m_view->scene()->accessibleName(),
                 QStringLiteral("Sweeper, standing in ") + region("notes").title);

        stand(QPointF(2, 2));
        QVERIFY(prompt->isHidden());
        QCOMPARE(m_view->scene()->accessibleName(), QStringLiteral("Sweeper, standing in the sea"));

        // On the monster's own spot the panel opens below it; at the coast it stays in view.
        const Region games = region("games");
        stand(games.capital);
        const double half = games.monsterSize() / 2;
        QVERIFY(!m_view->scene()->hero().promptBox().intersects(
            QRectF(games.capital - QPointF(half, half), QSizeF(2 * half, 2 * half))));
        const auto &regions = player().layout()->regions;
        const Region &east =
            *std::max_element(regions.begin(), regions.end(),
                              [](auto &a, auto &b) { return a.rect.right() < b.rect.right(); });
        QPointF coast = east.capital;
        for (QPointF p = coast; player().layout()->regionIndex(p, {}) == regionOf(east);
             p.rx() += 4)
            coast = p;
        stand(coast);
        QVERIFY(!prompt->isHidden());
        QVERIFY(m_view->scene()->rect().contains(prompt->geometry()));

        // The panel's buttons act like their keys.
        stand(region("games").capital);
        QTest::mouseClick(prompt->enterButton(), Qt::LeftButton);
        QCOMPARE(m_model->current()->name(), std::string("games"));
    }

    void monstersAndTheHeroAreReadOut()
    {
        QAccessibleInterface *map = QAccessible::queryAccessibleInterface(m_view->scene());
        QVERIFY(map);
        stand(region("notes").capital);
        QStringList names;
        QAccessibleInterface *games = nullptr;
        QAccessibleInterface *music = nullptr;
        for (int i = 0; i < map->childCount(); ++i) {
            QAccessibleInterface *c = map->child(i);
            names << c->text(QAccessible::Name);
            if (c->text(QAccessible::Name) == region("games").title + QStringLiteral(", Microbe"))
                games = c;
            if (c->text(QAccessible::Name) == region("Music").title + QStringLiteral(", Microbe"))
                music = c;
        }
        QVERIFY2(names.contains(QStringLiteral("Sweeper, standing in ") + region("notes").title),
                 qPrintable(names.join(QLatin1Char('|'))));
        QVERIFY(games && music);
        QCOMPARE(map->indexOfChild(games) >= 0, true);
        QCOMPARE(music->actionInterface()->actionNames(), QStringList{QStringLiteral("Enter")});
        QCOMPARE(games->actionInterface()->actionNames(),
                 (QStringList{QStringLiteral("Enter"), QStringLiteral("Slay")}));
        games->actionInterface()->doAction(QStringLiteral("Slay"));
        QVERIFY(m_model->pending());
        m_model->setPending(std::nullopt);
        games->actionInterface()->doAction(QStringLiteral("Enter"));
        QCOMPARE(m_model->current()->name(), std::string("games"));
        settle();
        QVERIFY(!games->isValid()); // its island is gone
    }

    void fireballAsksBeforeBurning()
    {
        QCOMPARE(m_model->advice().size(), 1u);
        QVERIFY(sendKey(QEvent::KeyPress, Qt::Key_4, QStringLiteral("4")));
        QVERIFY(m_view->caster().pendingFire());
        QMessageBox *box = m_view->fireballDialog();
        QVERIFY(box && box->isVisible());
        QCOMPARE(box->text(), SpellCaster::fireballTitle(*m_view->caster().pendingFire()));
        QVERIFY(box->text().startsWith(QStringLiteral("Burn 1 safe bounties in this realm (")));
        QCOMPARE(box->informativeText(),
                 QStringLiteral("Caches, logs and build leftovers that are recreated "
                                "automatically. Everything goes to the Trash, so you can still "
                                "put it back."));
        QTest::mouseClick(box->button(QMessageBox::Cancel), Qt::LeftButton);
        QVERIFY(!m_view->caster().pendingFire());
        QCOMPARE(m_magic->mana(), Magic::maxMana);
        QTRY_VERIFY(!m_view->fireballDialog());

        QVERIFY(sendKey(QEvent::KeyPress, Qt::Key_4, QStringLiteral("4")));
        box = m_view->fireballDialog();
        QVERIFY(box);
        QAbstractButton *burn = nullptr;
        for (QAbstractButton *b : box->buttons()) {
            if (box->buttonRole(b) == QMessageBox::DestructiveRole)
                burn = b;
        }
        QVERIFY(burn);
        QCOMPARE(burn->text(), QStringLiteral("Cast Fireball 🔥"));
        QTest::mouseClick(burn, Qt::LeftButton);
        QVERIFY(!m_view->caster().pendingFire());
        QCOMPARE(m_magic->mana(), Magic::maxMana - 3);
        QCOMPARE(player().effects().size(), 1u);
        QCOMPARE(player().effects().front().kind, SpellFX::Kind::fire);
    }

    void miniMapWalksAndControlsZoom()
    {
        MiniMap *mini = m_view->miniMap();
        QVERIFY(mini->isVisible());
        QCOMPARE(mini->toolTip(), QStringLiteral("Minimap · click to walk there"));
        QAccessibleInterface *access = QAccessible::queryAccessibleInterface(mini);
        QVERIFY(access && access->state().invisible);
        const QPointF corner = mini->toWorld(QPointF(MiniMap::margin, MiniMap::margin));
        QCOMPARE(corner, QPointF(0, 0));
        QTest::mouseClick(mini, Qt::LeftButton, {},
                          QPoint(MiniMap::margin + 90, MiniMap::margin + 30));
        QVERIFY(player().target());
        QCOMPARE(*player().target(), QPointF(90, 30) / mini->scale());

        MapControls *controls = m_view->controls();
        QCOMPARE(controls->zoomInButton()->toolTip(), QStringLiteral("Zoom in (Ctrl+=)"));
        QCOMPARE(controls->zoomOutButton()->toolTip(), QStringLiteral("Zoom out (Ctrl+−)"));
        QVERIFY(!controls->zoomOutButton()->isEnabled());
        QTest::mouseClick(controls->zoomInButton(), Qt::LeftButton);
        QCOMPARE(m_model->zoomLevel(), 1);
        QVERIFY(controls->zoomOutButton()->isEnabled());
        QVERIFY(m_view->hasFocus()); // the buttons leave the keyboard to the map

        QTest::mouseClick(controls->helpButton(), Qt::LeftButton);
        QVERIFY(controls->help());
        QVERIFY(controls->helpPopover() && controls->helpPopover()->isVisible());
        QStringList texts;
        for (QLabel *l : controls->helpPopover()->findChildren<QLabel *>())
            texts << l->text();
        for (const char *expected :
             {"How to play", "Spells", "Map key", "WASD / arrows", "walk (⇧ to sprint)", "3 mana",
              "Microbe · Meadow 🌾", "50 GB+", "Unexplored: walk in or cast Reveal",
              "Bounty: something here is safe to clean up"})
            QVERIFY2(texts.contains(QString::fromUtf8(expected)), expected);
        controls->setHelp(false);
        QVERIFY(!controls->helpPopover()->isVisible());
    }
};

DUSTMERE_WIDGET_TEST_MAIN(TestWorldView)
#include "test_world_view.moc"
