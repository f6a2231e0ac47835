#include "game/Game.h"
#include "platform/Appearance.h"
#include "platform/Emoji.h"
#include "session/Model.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"
#include "world/ManualClock.h"
#include "world/Player.h"
#include "world/ui/Glow.h"
#include "world/ui/IslandRenderer.h"
#include "world/ui/MapFonts.h"
#include "world/ui/MonsterGlyph.h"
#include "world/ui/MonsterSprite.h"
#include "world/ui/RegionHighlight.h"
#include "world/ui/WorldCanvas.h"
#include "world/ui/WorldPalette.h"
#include "world/ui/WorldScene.h"

#include <QAccessible>
#include <QFile>
#include <QPainter>
#include <QSignalSpy>
#include <QtConcurrent>
#include <cmath>

namespace {

// A level whose first folders span every tier, then a tail of small ones.
NodePtr sampleLevel()
{
    NodePtr root = Node::create("ada");
    root->setBasePath("/home/ada");
    const std::uint64_t big[] = {90'000'000'000ULL, 40'000'000'000ULL, 9'000'000'000ULL,
                                 900'000'000ULL, 90'000'000ULL};
    for (int i = 0; i < 5; ++i)
        TreeBuilder::addFolder(root, "big" + std::to_string(i), big[i]);
    for (int i = 0; i < 20; ++i)
        TreeBuilder::addFolder(root, "small" + std::to_string(i), 20'000'000ULL + 1'000'000ULL * i);
    root->finish();
    return root;
}

QString plainTitle(const Tile &t, std::optional<Tier>)
{
    return QFile::decodeName(QByteArray::fromStdString(t.name));
}

WorldLayout build(const NodePtr &root, QSizeF size, const std::string &unexplored = {})
{
    return WorldLayout::build(
        makeTiles(root.get(), Metric::size, 40), *root->basePath(), size,
        [unexplored](const std::string &p) {
            return unexplored.empty() || !p.ends_with(unexplored);
        },
        [](const std::string &) { return std::int64_t(0); }, plainTitle);
}

// One tier-less territory filling `rect`, on a plain sea.
WorldLayout oneTerritory(QRectF rect, const QString &title, const QString &subtitle)
{
    WorldLayout l;
    l.size = QSizeF(400, 300);
    l.land = rect;
    Region r;
    r.tile = Tile{"x", Tile::Loose{}, "x", 1};
    r.rect = rect;
    r.shape.addRect(rect);
    r.capital = rect.center();
    r.title = title;
    r.subtitle = subtitle;
    l.regions = {r};
    l.key = qHash(title) ^ qHash(subtitle) ^ qHash(rect.width() * 1000 + rect.height());
    return l;
}

QImage renderCanvas(WorldCanvas &canvas, Appearance::Scheme scheme)
{
    return canvas.image(Appearance::palette(scheme), 1.0);
}

bool near(QColor a, QColor b, int tolerance = 3)
{
    return std::abs(a.red() - b.red()) <= tolerance &&
           std::abs(a.green() - b.green()) <= tolerance &&
           std::abs(a.blue() - b.blue()) <= tolerance;
}

QColor over(QColor base, QColor top, double alpha)
{
    const auto mix = [alpha](int b, int t) {
        return int(std::lround(b * (1 - alpha) + t * alpha));
    };
    return QColor(mix(base.red(), top.red()), mix(base.green(), top.green()),
                  mix(base.blue(), top.blue()));
}

QColor shaded(QColor land, double shade)
{
    return shade < 0 ? over(land, Qt::black, -shade) : over(land, Qt::white, shade);
}

// A point of the territory 20 points above its capital: clear of the label, the keep-out box
// keeps scenery away, and clouds are checked by the caller.
QPoint probe(const Region &r)
{
    return (r.capital - QPointF(0, 20)).toPoint();
}

bool clearOf(const std::vector<QPointF> &marks, QPointF p, double distance)
{
    return std::all_of(marks.begin(), marks.end(), [&](QPointF m) {
        return std::hypot(m.x() - p.x(), m.y() - p.y()) > distance;
    });
}

} // namespace

