#include "platform/Mounts.h"
#include "scan/Scanner.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"

#include <QDir>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <future>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace TreeBuilder;

namespace {

QByteArray sandboxPath(const char *sub)
{
    return QFile::encodeName(TestSandbox::instance()->root()) + '/' + sub;
}

QByteArray pathOf(const Node &n)
{
    return QByteArray::fromStdString(n.path());
}

// Every finished node obeys the size-tree invariants.
void checkInvariants(Node &root)
{
    root.walk([](Node &n) {
        std::uint64_t size = n.looseSize();
        std::int64_t files = n.looseFiles();
        for (std::size_t i = 0; i < n.children().size(); ++i) {
            size += n.children()[i]->size();
            files += n.children()[i]->files();
            if (i > 0)
                QVERIFY(n.children()[i - 1]->size() >= n.children()[i]->size());
        }
        QCOMPARE(n.size(), size);
        QCOMPARE(n.files(), files);
    });
}

// Every test runs once for each way of walking.
Scanner::Walk currentWalk()
{
    QFETCH_GLOBAL(bool, fts);
    return fts ? Scanner::Walk::fts : Scanner::Walk::shared;
}

struct WalkingScanner : Scanner
{
    WalkingScanner() { setWalk(currentWalk()); }
};

bool mountTmpfs(const QByteArray &where)
{
    return mount("tmpfs", where.constData(), "tmpfs", 0, "size=8m") == 0;
}

} // namespace

class TestScanner : public QObject
{
    Q_OBJECT

    QByteArray m_tree;
    std::uint64_t m_bigBytes = 0;
    std::uint64_t m_almostBigBytes = 0;

private Q_SLOTS:
    void initTestCase_data()
    {
        QTest::addColumn<bool>("fts");
        QTest::newRow("shared walk") << false;
        QTest::newRow("fts walk") << true;
    }

