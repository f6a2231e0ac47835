#include "platform/Settings.h"
#include "platform/SettingsJson.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>
#include <cmath>
#include <iterator>
#include <limits>

using namespace TreeBuilder;

namespace {

QVariantMap sample()
{
    return {{QStringLiteral("xp"), 1200},
            {QStringLiteral("mana"), 5.0},
            {QStringLiteral("hero"), QStringLiteral("🧙 \"Sweeper\"\n\t\\ \u0001 é")},
            {QStringLiteral("muted"), false},
            {QStringLiteral("visited"), QStringList{QStringLiteral("/home/a"), QString()}},
            {QStringLiteral("customNames"),
             QVariantMap{{QStringLiteral("/home/a b"), QStringLiteral("Keep")},
                         {QStringLiteral("deeper"), QVariantList{1, 1.5, true, QVariant()}}}},
            {QStringLiteral("empty"), QVariantMap()}};
}

} // namespace

class TestSettings : public QObject
{
    Q_OBJECT

    int m_run = 0;
    QString m_config;

private Q_SLOTS:
    // QSettings keeps what it read and saved per file path for the life of the process, so every
    // test gets its own config folder.
    void init()
    {
        m_config = TestSandbox::instance()->root() + QStringLiteral("/config-%1").arg(++m_run);
        qputenv("XDG_CONFIG_HOME", QFile::encodeName(m_config));
    }

    void fileLocation()
    {
        QCOMPARE(Settings::filePath(), m_config + QStringLiteral("/dustmere/dustmere.json"));
        QCOMPARE(Settings::filePath(Settings::oldDomain()),
                 m_config + QStringLiteral("/dustmere/local.dustmere.json"));
        {
            const auto s = Settings::open();
            QVERIFY(!QFile::exists(m_config));
            s->setValue(QStringLiteral("xp"), 1);
            s->sync();
            QCOMPARE(s->status(), QSettings::NoError);
        }
        QCOMPARE(QDir(m_config + QStringLiteral("/dustmere")).entryList(QDir::Files),
                 QStringList{QStringLiteral("dustmere.json")});

        const QString fallback = TestSandbox::instance()->home() + QStringLiteral("/.config");
        qputenv("XDG_CONFIG_HOME", "relative/config");
        QCOMPARE(Settings::filePath(), fallback + QStringLiteral("/dustmere/dustmere.json"));
        qunsetenv("XDG_CONFIG_HOME");
        QCOMPARE(Settings::filePath(), fallback + QStringLiteral("/dustmere/dustmere.json"));
    }

    void typesSurviveARestart()
    {
        const QDateTime when = QDateTime::fromMSecsSinceEpoch(1714557600123, Qt::UTC);
        {
            const auto s = Settings::open(QStringLiteral("written"));
            const QVariantMap values = sample();
            for (auto it = values.begin(); it != values.end(); ++it)
                s->setValue(it.key(), it.value());
            s->setValue(QStringLiteral("big"), qint64(9007199254740993));
            s->setValue(QStringLiteral("tiny"), 5e-324);
            s->setValue(QStringLiteral("lone"), QString(QChar(0xD800)));
            Settings::setDate(*s, QStringLiteral("manaAt"), when.toOffsetFromUtc(7200));
        }
        // A copy under a name this process never opened, so it is read from disk, as after a
        // restart.
        QVERIFY(QFile::copy(Settings::filePath(QStringLiteral("written")),
                            Settings::filePath(QStringLiteral("restarted"))));
        const auto s = Settings::open(QStringLiteral("restarted"));

        QCOMPARE(s->value("mana").typeId(), QMetaType::Double);
        QCOMPARE(Settings::number(*s, "mana"), 5.0);
        QCOMPARE(s->value("xp").typeId(), QMetaType::LongLong);
        QCOMPARE(Settings::integer(*s, "xp"), 1200);
        QCOMPARE(Settings::integer(*s, "big"), 9007199254740993);
        QCOMPARE(Settings::number(*s, "tiny"), 5e-324);
        QCOMPARE(Settings::boolean(*s, "muted"), false);
        QCOMPARE(Settings::string(*s, "hero"), sample().value("hero").toString());
        QCOMPARE(Settings::string(*s, "lone"), QString(QChar(0xD800)));
        QCOMPARE(Settings::stringList(*s, "visited"), sample().value("visited").toStringList());
        QCOMPARE(Settings::map(*s, "empty"), QVariantMap());
        QCOMPARE(Settings::date(*s, "manaAt"), when);

        const QVariantMap names = Settings::map(*s, "customNames").value_or(QVariantMap());
        QCOMPARE(names.value("/home/a b"), QVariant(QStringLiteral("Keep")));
        QList<int> types;
        for (const QVariant &item : names.value("deeper").toList())
            types.append(item.typeId());
        QCOMPARE(types, (QList<int>{QMetaType::LongLong, QMetaType::Double, QMetaType::Bool,
                                    QMetaType::Nullptr}));
    }

