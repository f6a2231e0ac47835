#include "support/TestSandbox.h"
#include "world/ManualClock.h"
#include "world/Player.h"

#include <QSignalSpy>

namespace {

constexpr double frame = 1.0 / 60;

Region region(const QRectF &rect, std::optional<Tier> tier)
{
    Region r;
    r.rect = rect;
    r.shape.addRect(rect);
    r.capital = rect.center();
    r.tier = tier;
    return r;
}

// A world whose land is (100, 100, 2000, 1000), with the given territories.
WorldLayout world(std::vector<Region> regions = {}, QSizeF size = {2200, 1200})
{
    WorldLayout l;
    l.size = size;
    l.land = QRectF(100, 100, size.width() - 200, size.height() - 200);
    l.regions = std::move(regions);
    return l;
}

} // namespace

class TestPlayer : public QObject
{
    Q_OBJECT

    std::shared_ptr<ManualClock> clock;
    std::unique_ptr<Player> player;

    void run(double seconds, double step = frame)
    {
        for (double t = 0; t < seconds - 1e-9; t += step) {
            clock->advance(step);
            player->tick();
        }
    }
    void place(const WorldLayout &layout, QPointF at, QSizeF view = {800, 600})
    {
        player->update(layout, view);
        player->jump(at);
    }

private Q_SLOTS:
    void init()
    {
        clock = std::make_shared<ManualClock>(1.7); // a start where times add up inexactly
        player = std::make_unique<Player>(clock);
    }

    void briefTapWalksForTheMinimum()
    {
        place(world(), {1000, 500});
        player->key(QStringLiteral("right"), true, false);
        QVERIFY(player->ticking());
        run(0.05);
        player->key(QStringLiteral("right"), false, false);
        run(0.3);
        const QPointF moved = player->heroPoint() - QPointF(1000, 500);
        QVERIFY2(std::abs(moved.x() - 0.12 * 260) <= 260 * frame,
                 qPrintable(QString::number(moved.x())));
        QCOMPARE(moved.y(), 0.0);
        QVERIFY(!player->ticking());
        QVERIFY(!player->moving());
        QVERIFY(!player->facingLeft());
    }

    void oppositeKeysCancel()
    {
        place(world(), {1000, 500});
        player->key(QStringLiteral("left"), true, false);
        player->key(QStringLiteral("right"), true, false);
        run(frame);
        QCOMPARE(player->heroPoint(), QPointF(1000, 500));
        QVERIFY(!player->ticking());

        player->key(QStringLiteral("up"), true, false);
        run(0.5);
        QCOMPARE(player->heroPoint().x(), 1000.0);
        QCOMPARE(player->heroPoint().y(), 500 - 0.5 * 260);
    }

    void speeds()
    {
        place(world(), {1000, 500});
        player->key(QStringLiteral("up"), true, false);
        player->key(QStringLiteral("right"), true, false);
        run(1.0);
        const double perAxis = 260 / std::sqrt(2.0); // the diagonal is no faster
        QVERIFY(std::abs(player->heroPoint().x() - (1000 + perAxis)) < 1e-6);
        QVERIFY(std::abs(player->heroPoint().y() - (500 - perAxis)) < 1e-6);

        player->releaseAll();
        player->key(QStringLiteral("left"), true, true);
        clock->advance(1.0); // a stalled tick moves at most 0.05 s worth
        player->tick();
        QCOMPARE(player->heroPoint().x(), 1000 + perAxis - 0.05 * 468);
        QVERIFY(player->facingLeft());
    }

    void clickToWalkArrives()
    {
        place(world(), {1000, 500});
        player->walk({1002.5, 500});
        run(frame);
        QVERIFY(!player->target());
        QVERIFY(!player->ticking());
        QCOMPARE(player->heroPoint(), QPointF(1000, 500));

        player->walk({1100, 500});
        run(1.0);
        const QPointF left = QPointF(1100, 500) - player->heroPoint();
        QVERIFY(std::hypot(left.x(), left.y()) < 3.0);
        QVERIFY(!player->ticking());

        player->walk({1500, 500});
        player->key(QStringLiteral("down"), true, false);
        QVERIFY(!player->target());
    }

    void edgesHoldSixPointsInside()
    {
        place(world(), {1000, 500});
        player->key(QStringLiteral("left"), true, true);
        player->key(QStringLiteral("up"), true, true);
        run(6.0);
        QCOMPARE(player->heroPoint(), QPointF(106, 106));
        QCOMPARE(player->pos(), QPointF(6.0 / 2000, 6.0 / 1000));
        player->releaseAll();
        run(frame);
        QVERIFY(!player->ticking());
    }

    // The map's controls cover corners of the view: the hero slides along them, never under.
    void controlsAreWalkedAround()
    {
        place(world({}, {800, 600}), {600, 450}); // land (100, 100, 600, 400), no camera offset
        player->setCoveredAreas({QRectF(650, 400, 200, 200)});
        player->key(QStringLiteral("right"), true, false);
        player->key(QStringLiteral("down"), true, false);
        run(2.0);
        QVERIFY(player->heroPoint().x() < 650 && player->heroPoint().x() > 640);
        QCOMPARE(player->heroPoint().y(), 494.0);
        player->releaseAll();
        place(world({}, {800, 600}), {600, 300});
        player->walk({680, 450});
        run(2.0);
        QVERIFY(!player->target() && !player->moving());
        QVERIFY(player->heroPoint().x() <= 650 || player->heroPoint().y() <= 400);
    }

