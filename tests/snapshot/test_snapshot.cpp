#include "session/Model.h"
#include "snapshot/ByteWriter.h"
#include "snapshot/SnapshotCodec.h"
#include "snapshot/SnapshotStore.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"

#include <QDir>
#include <sys/stat.h>

using namespace TreeBuilder;

namespace {

const QDateTime when = QDateTime::fromSecsSinceEpoch(1'763'600'000, Qt::UTC);

NodePtr sample(const std::string &base = "/home/ada")
{
    return memoryTree(base, {{"a", 4096},
                             {"a/deep", 40960},
                             {"b", 512},
                             {"b\xff\xfe latin", 1000},
                             {"b\xff\xfe latin/x", 0},
                             {"c", 25'000'000}});
}

QByteArray packed(const NodePtr &root, const std::vector<BigFile> &big = {},
                  const QDateTime &at = when)
{
    return SnapshotCodec::pack(SnapshotCodec::flatten(*root, big, at, QStringLiteral("ada-pc")));
}

// A file with a well-formed header around a payload written by hand.
QByteArray crafted(std::int64_t folders, std::uint64_t size, const std::string &payload)
{
    SnapshotCodec::Flat flat;
    flat.summary = {"/home/ada", when, QStringLiteral("x"), size, 0, folders};
    flat.payload = payload;
    return SnapshotCodec::pack(flat);
}

std::string payload(std::initializer_list<std::uint64_t> numbers, const std::string &names)
{
    ByteWriter w;
    for (const std::uint64_t n : numbers)
        w.number(n);
    w.raw(names);
    return w.take();
}

mode_t mode(const QString &path)
{
    struct stat st;
    return stat(QFile::encodeName(path).constData(), &st) == 0 ? st.st_mode & 07777 : 0;
}

} // namespace

class TestSnapshot : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void readsBackWhatWasWritten()
    {
        const NodePtr root = sample();
        const std::vector<BigFile> big = {{"/home/ada/c/film.mkv", 25'000'000, 1'700'000'000}};
        const QByteArray file = packed(root, big);
        const std::optional<Snapshot> s = SnapshotCodec::unpack(file, "/home/ada");
        QVERIFY(s);
        const SnapshotSummary expected{"/home/ada",  when,          QStringLiteral("ada-pc"),
                                       root->size(), root->files(), 7};
        QCOMPARE(s->summary(), expected);
        QCOMPARE(SnapshotCodec::summary(file), expected);
        QCOMPARE(s->bigFiles(), big);
        root->walk([&s](Node &n) {
            const std::optional<Snapshot::Index> i = s->find(n);
            QVERIFY(i);
            QCOMPARE(s->name(*i), n.name());
            QCOMPARE(s->folder(*i).looseSize, n.looseSize());
            QCOMPARE(s->folder(*i).files, n.files());
            QCOMPARE(s->grown(n), 0);
        });
        // Back as Nodes, for a realm shown at once: the same folders in the same order.
        const auto listed = [](const NodePtr &tree) {
            QStringList out;
            tree->walk([&out](Node &n) {
                out << QStringLiteral("%1 %2 %3 %4")
                           .arg(QString::fromStdString(n.path()))
                           .arg(n.size())
                           .arg(n.files())
                           .arg(n.looseSize());
            });
            return out;
        };
        QCOMPARE(listed(s->toTree()), listed(root));
    }

    void growthSinceTheLastScan_data()
    {
        QTest::addColumn<QString>("path");
        QTest::addColumn<qint64>("grown");
        const qint64 block = 512;
        QTest::newRow("new, with all it holds") << "new" << 101 * block;
        QTest::newRow("inside a new one") << "new/inner" << block;
        QTest::newRow("grown") << "music" << 4096 * block;
        QTest::newRow("shrunk: a sub-folder vanished") << "docs" << -2048 * block;
        QTest::newRow("unchanged") << "docs/kept" << qint64(0);
        QTest::newRow("the root: everything, the vanished too") << "" << (9293 - 15337) * block;
    }
    void growthSinceTheLastScan()
    {
        QFETCH(QString, path);
        QFETCH(qint64, grown);
        constexpr std::uint64_t b = 512;
        const NodePtr before = memoryTree("/h", {{"docs", 1000 * b},
                                                 {"docs/kept", 0},
                                                 {"docs/old", 2048 * b},
                                                 {"music", 4096 * b},
                                                 {"gone", 8192 * b},
                                                 {"gone/deep", b}});
        const NodePtr after = memoryTree("/h", {{"docs", 1000 * b},
                                                {"docs/kept", 0},
                                                {"music", 8192 * b},
                                                {"new", 100 * b},
                                                {"new/inner", b}});
        const std::optional<Snapshot> then = SnapshotCodec::unpack(packed(before), "/h");
        QVERIFY(then);
        const NodePtr node = Model::find(after, path.isEmpty() ? "/h" : "/h/" + path.toStdString());
        QCOMPARE(then->grown(*node), grown);
        QCOMPARE(then->grown(*node, then->find(*node)), grown);
        // A folder of another tree has no counterpart at all.
        QVERIFY(!then->find(*sample()->children().front()));
    }

    void damagedForeignOrOtherRootReadsAsNothing_data()
    {
        QTest::addColumn<QByteArray>("file");
        const QByteArray good = packed(sample());
        QByteArray version = good;
        version[8] = 2;
        QTest::newRow("other version") << version;
        QTest::newRow("other root") << packed(sample("/home/bob"));
        QTest::newRow("empty") << QByteArray();
        QTest::newRow("stray folder") << crafted(2, 0, payload({0, 0, 0, 0, 0, 0, 0, 1}, "rb"));
        QTest::newRow("a folder its own child") << crafted(1, 0, payload({1, 0, 0, 0, 1}, "r"));
        QTest::newRow("siblings out of order")
            << crafted(3, 0,
                       payload({2, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, "r") + payload({0, 1}, "b") +
                           payload({0, 1}, "a"));
        QTest::newRow("slash in a name")
            << crafted(2, 0, payload({1, 0, 0, 0, 0, 0, 0, 1}, "r") + payload({0, 3}, "a/b"));
        QTest::newRow("totals disagree") << crafted(1, 1024, payload({0, 0, 0, 0, 1}, "r"));
    }
    void damagedForeignOrOtherRootReadsAsNothing()
    {
        QFETCH(QByteArray, file);
        QVERIFY(!SnapshotCodec::unpack(file, "/home/ada"));
    }

    void everyTruncationAndBitFlipIsCaught()
    {
        const QByteArray good = packed(sample());
        QVERIFY(SnapshotCodec::unpack(good, "/home/ada"));
        for (qsizetype n = 0; n < good.size(); ++n)
            QVERIFY2(!SnapshotCodec::unpack(good.left(n), "/home/ada"),
                     qPrintable(QString::number(n)));
        for (qsizetype at = 0; at < good.size(); ++at) {
            QByteArray bad = good;
            bad[at] = char(bad[at] ^ (1 << (at % 8)));
            QVERIFY2(!SnapshotCodec::unpack(bad, "/home/ada"), qPrintable(QString::number(at)));
        }
    }

    void storeKeepsTheEightNewestRootsForItsUserAlone()
    {
        const SnapshotStore store;
        QVERIFY(store.folder().startsWith(TestSandbox::instance()->root()));
        for (int i = 0; i < 10; ++i) {
            const std::string base = "/r/" + std::to_string(i);
            QVERIFY(store.save(packed(sample(base), {}, when.addDays(i)), base));
        }
        const std::vector<SnapshotSummary> kept = store.remembered();
        QCOMPARE(kept.size(), std::size_t(SnapshotStore::kept));
        QCOMPARE(kept.front().root, "/r/9");
        QCOMPARE(kept.back().root, "/r/2");
        QVERIFY(!store.load("/r/1"));
        QVERIFY(store.load("/r/9"));
        QCOMPARE(mode(store.folder()), mode_t(0700));
        QCOMPARE(mode(store.fileFor("/r/9")), mode_t(0600));

        // One root's file under another's name is nobody's memory.
        QFile::remove(store.fileFor("/r/8"));
        QVERIFY(QFile::copy(store.fileFor("/r/9"), store.fileFor("/r/8")));
        QVERIFY(!store.load("/r/8"));
        QVERIFY(!store.summary("/r/8"));
        QCOMPARE(store.remembered().size(), std::size_t(SnapshotStore::kept - 1));

        const QString other = store.folder() + QStringLiteral("/notes.txt");
        QVERIFY(writeFile(other, "mine"));
        store.forgetAll();
        QVERIFY(store.remembered().empty());
        QCOMPARE(QDir(store.folder()).entryList(QDir::Files), QStringList{"notes.txt"});
    }
};

DUSTMERE_TEST_MAIN(TestSnapshot)
#include "test_snapshot.moc"
