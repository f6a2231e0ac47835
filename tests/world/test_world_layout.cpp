#include "game/Djb2.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"
#include "world/SplitMix64.h"
#include "world/Warp.h"
#include "world/WorldLayout.h"

#include <QFile>
#include <bit>

namespace {

// A level of 24 folders of assorted sizes plus loose files, under /home/ada.
NodePtr sampleLevel()
{
    NodePtr root = Node::create("ada");
    root->setBasePath("/home/ada");
    for (int i = 0; i < 24; ++i)
        TreeBuilder::addFolder(root, "dir" + std::to_string(i),
                               1'000'000ULL * (i * i * 37 % 101 + 1));
    root->addLoose(5'000'000);
    root->finish();
    return root;
}

QString plainTitle(const Tile &t, std::optional<Tier>)
{
    return QFile::decodeName(QByteArray::fromStdString(t.name));
}

WorldLayout buildPlain(const std::vector<Tile> &tiles, const std::string &key, QSizeF size)
{
    return WorldLayout::build(
        tiles, key, size, [](const std::string &) { return false; },
        [](const std::string &) { return std::int64_t(0); }, plainTitle);
}

// Every coordinate of the island, bit for bit.
QByteArray geometry(const WorldLayout &l)
{
    QByteArray out;
    const auto point = [&out](QPointF p) {
        for (const double v : {p.x(), p.y()})
            out.append(QByteArray::number(std::bit_cast<qulonglong>(v), 16)).append(',');
    };
    const auto points = [&](const auto &list) {
        for (QPointF p : list)
            point(p);
        out.append('|');
    };
    const auto path = [&](const QPainterPath &pp) {
        for (int i = 0; i < pp.elementCount(); ++i)
            point(pp.elementAt(i));
        out.append('|');
    };
    path(l.coast);
    for (const auto &river : l.rivers)
        path(river);
    for (const Region &r : l.regions) {
        path(r.shape);
        point(r.capital);
        points(r.scenery);
        points(r.clouds);
    }
    points(l.waves);
    return out;
}

} // namespace

