// Renders every screen of src/ui/screens in both appearances to PNG files for a visual check.
// Not a test: run it by hand, `shoot_screens OUTDIR [FOLDER]`; FOLDER (default /usr) feeds the
// ranking and the scanning island with real sizes. The bounty board comes from a synthetic home.
#include "game/Game.h"
#include "magic/Magic.h"
#include "platform/Appearance.h"
#include "session/Model.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"
#include "ui/TopBar.h"
#include "ui/screens/BountyView.h"
#include "ui/screens/CharacterSheet.h"
#include "ui/screens/Confetti.h"
#include "ui/screens/RankRow.h"
#include "ui/screens/RankingView.h"
#include "ui/screens/ScanningView.h"
#include "ui/screens/TileMenu.h"
#include "ui/screens/ToastView.h"
#include "ui/screens/WelcomeView.h"
#include "world/ui/WorldScene.h"
#include "world/ui/WorldView.h"

#include <QApplication>
#include <QDir>
#include <QIcon>
#include <QPainter>

using namespace TreeBuilder;

namespace {

constexpr std::uint64_t MB = 1'000'000;
QString outDir;

void save(QWidget &w, const QString &name, Appearance::Scheme scheme)
{
    const QString suffix =
        scheme == Appearance::Scheme::dark ? QStringLiteral("-dark") : QStringLiteral("-light");
    for (WorldScene *scene : w.findChildren<WorldScene *>()) {
        if (scene->isVisible())
            scene->settle();
    }
    w.grab().save(outDir + "/" + name + suffix + ".png");
}

void setScheme(Appearance::Scheme scheme)
{
    QApplication::setPalette(Appearance::palette(scheme));
}

void makeDirs(const QByteArray &path)
{
    QDir().mkpath(QFile::decodeName(path));
}

void buildHome(const QByteArray &home)
{
    // The cache folder where it usually is, so its tools' caches are advised one by one.
    qputenv("XDG_CACHE_HOME", home + "/.cache");
    makeDirs(home + "/.cache/pip");
    makeFile(home + "/.cache/pip/http.bin", 120 * MB);
    makeDirs(home + "/.npm");
    makeFile(home + "/.npm/blob", 80 * MB);
    makeDirs(home + "/Library/Caches/com.example.Browser");
    makeFile(home + "/Library/Caches/com.example.Browser/data", 60 * MB);
    makeDirs(home + "/Library/Logs");
    makeFile(home + "/Library/Logs/system.log", 30 * MB);
    makeDirs(home + "/code/site/node_modules");
    makeFile(home + "/code/site/package.json", 1);
    makeFile(home + "/code/site/node_modules/pack", 150 * MB);
    makeDirs(home + "/code/tool/__pycache__");
    makeFile(home + "/code/tool/__pycache__/mod.pyc", 27 * MB);
    makeDirs(home + "/Downloads");
    makeFile(home + "/Downloads/Installer-2.4.dmg", 300 * MB);
    makeDirs(home + "/.Trash");
    makeFile(home + "/.Trash/old", 40 * MB);
    makeDirs(home + "/Documents");
    makeFile(home + "/Documents/notes.txt", 1 * MB);
}

void scan(Model &model, Game &game, const std::string &path)
{
    model.setScanPath(path);
    model.scan(game);
    while (model.scanning())
        QTest::qWait(50);
}

} // namespace