    void initTestCase()
    {
        m_tree = sandboxPath("tree");
        makeDir(m_tree);
        const QByteArray alpha = m_tree + "/alpha";
        const QByteArray beta = m_tree + "/beta";
        makeDir(alpha);
        makeDir(beta);
        makeFile(alpha + "/one byte", 1);
        makeFile(alpha + "/hardlinked", 300'000);
        makeHardLink(alpha + "/hardlinked", beta + "/second link");
        makeSymlink("hardlinked", alpha + "/link to file");
        makeSymlink("../beta", alpha + "/link to folder");
        makeSymlink("nowhere", alpha + "/dangling");
        makeSparse(alpha + "/sparse", 1'000'000'000);
        makeFifo(alpha + "/fifo");
        makeDir(alpha + "/empty");
        makeDir(alpha + "/empty/nested");
        makeDir(alpha + "/new\nline");
        makeFile(alpha + "/new\nline/file with \"quotes\"", 5000);
        makeDir(alpha + "/bad \xff\xfe name");
        makeFile(alpha + "/bad \xff\xfe name/inside", 9000);
        // Allocated sizes are whole blocks: the nearest sizes on either side of the threshold.
        m_bigBytes = makeFile(beta + "/big", Scanner::bigFileThreshold);
        m_almostBigBytes = makeFile(beta + "/almost", Scanner::bigFileThreshold - 8192);
        setModified(beta + "/big", 1'600'000'000);

        const QByteArray many = m_tree + "/many";
        makeDir(many);
        for (int i = 0; i < 5000; ++i)
            makeFile(many + "/f" + QByteArray::number(i), i % 3 == 0 ? 1 : 0);
        makeDir(m_tree + "/empty top");
        makeFile(m_tree + "/root file", 7000);
        makeFile(m_tree + "/root big", Scanner::bigFileThreshold);
    }

    void measuresExactlyWhatFindSees()
    {
        WalkingScanner scanner;
        NodePtr root = scanner.scan(m_tree.toStdString());
        QVERIFY(root);
        QCOMPARE(root->basePath().value(), m_tree.toStdString());
        QCOMPARE(root->name(), std::string("tree"));

        const Totals total = findTotals(m_tree);
        QCOMPARE(root->size(), total.bytes);
        QCOMPARE(root->files(), total.files);
        QCOMPARE(scanner.progress(), (Scanner::Progress{total.files, total.bytes}));
        for (const NodePtr &child : root->children()) {
            const Totals t = findTotals(pathOf(*child));
            QCOMPARE(child->size(), t.bytes);
            QCOMPARE(child->files(), t.files);
        }
        checkInvariants(*root);

        const NodePtr alpha = root->child("alpha");
        QVERIFY(alpha);
        // Links are files of their own; nothing is followed, so no folder node appears.
        QVERIFY(!alpha->child("link to folder"));
        QCOMPARE(alpha->looseFiles(), 7);
        QCOMPARE(alpha->child("empty")->children().size(), 1u);
        QCOMPARE(alpha->child("empty")->size(), 0u);
        const NodePtr bad = alpha->child("bad \xff\xfe name");
        QVERIFY(bad);
        struct stat st;
        QCOMPARE(lstat(bad->path().c_str(), &st), 0); // names stay bytes
        QVERIFY(alpha->child("new\nline"));
        QCOMPARE(root->child("many")->files(), 5000);
        QCOMPARE(root->child("empty top")->size(), 0u);
        // Each hard link counts.
        QCOMPARE(root->child("beta")->looseSize(),
                 allocated(m_tree + "/beta/second link") + m_bigBytes + m_almostBigBytes);
    }

    void bigFilesAtTheThreshold()
    {
        QVERIFY(m_bigBytes >= Scanner::bigFileThreshold);
        QVERIFY(m_almostBigBytes < Scanner::bigFileThreshold);
        WalkingScanner scanner;
        QVERIFY(scanner.scan(m_tree.toStdString()));
        std::vector<BigFile> big = scanner.bigFiles();
        std::sort(big.begin(), big.end(),
                  [](const BigFile &a, const BigFile &b) { return a.path < b.path; });
        QCOMPARE(big.size(), 2u);
        QCOMPARE(big[0].path, (m_tree + "/beta/big").toStdString());
        QCOMPARE(big[0].size, m_bigBytes);
        QCOMPARE(big[0].modified, 1'600'000'000);
        QCOMPARE(big[0].name(), std::string_view("big"));
        QCOMPARE(big[1].path, (m_tree + "/root big").toStdString());
    }

    void unlistableRootIsAnEmptyTree()
    {
        WalkingScanner scanner;
        NodePtr root = scanner.scan((m_tree + "/does not exist").toStdString());
        QVERIFY(root);
        QCOMPARE(root->size(), 0u);
        QVERIFY(root->children().empty());
    }

    void cancelBeforeStartWalksNothing()
    {
        WalkingScanner scanner;
        scanner.cancel();
        QVERIFY(!scanner.scan(m_tree.toStdString()));
        QVERIFY(scanner.completed().empty());
        QCOMPARE(scanner.progress().files, 2); // only the root's own files were listed
    }

    void cancelMidwayStopsWithinABatch()
    {
        const QByteArray wide = sandboxPath("wide");
        makeDir(wide);
        for (int t = 0; t < 12; ++t) {
            const QByteArray top = wide + "/t" + QByteArray::number(t);
            makeDir(top);
            for (int d = 0; d < 6; ++d) {
                const QByteArray sub = top + "/d" + QByteArray::number(d);
                makeDir(sub);
                for (int f = 0; f < 1000; ++f)
                    makeFile(sub + "/f" + QByteArray::number(f));
            }
        }
        WalkingScanner scanner;
        auto result =
            std::async(std::launch::async, [&] { return scanner.scan(wide.toStdString()); });
        while (scanner.progress().files < Scanner::progressBatch &&
               result.wait_for(std::chrono::milliseconds(0)) != std::future_status::ready) {
        }
        scanner.cancel();
        const Scanner::Progress atCancel = scanner.progress();
        const NodePtr root = result.get();
        if (root)
            QSKIP("the scan finished before it could be cancelled");
        // Each worker adds at most one more batch after the request.
        const auto workers = std::int64_t(QThread::idealThreadCount());
        QVERIFY(scanner.progress().files - atCancel.files <= Scanner::progressBatch * workers);
        QVERIFY(scanner.progress().files < 72'000);
        // Only folders walked to the end are listed, each complete.
        for (const NodePtr &done : scanner.completed())
            QCOMPARE(done->files(), 6000);
    }

    void unreadableFolderIsEmptyNode()
    {
        if (geteuid() != 0)
            QSKIP("needs root to run the scan as an unprivileged user with setpriv");
        QTemporaryDir dir(QStringLiteral("/tmp/dustmere-unreadable-XXXXXX"));
        QVERIFY(dir.isValid());
        const QByteArray top = QFile::encodeName(dir.path());
        chmod(top.constData(), 0755);
        makeDir(top + "/open");
        makeFile(top + "/open/a", 10'000);
        makeDir(top + "/locked");
        makeDir(top + "/locked/inner");
        makeFile(top + "/locked/inner/secret", 50'000);
        makeDir(top + "/open/locked too");
        makeFile(top + "/open/locked too/x", 20'000);
        chmod(top + "/locked", 0);
        chmod(top + "/open/locked too", 0);

        const Run run = reportAsNobody(dir.path(), currentWalk() == Scanner::Walk::fts
                                                       ? QStringLiteral("fts")
                                                       : QStringLiteral("shared"));
        if (run.exitCode != 0 && run.err.contains("setpriv"))
            QSKIP("setpriv cannot switch users here");
        QCOMPARE(run.exitCode, 0);
        const QJsonObject root = QJsonDocument::fromJson(run.out)["root"].toObject();
        QJsonObject locked, open;
        for (const QJsonValue v : root["children"].toArray()) {
            (v["name"] == QStringLiteral("locked") ? locked : open) = v.toObject();
        }
        QCOMPARE(locked["size"].toInteger(), 0);
        QVERIFY(locked["children"].toArray().isEmpty());
        QCOMPARE(open["size"].toInteger(), qint64(allocated(top + "/open/a")));
        const QJsonObject lockedToo = open["children"].toArray().at(0).toObject();
        QCOMPARE(lockedToo["name"].toString(), QStringLiteral("locked too"));
        QCOMPARE(lockedToo["size"].toInteger(), 0);
        QCOMPARE(root["size"].toInteger(), open["size"].toInteger());
        chmod(top + "/locked", 0755);
        chmod(top + "/open/locked too", 0755);
    }

    void mountPointsBelowAndAtTheTop()
    {
        const QByteArray tree = sandboxPath("mounts");
        makeDir(tree);
        makeDir(tree + "/top");
        makeDir(tree + "/top/deeper");
        makeDir(tree + "/top/deeper/mnt");
        makeDir(tree + "/mounted top");
        makeFile(tree + "/top/deeper/plain", 4096);
        if (!mountTmpfs(tree + "/top/deeper/mnt"))
            QSKIP("mounting a tmpfs is refused here");
        if (!mountTmpfs(tree + "/mounted top")) {
            umount2(tree + "/top/deeper/mnt", MNT_DETACH);
            QSKIP("mounting a tmpfs is refused here");
        }
        const std::uint64_t inMount = makeFile(tree + "/top/deeper/mnt/hidden", 40'960);
        const std::uint64_t atTop = makeFile(tree + "/mounted top/counted", 40'960);
        makeDir(tree + "/mounted top/sub");
        const std::uint64_t atTopSub = makeFile(tree + "/mounted top/sub/also", 8192);

        WalkingScanner scanner;
        const NodePtr root = scanner.scan(tree.toStdString());
        umount2(tree + "/top/deeper/mnt", MNT_DETACH);
        umount2(tree + "/mounted top", MNT_DETACH);
        QVERIFY(root);
        QVERIFY(inMount > 0);
        const NodePtr mnt = root->child("top")->child("deeper")->child("mnt");
        QVERIFY(mnt);
        QCOMPARE(mnt->size(), 0u);
        QVERIFY(mnt->children().empty());
        QCOMPARE(root->child("top")->size(), allocated(tree + "/top/deeper/plain"));
        QCOMPARE(root->child("mounted top")->size(), atTop + atTopSub);
        QCOMPARE(root->child("mounted top")->child("sub")->size(), atTopSub);
    }

    void virtualFileSystemsAreNotWalkedFromSlash()
    {
        QVERIFY(Mounts::isVirtualFileSystemType("proc"));
        QVERIFY(Mounts::isVirtualFileSystemType("cgroup2"));
        QVERIFY(!Mounts::isVirtualFileSystemType("ext4"));
        QVERIFY(!Mounts::isVirtualFileSystemType("tmpfs"));
        const Mounts::PathSet points = Mounts::virtualMountPoints();
        if (!points.contains("/proc"))
            QSKIP("/proc is not mounted here");

        WalkingScanner scanner;
        const NodePtr root = scanner.scan("/");
        QVERIFY(root);
        QCOMPARE(root->name(), std::string("Computer"));
        QVERIFY(root->files() > 0);
        for (const NodePtr &child : root->children()) {
            QVERIFY(child->path().find("//") == std::string::npos);
            if (points.contains(child->path())) {
                QCOMPARE(child->size(), 0u);
                QVERIFY(child->children().empty());
            }
        }
        QVERIFY(root->child("proc"));
    }
};

DUSTMERE_TEST_MAIN(TestScanner)
#include "test_scanner.moc"
