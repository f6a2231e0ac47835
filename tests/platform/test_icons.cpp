#include "platform/Icons.h"
#include "support/TestSandbox.h"

#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QPixmapCache>
#include <QTest>

namespace {

struct Ink
{
    int pixels = 0; // pixels with any ink
    int maxAlpha = 0;
    bool onlyIn = true; // every inked pixel has the expected hue
};

Ink inkOf(const QIcon &icon, int size, QIcon::Mode mode, const QColor &expected)
{
    const QImage img =
        icon.pixmap(QSize(size, size), mode).toImage().convertToFormat(QImage::Format_ARGB32);
    Ink ink;
    for (int y = 0; y < img.height(); ++y) {
        for (int x = 0; x < img.width(); ++x) {
            const QColor c = QColor::fromRgba(img.pixel(x, y));
            if (c.alpha() < 40)
                continue;
            ++ink.pixels;
            ink.maxAlpha = std::max(ink.maxAlpha, c.alpha());
            ink.onlyIn = ink.onlyIn && std::abs(c.red() - expected.red()) < 16 &&
                         std::abs(c.green() - expected.green()) < 16 &&
                         std::abs(c.blue() - expected.blue()) < 16;
        }
    }
    return ink;
}

} // namespace

class TestIcons : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    // Drawn here ("chart.bar.fill") and, where the theme has one, from the theme ("folder").
    void aRepeatedAskGivesWhatItAskedFor_data()
    {
        QTest::addColumn<QString>("name");
        QTest::newRow("drawn") << QStringLiteral("chart.bar.fill");
        QTest::newRow("map, drawn") << QStringLiteral("map");
        QTest::newRow("themed") << QStringLiteral("folder");
    }

    void aRepeatedAskGivesWhatItAskedFor()
    {
        QFETCH(QString, name);
        const QColor red(220, 0, 0);
        const QColor blue(0, 0, 220);
        // Twice each, so that the second ask of every colour is a remembered one.
        for (int round = 0; round < 2; ++round) {
            for (const QColor &c : {red, blue}) {
                const QIcon icon = Icons::symbol(name, c, 16);
                const Ink normal = inkOf(icon, 16, QIcon::Normal, c);
                QVERIFY(normal.pixels > 10);
                QVERIFY(normal.onlyIn);
                QVERIFY(normal.maxAlpha > 200);
                const Ink disabled = inkOf(icon, 16, QIcon::Disabled, c);
                QVERIFY(disabled.maxAlpha < 110);
            }
        }
        // A colour that differs only in its alpha is another icon.
        QColor faint = red;
        faint.setAlphaF(0.5);
        QVERIFY(inkOf(Icons::symbol(name, faint, 16), 16, QIcon::Normal, red).maxAlpha < 140);
        QVERIFY(inkOf(Icons::symbol(name, red, 16), 16, QIcon::Normal, red).maxAlpha > 200);
    }

    // A folded map of filled panels, not the theme's location crosshair of thin lines.
    void theMapIsAMap()
    {
        const QColor ink(30, 30, 30);
        QVERIFY(
            inkOf(Icons::symbol(QStringLiteral("map"), ink, 16), 16, QIcon::Normal, ink).pixels >
            120);
    }

    void eachSizeIsDrawnAtThatSize()
    {
        const QColor ink(30, 30, 30);
        for (const int size : {11, 15, 16, 24, 15}) {
            const QIcon icon = Icons::symbol(QStringLiteral("bolt.fill"), ink, size);
            QCOMPARE(icon.availableSizes(), QList<QSize>{QSize(size, size)});
        }
    }

    // The remembered icons live in a cache that may be emptied at any time.
    void aClearedCacheDrawsAgain()
    {
        const QColor green(0, 180, 0);
        const QIcon before = Icons::symbol(QStringLiteral("plus"), green, 16);
        QPixmapCache::clear();
        const QIcon after = Icons::symbol(QStringLiteral("plus"), green, 16);
        QCOMPARE(after.pixmap(16, 16).toImage(), before.pixmap(16, 16).toImage());
        QVERIFY(inkOf(after, 16, QIcon::Normal, green).onlyIn);
    }
};

DUSTMERE_GUI_TEST_MAIN(TestIcons)
#include "test_icons.moc"
