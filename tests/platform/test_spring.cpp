#include "platform/Spring.h"
#include "support/TestSandbox.h"

#include <QTest>
#include <cmath>

namespace {

double offBy(const Spring &s, double seconds)
{
    return std::abs(1 - s.value(seconds));
}

} // namespace

class TestSpring : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void settlesWhereTheMotionStaysWithinATenthOfAPercent_data()
    {
        QTest::addColumn<double>("response");
        QTest::addColumn<double>("damping");
        QTest::newRow("bouncy icon") << 0.25 << 0.45;
        QTest::newRow("grow-in") << 0.5 << 0.8;
        QTest::newRow("critical") << 0.5 << 1.0;
        QTest::newRow("overdamped") << 0.4 << 1.6;
        QTest::newRow("barely damped") << 0.3 << 0.05;
        QTest::newRow("slow") << 1.5 << 0.5;
    }

    void settlesWhereTheMotionStaysWithinATenthOfAPercent()
    {
        QFETCH(double, response);
        QFETCH(double, damping);
        const Spring spring(response, damping);
        const double end = spring.durationMs() / 1000.0;
        QVERIFY(end > 0 && end <= 10);
        QCOMPARE(spring.value(0), 0.0);
        // The last sample out of tolerance lies within a step or two before the end...
        bool outJustBefore = false;
        for (double t = end - 0.010; t < end; t += 0.0005)
            outJustBefore = outJustBefore || offBy(spring, t) > 0.001;
        QVERIFY(outJustBefore);
        // ...and from there on it stays in (between samples an oscillation may peek out a little).
        for (double t = end; t < 12; t += 0.001)
            QVERIFY2(offBy(spring, t) < 0.0015, qPrintable(QString::number(t)));
    }

    void eachPairKeepsItsOwnSettlingTime()
    {
        // Asked again, and in between other pairs sharing a response or a damping.
        const int grow = Spring(0.5, 0.8).durationMs();
        const int critical = Spring(0.5, 1.0).durationMs();
        const int quick = Spring(0.25, 0.8).durationMs();
        QVERIFY(grow != critical);
        QVERIFY(grow != quick);
        for (int i = 0; i < 3; ++i) {
            QCOMPARE(Spring(0.25, 0.8).durationMs(), quick);
            QCOMPARE(Spring(0.5, 1.0).durationMs(), critical);
            QCOMPARE(Spring(0.5, 0.8).durationMs(), grow);
        }
        // Copies carry the curve and its timing.
        const Spring a(0.25, 0.45);
        const Spring b = a;
        QCOMPARE(b.durationMs(), a.durationMs());
        QCOMPARE(b.value(0.1), a.value(0.1));
    }

    void outOfRangeParametersAreClamped()
    {
        QCOMPARE(Spring(0, 1).durationMs(), Spring(0.01, 1).durationMs());
        QCOMPARE(Spring(-2, 1).durationMs(), Spring(0.01, 1).durationMs());
        QCOMPARE(Spring(0.5, 0).durationMs(), Spring(0.5, 0.01).durationMs());
        QCOMPARE(Spring(0, 1).value(0.003), Spring(0.01, 1).value(0.003));
        // Barely damped, it still rings past the ten seconds looked at: the duration stops there.
        const int ringing = Spring(1, 0).durationMs();
        QVERIFY(ringing >= 10'000 && ringing <= 10'005);
    }

    // Many springs of many pairs: the remembered ones stay right when the rest are not kept.
    void manyPairsStayCorrect()
    {
        std::vector<int> first;
        for (int i = 1; i <= 100; ++i)
            first.push_back(Spring(0.1 + i * 0.01, 0.9).durationMs());
        for (int i = 1; i <= 100; ++i)
            QCOMPARE(Spring(0.1 + i * 0.01, 0.9).durationMs(), first[std::size_t(i - 1)]);
        QVERIFY(first.front() < first.back());
    }
};

DUSTMERE_TEST_MAIN(TestSpring)
#include "test_spring.moc"