class TestWorldLayout : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sameInputsGiveTheSameIsland()
    {
        const NodePtr root = sampleLevel();
        const auto tiles = makeTiles(root.get(), Metric::size, 40);
        const auto a = buildPlain(tiles, "/home/ada", QSizeF(1600, 1200));
        const auto b = buildPlain(tiles, "/home/ada", QSizeF(1600, 1200));
        QCOMPARE(a.regions.size(), tiles.size());
        QVERIFY(!a.rivers.empty() && a.rivers.size() <= 3);
        QVERIFY(!a.waves.empty());
        QCOMPARE(geometry(a), geometry(b));
        QCOMPARE(a.key, b.key);

        const auto elsewhere = buildPlain(tiles, "/home/bob", QSizeF(1600, 1200));
        QVERIFY(geometry(elsewhere) != geometry(a));
        QVERIFY(elsewhere.key != a.key);

        // A new title redraws the labels but must not move a single border.
        const auto renamed = WorldLayout::build(
            tiles, "/home/ada", QSizeF(1600, 1200), [](const std::string &) { return false; },
            [](const std::string &) { return std::int64_t(0); },
            [](const Tile &t, std::optional<Tier> tier) {
                return t.id == "dir3" ? QStringLiteral("Mount Three") : plainTitle(t, tier);
            });
        QCOMPARE(geometry(renamed), geometry(a));
        QVERIFY(renamed.key != a.key);
    }

    // Outlines warp their points in steps; the steps must stay on the warp itself, inland and
    // where the coast term sets in.
    void steppedPointsFollowTheWarp()
    {
        const QRectF land(96, 60, 20'288, 11'400);
        const Warp warp(2.37, 180, land);
        const struct
        {
            QPointF from, to;
            int n;
        } lines[] = {
            {land.topLeft(), land.topRight(), 4000},                           // along the coast
            {land.center(), land.center() + QPointF(3000, 2000), 777},         // inland only
            {land.center(), QPointF(land.right() - 5, land.center().y()), 91}, // inland to coast
            {QPointF(500, 500), QPointF(510, 500), 1},
        };
        for (const auto &line : lines) {
            const std::vector<QPointF> points = warp.warpedSteps(line.from, line.to, line.n);
            QCOMPARE(points.size(), std::size_t(line.n));
            QCOMPARE(points.front(), warp(line.from)); // exactly
            for (int j = 0; j < line.n; ++j) {
                const QPointF exact =
                    warp(line.from + (line.to - line.from) * (double(j) / line.n));
                const QPointF d = points[std::size_t(j)] - exact;
                QVERIFY2(std::abs(d.x()) < 1e-9 && std::abs(d.y()) < 1e-9,
                         qPrintable(QStringLiteral("point %1 of %2").arg(j).arg(line.n)));
            }
        }
        QVERIFY(warp.warpedSteps(land.topLeft(), land.topRight(), 0).empty());
    }

    // The margin holds the coast's bulges with the realm title above them; a zoomed world has the
    // land and the warp of zoom 1, magnified.
    void landAndAmplitude_data()
    {
        QTest::addColumn<QSizeF>("size");
        QTest::addColumn<double>("zoom");
        QTest::addColumn<QRectF>("land");
        QTest::addColumn<double>("amplitude");
        QTest::newRow("800x600") << QSizeF(800, 600) << 1.0 << QRectF(54, 54, 692, 492) << 27.0;
        QTest::newRow("400x300") << QSizeF(400, 300) << 1.0 << QRectF(46, 46, 308, 208) << 16.0;
        QTest::newRow("800x600 at 2")
            << QSizeF(1600, 1200) << 2.0 << QRectF(108, 108, 1384, 984) << 27.0;
    }
    void landAndAmplitude()
    {
        QFETCH(QSizeF, size);
        QFETCH(double, zoom);
        const auto l = WorldLayout::build({}, "/", size, {}, {}, {}, zoom);
        QTEST(l.land, "land");
        QTEST(l.warp.amplitude(), "amplitude");
        QVERIFY(l.regions.empty() && l.rivers.empty());
        QVERIFY(l.coast.elementCount() > 0);
    }

    // Zooming magnifies the island of zoom 1 rather than folding a new one, and at every zoom
    // the coast stays inside the world and below the realm title's band of sea.
    void zoomingMagnifiesOneIslandInsideTheMap()
    {
        const QSizeF view(800, 600);
        for (const std::string key : {"/", "/home/ada/t1", "/home/ada/t2", "/srv/x"}) {
            const auto one = WorldLayout::build({}, key, view, {}, {}, {});
            for (const double zoom : {1.0, 1.5, 2.0, 3.0, 4.0}) {
                const auto l = WorldLayout::build({}, key, view * zoom, {}, {}, {}, zoom);
                for (const QPointF p : {one.land.topLeft(), QPointF(333, 54), one.land.center(),
                                        QPointF(746, 401.5)}) {
                    const QPointF d = l.warp(p * zoom) - one.warp(p) * zoom;
                    QVERIFY(std::abs(d.x()) < 1e-9 && std::abs(d.y()) < 1e-9);
                }
                const QRectF coast = l.coast.boundingRect();
                const double titleBottom = l.land.top() * 0.5 + 12;
                QVERIFY2(coast.top() > titleBottom && coast.left() > 0 &&
                             coast.right() < l.size.width() && coast.bottom() < l.size.height(),
                         key.c_str());
            }
        }
        // Siblings whose names differ in one letter get unrelated coasts.
        const auto phase = [](const char *key) {
            return WorldLayout::build({}, key, {800, 600}, {}, {}, {}).warp.phase();
        };
        QVERIFY(std::abs(phase("/home/ada/t1") - phase("/home/ada/t2")) > 1);
    }

    // One folder filling a land of the given size: how many scenery draws and clouds it gets.
    // The clouds are drawn right after the scenery attempts, so finding them after exactly
    // 2 × attempts draws pins the attempt count.
    void decorationCounts_data()
    {
        QTest::addColumn<QSizeF>("landSize");
        QTest::addColumn<int>("attempts");
        QTest::addColumn<int>("clouds");
        QTest::newRow("40x60") << QSizeF(40, 60) << 0 << 1;
        QTest::newRow("200x150") << QSizeF(200, 150) << 11 << 2;
        QTest::newRow("400x300") << QSizeF(400, 300) << 18 << 3;
    }
    void decorationCounts()
    {
        QFETCH(QSizeF, landSize);
        QFETCH(int, attempts);
        QFETCH(int, clouds);
        NodePtr root = Node::create("r");
        root->setBasePath("/r");
        TreeBuilder::addFolder(root, "only", 1000);
        root->finish();
        const auto l =
            buildPlain(makeTiles(root.get(), Metric::size, 40), "/r", landSize + QSizeF(92, 92));
        QCOMPARE(l.land.size(), landSize);
        const Region &r = l.regions.at(0);
        QCOMPARE(r.rect, l.land);
        QVERIFY(l.rivers.empty());
        QVERIFY(r.scenery.size() <= std::size_t(attempts));
        for (QPointF p : r.scenery) {
            const bool keptOut = std::abs(p.x() - r.capital.x()) <= 84 &&
                                 p.y() >= r.capital.y() - 40 && p.y() <= r.capital.y() + 70;
            QVERIFY(!keptOut);
        }

        SplitMix64 random(djb2("/r"));
        for (int i = 0; i < 2 * attempts; ++i)
            random.next();
        const double ix = std::min(0.25 * landSize.width(), 14.0);
        const double iy = std::min(0.25 * landSize.height(), 14.0);
        const QRectF inner = r.rect.adjusted(ix, iy, -ix, -iy);
        QCOMPARE(r.clouds.size(), std::size_t(clouds));
        for (QPointF cloud : r.clouds) {
            const double x = inner.left() + inner.width() * random.unit();
            const double y = inner.top() + inner.height() * random.unit();
            QCOMPARE(cloud, l.warp(x, y));
        }
    }

    void zeroValuesCollapseToTheOrigin()
    {
        std::vector<Tile> tiles;
        for (const char *name : {"a", "b", "c"})
            tiles.push_back({name, Tile::Other{1}, name, 0.0});
        const auto l = buildPlain(tiles, "/z", QSizeF(800, 600));
        QCOMPARE(l.regions.size(), std::size_t(3));
        QVERIFY(l.rivers.empty());
        for (const Region &r : l.regions) {
            QCOMPARE(r.rect, QRectF());
            QVERIFY(r.scenery.empty());
            QCOMPARE(r.clouds, std::vector<QPointF>{l.warp(0, 0)});
        }
    }

    // Two equal halves share one border from the top coast to the bottom coast; its river
    // starts at the far end from the first point and has a point every 4 points.
    void riverAlongTheSharedBorder()
    {
        std::vector<Tile> tiles = {{"a", Tile::Other{1}, "a", 1.0},
                                   {"b", Tile::Other{1}, "b", 1.0}};
        const auto l = buildPlain(tiles, "/", QSizeF(800, 600));
        QCOMPARE(l.regions[0].rect, QRectF(54, 54, 346, 492));
        QCOMPARE(l.rivers.size(), std::size_t(1));
        const QPainterPath &river = l.rivers[0];
        QCOMPARE(river.elementCount(), 492 / 4 + 1);
        QCOMPARE(QPointF(river.elementAt(0)), l.warp(400, 546));
        QCOMPARE(QPointF(river.elementAt(river.elementCount() - 1)), l.warp(400, 54));
    }

    void namesAndFlags()
    {
        NodePtr root = Node::create("u");
        root->setBasePath("/u");
        TreeBuilder::addFolder(root, "Caches", 1'200'000'000);
        TreeBuilder::addFolder(root, "Logs", 2'000'000);
        root->addLoose(10);
        root->finish();
        QStringList seen;
        const auto l = WorldLayout::build(
            makeTiles(root.get(), Metric::size, 2), "/u", QSizeF(800, 600),
            [&seen](const std::string &p) {
                seen.append(QString::fromStdString(p));
                return p == "/u/Logs";
            },
            [](const std::string &p) { return std::int64_t(p == "/u/Caches" ? 4 : 0); },
            [](const Tile &t, std::optional<Tier> tier) {
                return t.name == "Caches" ? QStringLiteral("Treasure Caves") : plainTitle(t, tier);
            },
            1, // Caches grew by a fifth, Logs doubled but by too little to mark
            [](const Node &n) { return std::optional<std::int64_t>(n.size() / 6); });
        QCOMPARE(seen, (QStringList{QStringLiteral("/u/Caches"), QStringLiteral("/u/Logs")}));
        const Region &caches = l.regions[0];
        QCOMPARE(caches.title, QStringLiteral("Treasure Caves"));
        QCOMPARE(caches.subtitle, QStringLiteral("Caches · 1.2 GB · +200 MB"));
        QCOMPARE(caches.grown, std::optional<std::int64_t>(200'000'000));
        QCOMPARE(caches.tier, std::optional<Tier>(Tier::ogre));
        QCOMPARE(caches.path, std::optional<std::string>("/u/Caches"));
        QVERIFY(!caches.explored && caches.bounties == 4);
        QCOMPARE(l.regions[1].subtitle, QStringLiteral("2 MB"));
        QVERIFY(l.regions[1].explored && l.regions[1].bounties == 0 && !l.regions[1].grown);
        const Region &loose = l.regions[2];
        QVERIFY(!loose.tier && !loose.path && loose.explored && loose.subtitle.isEmpty());
    }

    void regionIndexPrefersTheHint()
    {
        WorldLayout l;
        for (const QRectF &rect : {QRectF(0, 0, 100, 100), QRectF(50, 0, 100, 100)}) {
            Region r;
            r.rect = rect;
            r.shape.addRect(rect);
            l.regions.push_back(r);
        }
        QCOMPARE(l.regionIndex({75, 50}, 1), std::optional<int>(1));
        QCOMPARE(l.regionIndex({75, 50}, std::nullopt), std::optional<int>(0));
        QCOMPARE(l.regionIndex({75, 50}, 7), std::optional<int>(0));
        QCOMPARE(l.regionIndex({25, 50}, 1), std::optional<int>(0));
        QCOMPARE(l.regionIndex({500, 50}, 0), std::nullopt);

        const NodePtr root = sampleLevel();
        const auto built = buildPlain(makeTiles(root.get(), Metric::size, 3), "/", {800, 600});
        for (int i = 0; i < 3; ++i)
            QCOMPARE(built.regionIndex(built.regions[i].capital, std::nullopt), i);
        QCOMPARE(built.regionIndex({5, 5}, 0), std::nullopt);
    }

    void theHeroLandsInsideTheTerritoryHeLeft()
    {
        // Monster size 30: the spot 33 to the right is in the sea, so he lands 33 to the left;
        // in a sliver no spot beside it fits and he stands on the monster's own place.
        Region r;
        r.tier = Tier::gremlin;
        r.rect = QRectF(0, 0, 100, 100);
        r.shape.addRect(0, 0, 80, 100);
        r.capital = {60, 50};
        QCOMPARE(r.besideMonster(), QPointF(27, 50));
        r.shape = QPainterPath();
        r.shape.addRect(55, 45, 10, 10);
        QCOMPARE(r.besideMonster(), QPointF(60, 50));
    }

    void waveRows()
    {
        QVERIFY(buildPlain({}, "/", QSizeF(800, 14)).waves.empty());
        // A margin this wide leaves the sea's left column free of land, so every row's first
        // wave is kept there.
        const auto l = buildPlain({}, "/", QSizeF(3000, 2000));
        std::vector<QPointF> firsts;
        for (QPointF p : l.waves) {
            if (p.x() < 60 && firsts.size() < 5)
                firsts.push_back(p);
        }
        const double rows[] = {14, 60, 106, 152, 198};
        const double starts[] = {18, 48, 18, 48, 48};
        QCOMPARE(firsts.size(), std::size_t(5));
        for (std::size_t i = 0; i < 5; ++i) {
            QVERIFY(std::abs(firsts[i].y() - rows[i]) <= 6);
            QVERIFY(std::abs(firsts[i].x() - starts[i]) <= 10);
        }
    }
};

DUSTMERE_TEST_MAIN(TestWorldLayout)
#include "test_world_layout.moc"
