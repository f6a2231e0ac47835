#include "Fixtures.h"
#include "scan/Fmt.h"
#include "support/TreeBuilder.h"
#include "ui/screens/BountyRow.h"
#include "ui/screens/BountyView.h"
#include "ui/screens/ProminentButton.h"
#include "world/ui/MonsterGlyph.h"

#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QLabel>
#include <QMenu>
#include <QPointer>
#include <QPushButton>
#include <QScrollArea>
#include <QScrollBar>
#include <QToolButton>

using namespace Fixtures;
using namespace TreeBuilder;

namespace {

constexpr std::uint64_t MB = 1'000'000;

QByteArray makeTree()
{
    static const QByteArray root = [] {
        const QByteArray r = sandboxPath("board");
        makeDir(r);
        for (const char *name : {"cache", "logs", "deps", "more"}) {
            makeDir(r + "/" + name);
            makeFile(r + "/" + name + "/f", 4096);
        }
        makeFile(r + "/old.iso", 4096);
        return r;
    }();
    return root;
}

Advice folderAdvice(const NodePtr &node, Advice::Safety safety, std::uint64_t size,
                    bool actionable = true)
{
    Advice a;
    a.target = node;
    a.path = node->path();
    a.size = size;
    a.safety = safety;
    a.reason = QStringLiteral("Because.");
    a.actionable = actionable;
    return a;
}

Advice fileAdvice(const std::string &path, Advice::Safety safety, std::uint64_t size)
{
    Advice a;
    a.target = BigFile{path, size, 0};
    a.path = path;
    a.size = size;
    a.safety = safety;
    a.reason = QStringLiteral("Old.");
    return a;
}

QStringList labels(QWidget &w, const QString &name)
{
    QStringList out;
    for (const QLabel *l : w.findChildren<QLabel *>(name))
        out << l->text();
    return out;
}

} // namespace

class TestBountyBoard : public QObject
{
    Q_OBJECT

    std::unique_ptr<Session> m_s;
    std::string m_root;

    NodePtr at(const char *name) { return m_s->at(name); }

    // A safe item, a safe one that is not actionable, a safe one on a protected path, one to
    // rebuild, and a big file to review.
    std::vector<Advice> mixedAdvice()
    {
        return {
            folderAdvice(at("cache"), Advice::Safety::safe, 400 * MB),
            fileAdvice(m_root + "/old.iso", Advice::Safety::review, 300 * MB),
            folderAdvice(at("deps"), Advice::Safety::rebuild, 200 * MB),
            folderAdvice(at("logs"), Advice::Safety::safe, 100 * MB, false),
            fileAdvice("/usr/lib/firmware.bin", Advice::Safety::safe, 50 * MB),
        };
    }

private Q_SLOTS:
    void init()
    {
        m_s = std::make_unique<Session>();
        QVERIFY(m_s->scan(makeTree()));
        m_root = *m_s->model->root()->basePath();
    }

    void theBoardGroupsAndSumsBySafety()
    {
        m_s->model->setAdvice(mixedAdvice());
        BountyView board(*m_s->model, *m_s->game);
        board.resize(900, 700);
        QVERIFY(!board.showsEmptyBoard());

        QCOMPARE(labels(board, "summary"),
                 QStringList(QStringLiteral("5 recommendations · up to %1 reclaimable")
                                 .arg(Fmt::bytes(1050 * MB))));
        QCOMPARE(labels(board, "groupTitle"),
                 QStringList({"Safe to delete", "Rebuilt when needed", "Review first"}));
        QCOMPARE(labels(board, "groupSummary"),
                 QStringList({QStringLiteral("3 · ") + Fmt::bytes(550 * MB),
                              QStringLiteral("1 · ") + Fmt::bytes(200 * MB),
                              QStringLiteral("1 · ") + Fmt::bytes(300 * MB)}));

        // Only the actionable, unprotected safe item counts towards "Slay all safe".
        ProminentButton *all = board.slayAllButton();
        QVERIFY(all);
        QCOMPARE(all->text(), QStringLiteral("Slay all safe · ") + Fmt::bytes(400 * MB));

        const std::vector<BountyRow *> rows = board.rows();
        QCOMPARE(rows.size(), 5u);
        QStringList order;
        for (const BountyRow *r : rows)
            order << QString::fromStdString(r->item().path.substr(r->item().path.rfind('/') + 1));
        QCOMPARE(order, QStringList({"cache", "logs", "firmware.bin", "deps", "old.iso"}));

        const QString outside = QStringLiteral("Handle this one outside the app (see the note)");
        QVERIFY(rows[0]->slayButton()->isEnabled());
        QCOMPARE(rows[0]->slayButton()->toolTip(), QStringLiteral("Move to Trash"));
        for (const int i : {1, 2}) {
            QVERIFY(!rows[i]->slayButton()->isEnabled());
            QCOMPARE(rows[i]->slayButton()->toolTip(), outside);
        }
        // Files have no place on the map.
        QVERIFY(rows[0]->mapButton());
        QVERIFY(!rows[2]->mapButton());
        QVERIFY(!rows[4]->mapButton());
        QVERIFY(rows[4]->slayButton()->isEnabled());
    }

