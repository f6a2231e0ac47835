#include "magic/AmbientGeometry.h"
#include "magic/Magic.h"
#include "magic/ui/AmbientLayer.h"
#include "magic/ui/ManaOrbs.h"
#include "magic/ui/SpellBar.h"
#include "magic/ui/SpellButton.h"
#include "magic/ui/SpellFXLayer.h"
#include "platform/Appearance.h"
#include "platform/Settings.h"
#include "support/TestSandbox.h"
#include "world/ManualClock.h"
#include "world/Player.h"

#include <QPainter>
#include <QSignalSpy>

namespace {

QImage transparentImage(QSize size)
{
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

// The widget alone, without any window background.
QImage render(QWidget &widget)
{
    QImage image = transparentImage(widget.size());
    widget.render(&image, QPoint(), QRegion(), QWidget::DrawChildren);
    return image;
}

int alphaAt(const QImage &image, QPointF at)
{
    return qAlpha(image.pixel(at.toPoint()));
}

int maxAlpha(const QImage &image)
{
    int most = 0;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x)
            most = std::max(most, qAlpha(image.pixel(x, y)));
    }
    return most;
}

} // namespace

class TestMagicWidgets : public QObject
{
    Q_OBJECT

    std::unique_ptr<Magic> openMagic(double mana)
    {
        auto s = Settings::open();
        s->setValue(QStringLiteral("mana"), mana);
        Settings::setDate(*s, QStringLiteral("manaAt"), QDateTime::currentDateTime().addSecs(60));
        Magic::Options o;
        o.tickInterval = std::chrono::milliseconds(0);
        return std::make_unique<Magic>(o);
    }

private Q_SLOTS:
    void init() { Settings::open()->clear(); }

    void spellButtonsDescribeThemselves_data()
    {
        QTest::addColumn<Spell>("spell");
        QTest::addColumn<QString>("tip");
        QTest::addColumn<QString>("name");
        QTest::newRow("reveal")
            << Spell::reveal
            << "Reveal (1) · 2 mana\nLift the fog from every territory in this realm."
            << "Reveal, costs 2 mana";
        QTest::newRow("fireball")
            << Spell::fireball
            << "Fireball (4) · 3 mana\nBurn every ✅ safe bounty in this realm. They go to "
               "the Trash, so nothing is lost for good."
            << "Fireball, costs 3 mana";
    }
    void spellButtonsDescribeThemselves()
    {
        QFETCH(Spell, spell);
        QFETCH(QString, tip);
        QFETCH(QString, name);
        const auto magic = openMagic(5);
        SpellBar bar(*magic);
        QCOMPARE(bar.button(spell)->toolTip(), tip);
        QCOMPARE(bar.button(spell)->accessibleName(), name);
        QCOMPARE(bar.button(spell)->size(), QSize(40, 40));
    }

    void theBarFadesWhatItCannotAffordAndStillCasts()
    {
        const auto magic = openMagic(1.5);
        SpellBar bar(*magic);
        bar.setPalette(Appearance::palette(Appearance::Scheme::dark));
        bar.show();
        QVERIFY(QTest::qWaitForWindowExposed(&bar));

        // Buttons sit left to right in spell order.
        for (std::size_t i = 1; i < Spells::all.size(); ++i)
            QVERIFY(bar.button(Spells::all[i])->x() > bar.button(Spells::all[i - 1])->x());

        const std::array<double, 5> faded = {0.4, 1, 1, 0.4, 1};
        for (const Spell s : Spells::all)
            QCOMPARE(bar.button(s)->contentOpacity(), faded[std::size_t(Spells::index(s))]);

        // The pointer may rest on the first button and light it up; compare two others.
        const int costly = alphaAt(render(*bar.button(Spell::fireball)), {5, 30});
        const int cheap = alphaAt(render(*bar.button(Spell::sense)), {5, 30});
        QVERIFY(cheap > 0);
        QVERIFY(costly < cheap * 0.6);

        magic->gain(1);
        QCOMPARE(bar.button(Spell::reveal)->contentOpacity(), 1.0);

        QSignalSpy casts(&bar, &SpellBar::castRequested);
        QTest::mouseClick(bar.button(Spell::fireball), Qt::LeftButton);
        bar.button(Spell::recall)->setFocus();
        QTest::keyClick(bar.button(Spell::recall), Qt::Key_Space);
        QCOMPARE(casts.count(), 2);
        QCOMPARE(casts[0][0].value<Spell>(), Spell::fireball);
        QCOMPARE(casts[1][0].value<Spell>(), Spell::recall);
    }

    void orbsFillWithMana()
    {
        QCOMPARE(ManaOrbs::fill(2.5, 0), 1.0);
        QCOMPARE(ManaOrbs::fill(2.5, 2), 0.5);
        QCOMPARE(ManaOrbs::fill(2.5, 3), 0.0);
        QCOMPARE(ManaOrbs::orbRect(4), QRectF(60, 0, 12, 12));

        const auto magic = openMagic(2.5);
        ManaOrbs orbs(*magic);
        QCOMPARE(orbs.size(), QSize(72, 12));
        QCOMPARE(orbs.toolTip(),
                 QStringLiteral("Mana 2/5 · refills 1 every 20 s and on every slay"));
        QCOMPARE(orbs.accessibleName(), QStringLiteral("Mana 2 of 5"));

        for (const auto scheme : {Appearance::Scheme::light, Appearance::Scheme::dark}) {
            orbs.setPalette(Appearance::palette(scheme));
            const QImage image = render(orbs);
            const auto alpha = [&image](int orb, double dy) {
                return alphaAt(image, ManaOrbs::orbRect(orb).center() + QPointF(0, dy));
            };
            QCOMPARE(alpha(0, 0), 255);
            QCOMPARE(alpha(1, -3), 255);
            QCOMPARE(alpha(2, 3), 255); // the half-full orb: its lower half
            QVERIFY(alpha(2, -3) < 60);
            QVERIFY(alpha(3, 0) > 0); // the empty orb still shows, faintly
            QVERIFY(alpha(3, 0) < 60);
            QCOMPARE(alpha(3, 0), alpha(4, 0));
        }

        magic->gain(1);
        QCOMPARE(orbs.accessibleName(), QStringLiteral("Mana 3 of 5"));
    }

