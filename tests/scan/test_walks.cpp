#include "scan/Scanner.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <QProcess>
#include <QScopeGuard>
#include <array>
#include <atomic>
#include <fcntl.h>
#include <future>
#include <sys/mount.h>
#include <sys/stat.h>
#include <thread>
#include <unistd.h>

using namespace TreeBuilder;

// The shared walk must measure exactly what the fts walk measures, on awkward trees too.
namespace {

QByteArray sandboxPath(const char *sub)
{
    return QFile::encodeName(TestSandbox::instance()->root()) + '/' + sub;
}

NodePtr scanWith(Scanner::Walk walk, const QByteArray &path,
                 std::shared_ptr<Foreground> foreground = nullptr)
{
    Scanner scanner;
    scanner.setWalk(walk);
    scanner.setForeground(std::move(foreground));
    return scanner.scan(path.toStdString());
}

// Same names in the same order with the same counters, all the way down.
void compareTrees(const Node &a, const Node &b, const std::string &where = {})
{
    const std::string here = where + '/' + a.name();
    QVERIFY2(a.name() == b.name(), here.c_str());
    QVERIFY2(a.size() == b.size() && a.files() == b.files(), here.c_str());
    QVERIFY2(a.looseSize() == b.looseSize() && a.looseFiles() == b.looseFiles(), here.c_str());
    QVERIFY2(a.children().size() == b.children().size(), here.c_str());
    for (std::size_t i = 0; i < a.children().size(); ++i) {
        compareTrees(*a.children()[i], *b.children()[i], here);
        if (QTest::currentTestFailed())
            return;
    }
}

void compareWalks(const QByteArray &path)
{
    const NodePtr fts = scanWith(Scanner::Walk::fts, path);
    const NodePtr shared = scanWith(Scanner::Walk::shared, path);
    QVERIFY(fts && shared);
    compareTrees(*fts, *shared);
}

bool mount(const QByteArray &source, const QByteArray &where, const char *type, unsigned long flags)
{
    return ::mount(source.constData(), where.constData(), type, flags, "size=8m") == 0;
}

QByteArray reportRoot(const QString &path, const char *walker)
{
    const Run run = reportAsNobody(path, QString::fromLatin1(walker));
    if (run.exitCode != 0)
        return {};
    const QJsonObject root = QJsonDocument::fromJson(run.out)["root"].toObject();
    return QJsonDocument(root).toJson(QJsonDocument::Compact);
}

} // namespace