    void wrongTypesReadAsAbsent()
    {
        QVERIFY(writeFile(Settings::filePath(), R"({"yes": true, "one": 1, "half": 2.5,
            "whole": 12.0, "edge": -9223372036854775808.0, "past": 9223372036854775808.0,
            "text": "5", "mixed": ["a", 1], "strings": ["a"], "object": {"a": 1}, "nothing": null,
            "when": "tomorrow"})"));
        const auto s = Settings::open();
        QCOMPARE(Settings::boolean(*s, "yes"), true);
        for (const char *key : {"one", "text", "nothing", "absent"})
            QVERIFY2(!Settings::boolean(*s, key), key);

        QCOMPARE(Settings::integer(*s, "one"), 1);
        QCOMPARE(Settings::integer(*s, "whole"), 12);
        QCOMPARE(Settings::integer(*s, "edge"), std::numeric_limits<qint64>::min());
        for (const char *key : {"half", "past", "yes", "text", "nothing"})
            QVERIFY2(!Settings::integer(*s, key), key);

        QCOMPARE(Settings::number(*s, "one"), 1.0);
        QCOMPARE(Settings::number(*s, "half"), 2.5);
        for (const char *key : {"yes", "text", "nothing", "strings"})
            QVERIFY2(!Settings::number(*s, key), key);

        QVERIFY(!Settings::string(*s, "one"));
        QVERIFY(!Settings::stringList(*s, "mixed"));
        QVERIFY(!Settings::stringList(*s, "text"));
        QCOMPARE(Settings::stringList(*s, "strings"), QStringList{QStringLiteral("a")});
        QVERIFY(!Settings::map(*s, "strings"));
        QVERIFY(!Settings::map(*s, "nothing"));
        QVERIFY(!Settings::date(*s, "when"));
        QVERIFY(!Settings::date(*s, "one"));

        // Values set in this process, not yet read back from a file, follow the same rules.
        s->setValue("unsigned", std::numeric_limits<quint64>::max());
        s->setValue("nan", std::nan(""));
        QVERIFY(!Settings::integer(*s, "unsigned"));
        QCOMPARE(Settings::number(*s, "unsigned"), 0x1p64);
        QVERIFY(!Settings::number(*s, "nan"));
    }

    void handlesShareValues()
    {
        const auto game = Settings::open();
        const auto sound = Settings::open();
        game->setValue("hero", QStringLiteral("🧝"));
        QCOMPARE(Settings::string(*sound, "hero"), QStringLiteral("🧝"));
    }

    void saveReplacesTheFileWhole()
    {
        QVERIFY(writeFile(Settings::filePath(), R"({"xp": 1})"));
        QFile before(Settings::filePath());
        QVERIFY(before.open(QIODevice::ReadOnly));
        {
            const auto s = Settings::open();
            s->setValue("visited", QStringList(500, QStringLiteral("/home/somewhere")));
        }
        // Written beside and renamed over: what was open still sees the old text, nothing is
        // left behind, and the new file is complete.
        QCOMPARE(before.readAll(), QByteArray(R"({"xp": 1})"));
        QCOMPARE(QDir(QFileInfo(Settings::filePath()).path()).entryList(QDir::Files),
                 QStringList{QStringLiteral("dustmere.json")});
        const auto saved = SettingsJson::parse(readFile(Settings::filePath()));
        QVERIFY(saved);
        QCOMPARE(saved->value("visited").toList().size(), 500);
        QCOMPARE(saved->value("xp"), QVariant(1));
    }

    void damagedFile_data()
    {
        QTest::addColumn<QByteArray>("bytes");
        QTest::addColumn<bool>("damaged");
        QTest::newRow("garbage") << QByteArray("\0\xff\x01 garbage {{", 14) << true;
        QTest::newRow("truncated")
            << QByteArray("{\"xp\": 120, \"visited\": [\"/a\", \"/b") << true;
        QTest::newRow("array at top") << QByteArray(R"([{"xp": 120}])") << true;
        QTest::newRow("text after") << QByteArray(R"({"xp": 120} {)") << true;
        QTest::newRow("bad UTF-8") << QByteArray("{\"hero\": \"\xc0\xaf\"}") << true;
        QTest::newRow("blank") << QByteArray(" \n") << true;
        QTest::newRow("empty") << QByteArray() << false;
        QTest::newRow("byte-order mark") << QByteArray("\xEF\xBB\xBF{\"xp\": 120}") << false;
    }

    void damagedFile()
    {
        QFETCH(QByteArray, bytes);
        QFETCH(bool, damaged);
        const QString path = Settings::filePath();
        const QString kept = path + QStringLiteral(".corrupt");
        QVERIFY(writeFile(path, bytes));
        {
            const auto s = Settings::open();
            QCOMPARE(s->allKeys().isEmpty(), damaged || bytes.isEmpty());
        }
        QCOMPARE(readFile(path), bytes);
        QVERIFY(!QFile::exists(kept));

        for (int xp : {7, 8}) {
            const auto s = Settings::open();
            s->setValue("xp", xp);
            s->sync();
        }
        QCOMPARE(SettingsJson::parse(readFile(path)), QVariantMap({{"xp", 8}}));
        QCOMPARE(QFile::exists(kept), damaged);
        if (damaged)
            QCOMPARE(readFile(kept), bytes);
    }

