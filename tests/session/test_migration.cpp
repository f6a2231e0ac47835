#include "platform/Settings.h"
#include "platform/SettingsJson.h"
#include "session/Migration.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

using namespace TreeBuilder;

namespace {

QString oldPath()
{
    return Settings::filePath(Settings::oldDomain());
}

// What a later launch would read: the current domain's file, parsed afresh.
QVariantMap saved()
{
    return SettingsJson::parse(readFile(Settings::filePath())).value_or(QVariantMap());
}

} // namespace

class TestMigration : public QObject
{
    Q_OBJECT

    int m_run = 0;

private Q_SLOTS:
    // QSettings keeps what it read per file path for the life of the process, so every test gets
    // its own config folder.
    void init()
    {
        const QString config =
            TestSandbox::instance()->root() + QStringLiteral("/config-%1").arg(++m_run);
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(config));
    }

    void firstLaunchWithoutOldDomain()
    {
        Migration::migrate();
        QCOMPARE(saved(), QVariantMap({{"migratedFromLocal", true}}));
        QVERIFY(!QFile::exists(oldPath()));
    }

    void copiesWhatIsMissingAndNothingElse()
    {
        const QByteArray old = R"({"xp": 1200, "mana": 2.0, "hero": "🧝", "visited": ["/a"],
            "customNames": {"/a": "Keep"}, "NSWindow Frame main": "0 0 980 620",
            "NSNavLastRootDirectory": "~", "muted": true})";
        QVERIFY(writeFile(oldPath(), old));
        {
            const auto current = Settings::open();
            current->setValue("hero", QStringLiteral("🧙"));
            current->setValue("muted", false);
        }
        Migration::migrate();

        const QVariantMap values = saved();
        QCOMPARE(values.value("hero"), QVariant(QStringLiteral("🧙")));
        QCOMPARE(values.value("muted"), QVariant(false));
        QCOMPARE(values.value("xp").typeId(), QMetaType::LongLong);
        QCOMPARE(values.value("xp"), QVariant(1200));
        QCOMPARE(values.value("mana").typeId(), QMetaType::Double);
        QCOMPARE(values.value("visited"), QVariant(QVariantList{QStringLiteral("/a")}));
        QCOMPARE(values.value("customNames"),
                 QVariant(QVariantMap{{QStringLiteral("/a"), QStringLiteral("Keep")}}));
        QCOMPARE(values.value("migratedFromLocal"), QVariant(true));
        QCOMPARE(values.size(), 7);
        QCOMPARE(readFile(oldPath()), old);
    }

    void laterLaunchesLeaveTheOldDomainUnread()
    {
        QVERIFY(writeFile(oldPath(), R"({"xp": 10})"));
        Migration::migrate();
        QCOMPARE(saved().value("xp"), QVariant(10));

        QVERIFY(writeFile(oldPath(), R"({"xp": 10, "reclaimed": 5000000000.0})"));
        {
            const auto current = Settings::open();
            current->remove("xp");
        }
        Migration::migrate();
        QCOMPARE(saved(), QVariantMap({{"migratedFromLocal", true}}));
    }

    void unusableOldDomainCountsAsEmpty_data()
    {
        QTest::addColumn<bool>("folder");
        QTest::newRow("damaged") << false;
        QTest::newRow("unreadable") << true;
    }

    void unusableOldDomainCountsAsEmpty()
    {
        QFETCH(bool, folder);
        const QByteArray damaged = R"({"xp": 10,)";
        QVERIFY(folder ? QDir().mkpath(oldPath()) : writeFile(oldPath(), damaged));
        Migration::migrate();
        QCOMPARE(saved(), QVariantMap({{"migratedFromLocal", true}}));
        QCOMPARE(QFileInfo(oldPath()).isDir(), folder);
        if (!folder)
            QCOMPARE(readFile(oldPath()), damaged);
        QVERIFY(!QFile::exists(oldPath() + QStringLiteral(".corrupt")));
    }
};

DUSTMERE_TEST_MAIN(TestMigration)
#include "test_migration.moc"