class TestWalks : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void sameTreeWithLinksMountsAndCycles()
    {
        const QByteArray tree = sandboxPath("awkward");
        makeDir(tree);
        for (const char *top : {"/a", "/a/sub", "/a/sub/deeper", "/b", "/b/mnt", "/c", "/empty"})
            makeDir(tree + top);
        makeFile(tree + "/a/one", 1);
        makeFile(tree + "/a/sub/two", 70'000);
        makeHardLink(tree + "/a/sub/two", tree + "/b/two again");
        makeSymlink("../a", tree + "/b/to a");
        makeSymlink("gone", tree + "/b/dangling");
        makeSparse(tree + "/a/sparse", 50'000'000);
        makeFifo(tree + "/c/fifo");
        makeFile(tree + "/c/big", Scanner::bigFileThreshold);
        makeDir(tree + "/c/bad \xff name");
        makeFile(tree + "/c/bad \xff name/x", 3000);
        for (int i = 0; i < 3000; ++i)
            makeFile(tree + "/c/f" + QByteArray::number(i), i % 2);
        compareWalks(tree);
        if (QTest::currentTestFailed())
            return;

        // Below a top-level folder a mount is an empty folder; a bind mount of an ancestor
        // would be a cycle, which neither walk enters.
        makeDir(tree + "/a/sub/deeper/loop");
        if (!mount("tmpfs", tree + "/b/mnt", "tmpfs", 0))
            QSKIP("mounting is refused here");
        makeFile(tree + "/b/mnt/hidden", 40'960);
        const bool bound = mount(tree + "/a", tree + "/a/sub/deeper/loop", nullptr, MS_BIND);
        compareWalks(tree);
        if (QTest::currentTestFailed())
            return;
        const NodePtr shared = scanWith(Scanner::Walk::shared, tree);
        umount2(tree + "/b/mnt", MNT_DETACH);
        if (bound)
            umount2(tree + "/a/sub/deeper/loop", MNT_DETACH);
        QVERIFY(shared);
        QCOMPARE(shared->child("b")->child("mnt")->size(), 0u);
        if (bound)
            QVERIFY(!shared->child("a")->child("sub")->child("deeper")->child("loop"));
    }

    // An interface that never goes to sleep holds each walker only so long, and the walk it slows
    // builds the same tree.
    void aBusyInterfaceSlowsTheWalkButNeverStopsIt()
    {
        const QByteArray tree = sandboxPath("behind a window");
        makeDir(tree);
        for (int i = 0; i < 12; ++i) {
            makeDir(tree + "/d" + QByteArray::number(i));
            makeDir(tree + "/d" + QByteArray::number(i) + "/inner");
            makeFile(tree + "/d" + QByteArray::number(i) + "/inner/f", 4096 * (i + 1));
        }
        auto busy = std::make_shared<Foreground>();
        busy->setBusy(true);
        for (const auto walk : {Scanner::Walk::shared, Scanner::Walk::fts}) {
            const NodePtr slowed = scanWith(walk, tree, busy);
            QVERIFY(slowed);
            compareTrees(*scanWith(walk, tree), *slowed);
        }
    }

    void sameTreeForAnUnprivilegedUser()
    {
        if (geteuid() != 0)
            QSKIP("needs root to run the scan as an unprivileged user with setpriv");
        QTemporaryDir dir(QStringLiteral("/tmp/dustmere-walks-XXXXXX"));
        QVERIFY(dir.isValid());
        const QByteArray top = QFile::encodeName(dir.path());
        chmod(top.constData(), 0755);
        for (const char *sub : {"/open", "/open/shut", "/shut", "/shut/inner", "/listable"})
            makeDir(top + sub);
        makeFile(top + "/open/a", 10'000);
        makeFile(top + "/open/shut/b", 20'000);
        makeFile(top + "/shut/inner/c", 30'000);
        makeFile(top + "/listable/d", 40'000);
        chmod(top + "/open/shut", 0);
        chmod(top + "/shut", 0);
        chmod(top + "/listable", 0444); // names readable, entries not stat-able

        const QByteArray fts = reportRoot(dir.path(), "fts");
        if (fts.isEmpty())
            QSKIP("setpriv cannot run the scan as another user here");
        QCOMPARE(reportRoot(dir.path(), "shared"), fts);
        for (const char *sub : {"/open/shut", "/shut", "/listable"})
            chmod(top + sub, 0755);
    }

    void deepLongAndCrowdedFolders()
    {
        const QByteArray tree = sandboxPath("extremes");
        makeDir(tree);
        QByteArray deep = tree + "/deep";
        makeDir(deep);
        for (int level = 0; level < 300; ++level) {
            deep += "/level" + QByteArray::number(level % 10);
            makeDir(deep);
        }
        makeFile(deep + "/bottom", 4096);
        const QByteArray longName(255, 'n');
        makeDir(tree + "/long");
        makeDir(tree + "/long/" + longName);
        makeFile(tree + "/long/" + longName + '/' + longName, 4096);
        const QByteArray crowded = tree + "/crowded";
        makeDir(crowded);
        for (int i = 0; i < 100'000; ++i) {
            const QByteArray path = crowded + "/e" + QByteArray::number(i);
            if (i % 1000 == 0)
                makeDir(path);
            else
                QCOMPARE(close(open(path.constData(), O_CREAT | O_WRONLY, 0644)), 0);
        }
        compareWalks(tree);
        if (QTest::currentTestFailed())
            return;

        const NodePtr root = scanWith(Scanner::Walk::shared, tree);
        const Totals total = findTotals(tree);
        QCOMPARE(root->size(), total.bytes);
        QCOMPARE(root->files(), total.files);
        QCOMPARE(root->child("crowded")->files(), 99'900);
        QCOMPARE(root->child("crowded")->children().size(), 100u);
        int depth = 0;
        for (NodePtr n = root->child("deep"); !n->children().empty(); n = n->children().front())
            ++depth;
        QCOMPARE(depth, 300);
    }

    // Entries whose path is longer than the system takes are skipped by both walks alike, counted,
    // and noted by the command line.
    void pathsTooLongAreCountedAlike()
    {
        const QByteArray tree = sandboxPath("too-long");
        makeDir(tree);
        const std::string name(200, 'd');
        const std::string file(200, 'f');
        std::vector<int> folders{open(tree, O_RDONLY | O_DIRECTORY)};
        // nftw cannot reach this deep to clean up; the descriptors can, whatever fails below.
        const auto cleanUp = qScopeGuard([&folders, &name, &file] {
            for (std::size_t i = folders.size() - 1; i > 0; --i) {
                close(folders[i]);
                unlinkat(folders[i - 1], name.c_str(), AT_REMOVEDIR);
                unlinkat(folders[i - 1], file.c_str(), 0);
            }
            close(folders.front());
        });
        for (int level = 0; level < 24; ++level) {
            QCOMPARE(mkdirat(folders.back(), name.c_str(), 0755), 0);
            QVERIFY(close(openat(folders.back(), file.c_str(), O_CREAT | O_WRONLY, 0644)) == 0);
            folders.push_back(openat(folders.back(), name.c_str(), O_RDONLY | O_DIRECTORY));
        }
        std::array<Scanner::Gaps, 2> gaps;
        for (const Scanner::Walk walk : {Scanner::Walk::fts, Scanner::Walk::shared}) {
            Scanner scanner;
            scanner.setWalk(walk);
            QVERIFY(scanner.scan(tree.toStdString()));
            gaps[walk == Scanner::Walk::fts ? 0 : 1] = scanner.gaps();
        }
        compareWalks(tree);
        QProcess report;
        report.start(
            qEnvironmentVariable("DUSTMERE_BINARY"),
            {QStringLiteral("--scan=") + QFile::decodeName(tree), QStringLiteral("--report")});
        QVERIFY(report.waitForFinished(60'000));

        QVERIFY(gaps[0].tooLong > 0);
        QCOMPARE(gaps[1].tooLong, gaps[0].tooLong);
        QCOMPARE(report.exitCode(), 0);
        QCOMPARE(report.readAllStandardError(),
                 QByteArray("dustmere: ") + QByteArray::number(gaps[0].tooLong) +
                     " entries not measured: their path is longer than the system allows (4096 "
                     "bytes)\n");
    }

    // Folders vanish and files grow while both walks run: neither may crash or hang, and every
    // tree they return still adds up.
    void treeChangingDuringTheScan()
    {
        const QByteArray tree = sandboxPath("changing");
        makeDir(tree);
        for (int t = 0; t < 4; ++t) {
            const QByteArray top = tree + "/t" + QByteArray::number(t);
            makeDir(top);
            for (int f = 0; f < 500; ++f)
                makeFile(top + "/f" + QByteArray::number(f));
        }
        std::atomic<bool> done{false};
        std::thread churn([&] {
            for (int round = 0; !done; ++round) {
                const QByteArray folder = tree + "/t" + QByteArray::number(round % 4) + "/churn";
                makeDir(folder);
                for (int f = 0; f < 20; ++f)
                    makeFile(folder + "/x" + QByteArray::number(f), 4096 * (round % 3));
                removeTree(folder);
                const int grow = open((tree + "/t0/f0").constData(), O_WRONLY | O_APPEND);
                const QByteArray chunk(8192, 'g');
                if (write(grow, chunk.constData(), std::size_t(chunk.size())) < 0)
                    break;
                close(grow);
            }
        });
        for (int i = 0; i < 20; ++i) {
            for (const auto walk : {Scanner::Walk::shared, Scanner::Walk::fts}) {
                const NodePtr root = scanWith(walk, tree);
                QVERIFY(root);
                root->walk([](Node &n) {
                    std::uint64_t size = n.looseSize();
                    for (const NodePtr &c : n.children())
                        size += c->size();
                    QCOMPARE(n.size(), size);
                });
                QVERIFY(root->files() >= 2000);
            }
        }
        done = true;
        churn.join();
    }
};

DUSTMERE_TEST_MAIN(TestWalks)
#include "test_walks.moc"
