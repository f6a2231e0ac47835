#include "game/Achievement.h"
#include "game/Game.h"
#include "platform/Settings.h"
#include "scan/Node.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"

#include <QSignalSpy>
#include <limits>

namespace {

constexpr std::uint64_t GB = 1'000'000'000;

// A scan root whose one child holds the given bytes and file count.
NodePtr scannedRoot(std::uint64_t childBytes, std::int64_t childFiles, std::int64_t rootFiles = 0)
{
    NodePtr root = Node::create("home");
    root->setBasePath("/home/hero");
    NodePtr c = Node::create("big", root);
    for (std::int64_t i = 0; i < childFiles; ++i)
        c->addLoose(i == 0 ? childBytes : 0);
    c->finish();
    root->appendChild(c);
    for (std::int64_t i = 0; i < rootFiles; ++i)
        root->addLoose(0);
    root->finish();
    return root;
}

} // namespace

class TestGame : public QObject
{
    Q_OBJECT

    QDateTime m_now;
    std::vector<Toast> m_shown;
    std::vector<Sound::Sfx> m_sounds;

    std::unique_ptr<Game> makeGame()
    {
        Game::Options o;
        o.now = [this] { return m_now; };
        o.toastDuration = std::chrono::milliseconds(0);
        o.trashCheckInterval = std::chrono::milliseconds(30);
        o.play = [this](const Sound::Sfx &s) { m_sounds.push_back(s); };
        auto game = std::make_unique<Game>(o);
        connect(game.get(), &Game::toastChanged, this, [this, g = game.get()] {
            if (g->toast())
                m_shown.push_back(*g->toast());
        });
        return game;
    }

    QStringList drainTitles(Game &game)
    {
        (void)QTest::qWaitFor([&game] { return !game.toast(); }, 5000);
        QStringList titles;
        for (const Toast &t : m_shown)
            titles << t.title;
        m_shown.clear();
        return titles;
    }

    void forgetSettings()
    {
        auto s = Settings::open();
        s->clear();
        s->sync();
    }

private Q_SLOTS:
    void init()
    {
        forgetSettings();
        m_now = QDateTime(QDate(2026, 3, 14), QTime(12, 0));
        m_shown.clear();
        m_sounds.clear();
    }

    void levelsAndTitles_data()
    {
        QTest::addColumn<qint64>("xp");
        QTest::addColumn<int>("level");
        QTest::addColumn<QString>("title");
        QTest::newRow("0") << qint64(0) << 1 << "Dust Bunny";
        QTest::newRow("49") << qint64(49) << 1 << "Dust Bunny";
        QTest::newRow("50") << qint64(50) << 2 << "Dust Bunny";
        QTest::newRow("199") << qint64(199) << 2 << "Dust Bunny";
        QTest::newRow("200") << qint64(200) << 3 << "Dust Bunny";
        QTest::newRow("450") << qint64(450) << 4 << "Byte Scout";
        QTest::newRow("4050") << qint64(4050) << 10 << "Cache Hunter";
        QTest::newRow("level 22") << qint64(Game::floorXP(22)) << 22 << "Legend of the Dustmere";
        QTest::newRow("level 60") << qint64(Game::floorXP(60) + 1) << 60
                                  << "Legend of the Dustmere";
    }

    void levelsAndTitles()
    {
        QFETCH(qint64, xp);
        QFETCH(int, level);
        QFETCH(QString, title);
        Settings::open()->setValue(QStringLiteral("xp"), xp);
        const auto game = makeGame();
        QCOMPARE(game->level(), level);
        QCOMPARE(game->title(), title);
        QVERIFY(game->levelProgress() >= 0 && game->levelProgress() < 1);
    }

    void progressInsideALevel()
    {
        Settings::open()->setValue(QStringLiteral("xp"), 125);
        const auto game = makeGame();
        QCOMPARE(game->levelProgress(), 0.5);
        QCOMPARE(game->xpToNext(), 75);
        QCOMPARE(Game::xpFor(30'000'000), 5);
        QCOMPARE(Game::xpFor(3 * GB), 180);
        QCOMPARE(Game::xpFor(60 * GB), 6000);
    }