    void ambientLayerStaysStillWithReduceMotion()
    {
        QWidget host;
        host.resize(400, 300);
        AmbientLayer calm(true, &host);
        AmbientLayer lively(false, &host);
        for (AmbientLayer *layer : {&calm, &lively}) {
            layer->resize(host.size());
            QVERIFY(layer->testAttribute(Qt::WA_TransparentForMouseEvents));
        }
        host.show();
        QVERIFY(QTest::qWaitForWindowExposed(&host));

        QVERIFY(!calm.animating());
        QCOMPARE(maxAlpha(render(calm)), 0);
        QVERIFY(lively.animating());
        QVERIFY(maxAlpha(render(lively)) > 0);

        // A minimised window shows nothing, so nothing ticks.
        host.showMinimized();
        QTRY_VERIFY(!lively.animating());
        host.showNormal();
        QTRY_VERIFY(lively.animating());

        lively.setReduceMotion(true);
        QVERIFY(!lively.animating());
        QCOMPARE(maxAlpha(render(lively)), 0);
        host.hide();
        calm.setReduceMotion(false);
        QVERIFY(!calm.animating()); // hidden layers never tick
    }

    // The layer repaints only the areas a frame reports: a pixel drawn outside them would be
    // left behind as a trail on the map.
    void aFrameDrawsOnlyWhereItSaysItDraws()
    {
        AmbientLayer layer(false);
        const QSize size(800, 600);
        const auto motes = AmbientGeometry::motes();
        for (const double t : {0.0, 3.3, 61.7}) {
            for (const bool dark : {false, true}) {
                QImage frame(size, QImage::Format_ARGB32_Premultiplied);
                frame.fill(Qt::transparent);
                QPainter p(&frame);
                layer.paintFrame(p, size, t, dark);
                p.end();
                QRegion areas;
                for (const auto &list : {AmbientGeometry::cloudAreas(t, size),
                                         AmbientGeometry::moteAreas(motes, t, size)})
                    for (const QRect &r : list)
                        areas += r;
                int outside = 0;
                for (int y = 0; y < size.height(); ++y)
                    for (int x = 0; x < size.width(); ++x)
                        outside += qAlpha(frame.pixel(x, y)) > 0 && !areas.contains(QPoint(x, y));
                QCOMPARE(outside, 0);
            }
        }
        // Clouds move in steps, so most frames leave them alone.
        QCOMPARE(AmbientGeometry::cloudAreas(10.01, size), AmbientGeometry::cloudAreas(10.2, size));
        QVERIFY(AmbientGeometry::cloudAreas(10.2, size) != AmbientGeometry::cloudAreas(10.3, size));
    }

    void effectsDrawFromTheHeroAndVanishWhenDone()
    {
        auto clock = std::make_shared<ManualClock>(0);
        Player player(clock);
        const QPalette palette = Appearance::palette(Appearance::Scheme::light);
        QImage image = transparentImage({300, 300});
        const auto paint = [&] {
            image.fill(Qt::transparent);
            QPainter painter(&image);
            SpellFXLayer::paint(painter, player, clock->now(), palette);
        };

        player.add(SpellFX::make(SpellFX::Kind::ring, {{150, 150}}, 1.4, 0));
        paint();
        QCOMPARE(maxAlpha(image), 0); // no island, no drawing

        WorldLayout world;
        world.size = QSizeF(300, 300);
        world.land = QRectF(0, 0, 300, 300);
        player.update(world, world.size);
        clock->advance(0.42);
        paint();
        QVERIFY(maxAlpha(image) > 0);

        // At its end the ring is gone even before the hero drops it.
        QImage end = transparentImage({300, 300});
        {
            QPainter painter(&end);
            const SpellFX fx = SpellFX::make(SpellFX::Kind::ring, {{150, 150}}, 1.4, 0);
            SpellFXLayer::paintEffect(painter, fx, {}, 1.4, false);
        }
        QCOMPARE(maxAlpha(end), 0);

        // The trail starts wherever the hero stands now.
        clock->advance(1.0); // the ring has been dropped; dashes start at the path's start again
        QVERIFY(player.effects().empty());
        player.add(SpellFX::make(SpellFX::Kind::trail, {{20, 150}, {280, 150}}, 8.0, clock->now()));
        player.jump({20, 150});
        paint();
        const QPointF firstDash(24, 148);
        QVERIFY(alphaAt(image, firstDash) > 100);
        player.jump({150, 280});
        paint();
        QCOMPARE(alphaAt(image, firstDash), 0);
        // 4 points along the curve's first tangent, toward its control point (215, 90).
        const QPointF toward = QPointF(65, -190) / std::hypot(65.0, 190.0);
        QVERIFY(alphaAt(image, QPointF(150, 280) + 4 * toward) > 100);
    }
};

DUSTMERE_WIDGET_TEST_MAIN(TestMagicWidgets)
#include "test_magic_widgets.moc"
