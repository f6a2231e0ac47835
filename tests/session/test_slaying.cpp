#include "advisor/Advisor.h"
#include "game/Game.h"
#include "platform/Home.h"
#include "platform/Paths.h"
#include "platform/Settings.h"
#include "report/Report.h"
#include "session/Model.h"
#include "session/SlayRules.h"
#include "snapshot/SnapshotCodec.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"

#include <QDir>
#include <QSignalSpy>
#include <sys/mount.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace TreeBuilder;

namespace {

constexpr std::uint64_t MB = 1'000'000;

bool exists(const std::string &path)
{
    struct stat st;
    return lstat(path.c_str(), &st) == 0;
}

class RefusingTrash : public TrashCan
{
public:
    Result moveToTrash(const std::string &) override
    {
        return Failed{QStringLiteral("The platform says no.")};
    }
};

Advice adviceFor(const NodePtr &node, bool actionable = true)
{
    Advice a;
    a.target = node;
    a.path = node ? node->path() : std::string("/usr/share/protected");
    a.size = node ? node->size() : 30 * MB;
    a.actionable = actionable;
    return a;
}

} // namespace

class TestSlaying : public QObject
{
    Q_OBJECT

    std::unique_ptr<Game> m_game;
    std::unique_ptr<Model> m_model;
    std::vector<Sound::Sfx> m_played;
    std::vector<Toast> m_toasts;
    std::string m_root;

