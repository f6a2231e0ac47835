#include "Fixtures.h"
#include "platform/Appearance.h"
#include "scan/Fmt.h"
#include "support/TreeBuilder.h"
#include "ui/SegmentedControl.h"
#include "ui/screens/Meter.h"
#include "ui/screens/RankRow.h"
#include "ui/screens/RankingView.h"
#include "ui/screens/TileMenu.h"

#include <QClipboard>
#include <QGraphicsOpacityEffect>
#include <QImage>
#include <QScrollBar>

using namespace Fixtures;
using namespace TreeBuilder;

namespace {

constexpr std::uint64_t MB = 1'000'000;
constexpr AdaptiveColor red{0xFF0000, 0xFF0000};

// big/ (one 3 MB file and a sub-folder), mid/ (two files), many/ (30 small files), and 6 MB of
// loose files: by size big, mid, many; by files many, big, mid (a tie kept in size order); the
// loose files come last either way although they outweigh every folder.
QByteArray makeTree()
{
    static const QByteArray root = [] {
        const QByteArray r = sandboxPath("ranking");
        makeDir(r);
        makeDir(r + "/big");
        makeFile(r + "/big/blob", 3 * MB);
        makeDir(r + "/big/inner");
        makeFile(r + "/big/inner/x", 4096);
        makeDir(r + "/mid");
        makeFile(r + "/mid/a", MB / 2);
        makeFile(r + "/mid/b", MB / 2);
        makeDir(r + "/many");
        for (int i = 0; i < 30; ++i)
            makeFile(r + "/many/f" + QByteArray::number(i), 100);
        makeFile(r + "/loose1", 3 * MB);
        makeFile(r + "/loose2", 3 * MB);
        return r;
    }();
    return root;
}

// 40 folders, each smaller than the one before and holding more files, so that the metrics rank
// them in nearly opposite orders; the largest holds 30 sub-folders of its own. Both lists are
// taller than a window.
QByteArray makeTallTree()
{
    static const QByteArray root = [] {
        const QByteArray r = sandboxPath("tall");
        makeDir(r);
        for (int i = 0; i < 40; ++i) {
            const QByteArray dir = r + "/f" + QByteArray::number(i);
            makeDir(dir);
            makeFile(dir + "/data", std::uint64_t(40 - i) * 100 * 1000);
            for (int n = 0; n < i; ++n)
                makeFile(dir + "/n" + QByteArray::number(n), 0);
        }
        for (int i = 0; i < 30; ++i) {
            makeDir(r + "/f0/sub" + QByteArray::number(i));
            makeFile(r + "/f0/sub" + QByteArray::number(i) + "/data", 100);
        }
        return r;
    }();
    return root;
}

// A folder, two big files and one small one beside it.
QByteArray makeFilesTree()
{
    static const QByteArray root = [] {
        const QByteArray r = sandboxPath("files");
        makeDir(r);
        makeDir(r + "/sub");
        makeFile(r + "/sub/x", 4096);
        makeFile(r + "/video.mkv", 40 * MB);
        makeFile(r + "/clip.mp4", 26 * MB);
        makeFile(r + "/note", MB);
        return r;
    }();
    return root;
}

QStringList names(const std::vector<Tile> &tiles)
{
    QStringList out;
    for (const Tile &t : tiles)
        out << QString::fromStdString(t.name);
    return out;
}

QImage render(QWidget &w)
{
    w.setPalette(Appearance::palette(Appearance::Scheme::light));
    QImage img(w.size(), QImage::Format_ARGB32);
    img.fill(Qt::white);
    w.render(&img);
    return img;
}

bool isRed(QRgb c)
{
    return qRed(c) > 200 && qGreen(c) < 60 && qBlue(c) < 60;
}

QStringList texts(const QMenu &menu)
{
    QStringList out;
    for (const QAction *a : menu.actions())
        out << (a->isSeparator() ? QStringLiteral("—") : a->text());
    return out;
}

} // namespace

class TestRanking : public QObject
{
    Q_OBJECT

