// Times the two list screens in a 1440 × 900 view: the ranking of a scanned level of 5,000
// folders (rebuilt by a change of metric, then scrolled a row at a time), and a bounty board of
// 2,000 recommendations (built by Model::setAdvice, then scrolled a row at a time). A build is
// measured up to its first rendered frame; a scroll frame is the scroll, the pending events and
// the rendering. QWidget::render first walks every descendant of the view, so a frame of the
// board also pays for a pass over the rows made so far, which an on-screen update skips.
//
//   screens_bench [--frames=N]
// prints "ranking-build-ms", "ranking-scroll-frame-ms", "board-clear-ms", "board-2000-build-ms" and
// "board-scroll-frame-ms" (means, in milliseconds).

#include "advisor/Advice.h"
#include "game/Game.h"
#include "platform/Appearance.h"
#include "session/Model.h"
#include "ui/screens/BountyRow.h"
#include "ui/screens/BountyView.h"
#include "ui/screens/RankRow.h"
#include "ui/screens/RankingView.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTimer>
#include <algorithm>
#include <array>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace {

constexpr int folderCount = 5000;
constexpr int adviceCount = 2000;
constexpr std::uint64_t MB = 1'000'000;

[[noreturn]] void fail(const char *what)
{
    std::fprintf(stderr, "screens_bench: %s\n", what);
    std::exit(1);
}

void check(bool ok, const char *what)
{
    if (!ok)
        fail(what);
}

void makeFile(const std::string &path, std::uint64_t bytes)
{
    const int fd = ::open(path.c_str(), O_CREAT | O_WRONLY | O_TRUNC, 0644);
    check(fd >= 0, "cannot create a file");
    if (bytes > 0)
        check(::posix_fallocate(fd, 0, off_t(bytes)) == 0, "cannot allocate a file");
    ::close(fd);
}

// 5,000 folders whose sizes fall off as 12 MB / rank (about 110 MB in all), handed out in a
// shuffled order, and one to four files each (mostly one), so that the two metrics disagree.
void makeTree(const std::string &root)
{
    check(::mkdir(root.c_str(), 0755) == 0, "cannot create the tree");
    for (int i = 0; i < folderCount; ++i) {
        const std::string dir = root + "/folder-" + std::to_string(i);
        check(::mkdir(dir.c_str(), 0755) == 0, "cannot create a folder");
        const int rank = int((std::int64_t(i) * 2711) % folderCount); // 2711 is prime to 5000
        makeFile(dir + "/data", std::max<std::uint64_t>(12 * MB / (rank + 1), 4096));
        for (int extra = 0; extra < (i % 4 == 0 ? 1 + (i / 4) % 3 : 0); ++extra)
            makeFile(dir + "/note-" + std::to_string(extra), 0);
    }
}