    void scan(const QByteArray &tree)
    {
        m_model->setScanPath(tree.toStdString());
        m_model->scan(*m_game);
        QTRY_VERIFY_WITH_TIMEOUT(!m_model->scanning(), 60'000);
        QVERIFY(m_model->root());
        m_root = tree.toStdString();
        m_played.clear();
    }

    NodePtr at(const std::string &relative) { return m_model->node(m_root + "/" + relative); }

private Q_SLOTS:
    void init()
    {
        auto settings = Settings::open();
        settings->clear();
        settings->sync();
        Game::Options o;
        o.toastDuration = std::chrono::milliseconds(0);
        o.play = [](const Sound::Sfx &) {};
        m_game = std::make_unique<Game>(o);
        m_model = std::make_unique<Model>();
        m_model->setSoundPlayer([this](const Sound::Sfx &s) { m_played.push_back(s); });
        m_played.clear();
        m_toasts.clear();
        connect(m_game.get(), &Game::toastChanged, this, [this] {
            if (m_game->toast())
                m_toasts.push_back(*m_game->toast());
        });
    }

    void aFolderSlayTrashesAtOnceAndRewardsAfterItsDeath()
    {
        const QByteArray tree = QFile::encodeName(TestSandbox::instance()->root()) + "/folder-slay";
        makeDir(tree);
        makeDir(tree + "/a");
        makeDir(tree + "/a/__pycache__");
        const std::uint64_t blob = makeFile(tree + "/a/__pycache__/blob", 26 * MB);
        makeDir(tree + "/a/__pycache__/__pycache__");
        makeFile(tree + "/a/keep", 8192);
        makeDir(tree + "/other");
        makeFile(tree + "/other/o", 8192);
        scan(tree);
        QCOMPARE(m_model->advice().size(), 1u);

        const NodePtr a = at("a");
        const NodePtr victim = at("a/__pycache__");
        const std::uint64_t rootBefore = m_model->root()->size();
        m_model->slay(victim, *m_game);

        // Moved to the Trash at once, with its info file; the game knows where it went.
        const std::string trashed = Home::trash() + "/files/__pycache__";
        QVERIFY(!exists(victim->path()));
        QVERIFY(exists(trashed + "/blob"));
        QVERIFY(exists(Home::trash() + "/info/__pycache__.trashinfo"));
        QCOMPARE(m_game->trashed().count(trashed), 1u);
        QCOMPARE(m_played, std::vector<Sound::Sfx>{Sound::Sfx::slay(Tier::microbe)});
        QVERIFY(m_model->isDying(victim->path()));
        QCOMPARE(m_model->dying()->xpt, Game::xpFor(victim->size()));
        // The tree, the advice and the game wait for the end of the death.
        QCOMPARE(m_model->root()->size(), rootBefore);
        QCOMPARE(m_model->advice().size(), 1u);
        QCOMPARE(m_game->reclaimed(), 0u);

        // A second slay while one is dying is refused and trashes nothing.
        m_model->slay(at("other"), *m_game);
        QCOMPARE(m_played.back(), Sound::Sfx::denied());
        QVERIFY(exists(m_root + "/other"));

        QTRY_VERIFY(!m_model->dying());
        QCOMPARE(m_game->reclaimed(), victim->size());
        QVERIFY(m_game->unlocked().contains(QStringLiteral("bounty"))); // it was on the board
        QVERIFY(m_model->advice().empty());
        QCOMPARE(m_model->root()->size(), rootBefore - victim->size());
        QCOMPARE(a->size(), a->looseSize());
        QVERIFY(!a->child("__pycache__"));
        QVERIFY(victim->size() >= blob);
    }

    void anOpenedReportIsOnlyToLookAt()
    {
        const QByteArray tree = QFile::encodeName(TestSandbox::instance()->root()) + "/elsewhere";
        makeDir(tree);
        makeDir(tree + "/a");
        makeDir(tree + "/a/__pycache__");
        makeFile(tree + "/a/__pycache__/blob", 26 * MB);
        Scanner scanner;
        const NodePtr root = scanner.scan(tree.toStdString());
        const QDateTime when = QDateTime::fromSecsSinceEpoch(1'763'600'000, Qt::UTC);
        const Report::Input input{
            root, scanner.bigFiles(), Advisor::advise(root, {}), {}, nullptr, QStringLiteral("far"),
            when};
        const QString report = QFile::decodeName(tree) + QStringLiteral(".json");
        const QString snapshot = QFile::decodeName(tree) + QStringLiteral(".snapshot");
        QVERIFY(writeFile(report, QByteArray::fromStdString(Report::json(input))));
        QVERIFY(writeFile(snapshot, SnapshotCodec::pack(SnapshotCodec::flatten(
                                        *root, {}, when, QStringLiteral("far")))));
        m_root = tree.toStdString();
        for (const QString &file : {report, snapshot}) {
            m_model->open(file);
            QTRY_VERIFY(m_model->readOnly());
            QCOMPARE(m_model->origin(), (RealmOrigin{RealmOrigin::Source::report, "far", when}));
            QCOMPARE(m_model->advice().size(), 1u);
            const NodePtr victim = at("a/__pycache__");
            QVERIFY(!m_model->canSlay(*victim) && !m_model->canReveal());
            m_model->slay(victim, *m_game);
            m_model->slayAll(m_model->advice(), *m_game);
            QCOMPARE(m_played.front(), Sound::Sfx::denied());
            QVERIFY(exists(m_root + "/a/__pycache__/blob"));
            m_model->setScanPath(m_root); // the next open replaces this realm
            m_model->scan(*m_game);
            QTRY_VERIFY(!m_model->scanning());
            m_played.clear();
        }
        // Anything else is one line, and the realm on show stays.
        QSignalSpy failed(m_model.get(), &Model::openFailed);
        m_model->open(QFile::decodeName(tree) + QStringLiteral("/a/__pycache__/blob"));
        QVERIFY(failed.wait());
        QVERIFY(failed[0][0].toString().startsWith(QStringLiteral("not a Dustmere report")));
        QVERIFY(m_model->root());
    }

    void aFileSlayShrinksItsFolder()
    {
        const QByteArray tree = QFile::encodeName(TestSandbox::instance()->root()) + "/file-slay";
        makeDir(tree);
        makeDir(tree + "/c");
        const std::uint64_t bytes = makeFile(tree + "/c/movie.mkv", 26 * MB);
        makeFile(tree + "/c/small", 4096);
        scan(tree);
        const NodePtr c = at("c");
        const std::int64_t looseFiles = c->looseFiles();
        const std::uint64_t rootSize = m_model->root()->size();

        m_model->slay(BigFile{m_root + "/c/movie.mkv", bytes, 0}, *m_game);
        QVERIFY(!exists(m_root + "/c/movie.mkv"));
        QTRY_VERIFY(!m_model->dying());
        QCOMPARE(c->looseFiles(), looseFiles - 1);
        QCOMPARE(m_model->root()->size(), rootSize - bytes);
        QCOMPARE(m_game->reclaimed(), bytes);
    }

    void aBatchSkipsWhatItMustAndCountsFailures()
    {
        const QByteArray tree = QFile::encodeName(TestSandbox::instance()->root()) + "/batch";
        makeDir(tree);
        for (const char *name : {"d", "e", "f", "g"}) {
            makeDir(tree + "/" + name);
            makeFile(tree + "/" + name + "/x", 4096);
        }
        scan(tree);
        const NodePtr e = at("e");
        m_model->go(e, *m_game);
        const NodePtr ghost = at("g");
        removeTree(tree + "/g"); // gone from disk: its move will fail
        std::vector<Advice> items = {adviceFor(nullptr), adviceFor(at("d"), false),
                                     adviceFor(ghost), adviceFor(e), adviceFor(at("f"))};
        m_model->setAdvice(items);
        m_played.clear();

        m_model->slayAll(items, *m_game);
        QVERIFY(!exists(m_root + "/e") && !exists(m_root + "/f"));
        QVERIFY(exists(m_root + "/d"));
        QCOMPARE(m_played,
                 (std::vector<Sound::Sfx>{Sound::Sfx::slay(Tier::microbe), Sound::Sfx::denied()}));
        QCOMPARE(m_model->error(),
                 std::optional(QStringLiteral("1 item couldn't be moved to the Trash (the system "
                                              "or another app protects them).")));
        QTRY_VERIFY(std::any_of(m_toasts.begin(), m_toasts.end(), [](const Toast &t) {
            return t.title == QStringLiteral("Swept 2 monsters!");
        }));
        QVERIFY(!m_model->root()->child("e") && !m_model->root()->child("f"));
        QVERIFY(m_model->root()->child("d") && m_model->root()->child("g"));
        QCOMPARE(m_model->advice().size(), 3u);        // the skipped and the failed ones stay
        QCOMPARE(m_model->current(), m_model->root()); // stood in e: stepped back out
        QVERIFY(!m_model->dying());
    }

    void aFailedMoveChangesNothing()
    {
        const QByteArray tree = QFile::encodeName(TestSandbox::instance()->root()) + "/refused";
        makeDir(tree);
        makeDir(tree + "/h");
        makeFile(tree + "/h/x", 4096);
        scan(tree);
        m_model->setTrashCan(std::make_unique<RefusingTrash>());
        const std::uint64_t size = m_model->root()->size();
        m_model->slay(at("h"), *m_game);
        QCOMPARE(m_model->error(), std::optional(QStringLiteral("The platform says no.")));
        QCOMPARE(m_played, std::vector<Sound::Sfx>{Sound::Sfx::denied()});
        QVERIFY(!m_model->dying());
        QCOMPARE(m_model->root()->size(), size);
        QVERIFY(m_game->trashed().empty());
    }

    void protectedItems()
    {
        const std::string home = QFile::encodeName(TestSandbox::instance()->home()).toStdString();
        const std::string sandbox = std::string(Paths::parent(home));
        const std::string trash = Home::trash();
        const std::string disk = "/media/disk/.Trash";
        const std::string uid = std::to_string(getuid());
        // No spelling of a protected place gets through; folders inside ordinary ones do.
        const std::pair<std::string, bool> cases[] = {{"/", false},
                                                      {"//", false},
                                                      {"/Users", false},
                                                      {"/home/", false},
                                                      {"/Library/Caches", false},
                                                      {"/private/var/tmp", false},
                                                      {"/usr/local", false},
                                                      {"/etc/ssh", false},
                                                      {"/var/lib", false},
                                                      {"/root/x", false},
                                                      {"/proc/1", false},
                                                      {"/tmp/../usr/lib", false},
                                                      {"relative/folder", false},
                                                      {sandbox, false},
                                                      {home, false},
                                                      {home + "/", false},
                                                      {home + "/.", false},
                                                      {home + "/x/..", false},
                                                      {home + "//Documents", false},
                                                      {home + "/./Documents/", false},
                                                      {home + "/Music/../Documents", false},
                                                      {home + "/Downloads/", false},
                                                      {home + "/.local", false},
                                                      {home + "/.config//", false},
                                                      {home + "/Videos", false},
                                                      {trash, false},
                                                      {trash + "/", false},
                                                      {trash + "/info", false},
                                                      {trash + "//files/old", false},
                                                      {std::string(Paths::parent(trash)), false},
                                                      {disk + "-" + uid, false},
                                                      {disk + "-" + uid + "/files/x", false},
                                                      {disk + "/" + uid + "/info", false},
                                                      {home + "/.Trash/x", false},
                                                      {home + "/Documents/old", true},
                                                      {home + "/Documents/x/../old/", true},
                                                      {home + "/Library/Caches", true},
                                                      {"/Applications/Some.app", true},
                                                      {home + "/.local/share", true},
                                                      {"/media/disk/Trash-old", true}};
        for (const auto &[path, allowed] : cases)
            QVERIFY2(m_model->canSlay(path) == allowed, path.c_str());

        const QByteArray saved = qgetenv("XDG_DATA_HOME");
        qunsetenv("XDG_DATA_HOME");
        QVERIFY(!m_model->canSlay(home + "/.local/share/Trash/info"));
        QVERIFY(!m_model->canSlay(home + "/.local/share")); // it holds the Trash
        qputenv("XDG_DATA_HOME", saved);

        // The root user's own home is guarded by the home rules, not as a system folder.
        const std::string rootTrash = "/root/.local/share/Trash";
        QVERIFY(SlayRules::canSlay("/root/projects/build", "/root", std::nullopt, rootTrash));
        QVERIFY(!SlayRules::canSlay("/root/Documents/", "/root", std::nullopt, rootTrash));
        QVERIFY(!SlayRules::canSlay("/root", "/root", std::nullopt, rootTrash));

        const QByteArray tree = QFile::encodeName(TestSandbox::instance()->root()) + "/rooted";
        makeDir(tree);
        scan(tree);
        QVERIFY(!m_model->canSlay(*m_model->root()));
        QVERIFY(!m_model->canSlay(m_root + "/./"));
        m_model->slay(m_model->root(), *m_game);
        QCOMPARE(m_played, std::vector<Sound::Sfx>{Sound::Sfx::denied()});
    }

    // A scan of "$HOME/" (what tab completion types) must not turn Documents into prey.
    void aScanSpelledWithSlashesKeepsTheHomeFoldersSafe()
    {
        const QByteArray home = QFile::encodeName(TestSandbox::instance()->home());
        makeDir(home + "/Documents");
        makeFile(home + "/Documents/letter", 4096);
        const QString previous = QDir::currentPath();
        QDir::setCurrent(TestSandbox::instance()->home() + QStringLiteral("/Documents"));
        m_model->setScanPath("..//./");
        QDir::setCurrent(previous);
        scan(QByteArray::fromStdString(m_model->scanPath()));
        QCOMPARE(QByteArray::fromStdString(*m_model->root()->basePath()), home);
        const NodePtr documents = m_model->root()->child("Documents");
        QCOMPARE(QByteArray::fromStdString(documents->path()), home + "/Documents");
        QVERIFY(!m_model->canSlay(*documents));
    }

    void anItemOnAnotherFileSystemGoesToItsOwnTrash()
    {
        const QByteArray tree = QFile::encodeName(TestSandbox::instance()->root()) + "/mounted";
        makeDir(tree);
        makeDir(tree + "/disk");
        if (mount("tmpfs", (tree + "/disk").constData(), "tmpfs", 0, "size=8m") != 0)
            QSKIP("mounting a tmpfs is refused here");
        makeDir(tree + "/disk/cache");
        makeFile(tree + "/disk/cache/blob", 8192);
        scan(tree);
        m_model->slay(at("disk/cache"), *m_game);
        const std::string own =
            m_root + "/disk/.Trash-" + std::to_string(getuid()) + "/files/cache";
        const bool moved = exists(own + "/blob");
        const bool noted = m_game->trashed().count(own) == 1;
        QTRY_VERIFY(!m_model->dying());
        umount2((tree + "/disk").constData(), MNT_DETACH);
        QVERIFY(moved);
        QVERIFY(noted);
    }

    void aReadOnlyParentFailsForAnOrdinaryUser()
    {
        DUSTMERE_RUN_AS_NOBODY();
        const QByteArray tree = QFile::encodeName(TestSandbox::instance()->root()) + "/readonly";
        makeDir(tree);
        makeDir(tree + "/p");
        makeDir(tree + "/p/__pycache__");
        makeFile(tree + "/p/__pycache__/blob", 26 * MB);
        scan(tree);
        QCOMPARE(m_model->advice().size(), 1u);
        chmod(tree + "/p", 0555);
        const std::uint64_t size = m_model->root()->size();
        m_model->slay(at("p/__pycache__"), *m_game);
        chmod(tree + "/p", 0755);
        QVERIFY(m_model->error().has_value());
        QVERIFY2(m_model->error()->contains(QStringLiteral("permission denied")),
                 qPrintable(*m_model->error()));
        QVERIFY(exists(m_root + "/p/__pycache__/blob"));
        QCOMPARE(m_model->root()->size(), size);
        QCOMPARE(m_model->advice().size(), 1u);
        QVERIFY(!m_model->dying());
    }
};

DUSTMERE_TEST_MAIN(TestSlaying)
#include "test_slaying.moc"
