#include "scan/Fmt.h"
#include "scan/ScanEstimate.h"
#include "support/TestSandbox.h"

#include <limits>

class TestFmt : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void bytes_data()
    {
        QTest::addColumn<quint64>("n");
        QTest::addColumn<QString>("text");
        QTest::newRow("zero") << quint64(0) << "Zero KB";
        QTest::newRow("one") << quint64(1) << "1 byte";
        QTest::newRow("bytes") << quint64(999) << "999 bytes";
        QTest::newRow("1 KB") << quint64(1000) << "1 KB";
        QTest::newRow("KB rounds") << quint64(340'499) << "340 KB";
        QTest::newRow("KB half up") << quint64(340'500) << "341 KB";
        QTest::newRow("KB top") << quint64(999'499) << "999 KB";
        QTest::newRow("KB rolls to MB") << quint64(999'999) << "1 MB";
        QTest::newRow("25 MB") << quint64(25'000'000) << "25 MB";
        QTest::newRow("MB fraction") << quint64(25'040'000) << "25 MB";
        QTest::newRow("MB one digit") << quint64(1'234'567) << "1.2 MB";
        QTest::newRow("MB top") << quint64(999'940'000) << "999.9 MB";
        QTest::newRow("MB rolls to GB") << quint64(999'999'999) << "1 GB";
        QTest::newRow("1.5 GB") << quint64(1'500'000'000) << "1.5 GB";
        QTest::newRow("12.35 GB") << quint64(12'345'678'901) << "12.35 GB";
        QTest::newRow("TB") << quint64(2'000'000'000'000) << "2 TB";
        QTest::newRow("grouped GB") << quint64(999'994'999'999) << "999.99 GB";
        QTest::newRow("max") << std::numeric_limits<quint64>::max() << "9.22 EB";
        QTest::newRow("max signed") << quint64(std::numeric_limits<qint64>::max()) << "9.22 EB";
    }

    void bytes()
    {
        QFETCH(quint64, n);
        QFETCH(QString, text);
        QCOMPARE(Fmt::bytes(n), text);
    }

    void growthAndProgress()
    {
        QCOMPARE(Fmt::growth(30'000'000), QStringLiteral("+30 MB"));
        QCOMPARE(Fmt::growth(-300'000'000), QStringLiteral("−300 MB"));
        QCOMPARE(Fmt::growth(0), QStringLiteral("±0"));
        QCOMPARE(Fmt::growth(std::numeric_limits<qint64>::min()), QStringLiteral("−9.22 EB"));
        using namespace std::chrono;
        const ScanEstimate last(1000, 4'000'000);
        QCOMPARE(last.at({500, 2'000'000}, 500ms), (ScanEstimate::Guess{50, std::nullopt}));
        QCOMPARE(ScanEstimate::text(*last.at({250, 2'000'000}, 20s)),
                 QStringLiteral("37% · about 35 s left"));
        // More than last time: not done until the walk says so.
        QCOMPARE(last.at({3000, 9'000'000}, 9s)->percent, 99);
        QVERIFY(!ScanEstimate(0, 0).at({10, 10}, 9s));
    }

    void localeSeparators()
    {
        QCOMPARE(Fmt::count(1234567), QStringLiteral("1,234,567"));
        QCOMPARE(Fmt::count(-12), QStringLiteral("-12"));
        QLocale::setDefault(QLocale(QLocale::German, QLocale::Germany));
        QCOMPARE(Fmt::bytes(1'500'000'000), QStringLiteral("1,5 GB"));
        QCOMPARE(Fmt::count(1234567), QStringLiteral("1.234.567"));
        // The C locale would drop grouping; numbers are still grouped for readers.
        QLocale::setDefault(QLocale::c());
        QCOMPARE(Fmt::count(1234567), QStringLiteral("1,234,567"));
        QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    }
};

DUSTMERE_TEST_MAIN(TestFmt)
#include "test_fmt.moc"