    void scanRewardsAndAchievementOrder()
    {
        const auto game = makeGame();
        game->scanned(*scannedRoot(12 * GB, 150'000));
        QCOMPARE(game->xp(), 25 + 7 + 3 * 30);
        QCOMPARE(drainTitles(*game), (QStringList{QStringLiteral("Achievement: Cartographer"),
                                                  QStringLiteral("Achievement: Dragon Spotter"),
                                                  QStringLiteral("Achievement: Hoard Finder")}));
        QVERIFY(game->confetti().has_value());

        const auto other = makeGame();
        const std::int64_t before = other->xp();
        other->scanned(*scannedRoot(1, 1, 3'000'000));
        QCOMPARE(other->xp() - before, 100); // capped at 75 + 25
    }

    void oneBountySlayAndItsToastsInOrder()
    {
        const auto game = makeGame();
        game->slain({3 * GB}, true);
        // 190 for the slay, then three achievements and the quest with its own achievement.
        QCOMPARE(game->xp(), 190 + 30 + 30 + 30 + 100 + 30);
        QCOMPARE(game->reclaimed(), 3 * GB);
        QVERIFY(game->questDone());
        QVERIFY(!m_shown.empty());
        QCOMPARE(m_shown.front().subtitle, QStringLiteral("+190 XP · 3 GB to the Trash"));
        QCOMPARE(m_shown.front().emoji, QStringLiteral("👹"));
        QCOMPARE(drainTitles(*game),
                 (QStringList{QStringLiteral("Ogre slain!"), QStringLiteral("Level 2!"),
                              QStringLiteral("Achievement: First Blood"),
                              QStringLiteral("Achievement: Bounty Hunter"),
                              QStringLiteral("Achievement: Clean Sweep"),
                              QStringLiteral("Daily quest complete"),
                              QStringLiteral("Achievement: Questor")}));
        // Toast sounds play as each toast shows; the slay toast has none.
        QCOMPARE(m_sounds,
                 (std::vector<Sound::Sfx>{Sound::Sfx::levelUp(), Sound::Sfx::achievement(),
                                          Sound::Sfx::achievement(), Sound::Sfx::achievement(),
                                          Sound::Sfx::quest(), Sound::Sfx::achievement()}));
    }

    void bulkSlayPostsOneToast()
    {
        const auto game = makeGame();
        game->slain({30'000'000, 30'000'000, 30'000'000, 30'000'000}, true);
        QCOMPARE(m_shown.front().title, QStringLiteral("Swept 4 monsters!"));
        QCOMPARE(m_shown.front().emoji, QStringLiteral("🧹"));
        QCOMPARE(m_shown.front().subtitle, QStringLiteral("+60 XP · 120 MB to the Trash"));
        game->slain({}, true); // nothing slain: nothing happens
        QCOMPARE(game->reclaimed(), 120'000'000u);
    }

    void dailyQuestOncePerDayAndRollsOverAtMidnight()
    {
        const auto game = makeGame();
        game->slain({900'000'000}, false);
        QVERIFY(!game->questDone());
        game->slain({400'000'000}, false); // 0.9 GB → 1.3 GB
        QVERIFY(game->questDone());
        QVERIFY(game->unlocked().contains(QStringLiteral("quest")));
        drainTitles(*game);
        game->slain({2 * GB}, false);
        QVERIFY(!drainTitles(*game).contains(QStringLiteral("Daily quest complete")));

        m_now = QDateTime(QDate(2026, 3, 14), QTime(23, 59, 59));
        game->slain({1}, false);
        QCOMPARE(game->questBytes(), 3'300'000'001u);
        m_now = QDateTime(QDate(2026, 3, 15), QTime(0, 0, 1));
        game->slain({999'999'999}, false);
        QCOMPARE(game->questBytes(), 999'999'999u);
        QVERIFY(!game->questDone());
        game->slain({1}, false);
        QVERIFY(game->questDone());
        QVERIFY(drainTitles(*game).contains(QStringLiteral("Daily quest complete")));

        // A restart on another day shows an empty quest.
        m_now = m_now.addDays(1);
        QCOMPARE(makeGame()->questBytes(), 0u);
    }

    void unlockingIsOnce()
    {
        const auto game = makeGame();
        game->unlock(QStringLiteral("explorer"));
        game->unlock(QStringLiteral("explorer"));
        game->unlock(QStringLiteral("no such thing"));
        QCOMPARE(game->xp(), 30);
        QCOMPARE(drainTitles(*game), QStringList{QStringLiteral("Achievement: Explorer")});
        QCOMPARE(Achievement::all().size(), 15u);
        QCOMPARE(Achievement::all().back().title, QStringLiteral("Mapmaker"));
    }

    void visitingAndDiscovering()
    {
        const auto game = makeGame();
        NodePtr root = scannedRoot(1, 1);
        NodePtr deep = root;
        for (int i = 0; i < 8; ++i) {
            NodePtr c = Node::create("d" + std::to_string(i), deep);
            deep->appendChild(c);
            deep = c;
        }
        game->visit(*root);
        game->visit(*root);
        QCOMPARE(game->xp(), 2);
        QVERIFY(!game->discover("/home/hero"));
        QVERIFY(game->discover("/home/hero/big"));
        QCOMPARE(game->xp(), 5);
        game->visit(*deep);
        QVERIFY(game->unlocked().contains(QStringLiteral("deep_diver")));
        for (int i = 0; i < 97; ++i)
            game->discover("/elsewhere/" + std::to_string(i));
        QCOMPARE(game->seen().size(), 100u);
        QVERIFY(game->unlocked().contains(QStringLiteral("explorer")));
        QVERIFY(game->unlocked().contains(QStringLiteral("walker")));
    }

    void renamingAndPlaceNames()
    {
        const auto game = makeGame();
        game->rename("/data/Caches", QStringLiteral("  My Hoard \n"));
        QCOMPARE(game->customName("/data/Caches"), std::optional(QStringLiteral("My Hoard")));
        QCOMPARE(game->placeName(std::string_view("/data/Caches"), "Caches", Tier::ogre),
                 QStringLiteral("My Hoard"));
        QVERIFY(game->unlocked().contains(QStringLiteral("namer")));
        game->setFantasyNames(false);
        QCOMPARE(game->placeName(std::nullopt, "Caches", Tier::ogre), QStringLiteral("Caches"));
        game->setFantasyNames(true);
        QCOMPARE(game->placeName(std::nullopt, "Caches", Tier::ogre),
                 QStringLiteral("Caverns of Echoes"));

        forgetSettings();
        const auto other = makeGame();
        other->rename("/x", QStringLiteral("   "));
        QVERIFY(!other->customName("/x"));
        QVERIFY(!other->unlocked().contains(QStringLiteral("namer")));
    }

    void trashedItemsLeaveWhenTheTrashIsEmptied()
    {
        const QByteArray item =
            QFile::encodeName(TestSandbox::instance()->root()) + "/trashed-item";
        TreeBuilder::makeFile(item, 4096);
        const auto game = makeGame();
        game->noteTrashed(std::nullopt, 5);
        QVERIFY(game->trashed().empty());
        game->noteTrashed(item.toStdString(), 7'000'000'000);
        game->noteTrashed("/etc/passwd/x", 1); // cannot be examined (not ENOENT): stays listed
        QCOMPARE(game->trashedBytes(), 7'000'000'001u);
        game->checkTrash();
        QCOMPARE(game->trashed().size(), 2u);
        QVERIFY(QFile::remove(QFile::decodeName(item)));
        QSignalSpy spy(game.get(), &Game::trashedChanged);
        QVERIFY(spy.wait(2000)); // the periodic check notices
        QCOMPARE(game->trashed().count(item.toStdString()), 0u);
        QCOMPARE(makeGame()->trashed().count(item.toStdString()), 0u);
    }

    void everythingSurvivesARestart()
    {
        const QByteArray waiting = QFile::encodeName(TestSandbox::instance()->root()) + "/w\xfe";
        TreeBuilder::makeFile(waiting);
        {
            const auto game = makeGame();
            game->setHero(QStringLiteral("🦊"));
            game->setHeroName(QStringLiteral("Fox"));
            game->setFantasyNames(false);
            game->rename("/r/a\xff", QStringLiteral("Alpha")); // names need not be UTF-8
            game->slain({2 * GB}, true);
            game->discover("/r/b\xe9");
            game->noteTrashed("/nonexistent-but-kept-until-checked", 42);
            game->noteTrashed(waiting.toStdString(), 43);
        }
        const auto again = makeGame();
        QCOMPARE(again->hero(), QStringLiteral("🦊"));
        QCOMPARE(again->heroName(), QStringLiteral("Fox"));
        QCOMPARE(again->fantasyNames(), false);
        QCOMPARE(again->customName("/r/a\xff"), std::optional(QStringLiteral("Alpha")));
        QCOMPARE(again->reclaimed(), 2 * GB);
        QCOMPARE(again->questBytes(), 2 * GB);
        QVERIFY(again->hasSeen("/r/b\xe9"));
        QVERIFY(again->unlocked().contains(QStringLiteral("bounty")));
        QVERIFY(again->unlocked().contains(QStringLiteral("namer")));
        QCOMPARE(again->xp(),
                 40 * 3 + 10 + 3 + 30 * 5 + 100); // slay, discovery, five unlocks, quest
        // The start-up check found the first gone; the second still waits.
        QCOMPARE(again->trashed(), (std::map<std::string, double>{{waiting.toStdString(), 43}}));
    }

    void wrongTypesAndDamageReadAsDefaults()
    {
        {
            auto s = Settings::open();
            s->setValue(QStringLiteral("xp"), QStringLiteral("lots"));
            s->setValue(QStringLiteral("reclaimed"), -5.0);
            s->setValue(QStringLiteral("unlocked"), 5);
            s->setValue(QStringLiteral("visited"), QStringLiteral("/a"));
            s->setValue(QStringLiteral("questDay"), m_now.toString(QStringLiteral("yyyy-MM-dd")));
            s->setValue(QStringLiteral("questBytes"), 1e30);
            s->setValue(QStringLiteral("hero"), 3);
            s->setValue(QStringLiteral("heroName"), true);
            s->setValue(QStringLiteral("fantasyNames"), QStringLiteral("yes"));
            s->setValue(QStringLiteral("customNames"), QVariantMap{{QStringLiteral("/a"), 1}});
            s->setValue(QStringLiteral("trashed"),
                        QVariantMap{{QStringLiteral("/a"), QStringLiteral("big")}});
            s->sync();
        }
        const auto game = makeGame();
        QCOMPARE(game->xp(), 0);
        QCOMPARE(game->reclaimed(), 0u);
        QCOMPARE(game->questBytes(), 0u);
        QVERIFY(game->unlocked().empty() && game->seen().empty());
        QCOMPARE(game->hero(), QStringLiteral("🧙"));
        QCOMPARE(game->heroName(), QStringLiteral("Sweeper"));
        QVERIFY(game->fantasyNames());
        QVERIFY(game->customNames().empty() && game->trashed().empty());

        Settings::open()->setValue(QStringLiteral("xp"), -40);
        QCOMPARE(makeGame()->xp(), 0);
        Settings::open()->setValue(QStringLiteral("reclaimed"), -0.5);
        QCOMPARE(makeGame()->reclaimed(), 0u);

        // Ids of no achievement do not count; huge experience keeps the level arithmetic sound.
        Settings::open()->setValue(
            QStringLiteral("unlocked"),
            QStringList{QStringLiteral("first_scan"), QStringLiteral("bogus")});
        Settings::open()->setValue(QStringLiteral("xp"), std::numeric_limits<qint64>::max());
        const auto loaded = makeGame();
        QCOMPARE(loaded->unlocked(), std::set<QString>{QStringLiteral("first_scan")});
        QCOMPARE(loaded->xp(), Game::maxXP);
        QVERIFY(loaded->xpToNext() > 0 && loaded->levelProgress() >= 0 &&
                loaded->levelProgress() < 1);
        loaded->gainXP(std::numeric_limits<std::int64_t>::max() / 2);
        QCOMPARE(loaded->xp(), Game::maxXP);
    }

    void aCorruptSettingsFileIsNotFatal()
    {
        QFile file(Settings::filePath());
        QVERIFY(file.open(QIODevice::WriteOnly | QIODevice::Truncate));
        file.write("{\"xp\": 12, \"hero\": [unterminated");
        file.close();
        const auto game = makeGame();
        QCOMPARE(game->xp(), 0);
        QCOMPARE(game->hero(), QStringLiteral("🧙"));
    }
};

DUSTMERE_TEST_MAIN(TestGame)
#include "test_game.moc"