    std::unique_ptr<Session> m_s;

private Q_SLOTS:
    void init()
    {
        m_s = std::make_unique<Session>();
        QVERIFY(m_s->scan(makeTree()));
    }

    void rowsAreRankedByTheActiveMetric()
    {
        RankingView view(*m_s->model, *m_s->game);
        view.resize(800, 400);
        QCOMPARE(names(view.tiles()), QStringList({"big", "mid", "many", "Loose files"}));
        const NodePtr big = m_s->at("big");
        QCOMPARE(view.row(0)->accessibleName(),
                 QStringLiteral("Rank 1, big, ") + Fmt::bytes(big->size()));
        QCOMPARE(view.row(3)->accessibleName(), QStringLiteral("Rank 4, Loose files, ") +
                                                    Fmt::bytes(m_s->model->root()->looseSize()));
        QCOMPARE(view.row(0)->tier(), Tier::microbe);
        QVERIFY(!view.row(3)->tier());

        m_s->model->setMetric(Metric::files);
        QCOMPARE(names(view.tiles()), QStringList({"many", "big", "mid", "Loose files"}));
        QCOMPARE(view.row(0)->accessibleName(), QStringLiteral("Rank 1, many, 30 files"));
        QCOMPARE(view.row(1)->accessibleName(), QStringLiteral("Rank 2, big, 2 files"));
        QCOMPARE(view.row(3)->accessibleName(), QStringLiteral("Rank 4, Loose files, 2 files"));
        // Every fraction is measured against the first row, so the loose files overflow it.
        QCOMPARE(view.row(0)->fraction(), 1.0);
        QCOMPARE(view.row(1)->fraction(), 2.0 / 30.0);
    }

    void theMeterClampsAndKeepsItsStub_data()
    {
        QTest::addColumn<double>("value");
        QTest::addColumn<int>("lastRed"); // the last red column of a 200-point bar, roughly
        QTest::newRow("empty") << 0.0 << 5;
        QTest::newRow("negative") << -0.5 << 5;
        QTest::newRow("tiny") << 0.01 << 5;
        QTest::newRow("half") << 0.5 << 99;
        QTest::newRow("full") << 1.0 << 199;
        QTest::newRow("overflowing") << 2.5 << 199;
    }

    void theMeterClampsAndKeepsItsStub()
    {
        QFETCH(double, value);
        QFETCH(int, lastRed);
        Meter meter;
        meter.resize(200, 14);
        meter.setTint(red);
        meter.jumpTo(value);
        const QImage img = render(meter);
        int last = -1;
        for (int x = 0; x < img.width(); ++x)
            if (isRed(img.pixel(x, 7)))
                last = x;
        QVERIFY2(std::abs(last - lastRed) <= 2, qPrintable(QString::number(last)));
        // The bar is 6 points high, centred: nothing above or below it.
        QVERIFY(!isRed(img.pixel(2, 2)));
        QVERIFY(!isRed(img.pixel(2, 11)));
    }

    void growthChipsBesideTheSizeAndTheGrowthOrder()
    {
        const QByteArray t = sandboxPath("grows");
        makeDir(t);
        for (const auto &[name, mb] :
             {std::pair("a", 50), std::pair("b", 10), std::pair("c", 200)}) {
            makeDir(t + "/" + name);
            makeFile(t + "/" + name + "/f", std::uint64_t(mb) * MB);
        }
        QVERIFY(m_s->scan(t));
        m_s->model->memory().waitForWrites();
        const auto grewB = qint64(makeFile(t + "/b/g", 20 * MB));
        makeFile(t + "/c/g", MB); // half a percent: no chip
        QVERIFY(m_s->scan(t));

        RankingView view(*m_s->model, *m_s->game);
        view.resize(800, 400);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QVERIFY(view.orderSwitch()->isVisible());
        QStringList chips;
        for (int i = 0; i < 3; ++i)
            chips << view.row(i)->growthText();
        QCOMPARE(chips, (QStringList{QString(), QString(), Fmt::growth(grewB)}));
        QVERIFY(view.row(2)->accessibleName().endsWith(Fmt::bytes(m_s->at("b")->size()) +
                                                       QStringLiteral(", ") + Fmt::growth(grewB)));
        view.setByGrowth(true);
        QCOMPARE(view.tiles().front().name, std::string("b"));
        m_s->model->memory().forget();
        QVERIFY(!view.byGrowth() && !view.orderSwitch()->isVisible());
    }