    void monsterReach_data()
    {
        QTest::addColumn<QSizeF>("size");
        QTest::addColumn<bool>("tiered");
        QTest::addColumn<QPointF>("offset");
        QTest::addColumn<bool>("near");
        QTest::newRow("100x100 inside 45") << QSizeF(100, 100) << true << QPointF(44.9, 0) << true;
        QTest::newRow("100x100 beyond 45") << QSizeF(100, 100) << true << QPointF(45.1, 0) << false;
        QTest::newRow("40x40 raised to 34")
            << QSizeF(40, 40) << true << QPointF(19.9, 19.9) << true;
        QTest::newRow("300x200 inside 84") << QSizeF(300, 200) << true << QPointF(83.9, 0) << true;
        QTest::newRow("300x200 beyond 84") << QSizeF(300, 200) << true << QPointF(84.1, 0) << false;
        QTest::newRow("no tier") << QSizeF(300, 200) << false << QPointF(0, 0) << false;
        QTest::newRow("short side 34") << QSizeF(34, 300) << true << QPointF(0, 0) << false;
        QTest::newRow("short side 35") << QSizeF(35, 300) << true << QPointF(0, 0) << true;
    }
    void monsterReach()
    {
        QFETCH(QSizeF, size);
        QFETCH(bool, tiered);
        QFETCH(QPointF, offset);
        const Region r =
            region({QPointF(300, 300), size}, tiered ? std::optional(Tier::ogre) : std::nullopt);
        place(world({r}), r.capital + offset);
        QCOMPARE(player->regionIndex(), std::optional<int>(0));
        QTEST(player->nearMonster(), "near");
    }

    void regionChangesAreReported()
    {
        std::vector<std::optional<int>> reported;
        player->setOnRegionChange([&](const std::optional<Region> &r) {
            reported.push_back(r ? std::optional(int(r->rect.left())) : std::nullopt);
        });
        // The hero starts at the land's centre, (1100, 600).
        const WorldLayout l = world({region({1050, 550, 100, 100}, Tier::microbe),
                                     region({1150, 550, 100, 100}, std::nullopt)});
        player->update(l, {800, 600});
        QVERIFY(reported.empty()); // deferred until the event loop runs
        QTRY_COMPARE(reported.size(), std::size_t(1));

        player->jump({1060, 600}); // a jump always reports, even within the same territory
        player->key(QStringLiteral("right"), true, false);
        run(1.0);
        QCOMPARE(reported, (std::vector<std::optional<int>>{1050, 1050, 1150, std::nullopt}));
        QCOMPARE(player->regionIndex(), std::nullopt);
    }

    void floaterKeepsItsOwnLifetime()
    {
        player->say(QStringLiteral("first"));
        clock->advance(1.0);
        player->say(QStringLiteral("second"));
        clock->advance(0.9);
        QCOMPARE(player->floater()->text, QStringLiteral("second"));
        clock->advance(0.85);
        QVERIFY(player->floater().has_value());
        clock->advance(0.1);
        QVERIFY(!player->floater().has_value());
    }

    void effectsExpireByDuration()
    {
        QSignalSpy changes(player.get(), &Player::effectsChanged);
        const auto ring = SpellFX::make(SpellFX::Kind::ring, {{1, 2}}, 1.4, clock->now());
        const auto trail = SpellFX::make(SpellFX::Kind::trail, {{1, 2}, {3, 4}}, 8.0, clock->now());
        player->add(ring);
        player->add(trail);
        clock->advance(1.4);
        QCOMPARE(player->effects(), std::vector<SpellFX>{trail});
        clock->advance(7.0);
        QVERIFY(player->effects().empty());
        QCOMPARE(changes.count(), 4);
    }

    void footstepsFollowThePace_data()
    {
        QTest::addColumn<bool>("sprint");
        QTest::addColumn<int>("steps");
        QTest::newRow("walking") << false << 4;
        QTest::newRow("sprinting") << true << 5;
    }
    void footstepsFollowThePace()
    {
        QFETCH(bool, sprint);
        place(world(), {1000, 500});
        QSignalSpy steps(player.get(), &Player::footstep);
        player->key(QStringLiteral("down"), true, sprint);
        run(1.0, 0.04);
        QTEST(int(steps.count()), "steps");
    }

    // The default clock and the real timer, end to end: a tap walks and then comes to rest.
    void systemClockDrivesTheTimer()
    {
        Player real;
        real.update(world(), {800, 600});
        real.jump({1000, 500});
        real.key(QStringLiteral("right"), true, false);
        real.key(QStringLiteral("right"), false, false);
        QTRY_VERIFY_WITH_TIMEOUT(!real.ticking(), 10000);
        QVERIFY(real.heroPoint().x() > 1000);
        QVERIFY(!real.moving());
    }

    void cameraFollowsTheHero_data()
    {
        QTest::addColumn<QSizeF>("worldSize");
        QTest::addColumn<double>("heroX");
        QTest::addColumn<QPointF>("offset");
        QTest::newRow("zoom 2, left edge") << QSizeF(1600, 1200) << 100.0 << QPointF(0, -300);
        QTest::newRow("zoom 2, middle") << QSizeF(1600, 1200) << 800.0 << QPointF(-400, -300);
        QTest::newRow("zoom 2, right edge") << QSizeF(1600, 1200) << 1500.0 << QPointF(-800, -300);
        QTest::newRow("zoom 0") << QSizeF(800, 600) << 700.0 << QPointF(0, 0);
    }
    void cameraFollowsTheHero()
    {
        QFETCH(QSizeF, worldSize);
        QFETCH(double, heroX);
        QCOMPARE(player->cameraOffset(), QPointF(0, 0));
        place(world({}, worldSize), {heroX, 600});
        QTEST(player->cameraOffset(), "offset");
        QCOMPARE(player->toWorld(QPointF(10, 10)), QPointF(10, 10) - player->cameraOffset());
    }
};

DUSTMERE_TEST_MAIN(TestPlayer)
#include "test_player.moc"
