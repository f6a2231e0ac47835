#include "support/TestSandbox.h"
#include "world/Squarify.h"

#include <algorithm>
#include <numeric>
#include <random>

class TestSquarify : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void degenerateInputsGiveZeroRects()
    {
        QVERIFY(squarify({}, QRectF(0, 0, 10, 10)).empty());
        const std::vector<QRectF> zeros(3);
        QCOMPARE(squarify({0, 0, 0}, QRectF(5, 5, 10, 10)), zeros);
        QCOMPARE(squarify({3, 2, 1}, QRectF(5, 5, 0, 10)), zeros);
        QCOMPARE(squarify({3, 2, 1}, QRectF(5, 5, 10, -1)), zeros);
        QCOMPARE(squarify({7}, QRectF(1, 2, 30, 40)), std::vector<QRectF>{QRectF(1, 2, 30, 40)});
    }

    // The textbook example: the two largest share a column, then a strip of 4 and 3 on top of
    // the rest, so both orientations and the stop rule are exercised.
    void layoutOfTheClassicExample()
    {
        const auto r = squarify({6, 6, 4, 3, 2, 2, 1}, QRectF(0, 0, 6, 4));
        QCOMPARE(r.size(), std::size_t(7));
        QCOMPARE(r[0], QRectF(0, 0, 3, 2));
        QCOMPARE(r[1], QRectF(0, 2, 3, 2));
        QCOMPARE(r[2], QRectF(3, 0, 12.0 / 7, 7.0 / 3));
        QCOMPARE(r[3], QRectF(3 + 12.0 / 7, 0, 9.0 / 7, 7.0 / 3));
        QCOMPARE(r[4].top(), 7.0 / 3);
        QCOMPARE(r[4].left(), 3.0);
    }

    void randomInputsTileTheBounds()
    {
        std::mt19937_64 rng(0xD057);
        std::uniform_real_distribution<double> coord(-500, 500);
        std::uniform_real_distribution<double> side(1, 3000);
        std::exponential_distribution<double> heavy(1.0 / 1e9);
        std::uniform_int_distribution<int> count(1, 80);
        for (int trial = 0; trial < 300; ++trial) {
            std::vector<double> values(static_cast<std::size_t>(count(rng)));
            for (double &v : values)
                v = heavy(rng) + 1;
            std::sort(values.begin(), values.end(), std::greater<>());
            const QRectF bounds(coord(rng), coord(rng), side(rng), side(rng));
            const auto rects = squarify(values, bounds);
            QCOMPARE(rects.size(), values.size());

            const double total = std::accumulate(values.begin(), values.end(), 0.0);
            const double area = bounds.width() * bounds.height();
            const double eps = 1e-9 * std::max(bounds.width(), bounds.height());
            double covered = 0;
            for (std::size_t i = 0; i < rects.size(); ++i) {
                const QRectF &r = rects[i];
                QVERIFY(r.width() >= 0 && r.height() >= 0);
                QVERIFY(r.left() >= bounds.left() - eps && r.right() <= bounds.right() + eps);
                QVERIFY(r.top() >= bounds.top() - eps && r.bottom() <= bounds.bottom() + eps);
                const double a = r.width() * r.height();
                QVERIFY(std::abs(a - values[i] / total * area) <= 1e-9 * area);
                covered += a;
                for (std::size_t j = 0; j < i; ++j) {
                    const QRectF overlap = r.intersected(rects[j]);
                    QVERIFY(overlap.width() * overlap.height() <= 1e-9 * area);
                }
            }
            QVERIFY(std::abs(covered - area) <= 1e-9 * area);
        }
    }
};

DUSTMERE_TEST_MAIN(TestSquarify)
#include "test_squarify.moc"
