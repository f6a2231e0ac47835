#include "advisor/Advisor.h"
#include "game/Lore.h"
#include "report/JsonWriter.h"
#include "report/Report.h"
#include "scan/Scanner.h"
#include "snapshot/SnapshotStore.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <mutex>
#include <sys/stat.h>
#include <unistd.h>

using namespace TreeBuilder;

namespace {

QByteArray tree()
{
    return QFile::encodeName(TestSandbox::instance()->root()) + "/tree";
}

Run dustmere(const QStringList &args,
             const QProcessEnvironment &env = QProcessEnvironment::systemEnvironment())
{
    QProcess p;
    p.setProcessEnvironment(env);
    p.start(qEnvironmentVariable("DUSTMERE_BINARY"), args);
    if (!p.waitForFinished(60'000))
        qFatal("dustmere did not finish");
    return {p.exitCode(), p.readAllStandardOutput(), p.readAllStandardError()};
}

} // namespace

class TestReport : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        const QByteArray t = tree();
        makeDir(t);
        makeDir(t + "/a");
        makeDir(t + "/a/deep");
        makeFile(t + "/a/deep/x", 40'000);
        makeDir(t + "/quote\" back\\slash\nnewline\t");
        makeFile(t + "/quote\" back\\slash\nnewline\t/y", 8192);
        makeDir(t + "/latin1 \xe9t\xe9");
        makeFile(t + "/big", Scanner::bigFileThreshold);
        setModified(t + "/big", 1'700'000'000);
        makeDir(t + "/a/__pycache__");
        makeFile(t + "/a/__pycache__/blob", Scanner::bigFileThreshold);
    }

    void jsonIsValidWhateverTheNames()
    {
        Scanner scanner;
        const NodePtr root = scanner.scan(tree().toStdString());
        const std::vector<Advice> advice = Advisor::advise(root, scanner.bigFiles());
        const std::string json = Report::json({root, scanner.bigFiles(), advice, "/nowhere"});
        QJsonParseError error;
        const QJsonDocument doc = QJsonDocument::fromJson(QByteArray::fromStdString(json), &error);
        QCOMPARE(error.error, QJsonParseError::NoError);

        const QJsonObject r = doc["root"].toObject();
        QCOMPARE(r["path"].toString(), QFile::decodeName(tree()));
        QCOMPARE(r["size"].toInteger(), qint64(root->size()));
        QCOMPARE(r["files"].toInteger(), 4);
        QCOMPARE(r["tier"].toString(), QStringLiteral("microbe"));
        QCOMPARE(r["place"].toString(), Lore::name("tree", Tier::microbe));
        QCOMPARE(r["looseFiles"].toInteger(), 1);
        QStringList names;
        for (const QJsonValue c : r["children"].toArray()) {
            names << c["name"].toString();
            QVERIFY(!c.toObject().contains(QStringLiteral("path"))); // only the root has one
        }
        QCOMPARE(names,
                 (QStringList{QStringLiteral("a"), QStringLiteral("quote\" back\\slash\nnewline\t"),
                              QStringLiteral("latin1 \uFFFDt\uFFFD")}));
        // The name that is not UTF-8 also carries its exact bytes.
        const QJsonArray children = r["children"].toArray();
        QCOMPARE(QByteArray::fromBase64(children[2]["nameBase64"].toString().toLatin1()),
                 QByteArray("latin1 \xe9t\xe9"));
        QVERIFY(!children[1].toObject().contains(QStringLiteral("nameBase64")));
        const QJsonObject a = r["children"].toArray().at(0).toObject();
        QCOMPARE(a["place"].toString(), Lore::name("a", Tier::microbe));
        QCOMPARE(a["children"].toArray().at(0)["name"].toString(), QStringLiteral("__pycache__"));

        const QJsonArray board = doc["advice"].toArray();
        QCOMPARE(board.size(), 1);
        QCOMPARE(board[0]["kind"].toString(), QStringLiteral("folder"));
        QCOMPARE(board[0]["safety"].toString(), QStringLiteral("safe"));
        QCOMPARE(board[0]["reason"].toString(),
                 QStringLiteral("Compiled Python files. Regenerated automatically."));
        QCOMPARE(board[0]["actionable"].toBool(), true);
        QCOMPARE(board[0]["displayName"].toString(), QStringLiteral("__pycache__"));
        QVERIFY(board[0]["path"].toString().endsWith(QStringLiteral("/a/__pycache__")));

        const QJsonObject big = doc["bigFiles"].toArray().at(0).toObject();
        QCOMPARE(big["modified"].toInteger(), 1'700'000'000);
        QVERIFY(big["path"].toString().endsWith(QStringLiteral("/big")));
    }

    void fragmentsWrittenDuringTheWalkChangeNothing()
    {
        for (const std::optional<int> depth :
             {std::optional<int>(), std::optional<int>(0), std::optional<int>(2)}) {
            Scanner scanner;
            Report::Fragments fragments;
            std::mutex lock;
            scanner.setOnFolderFinished([&](const Node &folder) {
                std::string text = Report::jsonFragment(folder, depth);
                std::lock_guard guard(lock);
                fragments.emplace(&folder, std::move(text));
            });
            const NodePtr root = scanner.scan(tree().toStdString());
            QCOMPARE(fragments.size(), root->children().size());
            const Report::Input input{root, scanner.bigFiles(), {}, {}};
            QCOMPARE(Report::json(input, depth, &fragments), Report::json(input, depth));
        }
    }

    // A folder name can hold terminal escapes, line breaks and bidirectional overrides; the text
    // report shows them as visible escapes, one row per folder.
    void hostileNamesCannotReachTheTerminal()
    {
        const QByteArray t = QFile::encodeName(TestSandbox::instance()->root()) + "/hostile";
        makeDir(t);
        for (const QByteArray &name :
             {QByteArray("x\x1b]0;pwned\x07\x1b[2J"), QByteArray("evil\xe2\x80\xaegpj.exe"),
              QByteArray("a\rb\nc")}) {
            makeDir(t + "/" + name);
            makeFile(t + "/" + name + "/f", 4096);
        }
        Scanner scanner;
        const QByteArray text =
            QByteArray::fromStdString(Report::text({scanner.scan(t.toStdString()), {}, {}, {}}));
        for (const char bad : {'\x1b', '\x07', '\r'})
            QVERIFY(!text.contains(bad));
        QVERIFY(!text.contains("\xe2\x80\xae"));
        QVERIFY(text.contains(" x\\x1B]0;pwned\\x07\\x1B[2J "));
        QVERIFY(text.contains(" evil\\u202Egpj.exe "));
        QVERIFY(text.contains(" a\\rb\\nc "));
        QCOMPARE(text.count(" 1 file\n"), 3); // one row each
    }

    void depthLimitsChildren()
    {
        Scanner scanner;
        const NodePtr root = scanner.scan(tree().toStdString());
        const auto childrenAt = [&](int depth) {
            const QJsonDocument d = QJsonDocument::fromJson(
                QByteArray::fromStdString(Report::json({root, {}, {}, {}}, depth)));
            return d["root"].toObject();
        };
        QVERIFY(!childrenAt(0).contains(QStringLiteral("children")));
        const QJsonObject one = childrenAt(1);
        QCOMPARE(one["children"].toArray().size(), 3);
        QVERIFY(!one["children"].toArray().at(0).toObject().contains(QStringLiteral("children")));
        QCOMPARE(childrenAt(2)["children"].toArray().at(0)["children"].toArray().size(), 2);

        // The text tree too: one level unless told, nested rows indented under their folder.
        const Report::Input input{root, scanner.bigFiles(), {}, {}};
        const auto text = [&](std::optional<int> depth) {
            return QString::fromStdString(Report::text(input, depth));
        };
        QVERIFY(!text(0).contains(QStringLiteral("Territories")));
        QCOMPARE(text(std::nullopt), text(1));
        QVERIFY(text(1).contains(QStringLiteral(" a ")) &&
                !text(1).contains(QStringLiteral("deep")));
        const QStringList two = text(2).split(QLatin1Char('\n'));
        const auto rowOf = [&](const QString &name) {
            return std::find_if(two.begin(), two.end(),
                                [&](const QString &l) {
                                    return l.contains(QLatin1Char(' ') + name + QLatin1Char(' '));
                                }) -
                   two.begin();
        };
        QCOMPARE(rowOf(QStringLiteral("deep")),
                 rowOf(QStringLiteral("a")) + 2); // after __pycache__
        QVERIFY(two[rowOf(QStringLiteral("a"))].endsWith(QStringLiteral(" 2 files")));

        // Big files, biggest first, each with its size and whole path.
        const QString big = text(1).section(QStringLiteral("\nBig files\n"), 1);
        QCOMPARE(big.count(QStringLiteral(" MB  ")), 2);
        QVERIFY(big.contains(QFile::decodeName(tree()) + QStringLiteral("/big\n")));
    }

    // Every spelling of a folder, and one whose name is not UTF-8, reports the same clean path.
    void commandLineFoldersAreCleaned()
    {
        const QByteArray t = tree();
        const std::pair<QString, QByteArray> spellings[] = {
            {QStringLiteral("--scan=") + QFile::decodeName(t) + QStringLiteral("//a/..//"), t},
            {QStringLiteral("--scan=~/../tree/a/"), t + "/a"},
            {QStringLiteral("--scan=.."), t},
            {QStringLiteral("deep/."), t + "/a/deep"}};
        for (const auto &[argument, expected] : spellings) {
            QProcess p;
            p.setWorkingDirectory(QFile::decodeName(t + "/a"));
            p.start(qEnvironmentVariable("DUSTMERE_BINARY"),
                    {argument, QStringLiteral("--report=json"), QStringLiteral("--depth=0")});
            QVERIFY(p.waitForFinished(120'000));
            const QJsonObject root =
                QJsonDocument::fromJson(p.readAllStandardOutput())["root"].toObject();
            QVERIFY2(root["path"].toString() == QFile::decodeName(expected), qPrintable(argument));
        }
        // The shell passes the bytes; a path decoded and encoded again would name no folder.
        QProcess shell;
        shell.start(QStringLiteral("sh"),
                    {QStringLiteral("-c"),
                     QStringLiteral("exec \"$0\" \"$(printf '%s/latin1 "
                                    "\\351t\\351' \"$1\")\" --report=json --depth=0"),
                     qEnvironmentVariable("DUSTMERE_BINARY"), QFile::decodeName(t)});
        QVERIFY(shell.waitForFinished(60'000));
        const QJsonObject root =
            QJsonDocument::fromJson(shell.readAllStandardOutput())["root"].toObject();
        QCOMPARE(QByteArray::fromBase64(root["pathBase64"].toString().toLatin1()),
                 t + "/latin1 \xe9t\xe9");
    }

    // Root reads everything; these run as the unprivileged user.
    void unreadableFoldersAreNamedAsSuch()
    {
        const QByteArray t = QFile::encodeName(TestSandbox::instance()->root()) + "/private";
        makeDir(t);
        makeDir(t + "/inner");
        chmod(t, 0700);
        chmod(QFile::encodeName(TestSandbox::instance()->root()), 0711);
        const auto run = [](const QByteArray &folder) {
            QStringList args{QStringLiteral("--scan=") + QFile::decodeName(folder),
                             QStringLiteral("--report")};
            if (geteuid() == 0)
                args = QStringList{QStringLiteral("--reuid=65534"), QStringLiteral("--regid=65534"),
                                   QStringLiteral("--clear-groups"),
                                   qEnvironmentVariable("DUSTMERE_BINARY")} +
                       args;
            QProcess p;
            p.start(geteuid() == 0 ? QStringLiteral("setpriv")
                                   : qEnvironmentVariable("DUSTMERE_BINARY"),
                    args);
            p.waitForFinished(60'000);
            return Run{p.exitCode(), p.readAllStandardOutput(), p.readAllStandardError()};
        };
        if (geteuid() != 0)
            chmod(t, 0);
        const Run inside = run(t + "/inner");
        const Run unreadable = run(t);
        chmod(t, 0700);
        if (inside.err.contains("setpriv"))
            QSKIP("cannot run as an unprivileged user here");
        QCOMPARE(inside.exitCode, 2);
        QCOMPARE(inside.err, "dustmere: permission denied: " + t + "/inner\n");
        QCOMPARE(unreadable.exitCode, 0);
        QVERIFY(unreadable.out.startsWith("🦠 "));
        QCOMPARE(unreadable.err, "dustmere: cannot read " + t +
                                     ": Permission denied; the report shows nothing inside it\n");
    }

    void commandLineReports()
    {
        const Run json =
            dustmere({QStringLiteral("--scan=") + QFile::decodeName(tree()) + QStringLiteral("/"),
                      QStringLiteral("--report=json"), QStringLiteral("--depth=1")});
        QCOMPARE(json.exitCode, 0);
        QVERIFY(json.err.isEmpty()); // no progress line when stderr is not a terminal
        const QJsonObject r = QJsonDocument::fromJson(json.out)["root"].toObject();
        QCOMPARE(r["name"].toString(), QStringLiteral("tree"));
        QCOMPARE(r["path"].toString(), QFile::decodeName(tree()));

        const Run text = dustmere(
            {QStringLiteral("--scan=") + QFile::decodeName(tree()), QStringLiteral("--report")});
        QCOMPARE(text.exitCode, 0);
        const QList<QByteArray> lines = text.out.split('\n');
        QVERIFY(lines[0].endsWith(" · " + tree()));
        QVERIFY(lines[1].contains("4 files"));
        QVERIFY(text.out.contains("\nTerritories\n"));
        QVERIFY(text.out.contains("Safe to delete · 1 · "));
        QVERIFY(text.out.contains("Compiled Python files. Regenerated automatically."));
        QVERIFY(text.out.contains("Total reclaimable: "));
    }

    void rememberedScansShowGrowthUnlessToldNot()
    {
        const QByteArray t = QFile::encodeName(TestSandbox::instance()->root()) + "/grows";
        makeDir(t);
        makeDir(t + "/old");
        const std::uint64_t old = makeFile(t + "/old/f", 1'000'000);
        makeDir(t + "/same");
        const QStringList json{QStringLiteral("--scan=") + QFile::decodeName(t),
                               QStringLiteral("--report=json")};
        const QStringList untold = json + QStringList{QStringLiteral("--no-remember")};
        const QString memory = SnapshotStore().fileFor(t.toStdString());
        QVERIFY(!dustmere(untold).out.contains("\"grown\""));
        QVERIFY(!QFile::exists(memory));
        QCOMPARE(dustmere(json).exitCode, 0);
        const QByteArray remembered = readFile(memory);
        QVERIFY(remembered.size() > 0);

        removeTree(t + "/old");
        makeDir(t + "/new");
        const std::uint64_t added = makeFile(t + "/new/f", 2'000'000);
        QVERIFY(!dustmere(untold).out.contains("\"grown\""));
        QCOMPARE(readFile(memory), remembered);
        const QJsonObject r = QJsonDocument::fromJson(dustmere(json).out)["root"].toObject();
        QCOMPARE(r["grown"].toInteger(), qint64(added) - qint64(old));
        QCOMPARE(r["previous"]["size"].toInteger(), qint64(old));
        QCOMPARE(r["previous"]["files"].toInteger(), 1);
        QVERIFY(QDateTime::fromString(r["previous"]["date"].toString(), Qt::ISODate).isValid());
        for (const QJsonValue c : r["children"].toArray())
            QCOMPARE(c["grown"].toInteger(), c["name"] == "new" ? qint64(added) : 0);
        const Run text = dustmere({json[0], QStringLiteral("--report")});
        QVERIFY(text.out.split('\n')[2].contains("±0 since the last scan on "));
    }

    void badInputGivesOneLineAndStatusTwo_data()
    {
        QTest::addColumn<QStringList>("args");
        const QString t = QFile::decodeName(tree());
        QTest::newRow("missing") << QStringList{
            QStringLiteral("--scan=") + t + QStringLiteral("/nope"), QStringLiteral("--report")};
        QTest::newRow("a file") << QStringList{QStringLiteral("--scan=") + t +
                                                   QStringLiteral("/big"),
                                               QStringLiteral("--report=json")};
        QTest::newRow("format") << QStringList{QStringLiteral("--report=xml")};
        QTest::newRow("depth") << QStringList{QStringLiteral("--report=json"),
                                              QStringLiteral("--depth=-1")};
        QTest::newRow("walker") << QStringList{QStringLiteral("--report"),
                                               QStringLiteral("--walker=bfs")};
        QTest::newRow("unknown") << QStringList{QStringLiteral("--frobnicate")};
    }

    void badInputGivesOneLineAndStatusTwo()
    {
        QFETCH(QStringList, args);
        const Run run = dustmere(args);
        QCOMPARE(run.exitCode, 2);
        QVERIFY(run.out.isEmpty());
        QVERIFY(run.err.startsWith("dustmere: "));
        QCOMPARE(run.err.count('\n'), 1);
    }

    void helpAndVersion()
    {
        const Run help = dustmere({QStringLiteral("--help")});
        QCOMPARE(help.exitCode, 0);
        QVERIFY(help.out.contains("--scan=PATH"));
        const Run version = dustmere({QStringLiteral("--version")});
        QCOMPARE(version.exitCode, 0);
        QVERIFY(version.out.startsWith("dustmere "));
    }

    void withADisplayTheWindowModuleRuns()
    {
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.insert(QStringLiteral("DISPLAY"), QStringLiteral(":404"));
        env.insert(QStringLiteral("QT_QPA_PLATFORM"), QStringLiteral("offscreen"));
        QProcess p;
        p.setProcessEnvironment(env);
        p.start(qEnvironmentVariable("DUSTMERE_BINARY"), {QStringLiteral("--appearance=dark")});
        QVERIFY(p.waitForStarted());
        // A window keeps running; a module that cannot be loaded ends at once with a message.
        QVERIFY2(!p.waitForFinished(1500), p.readAllStandardError().constData());
        p.terminate();
        QVERIFY(p.waitForFinished(10'000));
        QVERIFY(!p.readAllStandardError().contains("cannot load the window"));

        const Run missing = dustmere({QStringLiteral("--scan=/nonexistent/dustmere")}, env);
        QCOMPARE(missing.exitCode, 2);
        QCOMPARE(missing.err, QByteArray("dustmere: no such folder: /nonexistent/dustmere\n"));
    }

    void withoutADisplayTheHomeFolderIsReported()
    {
        const QByteArray home = QFile::encodeName(TestSandbox::instance()->home());
        makeFile(home + "/note", 4096);
        QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
        env.remove(QStringLiteral("DISPLAY"));
        env.remove(QStringLiteral("WAYLAND_DISPLAY"));
        env.insert(QStringLiteral("HOME"), QFile::decodeName(home));
        const Run run = dustmere({}, env);
        QCOMPARE(run.exitCode, 0);
        QVERIFY(run.out.left(run.out.indexOf('\n')).endsWith(" · " + home));
    }
};

DUSTMERE_TEST_MAIN(TestReport)
#include "test_report.moc"
