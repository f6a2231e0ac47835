#include "advisor/Advisor.h"
#include "game/Lore.h"
#include "report/JsonWriter.h"
#include "report/Report.h"
#include "scan/Scanner.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <mutex>

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

    void utf8Validation()
    {
        QVERIFY(isValidUtf8("plain"));
        QVERIFY(isValidUtf8("caf\xc3\xa9 \xe6\x97\xa5\xf0\x9f\x90\x89"));
        QVERIFY(!isValidUtf8("\xe9t\xe9"));
        QVERIFY(!isValidUtf8("\xc0\xaf"));         // overlong "/"
        QVERIFY(!isValidUtf8("\xed\xa0\x80"));     // surrogate
        QVERIFY(!isValidUtf8("\xf4\x90\x80\x80")); // beyond U+10FFFF
        QVERIFY(!isValidUtf8("\xe6\x97"));         // cut short
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
