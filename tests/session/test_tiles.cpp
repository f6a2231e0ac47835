#include "session/Tile.h"
#include "support/TestSandbox.h"

namespace {

// A finished folder whose children have the given (bytes, files) numbers.
NodePtr level(const std::vector<std::pair<std::uint64_t, int>> &children,
              std::uint64_t looseBytes = 0, int looseFiles = 0)
{
    NodePtr parent = Node::create("current");
    int i = 0;
    for (const auto &[bytes, files] : children) {
        NodePtr c = Node::create("f" + std::to_string(i++), parent);
        for (int k = 0; k < files; ++k)
            c->addLoose(k == 0 ? bytes : 0);
        if (files == 0 && bytes > 0) { // bytes in empty sub-folders only: a folder of folders
            NodePtr inner = Node::create("inner", c);
            inner->finish();
            c->appendChild(inner);
        }
        c->finish();
        parent->appendChild(c);
    }
    for (int k = 0; k < looseFiles; ++k)
        parent->addLoose(k == 0 ? looseBytes : 0);
    parent->finish();
    return parent;
}

QStringList names(const std::vector<Tile> &tiles)
{
    QStringList out;
    for (const Tile &t : tiles)
        out << QString::fromStdString(t.name);
    return out;
}

} // namespace

class TestTiles : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void limitMakesAnAggregateThenLooseFiles()
    {
        std::vector<std::pair<std::uint64_t, int>> children;
        for (int i = 0; i < 150; ++i)
            children.push_back({std::uint64_t(1000 + i), 1});
        const NodePtr current = level(children, 77, 3);
        const std::vector<Tile> tiles = makeTiles(current.get(), Metric::size, 100);
        QCOMPARE(tiles.size(), 102u);
        QCOMPARE(tiles[0].name, std::string("f149")); // largest first
        QCOMPARE(tiles[0].id, tiles[0].name);
        const Tile &other = tiles[100];
        QCOMPARE(other.id, std::string("\0other", 6));
        QCOMPARE(other.name, std::string("50 smaller folders"));
        QCOMPARE(std::get<Tile::Other>(other.kind).count, 50);
        double rest = 0;
        for (int i = 0; i < 50; ++i)
            rest += 1000 + i;
        QCOMPARE(other.value, rest);
        QCOMPARE(tiles[101].id, std::string("\0loose", 6));
        QCOMPARE(tiles[101].name, std::string("Loose files"));
        QCOMPARE(tiles[101].value, 77.0);

        QCOMPARE(makeTiles(current.get(), Metric::size, 150).size(), 151u); // exactly the limit
        const std::vector<Tile> none = makeTiles(current.get(), Metric::size, 0);
        QCOMPARE(names(none), (QStringList{QStringLiteral("150 smaller folders"),
                                           QStringLiteral("Loose files")}));
        const std::vector<Tile> one = makeTiles(current.get(), Metric::size, 149);
        QCOMPARE(one[149].name, std::string("1 smaller folders"));
    }

    void filesMetricDropsEmptyFoldersButCountsThem()
    {
        // 5 GB in empty sub-folders but no files, then two folders with equal file counts.
        const NodePtr current = level({{5'000'000'000, 0}, {300, 4}, {200, 4}, {100, 9}}, 0, 0);
        const std::vector<Tile> all = makeTiles(current.get(), Metric::files, 10);
        QCOMPARE(names(all),
                 (QStringList{QStringLiteral("f3"), QStringLiteral("f1"), QStringLiteral("f2")}));
        QCOMPARE(all[0].value, 9.0);

        const std::vector<Tile> limited = makeTiles(current.get(), Metric::files, 2);
        QCOMPARE(names(limited), (QStringList{QStringLiteral("f3"), QStringLiteral("f1"),
                                              QStringLiteral("2 smaller folders")}));
        QCOMPARE(limited[2].value, 4.0); // the empty folder adds a count, not a value
        QCOMPARE(Metrics::format(Metric::files, 12345.9), QStringLiteral("12,345 files"));
        QCOMPARE(Metrics::format(Metric::size, 1.5e9), QStringLiteral("1.5 GB"));
    }

    void looseOnlyAndEmpty()
    {
        const NodePtr loose = level({}, 12288, 3);
        const std::vector<Tile> tiles = makeTiles(loose.get(), Metric::files, 100);
        QCOMPARE(tiles.size(), 1u);
        QVERIFY(std::holds_alternative<Tile::Loose>(tiles[0].kind));
        QCOMPARE(tiles[0].value, 3.0);
        QVERIFY(makeTiles(level({}).get(), Metric::size, 100).empty());
        QVERIFY(makeTiles(nullptr, Metric::size, 100).empty());
    }

    // The ranking lists the folder's own big files, biggest first, before what is left of the
    // loose files; files elsewhere and files beyond the limit stay in their aggregates.
    void bigFilesComeBeforeTheRestOfTheLooseFiles_data()
    {
        QTest::addColumn<int>("metric");
        QTest::addColumn<std::uint64_t>("looseBytes");
        QTest::addColumn<int>("limit");
        QTest::addColumn<QStringList>("names");
        QTest::addColumn<double>("looseValue"); // 0: no loose tile
        QTest::newRow("bytes") << int(Metric::size) << std::uint64_t(100'000'000) << 100
                               << QStringList{"f0", "b.mkv", "a.iso", "Loose files"} << 20e6;
        QTest::newRow("files") << int(Metric::files) << std::uint64_t(100'000'000) << 100
                               << QStringList{"f0", "b.mkv", "a.iso", "Loose files"} << 2.0;
        QTest::newRow("limit") << int(Metric::size) << std::uint64_t(100'000'000) << 1
                               << QStringList{"f0", "b.mkv", "Loose files"} << 50e6;
        QTest::newRow("nothing left") << int(Metric::size) << std::uint64_t(80'000'000) << 100
                                      << QStringList{"f0", "b.mkv", "a.iso"} << 0.0;
        QTest::newRow("tree lost them") << int(Metric::size) << std::uint64_t(1'000) << 100
                                        << QStringList{"f0", "b.mkv", "a.iso"} << 0.0;
    }

    void bigFilesComeBeforeTheRestOfTheLooseFiles()
    {
        QFETCH(int, metric);
        QFETCH(std::uint64_t, looseBytes);
        QFETCH(int, limit);
        QFETCH(QStringList, names);
        QFETCH(double, looseValue);
        const NodePtr current = level({{500'000'000, 1}}, looseBytes, 4);
        current->setBasePath("/r");
        const std::vector<BigFile> files = {{"/r/a.iso", 30'000'000, 0},
                                            {"/r/f0/inside.bin", 400'000'000, 0},
                                            {"/r/b.mkv", 50'000'000, 0},
                                            {"/elsewhere/c.iso", 90'000'000, 0}};
        const auto m = Metric(metric);
        const std::vector<Tile> tiles =
            withBigFiles(makeTiles(current.get(), m, 100), *current, files, m, limit);
        QCOMPARE(::names(tiles), names);
        QCOMPARE(tiles[1].file()->path, std::string("/r/b.mkv"));
        QCOMPARE(tiles[1].path(), std::string("/r/b.mkv"));
        QCOMPARE(tiles[1].value, m == Metric::size ? 50e6 : 1.0);
        QVERIFY(tiles[1].id != tiles[1].name && tiles[1].id != Tile::looseId);
        QCOMPARE(tiles.back().id == Tile::looseId ? tiles.back().value : 0.0, looseValue);
    }
};

DUSTMERE_TEST_MAIN(TestTiles)
#include "test_tiles.moc"