int main(int argc, char *argv[])
{
    TestSandbox sandbox;
    QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates));
    QApplication app(argc, argv);
    QApplication::setStyle(QStringLiteral("Fusion"));
    // As on a desktop, where the platform theme points Qt at the system's icon themes.
    QIcon::setThemeSearchPaths(QIcon::themeSearchPaths() << QStringLiteral("/usr/share/icons"));
    QIcon::setThemeName(QStringLiteral("Adwaita"));
    if (argc < 2)
        qFatal("usage: shoot_screens OUTDIR [FOLDER]");
    outDir = QString::fromLocal8Bit(argv[1]);
    QDir().mkpath(outDir);
    const std::string big = argc > 2 ? argv[2] : "/usr";

    Game::Options go;
    go.play = [](const Sound::Sfx &) {};
    go.toastDuration = std::chrono::hours(1);
    Game game(go);
    Magic magic;
    Model model;
    model.setSoundPlayer([](const Sound::Sfx &) {});

    const auto schemes = {Appearance::Scheme::light, Appearance::Scheme::dark};

    // Welcome
    for (const auto scheme : schemes) {
        setScheme(scheme);
        WelcomeView welcome(model, game);
        welcome.resize(960, 600);
        welcome.show();
        QTest::qWait(50);
        save(welcome, "welcome", scheme);
    }

    // Scanning: the plain sea first, then the island of the finished folders.
    for (const auto scheme : schemes) {
        setScheme(scheme);
        Model scanning;
        scanning.setSoundPlayer([](const Sound::Sfx &) {});
        ScanningView view(scanning, game, false);
        view.resize(960, 600);
        view.show();
        scanning.setScanPath(big);
        scanning.scan(game);
        QTest::qWait(60);
        save(view, "scanning-sea", scheme);
        for (int i = 0; i < 400 && scanning.partial().size() < 4 && scanning.scanning(); ++i)
            QTest::qWait(50);
        QTest::qWait(900);
        save(view, "scanning-island", scheme);
        scanning.stop();
    }

    // Ranking of a real folder.
    scan(model, game, big);
    model.setMode(Mode::ranking);
    for (const auto metric : {Metric::size, Metric::files}) {
        model.setMetric(metric);
        for (const auto scheme : schemes) {
            setScheme(scheme);
            RankingView ranking(model, game);
            ranking.resize(960, 600);
            ranking.show();
            QTest::qWait(1200);
            if (RankRow *row = ranking.row(1)) {
                // Hover look on the second row.
                QEnterEvent enter(QPointF(10, 10), QPointF(10, 10), QPointF(10, 10));
                QApplication::sendEvent(row, &enter);
                QTest::qWait(400);
            }
            save(ranking, metric == Metric::size ? "ranking-size" : "ranking-files", scheme);
        }
    }

    // Bounty board from a synthetic home.
    const QByteArray home = QFile::encodeName(sandbox.home());
    buildHome(home);
    scan(model, game, home.toStdString());
    for (const auto scheme : schemes) {
        setScheme(scheme);
        BountyView board(model, game);
        board.resize(960, 760);
        board.show();
        QTest::qWait(100);
        save(board, "bounties", scheme);
    }
    {
        Model empty;
        for (const auto scheme : schemes) {
            setScheme(scheme);
            BountyView board(empty, game);
            board.resize(960, 600);
            board.show();
            QTest::qWait(50);
            save(board, "bounties-empty", scheme);
        }
    }

    // What grew since the last scan: the ranking by size and by growth, the map and the top bar.
    {
        const QByteArray realm = QFile::encodeName(sandbox.root()) + "/realm";
        const std::pair<const char *, std::uint64_t> before[] = {
            {"Movies", 900},    {"Projects", 400}, {"Music", 300},    {"Photos", 250},
            {"Downloads", 600}, {"Games", 200},    {"Documents", 120}};
        for (const auto &[name, mb] : before) {
            makeDirs(realm + "/" + name);
            makeFile(realm + "/" + name + "/blob", mb * MB);
        }
        Model grown;
        grown.setSoundPlayer([](const Sound::Sfx &) {});
        scan(grown, game, realm.toStdString());
        grown.memory().waitForWrites();
        makeFile(realm + "/Movies/new.mkv", 500 * MB);
        makeFile(realm + "/Projects/more", 150 * MB);
        QFile::remove(QFile::decodeName(realm + "/Downloads/blob"));
        makeFile(realm + "/Downloads/small", 100 * MB);
        makeDirs(realm + "/VirtualBox");
        makeFile(realm + "/VirtualBox/disk", 700 * MB);
        scan(grown, game, realm.toStdString());
        for (const auto scheme : schemes) {
            setScheme(scheme);
            for (const bool byGrowth : {false, true}) {
                RankingView ranking(grown, game);
                ranking.resize(960, 420);
                ranking.setByGrowth(byGrowth);
                ranking.show();
                QTest::qWait(1200);
                save(ranking, byGrowth ? "ranking-by-growth" : "ranking-growth", scheme);
            }
            WorldView map(grown, game, magic, true);
            map.resize(960, 600);
            map.show();
            QTest::qWait(900);
            save(map, "map-growth", scheme);
            TopBar bar(grown, game, magic, true);
            bar.resize(960, bar.sizeHint().height());
            bar.show();
            QTest::qWait(100);
            save(bar, "topbar-growth", scheme);
        }
    }

    // Tile menus
    for (const auto scheme : schemes) {
        setScheme(scheme);
        const std::vector<Tile> tiles = model.tiles(100);
        const auto slayable = std::find_if(tiles.begin(), tiles.end(), [&model](const Tile &t) {
            return t.folder() && model.canSlay(**t.folder());
        });
        TileMenu folder(model, game, *slayable);
        folder.adjustSize();
        save(folder, "menu-folder", scheme);
        Tile loose;
        loose.id = Tile::looseId;
        loose.kind = Tile::Loose{};
        loose.name = "Loose files";
        TileMenu other(model, game, loose);
        other.adjustSize();
        save(other, "menu-loose", scheme);
    }

    // A slay in progress, as the ranking and the board show it (the home is the sandbox's).
    for (const auto scheme : schemes) {
        setScheme(scheme);
        Model slaying;
        slaying.setSoundPlayer([](const Sound::Sfx &) {});
        slaying.setDeathDuration(std::chrono::seconds(5));
        scan(slaying, game, home.toStdString());
        RankingView ranking(slaying, game);
        ranking.resize(960, 420);
        ranking.show();
        BountyView board(slaying, game);
        board.resize(960, 420);
        board.show();
        QTest::qWait(900);
        const char *victim = scheme == Appearance::Scheme::dark ? "/.npm" : "/.cache/pip";
        slaying.slay(slaying.node(home.toStdString() + victim), game);
        QTest::qWait(700);
        save(ranking, "ranking-dying", scheme);
        save(board, "bounties-dying", scheme);
        QTest::qWait(5000);
    }

    // Toast over a plain window, and confetti frozen in mid-air.
    for (const auto scheme : schemes) {
        setScheme(scheme);
        QWidget window;
        window.resize(960, 400);
        window.setAutoFillBackground(true);
        ToastView toast(game, false, &window);
        toast.setGeometry(window.rect());
        Confetti confetti(game, &window);
        confetti.setGeometry(window.rect());
        toast.raise();
        const QDateTime start = QDateTime::currentDateTime();
        confetti.setClock([start] { return start.addMSecs(450); });
        window.show();
        game.post(Toast::make(QStringLiteral("🐉"), QStringLiteral("Achievement: Dragon Spotter"),
                              QStringLiteral("Find a folder over 10 GB · +30 XP")));
        confetti.burst(start);
        QTest::qWait(700);
        save(window, "toast-confetti", scheme);
    }

    // Character sheet with some progress.
    game.gainXP(830);
    game.unlock(QStringLiteral("first_scan"));
    game.unlock(QStringLiteral("dragon"));
    game.unlock(QStringLiteral("first_blood"));
    for (const auto scheme : schemes) {
        setScheme(scheme);
        CharacterSheet sheet(game, magic, model.memory());
        sheet.show();
        QTest::qWait(700);
        save(sheet, "sheet-top", scheme);
        sheet.widget()->grab().save(outDir + "/sheet-full" +
                                    (scheme == Appearance::Scheme::dark ? "-dark" : "-light") +
                                    ".png");
    }
    return 0;
}