class TestWorldDrawing : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void seaColourInBothAppearances()
    {
        const NodePtr root = sampleLevel();
        WorldCanvas canvas;
        canvas.setWorld(build(root, QSizeF(900, 600)), QStringLiteral("Realm"));
        QCOMPARE(renderCanvas(canvas, Appearance::Scheme::light).pixelColor(898, 1),
                 QColor(0x3F, 0x7D, 0xB4));
        QCOMPARE(renderCanvas(canvas, Appearance::Scheme::dark).pixelColor(898, 1),
                 QColor(0x07, 0x11, 0x1C));
    }

    void territoriesAreTheirTierColourAndFogHidesTheUnexplored()
    {
        const NodePtr root = sampleLevel();
        const WorldLayout layout = build(root, QSizeF(1200, 800), "big2");
        WorldCanvas canvas;
        canvas.setWorld(layout, QStringLiteral("Realm"));
        for (const auto scheme : {Appearance::Scheme::light, Appearance::Scheme::dark}) {
            const QImage image = renderCanvas(canvas, scheme);
            const bool dark = scheme == Appearance::Scheme::dark;
            const Region &titan = layout.regions[0];
            QCOMPARE(titan.tier, std::optional(Tier::titan));
            QVERIFY(near(image.pixelColor(probe(titan)),
                         shaded(Tiers::landColor(Tier::titan).resolve(dark), titan.shade)));

            const Region &hidden = layout.regions[2];
            QVERIFY(!hidden.explored);
            QVERIFY(clearOf(hidden.clouds, probe(hidden), 24));
            const QColor ground = shaded(Tiers::landColor(Tier::ogre).resolve(dark), hidden.shade);
            const QColor fogged = dark ? over(ground, QColor::fromRgbF(0.08f, 0.1f, 0.14f), 0.62)
                                       : over(ground, Qt::white, 0.55);
            QVERIFY2(near(image.pixelColor(probe(hidden)), fogged),
                     qPrintable(image.pixelColor(probe(hidden)).name()));
        }
    }

    void scenerySpringsUpOnceExplored()
    {
        const NodePtr root = sampleLevel();
        const WorldLayout hidden = build(root, QSizeF(1200, 800), "big0");
        const WorldLayout shown = build(root, QSizeF(1200, 800));
        QVERIFY(hidden.key != shown.key);
        WorldCanvas canvas;
        canvas.setWorld(hidden, {});
        const QImage before = renderCanvas(canvas, Appearance::Scheme::light);
        canvas.setWorld(shown, {});
        const QImage after = renderCanvas(canvas, Appearance::Scheme::light);
        const Region &r = shown.regions[0];
        QVERIFY(!r.scenery.empty());
        // Scenery only on the explored island; fog (a pale veil) only on the hidden one.
        int changed = 0;
        for (const QPointF &s : r.scenery)
            changed += before.pixelColor(s.toPoint()) != after.pixelColor(s.toPoint());
        QVERIFY(changed >= int(r.scenery.size()) / 2);
        QVERIFY(before.pixelColor(probe(r)).lightness() > after.pixelColor(probe(r)).lightness());
    }

    void labelsNeedRoom_data()
    {
        QTest::addColumn<QSizeF>("size");
        QTest::addColumn<bool>("title");
        QTest::addColumn<bool>("subtitle");
        QTest::newRow("64 wide") << QSizeF(64, 200) << false << false;
        QTest::newRow("65 x 44") << QSizeF(65, 44) << false << false;
        QTest::newRow("65 x 45") << QSizeF(65, 45) << true << false;
        QTest::newRow("80 x 76") << QSizeF(80, 76) << true << false;
        QTest::newRow("80 x 80") << QSizeF(80, 80) << true << true;
    }
    void labelsNeedRoom()
    {
        QFETCH(QSizeF, size);
        const QRectF rect(QPointF(100, 60), size);
        const auto render = [&](const QString &title, const QString &subtitle) {
            WorldCanvas canvas;
            canvas.setWorld(oneTerritory(rect, title, subtitle), QStringLiteral("Realm"));
            return renderCanvas(canvas, Appearance::Scheme::light);
        };
        const QImage bare = render({}, {});
        const QImage titled = render(QStringLiteral("Mm"), {});
        const QImage both = render(QStringLiteral("Mm"), QStringLiteral("42 GB"));
        QTEST(bare != titled, "title");
        QTEST(titled != both, "subtitle");
    }

    // A long name ends within its own territory; under fog every label still reads at 4.5:1.
    void labelsStayInTheirTerritoryAndReadableUnderFog()
    {
        const QRectF rect(100, 60, 100, 80);
        const auto render = [&](const QString &title) {
            WorldCanvas canvas;
            canvas.setWorld(oneTerritory(rect, title, QStringLiteral("a very long subtitle too")),
                            QStringLiteral("Realm"));
            return renderCanvas(canvas, Appearance::Scheme::light);
        };
        const QImage bare = render({});
        const QImage titled = render(QStringLiteral("The Exceedingly Long Realm of Everything"));
        QVERIFY(bare != titled);
        for (int y = 0; y < bare.height(); ++y) {
            for (int x = 0; x < bare.width(); ++x) {
                if (x < rect.left() - 4 || x > rect.right() + 4)
                    QVERIFY2(bare.pixel(x, y) == titled.pixel(x, y),
                             qPrintable(QStringLiteral("%1,%2").arg(x).arg(y)));
            }
        }

        QCOMPARE(std::lround(Appearance::contrast(Qt::white, Qt::black)), 21);
        for (const bool dark : {false, true}) {
            const WorldPalette colors = WorldPalette::of(dark, dark ? Qt::white : Qt::black);
            for (const std::optional<Tier> tier :
                 {std::optional<Tier>(), std::optional(Tier::microbe), std::optional(Tier::ogre),
                  std::optional(Tier::titan)}) {
                const QColor text = colors.label(tier, false).text;
                QVERIFY(Appearance::contrast(text, colors.ground(tier, false)) >= 4.5);
                QVERIFY(Appearance::contrast(text, colors.label(tier, false).halo) >= 4.5);
            }
        }
    }

    // At device pixel ratios 1, 1.5 and 2 a label's glow is centred on its text.
    void glowsSitOnTheirTextAtEveryRatio()
    {
        const auto centre = [](double dpr, const QColor &text, const QColor &glow) {
            QImage image(int(200 * dpr), int(60 * dpr), QImage::Format_ARGB32_Premultiplied);
            image.setDevicePixelRatio(dpr);
            image.fill(Qt::transparent);
            QPainter p(&image);
            Glow::drawText(p, QRectF(0, 0, 200, 60), Qt::AlignCenter, QStringLiteral("Glade"),
                           MapFonts::serif(13, QFont::DemiBold), text, glow, 2);
            p.end();
            QRect ink;
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x)
                    if (qAlpha(image.pixel(x, y)) > 40)
                        ink |= QRect(x, y, 1, 1);
            return QPointF(ink.center()) / dpr;
        };
        for (const double dpr : {1.0, 1.5, 2.0}) {
            const QPointF text = centre(dpr, Qt::blue, Qt::transparent);
            const QPointF glow = centre(dpr, Qt::transparent, Qt::red);
            QVERIFY2(std::abs(text.x() - glow.x()) <= 1 && std::abs(text.y() - glow.y()) <= 1,
                     qPrintable(QStringLiteral("ratio %1").arg(dpr)));
        }
    }

    void unchangedIslandIsNotRedrawn()
    {
        const NodePtr root = sampleLevel();
        WorldCanvas canvas;
        const auto light = Appearance::palette(Appearance::Scheme::light);
        const auto dark = Appearance::palette(Appearance::Scheme::dark);
        const QSizeF size(1600, 1200);
        canvas.setWorld(build(root, size, "small7"), QStringLiteral("Realm"));
        (void)canvas.image(light, 1.0);
        const int tiles = canvas.renders(); // every tile of the island, once
        QCOMPARE(tiles, 12);
        (void)canvas.image(light, 1.0);
        QCOMPARE(canvas.renders(), tiles);

        // Rebuilding from the same inputs gives the same key: nothing is drawn again.
        canvas.setWorld(build(root, size, "small7"), QStringLiteral("Realm"));
        (void)canvas.image(light, 1.0);
        QCOMPARE(canvas.renders(), tiles);

        // A new realm title or a discovered territory redraw only the tiles around them.
        int before = canvas.renders();
        canvas.setWorld(build(root, size, "small7"), QStringLiteral("Other realm"));
        const QImage renamed = canvas.image(light, 1.0);
        QVERIFY(canvas.renders() > before && canvas.renders() < before + tiles);
        before = canvas.renders();
        const WorldLayout explored = build(root, size);
        canvas.setWorld(explored, QStringLiteral("Other realm"));
        const QImage discovered = canvas.image(light, 1.0);
        QVERIFY(canvas.renders() > before && canvas.renders() < before + tiles);
        // ... and the result is what a fresh drawing gives.
        WorldCanvas fresh;
        fresh.setWorld(explored, QStringLiteral("Other realm"));
        QCOMPARE(fresh.image(light, 1.0), discovered);
        QVERIFY(discovered != renamed);

        // The appearance, the resolution and the size each redraw all of it.
        before = canvas.renders();
        (void)canvas.image(dark, 1.0);
        QCOMPARE(canvas.renders(), before + tiles);
        (void)canvas.image(dark, 2.0);
        QCOMPARE(canvas.renders(), before + 2 * tiles);
        canvas.setWorld(build(root, QSizeF(1600, 1100)), QStringLiteral("Other realm"));
        (void)canvas.image(dark, 2.0);
        QCOMPARE(canvas.renders(), before + 3 * tiles);
    }

    void walkingRepaintsOnlyTheLayers()
    {
        Game game;
        Model model;
        auto clock = std::make_shared<ManualClock>(1);
        Player player(clock);
        const NodePtr root = sampleLevel();
        const WorldLayout layout = build(root, QSizeF(1600, 1200));
        player.update(layout, QSizeF(800, 600));
        WorldScene scene(model, game, player, true);
        scene.resize(800, 600);
        scene.setWorld(layout, QStringLiteral("Realm"));
        (void)scene.grab();
        const QPointF start = scene.offset();

        const auto walk = [&](const QString &key) {
            player.key(key, true, false);
            for (int i = 0; i < 20; ++i) {
                clock->advance(0.03);
                player.tick();
                (void)scene.grab();
            }
            player.key(key, false, false);
            player.releaseAll();
        };
        walk(QStringLiteral("right"));
        QVERIFY(scene.offset().x() < start.x()); // the camera followed the hero
        const int drawn = scene.canvas().renders();
        walk(QStringLiteral("left"));
        walk(QStringLiteral("right"));
        QCOMPARE(scene.canvas().renders(), drawn);

        scene.setWorld(build(root, QSizeF(1600, 1200)), QStringLiteral("Realm"));
        (void)scene.grab();
        QCOMPARE(scene.canvas().renders(), drawn);
    }

    // Small repaints are copied from the scene's kept image: after the hero moved, a spot must
    // show what a full repaint shows there, never the image from before.
    void spotsMatchTheWholeView()
    {
        Game game;
        Model model;
        auto clock = std::make_shared<ManualClock>(1);
        Player player(clock);
        const WorldLayout layout = build(sampleLevel(), QSizeF(800, 600));
        player.update(layout, QSizeF(800, 600));
        WorldScene scene(model, game, player, true);
        scene.resize(800, 600);
        scene.setWorld(layout, QStringLiteral("Realm"));
        (void)scene.grab(QRect(0, 0, 10, 10)); // fills the kept image
        player.jump(layout.regions.back().capital);
        QCoreApplication::processEvents();
        const QRect spot = QRectF(player.heroPoint() - QPointF(40, 40), QSizeF(80, 80))
                               .translated(scene.offset())
                               .toAlignedRect();
        const QImage part = scene.grab(spot).toImage();
        QCOMPARE(part, scene.grab().toImage().copy(spot));
    }

    // The outline is stroked in runs of the segments that reach the painted area, joined where
    // they follow each other, across the chunks the outline is cut into.
    void highlightRunsAreTheSegmentsThatReachTheArea()
    {
        QPolygonF ring;
        for (int i = 0; i < 200; ++i)
            ring << QPointF(300 + 200 * std::cos(i * M_PI / 100),
                            300 + 200 * std::sin(i * M_PI / 100));
        QPainterPath shape;
        shape.addPolygon(ring);
        RegionHighlight highlight;
        highlight.prepare(shape);
        for (const QRectF area : {QRectF(480, 250, 40, 100), QRectF(280, 80, 40, 40),
                                  QRectF(0, 0, 50, 50), QRectF(90, 90, 420, 420)}) {
            const QPainterPath runs = highlight.visibleRuns(area);
            const QRectF near =
                area.adjusted(-RegionHighlight::lineWidth, -RegionHighlight::lineWidth,
                              RegionHighlight::lineWidth, RegionHighlight::lineWidth);
            int segments = 0, starts = 0;
            bool previous = false;
            for (int i = 0; i < 200; ++i) {
                const QRectF box = QRectF(ring[i], ring[(i + 1) % 200]).normalized();
                const bool reaches = box.adjusted(0, 0, 1e-9, 1e-9).intersects(near);
                segments += reaches;
                starts += reaches && !previous;
                previous = reaches;
            }
            int moves = 0;
            for (int e = 0; e < runs.elementCount(); ++e)
                moves += runs.elementAt(e).isMoveTo();
            QCOMPARE(runs.elementCount() - moves, segments);
            QCOMPARE(moves, starts);
        }
    }

    void glyphSpikesReachWhereTheArtPutsThem()
    {
        MonsterGlyph glyph(Tier::microbe, 56);
        QCOMPARE(glyph.size(), QSize(56, 56));
        QImage image(56, 56, QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        glyph.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);

        const QPointF centre(28, 32.48);
        const double tip = 22.4;
        // The spikes at 0, 180 and 270 degrees are long ones: ink right up to the tip, nothing
        // past it beyond the round cap.
        for (const QPointF dir : {QPointF(1, 0), QPointF(-1, 0), QPointF(0, -1)}) {
            const QPointF inside = centre + dir * (tip - 1.0);
            const QPointF beyond = centre + dir * (tip + 2.5);
            QVERIFY(qAlpha(image.pixel(inside.toPoint())) > 128);
            QCOMPARE(qAlpha(image.pixel(beyond.toPoint())), 0);
        }
        // At 22.5 degrees the spike is short (35 units = 19.6 points).
        const double a = M_PI / 8;
        const QPointF shortBeyond = centre + QPointF(std::cos(a), std::sin(a)) * (19.6 + 2.5);
        QCOMPARE(qAlpha(image.pixel(shortBeyond.toPoint())), 0);
        // Transparent outside the drawing.
        QCOMPARE(qAlpha(image.pixel(1, 1)), 0);

        QAccessibleInterface *access = QAccessible::queryAccessibleInterface(&glyph);
        QVERIFY(access && access->state().invisible);
        QVERIFY(access->text(QAccessible::Name).isEmpty());
    }

    void monstersBreatheOnlyWhenBigAndAllowedTo()
    {
        const NodePtr root = sampleLevel();
        const WorldLayout layout = build(root, QSizeF(1600, 1200));
        const MonsterSprite titan(layout.regions[0], 10);
        const MonsterSprite dragon(layout.regions[1], 10);
        const MonsterSprite ogre(layout.regions[2], 10);
        QCOMPARE(titan.breathScale(10, false), 1.0);
        QCOMPARE(titan.breathScale(11.8, false), 1.08);
        QCOMPARE(titan.breathScale(13.6, false), 1.0);
        QCOMPARE(dragon.breathScale(11.2, false), 1.08);
        QVERIFY(dragon.breathScale(10.6, false) > 1.0 && dragon.breathScale(10.6, false) < 1.08);
        QCOMPARE(dragon.breathScale(11.2, true), 1.0);
        QCOMPARE(ogre.breathScale(10.6, false), 1.0);
        QVERIFY(titan.animating(12, false) && !titan.animating(12, true));
        QVERIFY(!ogre.animating(12, false));
    }

    void fogHidesTheMonsterAndDeathFadesIt()
    {
        const NodePtr root = sampleLevel();
        const WorldLayout shown = build(root, QSizeF(1600, 1200));
        const WorldLayout hidden = build(root, QSizeF(1600, 1200), "big0");
        Stamps stamps;
        const auto render = [&](const MonsterSprite &sprite, double now) {
            QImage image(1600, 1200, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::transparent);
            QPainter p(&image);
            sprite.paint(p, stamps, now, true);
            return image;
        };
        // A point low on the titan's stone body, below its mouth.
        const Region &r = shown.regions[0];
        QCOMPARE(r.monsterSize(), 56.0);
        const QPoint body = (r.capital + QPointF(0, 0.38 * 56)).toPoint();
        const QColor stone(0x8D, 0x8A, 0x85);

        QVERIFY(near(render(MonsterSprite(r, 0), 1).pixelColor(body), stone));
        QVERIFY(!near(render(MonsterSprite(hidden.regions[0], 0), 1).pixelColor(body), stone));

        MonsterSprite dying(r, 0);
        dying.setDeath(MonsterSprite::Death{5, 120});
        QVERIFY(dying.animating(5.2, true));
        QCOMPARE(qAlpha(render(dying, 5.5).pixel(body)), 0); // gone once the blast has passed
        QVERIFY(!dying.animating(5.1 + MonsterSprite::deathSeconds, true));
    }

    // The worker draws the same island the canvas draws; of several requests made while it is
    // busy only the newest is drawn, and nothing drawn before a clear() shows up after it.
    void islandsDrawnOnAWorkerMatchTheCanvas()
    {
        const NodePtr root = sampleLevel();
        const QSizeF size(720, 450);
        const QPalette palette = Appearance::palette(Appearance::Scheme::dark);
        WorldCanvas canvas;
        canvas.setWorld(build(root, size, "small3"), QStringLiteral("Realm"));
        const QImage direct = canvas.image(palette, 1.0);

        IslandRenderer renderer;
        QSignalSpy ready(&renderer, &IslandRenderer::ready);
        const auto request = [&](const std::string &unexplored) {
            IslandRenderer::Request r;
            r.layout = [root, size, unexplored] { return build(root, size, unexplored); };
            r.title = QStringLiteral("Realm");
            r.size = size.toSize();
            r.colors = WorldPalette::of(palette);
            return r;
        };
        renderer.request(request("small1"));
        renderer.request(request("small2")); // superseded before it starts
        renderer.request(request("small3"));
        renderer.waitForIdle();
        QCOMPARE(ready.count(), 2);
        // Tiles meet with slightly different antialiasing; the island itself must agree.
        const auto differing = [&direct](const QImage &drawn) {
            const QImage image = drawn.convertToFormat(direct.format());
            int count = 0;
            for (int y = 0; y < direct.height(); ++y) {
                for (int x = 0; x < direct.width(); ++x)
                    count += !near(image.pixelColor(x, y), direct.pixelColor(x, y), 8);
            }
            return count;
        };
        QCOMPARE(renderer.image().size(), direct.size());
        QVERIFY(differing(renderer.image()) < direct.width() * direct.height() / 200);
        const QImage newest = renderer.image();
        renderer.request(request("small1"));
        renderer.waitForIdle();
        QVERIFY(differing(renderer.image()) > differing(newest) + 100); // fog moved

        QCOMPARE(ready.count(), 3);

        renderer.request(request("small2"));
        renderer.clear();
        renderer.waitForIdle();
        QVERIFY(renderer.image().isNull());
        QCOMPARE(ready.count(), 3);
    }

    // Emoji are kept as drawn images on the interface thread; elsewhere they are drawn as text.
    // Both must sit in the same place at the same size and colour.
    void keptEmojiLookLikeDrawnOnes()
    {
        const auto draw = [](double scale) {
            QImage image(120, 120, QImage::Format_ARGB32_Premultiplied);
            image.fill(Qt::white);
            QPainter p(&image);
            p.scale(scale, scale);
            Emoji::drawCentered(p, QStringLiteral("🐉"), QPointF(60, 60) / scale, 40 / scale);
            return image;
        };
        struct Ink
        {
            QRect box;
            int greenish = 0; // the dragon is green
        };
        const auto inkOf = [](const QImage &image) {
            Ink ink;
            for (int y = 0; y < image.height(); ++y) {
                for (int x = 0; x < image.width(); ++x) {
                    const QColor c = image.pixelColor(x, y);
                    if (c == Qt::white)
                        continue;
                    ink.box |= QRect(x, y, 1, 1);
                    ink.greenish += c.green() > c.red() + 40;
                }
            }
            return ink;
        };
        for (const double scale : {1.0, 1.5}) {
            const QImage kept = draw(scale);
            QCOMPARE(draw(scale), kept);
            const Ink a = inkOf(kept);
            const Ink b = inkOf(QtConcurrent::run([&] { return draw(scale); }).result());
            QVERIFY(b.box.width() > 25 && b.greenish > 300); // drawn at all, in colour
            for (const int edge : {a.box.left() - b.box.left(), a.box.right() - b.box.right(),
                                   a.box.top() - b.box.top(), a.box.bottom() - b.box.bottom()})
                QVERIFY(std::abs(edge) <= 2);
            QVERIFY(std::abs(a.greenish - b.greenish) < b.greenish / 5);
        }
    }

    void labelSitsBelowTheMonster()
    {
        const NodePtr root = sampleLevel();
        const WorldLayout layout = build(root, QSizeF(1600, 1200));
        const Region &r = layout.regions[0];
        QCOMPARE(IslandDrawing::labelAnchor(r).y() - r.capital.y(), 0.62 * 56 + 10);
        const Region plain = oneTerritory(QRectF(0, 0, 100, 100), {}, {}).regions[0];
        QCOMPARE(IslandDrawing::labelAnchor(plain), plain.capital);
    }
};

DUSTMERE_WIDGET_TEST_MAIN(TestWorldDrawing)
#include "test_world_drawing.moc"