    // A settings file linked into a dotfiles folder stays a link, and each damaged version of it
    // is kept once, in a backup of its own.
    void damagedVersionsAreCopiedAsideNeverMoved()
    {
        const QString target = m_config + QStringLiteral("/dotfiles/dustmere.json");
        const QString path = Settings::filePath();
        QVERIFY(writeFile(target, "first {{"));
        QVERIFY(QDir().mkpath(QFileInfo(path).path()));
        QVERIFY(QFile::link(target, path));

        QCOMPARE(Settings::keepDamaged(), std::optional(path + QStringLiteral(".corrupt")));
        QCOMPARE(Settings::keepDamaged(), std::nullopt); // a second start says nothing new
        for (const QByteArray &damage : {QByteArray("second {{"), QByteArray()}) {
            {
                const auto s = Settings::open();
                s->setValue("xp", 7);
            }
            QVERIFY(QFileInfo(path).isSymLink());
            QCOMPARE(SettingsJson::parse(readFile(target)), QVariantMap({{"xp", 7}}));
            if (!damage.isEmpty()) {
                QVERIFY(writeFile(target, damage));
                QCOMPARE(Settings::keepDamaged(),
                         std::optional(path + QStringLiteral(".corrupt.1")));
            }
        }
        QCOMPARE(readFile(path + QStringLiteral(".corrupt")), QByteArray("first {{"));
        QCOMPARE(readFile(path + QStringLiteral(".corrupt.1")), QByteArray("second {{"));
        QVERIFY(!QFile::exists(path + QStringLiteral(".corrupt.2")));
    }

    void unreadableFileIsLeftAlone()
    {
        // A folder in the file's place cannot be read, not even by root.
        const QString path = Settings::filePath();
        QVERIFY(QDir().mkpath(path));
        {
            const auto s = Settings::open();
            QVERIFY(s->allKeys().isEmpty());
            s->setValue("xp", 7);
            s->sync();
            QCOMPARE(Settings::integer(*s, "xp"), 7);
        }
        QVERIFY(QFileInfo(path).isDir());
        QVERIFY(!QFile::exists(path + QStringLiteral(".corrupt")));

        const QString locked = Settings::filePath(QStringLiteral("locked"));
        QVERIFY(writeFile(locked, R"({"xp": 120})"));
        QVERIFY(QFile::setPermissions(locked, {}));
        if (QFile probe(locked); probe.open(QIODevice::ReadOnly))
            QSKIP("running as root: a file without permissions is still readable");
        {
            const auto s = Settings::open(QStringLiteral("locked"));
            QVERIFY(s->allKeys().isEmpty());
            s->setValue("xp", 1);
        }
        QVERIFY(QFile::setPermissions(locked, QFile::ReadOwner | QFile::WriteOwner));
        QCOMPARE(readFile(locked), QByteArray(R"({"xp": 120})"));
    }

    void readerNeverCrashes()
    {
        const QByteArray seed = SettingsJson::serialize(sample());
        const QByteArray tokens[] = {
            "{",  "}",    "[", "\"", "\\u",  "\\ud800",           "-",       "1e999",
            "0.", "\xff", ",", ":",  "null", QByteArray(1, '\0'), "\xf0\x9f"};
        QRandomGenerator rng(20240501);
        int readable = 0;
        for (int round = 0; round < 600; ++round) {
            QByteArray bytes = seed;
            for (int edit = 1 + rng.bounded(3); edit > 0 && !bytes.isEmpty(); --edit) {
                const qsizetype at = rng.bounded(int(bytes.size()));
                switch (rng.bounded(4)) {
                case 0:
                    bytes[at] = char(rng.bounded(256));
                    break;
                case 1:
                    bytes.truncate(at);
                    break;
                case 2:
                    bytes.insert(at, tokens[rng.bounded(int(std::size(tokens)))]);
                    break;
                default:
                    bytes.insert(at, bytes.mid(rng.bounded(int(bytes.size())), rng.bounded(40)));
                }
            }
            // Whatever does parse must come back unchanged through the writer.
            if (const auto values = SettingsJson::parse(bytes)) {
                ++readable;
                const QByteArray text = SettingsJson::serialize(*values);
                const auto again = SettingsJson::parse(text);
                QVERIFY(again);
                QCOMPARE(SettingsJson::serialize(*again), text);
            }
        }
        QVERIFY(readable > 0);
        QVERIFY(!SettingsJson::parse("{\"a\": " + QByteArray(100000, '[')));

        // The writer never produces what the reader refuses, however deep the value.
        QVariant deep = 1;
        for (int i = 0; i < 300; ++i)
            deep = QVariantList{deep};
        QVERIFY(SettingsJson::parse(SettingsJson::serialize({{"deep", deep}})));
    }
};

DUSTMERE_TEST_MAIN(TestSettings)
#include "test_settings.moc"