    void aRowShowsTheStubUntilItHasGrown()
    {
        RankingView view(*m_s->model, *m_s->game);
        view.resize(800, 400);
        RankRow *row = view.row(0); // created, never shown: its grow-in has not started
        QVERIFY(!row->grown());
        QCOMPARE(row->meter()->shownValue(), 0.0);

        view.setReduceMotion(true);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        RankRow *loose = view.row(3);
        QVERIFY(loose->grown());
        QVERIFY(loose->meter()->value() > 1.9);
        // The overflowing loose files fill the bar and no more.
        Meter *m = loose->meter();
        m->setTint(red);
        const QImage img = render(*m);
        QVERIFY(isRed(img.pixel(m->width() - 2, m->height() / 2)));
    }

    void aMetricChangeRunsTheGrowInAgain()
    {
        RankingView view(*m_s->model, *m_s->game);
        view.resize(800, 400);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QTRY_COMPARE(view.row(0)->meter()->shownValue(), 1.0);

        m_s->model->setMetric(Metric::files);
        RankRow *first = view.row(0);
        QCOMPARE(first->tile().name, std::string("many"));
        QCOMPARE(first->meter()->shownValue(), 0.0);
        QTRY_COMPARE(first->meter()->shownValue(), 1.0);
    }

    void clickingEntersFoldersWithSubFoldersOnly()
    {
        RankingView view(*m_s->model, *m_s->game);
        view.resize(800, 400);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));

        QTest::mouseClick(view.row(2), Qt::LeftButton); // many: files only
        QCOMPARE(m_s->played, std::vector<Sound::Sfx>{Sound::Sfx::denied()});
        QTest::mouseClick(view.row(3), Qt::LeftButton); // the loose files
        QCOMPARE(m_s->played.back(), Sound::Sfx::denied());
        QCOMPARE(m_s->model->current(), m_s->model->root());

        QTest::mouseClick(view.row(0), Qt::LeftButton);
        QCOMPARE(m_s->model->current(), m_s->at("big"));
        QCOMPARE(m_s->played.back(), Sound::Sfx::dive());
        QCOMPARE(names(view.tiles()), QStringList({"inner", "Loose files"}));
    }

    void hoveringGrowlsWithTheRowsMonster()
    {
        RankingView view(*m_s->model, *m_s->game);
        view.resize(800, 400);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        QTest::mouseMove(view.row(1), QPoint(100, 10));
        QTRY_VERIFY(view.row(1)->hot());
        QCOMPARE(m_s->played, std::vector<Sound::Sfx>{Sound::Sfx::hover(Tier::microbe)});
        // The loose files have no monster and stay silent.
        QTest::mouseMove(view.row(3), QPoint(100, 10));
        QTRY_VERIFY(view.row(3)->hot());
        QVERIFY(!view.row(1)->hot());
        QCOMPARE(m_s->played.size(), 1u);
    }

    void theTileMenuFitsTheTile()
    {
        Model &model = *m_s->model;
        Game &game = *m_s->game;
        const std::vector<Tile> tiles = model.tiles(100);

        TileMenu big(model, game, tiles[0]);
        QCOMPARE(texts(big), QStringList({"Open", "Show on Map", "Reveal in File Manager", "—",
                                          "⚔️ Slay (Move to Trash)…"}));
        QVERIFY(big.actions()[0]->isEnabled());
        TileMenu many(model, game, tiles[2]);
        QVERIFY(!many.actions()[0]->isEnabled());

        // The scan root is never offered for slaying.
        Tile root{"root", Tile::Folder{model.root()}, "root", 1};
        TileMenu rootMenu(model, game, root);
        QCOMPARE(texts(rootMenu), QStringList({"Open", "Show on Map", "Reveal in File Manager"}));

        TileMenu loose(model, game, tiles[3]);
        QCOMPARE(texts(loose), QStringList({"Reveal Folder in File Manager"}));
        loose.actions()[0]->trigger();
        QCOMPARE(m_s->revealed->size(), 1);
        QVERIFY(m_s->revealed->front().endsWith(QStringLiteral("/ranking")));

        big.actions()[4]->trigger();
        QVERIFY(model.pending());
        QCOMPARE(std::get<Model::PendingFolder>(*model.pending()).node, m_s->at("big"));

        big.actions()[1]->trigger();
        QCOMPARE(model.mode(), Mode::map);

        Model fresh;
        QVERIFY(TileMenu(fresh, game, tiles[3]).isEmpty());
    }

    // A focused row that is replaced must not drag the list down the column as it goes.
    void replacingAFocusedRowKeepsTheListAtTheTop_data()
    {
        QTest::addColumn<bool>("enter");
        QTest::newRow("metric switch") << false;
        QTest::newRow("entering the folder") << true;
    }

    void replacingAFocusedRowKeepsTheListAtTheTop()
    {
        QFETCH(bool, enter);
        QVERIFY(m_s->scan(makeTallTree()));
        RankingView view(*m_s->model, *m_s->game);
        view.resize(800, 400);
        view.show();
        view.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&view));
        QScrollBar *bar = view.verticalScrollBar();
        QCOMPARE(view.row(0)->tile().name, std::string("f0"));
        QVERIFY(view.createdRows() > 15 && bar->maximum() > 0);
        view.row(0)->setFocus(Qt::TabFocusReason);
        QVERIFY(view.row(0)->hasFocus());
        QCOMPARE(bar->value(), 0);

        if (enter) {
            QTest::keyClick(view.row(0), Qt::Key_Return);
            QCOMPARE(m_s->model->current(), m_s->at("f0"));
            QCOMPARE(view.tiles().size(), 31u); // and its loose files
        } else {
            m_s->model->setMetric(Metric::files);
            QCOMPARE(view.tiles().front().name, std::string("f39"));
        }
        QVERIFY(bar->maximum() > 0);
        // The selection moves to the new first row, still without moving the list.
        QCOMPARE(QApplication::focusWidget(), view.row(0));
        QCOMPARE(bar->value(), 0);
        QTest::qWait(20); // the old rows are deleted on a later turn of the loop
        QCOMPARE(bar->value(), 0);
    }

    // Up/Down/Home/End select, Return enters, Backspace and Alt+Up come back to the folder left,
    // Delete asks to slay, the menu key and Shift+F10 open the tile menu.
    void theListWorksFromTheKeyboard()
    {
        QVERIFY(m_s->scan(makeTallTree()));
        Model &model = *m_s->model;
        model.setMetric(Metric::files);
        RankingView view(model, *m_s->game);
        view.resize(800, 400);
        view.show();
        view.activateWindow();
        QVERIFY(QTest::qWaitForWindowActive(&view));
        const auto f0 = int(std::find_if(view.tiles().begin(), view.tiles().end(),
                                         [](const Tile &t) { return t.name == "f0"; }) -
                            view.tiles().begin());
        QVERIFY(f0 > 3);

        view.setFocus();
        for (const auto &[key, modifiers, expected] :
             {std::tuple{Qt::Key_Down, Qt::NoModifier, 0},
              {Qt::Key_Down, Qt::NoModifier, 1},
              {Qt::Key_Up, Qt::NoModifier, 0},
              {Qt::Key_Up, Qt::NoModifier, 0},
              {Qt::Key_End, Qt::NoModifier, int(view.tiles().size()) - 1},
              {Qt::Key_Home, Qt::NoModifier, 0}}) {
            QTest::keyClick(QApplication::focusWidget(), key, modifiers);
            QCOMPARE(view.selected(), std::optional(expected));
        }
        view.select(f0);
        QTest::keyClick(view.row(f0), Qt::Key_Return);
        QCOMPARE(model.current(), m_s->at("f0"));
        QTRY_COMPARE(view.selected(), std::optional(0));
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Up, Qt::AltModifier);
        QCOMPARE(model.current(), model.root());
        QTRY_COMPARE(view.selected(), std::optional(f0));
        QTest::keyClick(view.row(f0), Qt::Key_Return);
        QTest::keyClick(QApplication::focusWidget(), Qt::Key_Backspace);
        QCOMPARE(model.current(), model.root());

        QTRY_COMPARE(view.selected(), std::optional(f0));
        QTest::keyClick(view.row(f0), Qt::Key_Delete);
        QCOMPARE(std::get<Model::PendingFolder>(model.pending().value()).node, m_s->at("f0"));
        for (const auto &[key, modifiers] :
             {std::pair{Qt::Key_Menu, Qt::NoModifier}, {Qt::Key_F10, Qt::ShiftModifier}}) {
            QTest::keyClick(view.row(f0), key, modifiers);
            auto *menu = qobject_cast<TileMenu *>(QApplication::activePopupWidget());
            QVERIFY(menu);
            QCOMPARE(menu->tile().name, std::string("f0"));
            menu->close();
        }
    }

    // A folder's own big files are ranked after its folders, each a monster of its bytes that
    // can be revealed, copied and slain; the loose files stand for the rest.
    void bigFilesAreListedAndSlain()
    {
        QVERIFY(m_s->scan(makeFilesTree()));
        Model &model = *m_s->model;
        model.setDeathDuration(std::chrono::milliseconds(10));
        RankingView view(model, *m_s->game);
        view.resize(800, 400);
        QCOMPARE(names(view.tiles()), QStringList({"sub", "video.mkv", "clip.mp4", "Loose files"}));
        RankRow *video = view.row(1);
        const BigFile file = *video->tile().file();
        QCOMPARE(video->accessibleName(),
                 QStringLiteral("Rank 2, video.mkv, ") + Fmt::bytes(file.size));
        QCOMPARE(video->tier(), Tiers::ofBytes(file.size));
        const std::uint64_t loose = model.root()->looseSize();
        QCOMPARE(view.tiles().back().value,
                 double(loose - file.size - view.tiles()[2].file()->size));

        TileMenu menu(model, *m_s->game, video->tile());
        QCOMPARE(texts(menu), QStringList({"Reveal in File Manager", "Copy Path", "—",
                                           "⚔️ Slay (Move to Trash)…"}));
        menu.actions()[1]->trigger();
        QCOMPARE(QGuiApplication::clipboard()->text(), QFile::decodeName(file.path.c_str()));
        QTest::keyClick(video, Qt::Key_Delete);
        QCOMPARE(std::get<Model::PendingFile>(model.pending().value()).file, file);
        model.slay(file, *m_s->game);
        QTRY_COMPARE(names(view.tiles()), QStringList({"sub", "clip.mp4", "Loose files"}));
        QCOMPARE(model.root()->looseSize(), loose - file.size);
        QCOMPARE(m_s->trashed->back(), file.path);
    }

    void aDyingRowFadesAndSlidesThenLeaves()
    {
        m_s->model->setDeathDuration(std::chrono::milliseconds(50));
        RankingView view(*m_s->model, *m_s->game);
        view.setReduceMotion(true);
        view.resize(800, 400);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        RankRow *mid = view.row(1);
        const int x = mid->x();

        m_s->model->slay(m_s->at("mid"), *m_s->game);
        QVERIFY(mid->dying());
        QCOMPARE(mid->x(), x + 40);
        auto *fade = qobject_cast<QGraphicsOpacityEffect *>(mid->graphicsEffect());
        QVERIFY(fade);
        QCOMPARE(fade->opacity(), 0.3);
        QCOMPARE(mid->iconScale(), 1.8);

        QTRY_COMPARE(names(view.tiles()), QStringList({"big", "many", "Loose files"}));
        QCOMPARE(view.row(1)->tile().name, std::string("many"));
        QCOMPARE(view.row(1)->accessibleName().left(7), QStringLiteral("Rank 2,"));
    }
};

DUSTMERE_WIDGET_TEST_MAIN(TestRanking)
#include "test_ranking.moc"
