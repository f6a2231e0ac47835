#include "game/Game.h"
#include "scan/Fmt.h"
#include "session/Model.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"

#include <QSignalSpy>

using namespace TreeBuilder;

namespace {

QByteArray sandbox(const char *sub)
{
    return QFile::encodeName(TestSandbox::instance()->root()) + '/' + sub;
}

} // namespace

class TestModel : public QObject
{
    Q_OBJECT

    std::unique_ptr<Game> m_game;
    std::vector<Sound::Sfx> m_played;
    std::vector<Toast> m_toasts;

    std::unique_ptr<Model> makeModel()
    {
        auto model = std::make_unique<Model>();
        model->setSoundPlayer([this](const Sound::Sfx &s) { m_played.push_back(s); });
        return model;
    }

    void waitForScan(Model &model)
    {
        QTRY_VERIFY_WITH_TIMEOUT(!model.scanning(), 60'000);
        QCoreApplication::processEvents();
    }

private Q_SLOTS:
    void init()
    {
        Game::Options options;
        options.toastDuration = std::chrono::milliseconds(0);
        options.play = [](const Sound::Sfx &) {};
        m_game = std::make_unique<Game>(options);
        m_toasts.clear();
        m_played.clear();
        connect(m_game.get(), &Game::toastChanged, this, [this] {
            if (m_game->toast())
                m_toasts.push_back(*m_game->toast());
        });
    }

    void windowScansAreRememberedUnlessTurnedOff()
    {
        const QByteArray t = sandbox("remembered");
        makeDir(t);
        makeDir(t + "/a");
        const auto model = makeModel();
        model->setScanPath(t.toStdString());
        ScanMemory &memory = model->memory();
        const auto scan = [&] {
            model->scan(*m_game);
            waitForScan(*model);
            memory.waitForWrites();
        };
        memory.setEnabled(false);
        scan();
        QVERIFY(!memory.store().summary(t.toStdString()));
        memory.setEnabled(true);
        scan();
        QVERIFY(memory.store().summary(t.toStdString()));
        QVERIFY(!model->grown(*model->root()));

        const auto added = qint64(makeFile(t + "/a/f", 100'000));
        scan();
        QCOMPARE(model->grown(*model->root()), added);
        QCOMPARE(model->grown(*model->root()->children().front()), added);
        QCOMPARE(Model::nearest(model->root(), t.toStdString() + "/a/gone/deeper"),
                 model->root()->children().front());
        // Reopened, the remembered realm gives way to a fresh one.
        model->reopen(t.toStdString(), *m_game);
        waitForScan(*model);
        QCOMPARE(model->origin().source, RealmOrigin::Source::scan);
        QCOMPARE(model->root()->size(), model->previous()->summary().size);
        memory.forget();
        QVERIFY(!model->previous());
        QVERIFY(!memory.store().summary(t.toStdString()));
    }

    void initialState()
    {
        const auto model = makeModel();
        QCOMPARE(model->scanPath(),
                 QFile::encodeName(TestSandbox::instance()->home()).toStdString());
        QVERIFY(!model->root() && !model->current() && !model->scanning());
        QCOMPARE(model->metric(), Metric::size);
        QCOMPARE(model->mode(), Mode::map);
        QCOMPARE(model->zoomLevel(), 0);
        QCOMPARE(model->zoomScale(), 1.0);
        QVERIFY(model->tiles(100).empty());
    }

    void scanWithBountiesEndsOnTheBoard()
    {
        const QByteArray home = QFile::encodeName(TestSandbox::instance()->home());
        makeDir(home + "/.npm");
        const std::uint64_t cache = makeFile(home + "/.npm/blob", 30'000'000);
        makeDir(home + "/Music");
        makeFile(home + "/Music/song", 8192);

        const auto model = makeModel();
        model->setMode(Mode::ranking);
        QSignalSpy modeSpy(model.get(), &Model::modeChanged);
        model->scan(*m_game);
        QVERIFY(model->scanning());
        waitForScan(*model);

        QVERIFY(model->root());
        QCOMPARE(model->current(), model->root());
        QCOMPARE(model->mode(), Mode::bounties);
        QCOMPARE(model->advice().size(), 1u);
        QVERIFY(model->bountyPaths().contains((home + "/.npm").toStdString()));
        QCOMPARE(m_played, std::vector<Sound::Sfx>{Sound::Sfx::scanDone()});
        QVERIFY(m_game->unlocked().contains(QStringLiteral("first_scan")));
        QTRY_VERIFY(!m_toasts.empty() &&
                    m_toasts.back().title == QStringLiteral("1 bounties posted"));
        QCOMPARE(m_toasts.back().emoji, QStringLiteral("💰"));
        QCOMPARE(m_toasts.back().subtitle,
                 QStringLiteral("Up to %1 you could reclaim").arg(Fmt::bytes(cache)));
        QVERIFY(!m_toasts.back().sound);
    }

    void scanWithoutBountiesKeepsTheMode()
    {
        const QByteArray tree = sandbox("quiet");
        makeDir(tree);
        makeFile(tree + "/small", 4096);
        const auto model = makeModel();
        model->setMode(Mode::ranking);
        model->setZoomLevel(3);
        model->setScanPath(tree.toStdString());
        model->scan(*m_game);
        waitForScan(*model);
        QCOMPARE(model->mode(), Mode::ranking);
        QCOMPARE(model->zoomLevel(), 0);
        QVERIFY(model->advice().empty());
        QCoreApplication::processEvents();
        for (const Toast &t : m_toasts)
            QVERIFY(!t.title.contains(QStringLiteral("bounties")));
    }

    void aReplacedScansLateResultIsDiscarded()
    {
        const QByteArray first = sandbox("first");
        const QByteArray second = sandbox("second");
        makeDir(first);
        makeDir(second);
        makeFile(second + "/x", 4096);
        const auto model = makeModel();
        std::vector<std::string> roots;
        connect(model.get(), &Model::rootChanged, this, [&] {
            roots.push_back(model->root() ? *model->root()->basePath() : std::string());
        });
        model->setScanPath(first.toStdString());
        model->scan(*m_game);
        // Let the first scan finish in the background, so its result is already on its way.
        QTest::qSleep(300);
        model->setScanPath(second.toStdString());
        model->scan(*m_game);
        waitForScan(*model);
        QTest::qWait(50);
        QCOMPARE(roots, (std::vector<std::string>{"", "", second.toStdString()}));
        QCOMPARE(m_played.size(), 1u); // one scanDone
    }

    void stopKeepsTheLastCounters()
    {
        const QByteArray big = sandbox("big");
        makeDir(big);
        for (int t = 0; t < 8; ++t) {
            const QByteArray top = big + "/t" + QByteArray::number(t);
            makeDir(top);
            for (int f = 0; f < 8000; ++f)
                makeFile(top + "/f" + QByteArray::number(f));
        }
        const auto model = makeModel();
        model->setScanPath(big.toStdString());
        QSignalSpy progress(model.get(), &Model::progressChanged);
        model->scan(*m_game);
        if (!progress.wait(20'000) || !model->scanning())
            QSKIP("the scan finished before it could be stopped");
        model->stop();
        const Model::Progress last = model->progress();
        QVERIFY(last.files > 0);
        QVERIFY(!model->scanning());
        QTest::qWait(400);
        QVERIFY(!model->root());
        QVERIFY(!model->current());
        QCOMPARE(model->progress(), last);
        QVERIFY(m_played.empty());
    }

    void navigationAndItsSounds()
    {
        const QByteArray tree = sandbox("nav");
        makeDir(tree);
        makeDir(tree + "/a");
        makeDir(tree + "/a/b");
        makeFile(tree + "/a/b/f", 4096);
        const auto model = makeModel();
        model->setScanPath(tree.toStdString());
        model->scan(*m_game);
        waitForScan(*model);
        m_played.clear();

        const NodePtr a = model->root()->child("a");
        const NodePtr b = a->child("b");
        model->setHovered(makeTiles(model->current().get(), Metric::size, 1).front());
        model->go(a, *m_game);
        QVERIFY(!model->hovered());
        model->go(b, *m_game);
        model->go(b, *m_game); // same node: nothing
        model->go(model->root(), *m_game);
        QCOMPARE(m_played, (std::vector<Sound::Sfx>{Sound::Sfx::dive(), Sound::Sfx::dive(),
                                                    Sound::Sfx::up()}));
        QVERIFY(m_game->hasSeen(b->path()));

        model->up(); // at the root: nothing
        QCOMPARE(model->current(), model->root());
        model->show(b, *m_game);
        QCOMPARE(model->mode(), Mode::map);
        QCOMPARE(model->current(), a);
        model->up();
        QCOMPARE(model->current(), model->root());
        QCOMPARE(m_played.back(), Sound::Sfx::up());
    }

    void zoomStopsSilentlyAtTheLimits()
    {
        const auto model = makeModel();
        model->zoom(-1);
        QVERIFY(m_played.empty());
        for (int i = 0; i < 4; ++i)
            model->zoom(+1);
        QCOMPARE(model->zoomLevel(), 4);
        QCOMPARE(model->zoomScale(), 4.0);
        QCOMPARE(m_played.size(), 4u);
        model->zoom(+1);
        QCOMPARE(m_played.size(), 4u);
        model->setZoomLevel(0); // "Fit Whole Realm": no sound
        QCOMPARE(model->zoomLevel(), 0);
        QCOMPARE(m_played.size(), 4u);
    }

    void findByPath()
    {
        NodePtr slash = Node::create(Node::rootName("/"));
        slash->setBasePath("/");
        const NodePtr bob = addFolder(addFolder(slash, "Users"), "bob");
        QCOMPARE(Model::find(slash, "/Users/bob"), bob);
        QCOMPARE(Model::find(slash, "/"), slash);
        QCOMPARE(Model::find(slash, "/Users//bob/"), bob);
        QVERIFY(!Model::find(slash, "/Users/Bob"));

        NodePtr home = Node::create("bob");
        home->setBasePath("/Users/bob");
        const NodePtr docs = addFolder(home, "Docs");
        QVERIFY(!Model::find(home, "/Users/bobby"));
        QVERIFY(!Model::find(home, "/Users"));
        QCOMPARE(Model::find(home, "/Users/bob/Docs"), docs);
        QVERIFY(!Model::find(nullptr, "/"));
    }

    void adviceUnderAPath()
    {
        const auto model = makeModel();
        const auto item = [](std::string path) {
            Advice a;
            a.target = BigFile{path, 1, 0};
            a.path = std::move(path);
            return a;
        };
        model->setAdvice({item("/a/b"), item("/a/bc"), item("/a/b/c"), item("/a")});
        std::vector<std::string> under;
        for (const Advice &a : model->adviceUnder("/a/b"))
            under.push_back(a.path);
        QCOMPARE(under, (std::vector<std::string>{"/a/b", "/a/b/c"}));
        QCOMPARE(model->bountyPaths().size(), 4u);
        model->setAdvice({});
        QVERIFY(model->bountyPaths().empty());
    }
};

DUSTMERE_TEST_MAIN(TestModel)
#include "test_model.moc"