bool scan(Model &model, Game &game, const std::string &path)
{
    model.setScanPath(path);
    QEventLoop loop;
    QObject::connect(&model, &Model::scanningChanged, &loop, [&] {
        if (!model.scanning())
            loop.quit();
    });
    QTimer::singleShot(120'000, &loop, &QEventLoop::quit);
    model.scan(game);
    if (model.scanning())
        loop.exec();
    return !model.scanning() && model.root() != nullptr;
}

void wait(int ms)
{
    QEventLoop loop;
    QTimer::singleShot(ms, &loop, &QEventLoop::quit);
    loop.exec();
}

// What a change sets off: the rebuild the view schedules for its next turn of the event loop, and
// the layout requests that rebuild posts.
void settle()
{
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents();
}

void flushDeletes()
{
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

void render(QWidget &w, QImage &image)
{
    image.fill(Qt::white);
    w.render(&image);
}

double msSince(const QElapsedTimer &timer)
{
    return double(timer.nsecsElapsed()) / 1e6;
}

// The row drawn first in the ranking, found by position so that asking does not rebuild it.
const RankRow *topRow(const RankingView &view)
{
    QWidget *hit = view.widget()->childAt(RankingView::padding + RankRow::padX + 2,
                                          RankingView::padding + RankRow::rowHeight / 2);
    while (hit && !qobject_cast<RankRow *>(hit))
        hit = hit->parentWidget();
    return qobject_cast<RankRow *>(hit);
}

// Scrolls one step at a time, down to the end and back, and renders a frame after each step.
double scrollFrames(QWidget &view, QScrollBar &bar, int step, int frames, QImage &image)
{
    check(bar.maximum() >= step, "nothing to scroll");
    int direction = 1;
    int moved = 0;
    double total = 0;
    QElapsedTimer timer;
    for (int i = 0; i < frames; ++i) {
        if (bar.value() + direction * step > bar.maximum() || bar.value() + direction * step < 0)
            direction = -direction;
        const int before = bar.value();
        timer.start();
        bar.setValue(before + direction * step);
        QCoreApplication::processEvents();
        render(view, image);
        total += msSince(timer);
        moved += bar.value() != before ? 1 : 0;
    }
    check(moved == frames, "a scroll step did not move");
    return total / frames;
}

// A step scrolled in a fresh view must show something else.
void checkScrollRedraws(QWidget &view, QScrollBar &bar, int step, QSize size)
{
    QImage a(size, QImage::Format_ARGB32_Premultiplied);
    QImage b(size, QImage::Format_ARGB32_Premultiplied);
    bar.setValue(0);
    render(view, a);
    bar.setValue(step);
    render(view, b);
    check(a != b, "scrolling does not change the frame");
    bar.setValue(0);
}

std::vector<Advice> makeAdvice(const NodePtr &root)
{
    static const std::array<QString, 4> reasons = {
        QStringLiteral("Package cache; downloaded again when needed."),
        QStringLiteral("Build output that the next build recreates."),
        QStringLiteral("Not opened for over a year."),
        QStringLiteral("Installer disk image; the app it installs is already here."),
    };
    const std::string base = *root->basePath();
    const std::vector<NodePtr> &folders = root->children();
    std::vector<Advice> out;
    out.reserve(adviceCount);
    for (int i = 0; i < adviceCount; ++i) {
        Advice a;
        a.safety = Safeties::all[std::size_t(i % 3)];
        a.reason = reasons[std::size_t(i % 4)];
        a.actionable = i % 7 != 0;
        if (i % 2 == 0) {
            const NodePtr &folder = folders[std::size_t(i * 2) % folders.size()];
            a.target = folder;
            a.path = folder->path();
            a.size = folder->size();
        } else {
            // Big files met in the scanned tree, and some outside it that may not be slain.
            const std::string dir = i % 5 == 0 ? std::string("/usr/share/images")
                                               : base + "/folder-" + std::to_string(i);
            BigFile file{dir + "/disk-image-" + std::to_string(i) + ".iso",
                         std::uint64_t(25 + (i * 7919) % 4000) * MB, 1'600'000'000 + i};
            a.path = file.path;
            a.size = file.size;
            a.target = std::move(file);
        }
        out.push_back(std::move(a));
    }
    return out;
}

} // namespace

int main(int argc, char *argv[])
{
    // Game and Model read settings, the Trash and the home folder; keep them all in here.
    QTemporaryDir sandbox;
    check(sandbox.isValid(), "no temporary folder");
    const QByteArray sandboxPath = QFile::encodeName(sandbox.path());
    for (const char *dir : {"config", "data", "home"})
        check(QDir().mkpath(sandbox.filePath(QString::fromLatin1(dir))), "cannot sandbox");
    qputenv("XDG_CONFIG_HOME", sandboxPath + "/config");
    qputenv("XDG_DATA_HOME", sandboxPath + "/data");
    qputenv("HOME", sandboxPath + "/home");
    qputenv("XDG_RUNTIME_DIR", sandboxPath);
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    int frames = 200;
    for (int i = 1; i < argc; ++i) {
        const QByteArray arg(argv[i]);
        if (arg.startsWith("--frames="))
            frames = std::max(1, arg.mid(9).toInt());
    }

    const std::string tree = sandboxPath.toStdString() + "/home/level";
    makeTree(tree);
    Game::Options options;
    options.play = [](const Sound::Sfx &) {};
    Game game(options);
    Model model;
    model.setSoundPlayer([](const Sound::Sfx &) {});
    check(scan(model, game, tree), "the scan failed");
    check(model.current() && model.current()->children().size() == std::size_t(folderCount),
          "the scan missed folders");

    const QSize size(1440, 900);
    const QPalette palette = Appearance::palette(Appearance::Scheme::light);
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    QElapsedTimer timer;

    // Ranking: every change of metric re-sorts 5,000 folders and replaces the rows on screen.
    std::array<std::string, 2> leaders;
    for (std::size_t m = 0; m < leaders.size(); ++m) {
        model.setMetric(Metrics::all[m]);
        leaders[m] = model.tiles(1).front().name;
    }
    check(leaders[0] != leaders[1], "both metrics rank the same folder first");
    model.setMetric(Metric::size);
    double rankingBuildMs = 0;
    double rankingScrollMs = 0;
    {
        RankingView ranking(model, game);
        ranking.setPalette(palette);
        ranking.resize(size);
        ranking.setAttribute(Qt::WA_DontShowOnScreen); // render() draws the only frame
        ranking.show();
        settle();
        // Not a row: a focused row that is replaced hands the focus down the dying rows, and each
        // one scrolls the list to itself, leaving it away from the top.
        ranking.setFocus();
        render(ranking, image);
        constexpr int builds = 40;
        for (int i = 0; i < builds; ++i) {
            ranking.verticalScrollBar()->setValue(0);
            flushDeletes();
            const int next = (i + 1) % 2;
            check(topRow(ranking) && topRow(ranking)->tile().name != leaders[std::size_t(next)],
                  "the ranking shows the next order already");
            timer.start();
            model.setMetric(Metrics::all[std::size_t(next)]);
            settle();
            render(ranking, image);
            rankingBuildMs += msSince(timer);
            const RankRow *after = topRow(ranking);
            check(after && after->tile().name == leaders[std::size_t(next)],
                  "the ranking did not rebuild");
        }
        rankingBuildMs /= builds;
        check(ranking.tiles().size() == std::size_t(RankingView::limit) + 1,
              "unexpected number of rows");
        check(ranking.createdRows() > 0 && ranking.createdRows() < int(ranking.tiles().size()),
              "rows are not created lazily");
        flushDeletes();

        wait(1200); // lets the bars grow in
        QScrollBar &bar = *ranking.verticalScrollBar();
        const int step = RankRow::rowHeight + RankingView::spacing;
        checkScrollRedraws(ranking, bar, step, size);
        rankingScrollMs = scrollFrames(ranking, bar, step, frames, image);
        check(frames * step < bar.maximum() || ranking.createdRows() == int(ranking.tiles().size()),
              "scrolling did not reach every row");
    }
    flushDeletes();

    // Bounty board: row widgets made as they come into view.
    const std::vector<Advice> advice = makeAdvice(model.root());
    double boardClearMs = 0;
    double boardBuildMs = 0;
    double boardScrollMs = 0;
    {
        BountyView board(model, game);
        board.setPalette(palette);
        board.resize(size);
        board.setAttribute(Qt::WA_DontShowOnScreen);
        board.show();
        settle();
        render(board, image);
        constexpr int builds = 2; // after one that also fills the font, glyph and icon caches
        for (int i = 0; i < builds + 1; ++i) {
            timer.start();
            model.setAdvice({});
            settle();
            render(board, image);
            if (i > 0)
                boardClearMs += msSince(timer);
            check(board.createdRows() == 0, "the board was not cleared");
            flushDeletes();

            std::vector<Advice> items = advice;
            timer.start();
            model.setAdvice(std::move(items));
            settle();
            render(board, image);
            if (i > 0)
                boardBuildMs += msSince(timer);
            check(board.createdRows() > 0 && board.createdRows() < adviceCount,
                  "the board did not build just the rows in view");
            flushDeletes();
        }
        boardClearMs /= builds;
        boardBuildMs /= builds;
        const QLabel *summary = board.findChild<QLabel *>(QStringLiteral("summary"));
        check(summary && summary->text().startsWith(QString::number(adviceCount)),
              "the board shows another list");

        auto *area = board.findChild<QScrollArea *>();
        check(area, "the board has no scroll area");
        QScrollBar &bar = *area->verticalScrollBar();
        const int step = board.findChild<BountyRow *>()->height() + 2;
        checkScrollRedraws(board, bar, step, size);
        boardScrollMs = scrollFrames(board, bar, step, frames, image);
    }
    flushDeletes();

    std::printf("ranking-build-ms %.3f\n", rankingBuildMs);
    std::printf("ranking-scroll-frame-ms %.3f\n", rankingScrollMs);
    std::printf("board-clear-ms %.3f\n", boardClearMs);
    std::printf("board-2000-build-ms %.3f\n", boardBuildMs);
    std::printf("board-scroll-frame-ms %.3f\n", boardScrollMs);
    return 0;
}
