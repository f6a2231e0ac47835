#include "game/Game.h"
#include "magic/Magic.h"
#include "magic/ManaOnSlay.h"
#include "platform/Settings.h"
#include "support/TestSandbox.h"

#include <QSignalSpy>

class TestMagic : public QObject
{
    Q_OBJECT

    QDateTime m_now = QDateTime(QDate(2024, 3, 1), QTime(12, 0), Qt::UTC);

    std::unique_ptr<Magic> open()
    {
        Magic::Options o;
        o.now = [this] { return m_now; };
        o.tickInterval = std::chrono::milliseconds(0);
        return std::make_unique<Magic>(o);
    }

    void store(double mana, std::optional<QDateTime> at)
    {
        auto s = Settings::open();
        s->setValue(QStringLiteral("mana"), mana);
        if (at)
            Settings::setDate(*s, QStringLiteral("manaAt"), *at);
    }

    static double saved()
    {
        return Settings::number(*Settings::open(), QStringLiteral("mana")).value_or(-1);
    }

private Q_SLOTS:
    void init()
    {
        auto s = Settings::open();
        s->clear();
        s->sync();
    }

    void aFirstStartHasAFullPool()
    {
        const auto magic = open();
        QCOMPARE(magic->mana(), 5.0);
        QCOMPARE(magic->casts(), 0);
        QVERIFY(magic->canCast(Spell::fireball));
    }

    void manaRefillsWhileClosed_data()
    {
        QTest::addColumn<double>("stored");
        QTest::addColumn<int>("secondsAway");
        QTest::addColumn<double>("expected");
        QTest::newRow("one minute from 1") << 1.0 << 60 << 4.0;
        QTest::newRow("100 s from 1 fills") << 1.0 << 100 << 5.0;
        QTest::newRow("an hour is capped") << 0.5 << 3600 << 5.0;
        QTest::newRow("half a point") << 2.0 << 10 << 2.5;
        QTest::newRow("clock set back refills nothing") << 3.0 << -600 << 3.0;
    }
    void manaRefillsWhileClosed()
    {
        QFETCH(double, stored);
        QFETCH(int, secondsAway);
        QFETCH(double, expected);
        store(stored, m_now);
        m_now = m_now.addSecs(secondsAway);
        QCOMPARE(open()->mana(), expected);
    }

    void damagedOrMissingValuesFallBack()
    {
        Settings::open()->setValue(QStringLiteral("mana"), QStringLiteral("plenty"));
        QCOMPARE(open()->mana(), 5.0);

        // Without a date there is no offline refill.
        store(1.5, std::nullopt);
        m_now = m_now.addSecs(3600);
        QCOMPARE(open()->mana(), 1.5);
    }

    void theTickRefillsAndSavesOnWholePoints()
    {
        store(2.9, m_now);
        const auto magic = open();
        QSignalSpy changed(magic.get(), &Magic::manaChanged);

        m_now = m_now.addSecs(1);
        magic->tick();
        QCOMPARE(magic->mana(), 2.95);
        QCOMPARE(saved(), 2.9); // not a whole point yet

        m_now = m_now.addSecs(1);
        magic->tick();
        QCOMPARE(magic->mana(), 3.0);
        QCOMPARE(saved(), 3.0);
        QCOMPARE(Settings::date(*Settings::open(), QStringLiteral("manaAt")), m_now);
        QCOMPARE(changed.count(), 2);

        // Twenty ticks make exactly one point; from empty, sixty make three full orbs and a
        // Fireball, where summing 0.05 as a double fell just short.
        for (int i = 0; i < 20; ++i)
            magic->tick();
        QCOMPARE(magic->mana(), 4.0);
        QCOMPARE(saved(), 4.0);
        magic->spend(Spell::recall);
        magic->spend(Spell::recall);
        while (magic->mana() > 0)
            magic->spend(Spell::reveal);
        for (int i = 0; i < 60; ++i)
            magic->tick();
        QCOMPARE(magic->mana(), 3.0);
        QVERIFY(magic->canCast(Spell::fireball));
    }

    void aFullPoolTickDoesNothing()
    {
        const auto magic = open();
        QSignalSpy changed(magic.get(), &Magic::manaChanged);
        magic->tick();
        QCOMPARE(magic->mana(), 5.0);
        QCOMPARE(changed.count(), 0);
        QCOMPARE(saved(), -1.0);
    }

    void oneTickMakesFireballAffordable()
    {
        store(2.96, m_now);
        const auto magic = open();
        QVERIFY(!magic->canCast(Spell::fireball));
        QVERIFY(magic->canCast(Spell::reveal));
        magic->tick();
        QVERIFY(magic->mana() > 3.0);
        QVERIFY(magic->canCast(Spell::fireball));
    }

    void spendingAndGainingAreSaved()
    {
        const auto magic = open();
        QSignalSpy casts(magic.get(), &Magic::castsChanged);
        magic->spend(Spell::fireball);
        QCOMPARE(magic->mana(), 2.0);
        QCOMPARE(magic->casts(), 1);
        QCOMPARE(casts.count(), 1);
        QCOMPARE(saved(), 2.0);
        QCOMPARE(Settings::integer(*Settings::open(), QStringLiteral("casts")), 1);

        magic->gain(1);
        QCOMPARE(magic->mana(), 3.0);
        magic->gain(4);
        QCOMPARE(magic->mana(), 5.0);
        QCOMPARE(saved(), 5.0);

        // The next start continues from what was written.
        m_now = m_now.addSecs(5);
        magic->spend(Spell::recall);
        const auto reopened = open();
        QCOMPARE(reopened->mana(), 4.0);
        QCOMPARE(reopened->casts(), 2);
    }

    void everySlayingActionGivesOneMana()
    {
        store(1, m_now);
        const auto magic = open();
        Game::Options o;
        o.toastDuration = std::chrono::milliseconds(0);
        o.play = [](const Sound::Sfx &) {};
        Game game(o);
        ManaOnSlay refill(game, *magic);

        game.slain(std::vector<std::uint64_t>(12, 1'000'000), true);
        QCOMPARE(magic->mana(), 2.0);
        game.slain({}, true); // nothing slain: no mana
        QCOMPARE(magic->mana(), 2.0);
        game.slain({5'000'000}, false);
        QCOMPARE(magic->mana(), 3.0);
    }
};

DUSTMERE_TEST_MAIN(TestMagic)
#include "test_magic.moc"
