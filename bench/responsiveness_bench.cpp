// Measures how long the main thread is kept busy while the window scans a big tree, from the
// window's first frame on. A watchdog thread posts a ping to the main thread every few
// milliseconds; how late a ping runs is how long the main thread was blocked (by painting, by
// taking over partial results, by finishing the scan). The window is the real one, offscreen,
// with sound off.
//
//   responsiveness_bench FOLDER
// prints "scan-s <x>", "files <n>", and for the scan, the two seconds after it and four seconds of
// the hero walking on the map the longest block ("scan-max-block-ms", "after-scan-max-block-ms",
// "walk-max-block-ms"), the 99th percentile and the number of blocks over 50 ms; the process's
// CPU use over ten seconds of the map standing still ("idle-cpu-percent") and the map's paints a
// second while walking ("walk-paints-per-s"); then the slowest events the main thread handled.
// Set QT_QPA_PLATFORM=xcb (under xvfb-run) to measure the real window on X11.

#include "game/Game.h"
#include "magic/Magic.h"
#include "platform/Paths.h"
#include "session/Model.h"
#include "ui/MainWindow.h"
#include "world/ui/WorldView.h"

#include <QApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QKeyEvent>
#include <QTemporaryDir>
#include <QTimer>
#include <QWindow>
#include <algorithm>
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <mutex>
#include <sys/resource.h>
#include <thread>
#include <vector>

namespace {

using Clock = std::chrono::steady_clock;

// User and system time of the whole process, all threads, in seconds.
double cpuSeconds()
{
    rusage usage{};
    getrusage(RUSAGE_SELF, &usage);
    const auto seconds = [](const timeval &t) {
        return double(t.tv_sec) + double(t.tv_usec) / 1e6;
    };
    return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

class Watchdog
{
public:
    static constexpr auto interval = std::chrono::milliseconds(4);

    void start()
    {
        m_thread = std::thread([this] {
            while (m_running) {
                if (m_paused) {
                    std::this_thread::sleep_for(std::chrono::milliseconds(100));
                    continue;
                }
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
    // Pings handled from now on count towards the next phase (0: scanning, 1: after the scan,
    // 2: standing still, 3: walking). While paused none are sent, so the main thread can sleep.
    void nextPhase()
    {
        std::lock_guard guard(m_lock);
        m_phases.push_back(m_latencies.size());
    }
    void setPaused(bool paused) { m_paused = paused; }
    [[nodiscard]] std::vector<double> latencies(std::size_t phase)
    {
        std::lock_guard guard(m_lock);
        const auto at = [&](std::size_t i) {
            return i == 0 ? 0 : i <= m_phases.size() ? m_phases[i - 1] : m_latencies.size();
        };
        const std::size_t from = std::min(at(phase), m_latencies.size());
        const std::size_t to = std::min(at(phase + 1), m_latencies.size());
        return {m_latencies.begin() + std::ptrdiff_t(from),
                m_latencies.begin() + std::ptrdiff_t(to)};
    }

private:
    void record(Clock::duration late)
    {
        std::lock_guard guard(m_lock);
        m_latencies.push_back(std::chrono::duration<double, std::milli>(late).count());
    }

    std::atomic<bool> m_running{true};
    std::atomic<bool> m_paused{false};
    std::thread m_thread;
    std::mutex m_lock;
    std::vector<double> m_latencies;
    std::vector<std::size_t> m_phases;
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
        if (!timing)
            return QApplication::notify(receiver, event);
        if (event->type() == QEvent::Paint && receiver->inherits("WorldScene"))
            ++scenePaints;
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

    int scenePaints = 0;
    bool timing = true; // off while measuring the idle window's own cost

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
    for (const char *var : {"HOME", "XDG_CONFIG_HOME", "XDG_DATA_HOME", "XDG_CACHE_HOME"})
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
    constexpr int idleMs = 10000;
    constexpr int walkSteps = 4;
    constexpr int walkStepMs = 1000;
    double idleFrom = 0;
    double idleCpu = 0;
    int walkPaints = 0;
    // Key events to the map, as a user's keyboard would send them (without a window manager the
    // window never becomes active, so nothing has the keyboard focus).
    const auto walk = [&window](Qt::Key key, bool down) {
        auto *target = window.findChild<WorldView *>();
        if (!target)
            return;
        QKeyEvent event(down ? QEvent::KeyPress : QEvent::KeyRelease, key, Qt::NoModifier);
        QApplication::sendEvent(target, &event);
    };
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
        watchdog.nextPhase();
        // What follows the scan (the island, the ranking, the board) counts too. Then the map
        // stands still (no pings: they would keep the main thread awake), then the hero walks.
        QTimer::singleShot(2000, &app, [&] {
            watchdog.setPaused(true);
            watchdog.nextPhase();
            model.setMode(Mode::map);
            QTimer::singleShot(3000, &app, [&] {
                app.timing = false;
                idleFrom = cpuSeconds();
            });
            QTimer::singleShot(3000 + idleMs, &app, [&] {
                idleCpu = (cpuSeconds() - idleFrom) / (idleMs / 1000.0);
                app.timing = true;
                watchdog.nextPhase();
                watchdog.setPaused(false);
                app.scenePaints = 0;
                walk(Qt::Key_Right, true);
            });
            for (int i = 1; i < walkSteps; ++i)
                QTimer::singleShot(3000 + idleMs + i * walkStepMs, &app, [&, i] {
                    walk(i % 2 ? Qt::Key_Right : Qt::Key_Left, false);
                    walk(i % 2 ? Qt::Key_Left : Qt::Key_Right, true);
                });
            QTimer::singleShot(3000 + idleMs + walkSteps * walkStepMs, &app, [&] {
                walkPaints = app.scenePaints;
                walk(walkSteps % 2 ? Qt::Key_Right : Qt::Key_Left, false);
                QApplication::quit();
            });
        });
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

    std::printf("scan-s %.2f\nfiles %lld\n", scanSeconds,
                static_cast<long long>(model.progress().files));
    const std::array<const char *, 3> phases = {"scan", "after-scan", "walk"};
    for (std::size_t phase = 0; phase < phases.size(); ++phase) {
        std::vector<double> late = watchdog.latencies(phase == 2 ? 3 : phase);
        std::sort(late.begin(), late.end());
        const double p99 = late.empty() ? 0 : late[std::size_t(double(late.size() - 1) * 0.99)];
        const auto over =
            std::count_if(late.begin(), late.end(), [](double ms) { return ms > 50; });
        const char *name = phases[phase];
        std::printf("%s-max-block-ms %.1f\n%s-p99-block-ms %.1f\n%s-blocks-over-50ms %lld\n", name,
                    late.empty() ? 0.0 : late.back(), name, p99, name,
                    static_cast<long long>(over));
    }
    std::printf("idle-cpu-percent %.2f\n", idleCpu * 100);
    std::printf("walk-paints-per-s %.1f\n", walkPaints / (walkSteps * walkStepMs / 1000.0));
    for (const auto &slow : app.slowest())
        std::printf("slow-event %.1f ms %s\n", slow.ms, slow.what.constData());
    return started ? status : 1;
}
