#include "game/Tier.h"
#include "support/TestSandbox.h"

#include <limits>

using Measure = Tiers::Measure;

class TestTier : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void boundaries_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<Measure>("measure");
        QTest::addColumn<Tier>("expected");

        const std::array<double, 4> byteBounds = {100e6, 1e9, 10e9, 50e9};
        const std::array<double, 4> fileBounds = {1'000, 10'000, 50'000, 200'000};
        for (const auto &[measure, bounds, label] :
             {std::tuple{Measure::bytes, byteBounds, "bytes"},
              std::tuple{Measure::files, fileBounds, "files"}}) {
            QTest::addRow("%s zero", label) << 0.0 << measure << Tier::microbe;
            for (std::size_t i = 0; i < bounds.size(); ++i) {
                QTest::addRow("%s %.0f - 1", label, bounds[i])
                    << bounds[i] - 1 << measure << Tier(i);
                QTest::addRow("%s %.0f", label, bounds[i]) << bounds[i] << measure << Tier(i + 1);
            }
        }
    }

    void boundaries()
    {
        QFETCH(double, value);
        QFETCH(Measure, measure);
        QFETCH(Tier, expected);
        QCOMPARE(Tiers::of(value, measure), expected);
        if (measure == Measure::bytes)
            QCOMPARE(Tiers::ofBytes(std::uint64_t(value)), expected);
    }

    void hugeByteCountsAreTitans()
    {
        QCOMPARE(Tiers::ofBytes(std::numeric_limits<std::uint64_t>::max()), Tier::titan);
    }
};

DUSTMERE_TEST_MAIN(TestTier)
#include "test_tier.moc"