    void theButtonsAskForTheRightSlay()
    {
        m_s->model->setAdvice(mixedAdvice());
        BountyView board(*m_s->model, *m_s->game);
        board.resize(900, 700);
        board.show();
        QVERIFY(QTest::qWaitForWindowExposed(&board));

        QTest::mouseClick(board.slayAllButton(), Qt::LeftButton);
        const auto *bulk = std::get_if<Model::PendingBulk>(&*m_s->model->pending());
        QVERIFY(bulk);
        QCOMPARE(bulk->items.size(), 1u);
        QCOMPARE(bulk->items.front().path, at("cache")->path());

        const std::vector<BountyRow *> rows = board.rows();
        QTest::mouseClick(rows[4]->slayButton(), Qt::LeftButton);
        const auto *file = std::get_if<Model::PendingFile>(&*m_s->model->pending());
        QVERIFY(file);
        QCOMPARE(file->file.path, m_root + "/old.iso");

        QTest::mouseClick(rows[3]->slayButton(), Qt::LeftButton);
        QCOMPARE(std::get<Model::PendingFolder>(*m_s->model->pending()).node, at("deps"));

        QTest::mouseClick(rows[4]->revealButton(), Qt::LeftButton);
        QCOMPARE(m_s->revealed->size(), 1);
        QVERIFY(m_s->revealed->front().endsWith(QStringLiteral("/old.iso")));

        m_s->model->setMode(Mode::bounties);
        QTest::mouseClick(rows[3]->mapButton(), Qt::LeftButton);
        QCOMPARE(m_s->model->mode(), Mode::map);
    }

    void onlyReviewItemsGiveOneGroupAndNoSweep()
    {
        m_s->model->setAdvice({fileAdvice(m_root + "/old.iso", Advice::Safety::review, 300 * MB),
                               folderAdvice(at("logs"), Advice::Safety::review, 30 * MB)});
        BountyView board(*m_s->model, *m_s->game);
        QVERIFY(!board.slayAllButton());
        QCOMPARE(labels(board, "groupTitle"), QStringList({"Review first"}));
    }

    void copyPathPutsThePathOnTheClipboard()
    {
        m_s->model->setAdvice(mixedAdvice());
        BountyView board(*m_s->model, *m_s->game);
        board.resize(900, 700);
        board.show();
        QVERIFY(QTest::qWaitForWindowExposed(&board));
        BountyRow *row = board.rows()[4];
        QGuiApplication::clipboard()->clear();

        QContextMenuEvent event(QContextMenuEvent::Mouse, QPoint(20, 10),
                                row->mapToGlobal(QPoint(20, 10)));
        QApplication::sendEvent(row, &event);
        QTRY_VERIFY(qobject_cast<QMenu *>(QApplication::activePopupWidget()));
        QPointer<QMenu> menu = qobject_cast<QMenu *>(QApplication::activePopupWidget());
        QStringList offered;
        for (const QAction *a : menu->actions())
            offered << a->text();
        QCOMPARE(offered, QStringList({"Reveal in File Manager", "Copy Path"}));
        // The board rebuilding its rows under the open menu must not take the menu with it.
        const QPointer<BountyRow> old(row);
        m_s->model->setAdvice(mixedAdvice());
        QTRY_VERIFY(!old);
        QVERIFY(menu);
        menu->actions().at(1)->trigger();
        menu->close();

        QCOMPARE(QGuiApplication::clipboard()->text(),
                 QFile::decodeName(QByteArray::fromStdString(m_root + "/old.iso")));
    }

    void hoveringARowGrowls()
    {
        m_s->model->setAdvice(mixedAdvice());
        BountyView board(*m_s->model, *m_s->game);
        board.resize(900, 700);
        board.show();
        QVERIFY(QTest::qWaitForWindowExposed(&board));
        BountyRow *row = board.rows()[0];
        QTest::mouseMove(row, QPoint(60, 10));
        QTRY_VERIFY(row->hot());
        QCOMPARE(m_s->played, std::vector<Sound::Sfx>{Sound::Sfx::hover(Tier::gremlin)});
    }

