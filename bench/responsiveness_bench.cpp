// Measures how long the main thread is kept busy while the window scans a big tree, from the
// window's first frame on. A watchdog thread posts a ping to the main thread every few
// milliseconds; how late a ping runs is how long the main thread was blocked (by painting, by
// taking over partial results, by finishing the scan). The window is the real one, offscreen,
// with sound off.
//
//   responsiveness_bench FOLDER
// prints "scan-s <x>", "files <n>", and for the scan and the two seconds after it the longest
// block ("scan-max-block-ms", "after-scan-max-block-ms"), the 99th percentile and the number of
// blocks over 50 ms, then the slowest events the main thread handled.

#include "game/Game.h"
#include "magic/Magic.h"
#include "platform/Paths.h"
#include "session/Model.h"
#include "ui/MainWindow.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QTemporaryDir>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

class Watchdog
{
public:
    static constexpr auto interval = std::chrono::milliseconds(4);

    void start()
    {
        m_thread = std::thread([this] {
            while (m_running) {
                const auto sent = Clock::now();
                QMetaObject::invokeMethod(
                    qApp, [this, sent] { record(Clock::now() - sent); }, Qt::QueuedConnection);
                std::this_thread::sleep_for(interval);
            }
        });
    }
    void stop()
    {
        m_running = false;
        m_thread.join();
    }
    // Pings handled from now on count as after the scan.
    void markScanEnd()
    {
        std::lock_guard guard(m_lock);
        m_scanPings = m_latencies.size();
    }
    // Lateness of the pings handled while scanning and of those after.
    [[nodiscard]] std::pair<std::vector<double>, std::vector<double>> latencies()
    {
        std::lock_guard guard(m_lock);
        const auto split =
            m_latencies.begin() + std::ptrdiff_t(std::min(m_scanPings, m_latencies.size()));
        return {{m_latencies.begin(), split}, {split, m_latencies.end()}};
    }

private:
    void record(Clock::duration late)
    {
        std::lock_guard guard(m_lock);
        m_latencies.push_back(std::chrono::duration<double, std::milli>(late).count());
    }

    std::atomic<bool> m_running{true};
    std::thread m_thread;
    std::mutex m_lock;
    std::vector<double> m_latencies;
    std::size_t m_scanPings = SIZE_MAX;
};

// Times every event the main thread handles, to name what blocked it.
class TimingApplication : public QApplication
{
public:
    using QApplication::QApplication;

    struct Slow
    {
        double ms;
        QByteArray what;
    };

    bool notify(QObject *receiver, QEvent *event) override
    {
        if (m_depth > 0 && event->type() != QEvent::Paint)
            return QApplication::notify(receiver, event);
        ++m_depth;
        const auto start = Clock::now();
        const QEvent::Type type = event->type(); // the event may be gone afterwards
        const QByteArray name = receiver->metaObject()->className();
        const bool handled = QApplication::notify(receiver, event);
        --m_depth;
        const double ms = std::chrono::duration<double, std::milli>(Clock::now() - start).count();
        if (ms > 30)
            m_slow.push_back({ms, name + " event " + QByteArray::number(int(type))});
        return handled;
    }
    [[nodiscard]] std::vector<Slow> slowest() const
    {
        std::vector<Slow> s = m_slow;
        std::sort(s.begin(), s.end(), [](const Slow &a, const Slow &b) { return a.ms > b.ms; });
        s.resize(std::min<std::size_t>(s.size(), 8));
        return s;
    }

private:
    int m_depth = 0;
    std::vector<Slow> m_slow;
};

} // namespace

int main(int argc, char *argv[])
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: responsiveness_bench FOLDER\n");
        return 2;
    }
    const std::string folder = Paths::absolute(argv[1], Paths::currentFolder());
    // The window reads and writes settings; keep them away from the user's.
    QTemporaryDir sandbox;
    for (const char *var : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME"})
        qputenv(var, QFile::encodeName(sandbox.path()));
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    TimingApplication app(argc, argv);

    Model model;
    model.setSoundPlayer([](const Sound::Sfx &) {});
    Game::Options options;
    options.play = [](const Sound::Sfx &) {};
    Game game(options);
    Magic magic;
    ContentView::Options start;
    start.scanPath = folder;
    MainWindow window(model, game, magic, start);
    window.resize(1440, 900);
    window.show();

    Watchdog watchdog;
    QElapsedTimer scanTime;
    // The window may have started its scan already.
    bool started = model.scanning();
    scanTime.start();
    double scanSeconds = 0;
    QObject::connect(&model, &Model::scanningChanged, &app, [&] {
        if (model.scanning()) {
            started = true;
            scanTime.start();
            return;
        }
        if (!started)
            return;
        scanSeconds = double(scanTime.elapsed()) / 1000.0;
        watchdog.markScanEnd();
        // What follows the scan (the island, the ranking, the board) counts too.
        QTimer::singleShot(2000, &app, &QApplication::quit);
    });
    QTimer::singleShot(std::chrono::minutes(10), &app, [] {
        std::fprintf(stderr, "responsiveness_bench: no scan finished within 10 minutes\n");
        QApplication::exit(1);
    });
    // The first frame is start-up (fonts, glyph caches), not scanning: timing begins after it.
    while (!window.windowHandle() || !window.windowHandle()->isExposed())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
    QCoreApplication::processEvents();
    watchdog.start();
    const int status = app.exec();
    watchdog.stop();

    const auto [during, after] = watchdog.latencies();
    std::printf("scan-s %.2f\nfiles %lld\n", scanSeconds,
                static_cast<long long>(model.progress().files));
    for (const auto &[name, pings] : {std::pair{"scan", during}, std::pair{"after-scan", after}}) {
        std::vector<double> late = pings;
        std::sort(late.begin(), late.end());
        const double p99 = late.empty() ? 0 : late[std::size_t(double(late.size() - 1) * 0.99)];
        const auto over =
            std::count_if(late.begin(), late.end(), [](double ms) { return ms > 50; });
        std::printf("%s-max-block-ms %.1f\n%s-p99-block-ms %.1f\n%s-blocks-over-50ms %lld\n", name,
                    late.empty() ? 0.0 : late.back(), name, p99, name,
                    static_cast<long long>(over));
    }
    for (const auto &slow : app.slowest())
        std::printf("slow-event %.1f ms %s\n", slow.ms, slow.what.constData());
    return started ? status : 1;
}
