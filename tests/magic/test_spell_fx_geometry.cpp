#include "magic/AmbientGeometry.h"
#include "magic/SpellFXGeometry.h"
#include "support/TestSandbox.h"

#include <cmath>

namespace {

bool near(double a, double b, double eps = 1e-9)
{
    return std::abs(a - b) < eps;
}

bool near(QPointF a, QPointF b, double eps = 1e-9)
{
    return near(a.x(), b.x(), eps) && near(a.y(), b.y(), eps);
}

} // namespace

class TestSpellFXGeometry : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void theRingEndsWideAndInvisible()
    {
        const QPointF m(300, 200);
        const auto end = SpellFXGeometry::ring(m, 1);
        QCOMPARE(end.radius, 1100.0);
        QCOMPARE(end.opacity, 0.0);
        QCOMPARE(end.lineWidth, 1.0);

        const auto start = SpellFXGeometry::ring(m, 0);
        QCOMPARE(start.lineWidth, 11.0);
        QCOMPARE(start.sparkles.size(), 36u);
        for (const QPointF &s : start.sparkles)
            QCOMPARE(s, m);

        // Halfway: sparkle 0 at 0.75 r, turned by one radian; sparkle 9 a quarter turn further.
        const auto half = SpellFXGeometry::ring(m, 0.5);
        QCOMPARE(half.radius, 550.0);
        QVERIFY(near(half.sparkles[0], m + 412.5 * QPointF(std::cos(1.0), std::sin(1.0))));
        const double d9 = 550 * (0.75 + 0.25 * std::sin(1.7 * 9));
        const double a9 = 1.0 + M_PI / 2;
        QVERIFY(near(half.sparkles[9], m + d9 * QPointF(std::cos(a9), std::sin(a9))));
    }

    void theSwirlWindsInAndItsTwinIsOpposite()
    {
        const QPointF m(50, 60);
        const auto spiral = SpellFXGeometry::spiral(m, 0.25);
        const auto twin = SpellFXGeometry::spiral(m, 0.25, true);
        QCOMPARE(spiral.size(), 60u);
        QVERIFY(near(spiral[0], m + 4 * QPointF(std::cos(2.5), std::sin(2.5))));
        const double r59 = 40 * 0.75 * 59 / 60 + 4;
        const double a59 = 2.5 + 4 * M_PI * 59 / 60;
        QVERIFY(near(spiral[59], m + r59 * QPointF(std::cos(a59), std::sin(a59))));
        for (std::size_t j = 0; j < spiral.size(); ++j)
            QVERIFY(near(twin[j] - m, -(spiral[j] - m)));
        // At the end only the 4-point core is left.
        for (const QPointF &v : SpellFXGeometry::spiral(m, 1))
            QVERIFY(near(std::hypot(v.x() - m.x(), v.y() - m.y()), 4));
    }

    void theTrailBowsUpAndMarchesToTheTarget()
    {
        const QPainterPath path = SpellFXGeometry::trail({100, 300}, {500, 200});
        // Qt keeps the quadratic curve as the equivalent cubic: its control point (300, 140)
        // shows as the two points 2/3 of the way to it from either end.
        QCOMPARE(path.elementCount(), 4);
        QCOMPARE(QPointF(path.elementAt(0)), QPointF(100, 300));
        QVERIFY(near(path.elementAt(1), QPointF(100 + 400.0 / 3, 300 - 320.0 / 3)));
        QVERIFY(near(path.elementAt(2), QPointF(500 - 400.0 / 3, 160)));
        QCOMPARE(QPointF(path.elementAt(3)), QPointF(500, 200));

        QCOMPARE(SpellFXGeometry::trailFade(0.85), 1.0);
        QVERIFY(near(SpellFXGeometry::trailFade(0.925), 0.5));
        QCOMPARE(SpellFXGeometry::trailFade(1), 0.0);

        // The dash pattern starts 40 points earlier every second (modulo the 20-point cycle).
        QVERIFY(near(SpellFXGeometry::trailDashPhase(0), 0));
        QVERIFY(near(SpellFXGeometry::trailDashPhase(0.1), 16));
        QVERIFY(near(SpellFXGeometry::trailDashPhase(0.2), 12));
        QVERIFY(near(SpellFXGeometry::trailPulseRadius(M_PI / 12), 34));
    }

    void fireLightsInSixStaggeredGroups()
    {
        const auto q = [](double p, std::size_t k) { return SpellFXGeometry::fireProgress(p, k); };
        // Early on only the first group (0, 6, 12 of 13 points) burns.
        for (std::size_t k = 0; k < 13; ++k)
            QCOMPARE(q(0.02, k) > 0, k % 6 == 0);
        // Points 5 and 11 light last, 0.2 of the progress later.
        QCOMPARE(q(0.2, 5), 0.0);
        QCOMPARE(q(0.2, 11), 0.0);
        QVERIFY(q(0.21, 5) > 0);
        QVERIFY(q(0.2, 4) > 0);
        // At the end the first groups are done and the last reaches 0.96.
        for (std::size_t k : {0u, 6u, 12u, 1u, 7u})
            QCOMPARE(q(1, k), 1.0);
        QVERIFY(near(q(1, 5), 0.96));
        QVERIFY(near(q(1, 11), 0.96));
    }

    void flamesGrowRiseScatterAndFade()
    {
        const QPointF at(200, 200);
        const auto cold = SpellFXGeometry::fire(at, 0);
        QCOMPARE(cold.glowRadius, 0.0);
        QCOMPARE(cold.glowOpacity, 0.45);
        for (const auto &f : cold.flames) {
            QCOMPARE(f.centre, at);
            QCOMPARE(f.size, 18.0);
            QCOMPARE(f.opacity, 1.0);
        }
        const auto mid = SpellFXGeometry::fire(at, 0.5);
        QCOMPARE(mid.glowRadius, 30.0);
        QVERIFY(near(mid.flames[0].centre, QPointF(213, 180)));
        QVERIFY(near(mid.flames[3].centre, QPointF(200 - 10.515, 200 - 4.115 - 20)));
        QCOMPARE(mid.flames[0].size, 27.0);
        const auto done = SpellFXGeometry::fire(at, 1);
        QCOMPARE(done.glowOpacity, 0.0);
        QCOMPARE(done.flames[4].opacity, 0.0);
        QVERIFY(near(done.flames[4].centre, QPointF(208.03, 200 - 13.31 - 40)));
    }

    void motesAreFixedAndCloudsWrap()
    {
        const auto motes = AmbientGeometry::motes();
        QCOMPARE(motes.size(), 22u);
        QCOMPARE(motes[0].x, 0.0);
        QCOMPARE(motes[1].x, 0.729);
        QCOMPARE(motes[1].y, 0.919);
        QCOMPARE(motes[4].speed, 0.5 + 0.15 * 4);
        QCOMPARE(motes[5].speed, 0.5);

        const QSizeF size(800, 600);
        QCOMPARE(AmbientGeometry::cloud(0, 0, size), QRectF(-400, 120, 400, 210));
        QCOMPARE(AmbientGeometry::cloud(1, 0, size), QRectF(200, 390, 400, 210));
        QCOMPARE(AmbientGeometry::cloud(1, 10, size).x(), 290.0);
        // After 1200 points of drift the first cloud is back where it began.
        QCOMPARE(AmbientGeometry::cloud(0, 200, size).x(), -400.0);
        QVERIFY(AmbientGeometry::cloud(0, 5, QSizeF(0, 600)).isEmpty());
    }
};

DUSTMERE_TEST_MAIN(TestSpellFXGeometry)
#include "test_spell_fx_geometry.moc"
