#include "game/Lore.h"
#include "support/TestSandbox.h"

namespace {

std::optional<Tier> tierOf(int raw)
{
    return raw < 0 ? std::nullopt : std::optional(Tier(raw));
}

} // namespace

class TestLore : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void knownNamesIgnoreCaseAndTier_data()
    {
        QTest::addColumn<QByteArray>("folder");
        QTest::addColumn<QString>("expected");
        QTest::newRow("Library") << QByteArray("Library") << "The Great Archive";
        QTest::newRow("LIBRARY") << QByteArray("LIBRARY") << "The Great Archive";
        QTest::newRow("library") << QByteArray("library") << "The Great Archive";
        QTest::newRow("with a space") << QByteArray("Group Containers") << "The Shared Jars";
        QTest::newRow("hidden, no veil") << QByteArray(".Trash") << "Sea of Forgotten Things";
        QTest::newRow("dots kept") << QByteArray("com.docker.docker") << "Harbour of Crates";
        QTest::newRow("underscore kept") << QByteArray("node_modules") << "The Endless Thicket";
        QTest::newRow("DerivedData") << QByteArray("DerivedData") << "Smithy Ashes";
    }

    void knownNamesIgnoreCaseAndTier()
    {
        QFETCH(QByteArray, folder);
        QFETCH(QString, expected);
        QCOMPARE(Lore::name(folder.toStdString(), std::nullopt), expected);
        for (const Tier t : Tiers::all)
            QCOMPARE(Lore::name(folder.toStdString(), t), expected);
    }

    // Expected names worked out independently from the hash, the cleaning rule and the tables.
    void generatedNames_data()
    {
        QTest::addColumn<QByteArray>("folder");
        QTest::addColumn<int>("tier");
        QTest::addColumn<QString>("expected");
        QTest::newRow("mixed separators")
            << QByteArray("my_project-v2") << 1 << "My Project V2 Hollow";
        QTest::newRow("hidden gets a veil")
            << QByteArray(".gradle") << 1 << "Shrouded Gradle Hollow";
        QTest::newRow("hidden, no tier") << QByteArray(".gradle") << -1 << "Shrouded Gradle Reef";
        QTest::newRow("three pieces kept") << QByteArray("a.b.c.d.e") << 2 << "Forest of A B C";
        QTest::newRow("cleans to nothing") << QByteArray("___") << 0 << "___ Fields";
        QTest::newRow("only a tilde") << QByteArray("~") << 0 << "Little ~";
        QTest::newRow("hidden, cleans to nothing")
            << QByteArray("...") << -1 << "Secret ... Shoals";
        QTest::newRow("outer and double spaces")
            << QByteArray("  spaced  out ") << 2 << "Spaced Out Weald";
        QTest::newRow("accented") << QString::fromUtf8("café_données").toUtf8() << 3
                                  << QString::fromUtf8("Crags of Café Données");
        QTest::newRow("accented first letter")
            << QString::fromUtf8("éclair-x").toUtf8() << 4 << QString::fromUtf8("Mount Éclair X");
        QTest::newRow("no case") << QString::fromUtf8("日本語").toUtf8() << 4
                                 << QString::fromUtf8("Mount 日本語");
        // The hash sees the name as given, so case changes the template.
        QTest::newRow("upper-case last letter") << QByteArray("dataX") << -1 << "DataX Shoals";
        QTest::newRow("lower-case last letter") << QByteArray("datax") << -1 << "Datax Isles";
        QTest::newRow("invalid UTF-8 hashed and shown as bytes")
            << QByteArray("\xff\xfe_x") << -1 << QStringLiteral("\\xFF\\xFE X Isles");
        QTest::newRow("control characters shown")
            << QByteArray("a\x1b[2J") << -1 << QStringLiteral("A\\x1B[2J Reef");
    }

    void generatedNames()
    {
        QFETCH(QByteArray, folder);
        QFETCH(int, tier);
        QFETCH(QString, expected);
        QCOMPARE(Lore::name(folder.toStdString(), tierOf(tier)), expected);
    }

    void placeNamePrefersTheUsersOwn()
    {
        const Lore::CustomNames custom = {{"/home/u/Projects", QStringLiteral("My Realm")}};
        const std::string_view projects = "/home/u/Projects";
        const std::string_view other = "/home/u/stuff/Projects";

        QCOMPARE(Lore::placeName(projects, "Projects", Tier::ogre, custom, true), "My Realm");
        QCOMPARE(Lore::placeName(projects, "Projects", Tier::ogre, custom, false), "My Realm");
        QCOMPARE(Lore::placeName(other, "Projects", Tier::ogre, custom, true), "The Forge");
        QCOMPARE(Lore::placeName(other, "Projects", Tier::ogre, custom, false), "Projects");
        QCOMPARE(Lore::placeName(std::nullopt, "Projects", Tier::ogre, custom, true), "The Forge");
        QCOMPARE(Lore::placeName(std::nullopt, "café", std::nullopt, custom, false),
                 QString::fromUtf8("café"));
    }
};

DUSTMERE_TEST_MAIN(TestLore)
#include "test_lore.moc"
