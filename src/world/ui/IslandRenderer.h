#pragma once

#include "world/WorldLayout.h"
#include "world/ui/WorldPalette.h"

#include <QFutureWatcher>
#include <QImage>
#include <QObject>
#include <functional>
#include <optional>

// Lays out and draws whole islands into images on a worker thread, so a new island never holds
// up the window. While one is drawn, only the newest request waits its turn; older ones are
// dropped unseen.
class IslandRenderer : public QObject
{
    Q_OBJECT

public:
    struct Request
    {
        // Runs on the worker, so it must only read data it owns.
        std::function<WorldLayout()> layout;
        QString title;
        QSize size;
        qreal dpr = 1;
        WorldPalette colors;
    };

    explicit IslandRenderer(QObject *parent = nullptr);
    // Waits for a drawing in progress.
    ~IslandRenderer() override;

    void request(Request request);
    // Forgets the image and any waiting request.
    void clear();
    // The newest finished island; null until one is.
    [[nodiscard]] const QImage &image() const { return m_image; }
    [[nodiscard]] bool busy() const { return m_drawing; }
    // Blocks until every request made so far is drawn (for tests and screenshots).
    void waitForIdle();

Q_SIGNALS:
    void ready();

private:
    void start(Request request);
    void finished();

    QFutureWatcher<QImage> m_watcher;
    bool m_drawing = false;
    std::optional<Request> m_waiting;
    QImage m_image;
    int m_generation = 0; // bumped by clear(), so a drawing finished afterwards is dropped
    int m_drawnGeneration = 0;
};