    void aDyingRowShowsTheBlastUntilItLeaves()
    {
        m_s->model->setAdvice(mixedAdvice());
        BountyView board(*m_s->model, *m_s->game);
        board.resize(900, 700);
        board.show();
        QVERIFY(QTest::qWaitForWindowExposed(&board));
        const auto blasts = [&board] {
            QList<QLabel *> out;
            for (QLabel *l : board.findChildren<QLabel *>())
                if (l->text() == QStringLiteral("💥"))
                    out << l;
            return out;
        };
        // Nothing is dying: no row has built its blast.
        QVERIFY(blasts().isEmpty());

        const std::vector<BountyRow *> rows = board.rows();
        const QPointer<BountyRow> cache(rows[0]);
        const auto inRow = [&cache](const QWidget *w) {
            return QRect(w->mapTo(cache.data(), QPoint(0, 0)), w->size());
        };
        MonsterGlyph *glyph = cache->findChild<MonsterGlyph *>();
        const QPoint centre = inRow(glyph).center();
        m_s->model->slay(at("cache"), *m_s->game);
        QVERIFY(m_s->model->isDying(at("cache")->path()));
        QCOMPARE(blasts().size(), 1);
        QLabel *blast = blasts().front();
        QVERIFY(cache->isAncestorOf(blast));
        QVERIFY(blast->isVisible());
        // It takes the monster's place and fills the 32-point frame.
        QCOMPARE(blast->size(), QSize(32, 32));
        QVERIFY((inRow(blast).center() - centre).manhattanLength() <= 1);
        QVERIFY(!glyph->isVisible());
        // The other rows keep their monsters.
        for (std::size_t i = 1; i < rows.size(); ++i)
            QVERIFY(rows[i]->findChild<MonsterGlyph *>()->isVisible());

        // Once dead, the item leaves the board with its row.
        QTRY_VERIFY(!cache);
        QCOMPARE(board.rows().size(), 4u);
        QVERIFY(blasts().isEmpty());
    }

    // A long board makes the rows near the view only, and the rest as they scroll in, each
    // where a full column would have put it.
    void rowsAreMadeAsTheyScrollIn()
    {
        std::vector<Advice> many;
        for (int i = 0; i < 300; ++i)
            many.push_back(fileAdvice(makeTree().toStdString() + "/old.iso", Advice::Safety::review,
                                      std::uint64_t(300 - i) * MB));
        m_s->model->setAdvice(many);
        BountyView board(*m_s->model, *m_s->game);
        board.resize(900, 700);
        board.show();
        QVERIFY(QTest::qWaitForWindowExposed(&board));
        QTRY_VERIFY(board.createdRows() > 5);
        QVERIFY(board.createdRows() < 100);
        auto *area = board.findChild<QScrollArea *>();
        area->verticalScrollBar()->setValue(area->verticalScrollBar()->maximum());
        QTRY_VERIFY(board.createdRows() > 30);
        const std::vector<BountyRow *> rows = board.rows();
        QCOMPARE(rows.size(), 300u);
        QVERIFY(rows.back()->visibleRegion().boundingRect().height() > 0);
        const int pitch = rows[1]->y() - rows[0]->y();
        QCOMPARE(rows[299]->y() - rows[0]->y(), 299 * pitch);
    }

    void slayingEverythingClearsTheBoard()
    {
        const std::vector<Advice> two = {folderAdvice(at("cache"), Advice::Safety::safe, 40 * MB),
                                         folderAdvice(at("more"), Advice::Safety::safe, 30 * MB)};
        m_s->model->setAdvice(two);
        BountyView board(*m_s->model, *m_s->game);
        board.resize(900, 700);
        board.show();
        QVERIFY(QTest::qWaitForWindowExposed(&board));
        QVERIFY(!board.showsEmptyBoard());

        // One slain: the sweep button counts down and ends on the exact figure.
        m_s->model->slayAll({two.front()}, *m_s->game);
        QTRY_COMPARE(board.slayAllButton()->text(),
                     QStringLiteral("Slay all safe · ") + Fmt::bytes(30 * MB));
        m_s->model->slayAll(board.safeItems(), *m_s->game);
        QCOMPARE(m_s->trashed->size(), 2u);
        QVERIFY(board.showsEmptyBoard());
        QVERIFY(!board.slayAllButton());
        QVERIFY(board.rows().empty());
    }
};

DUSTMERE_WIDGET_TEST_MAIN(TestBountyBoard)
#include "test_bounty_board.moc"
