#include "world/ui/IslandRenderer.h"

#include "world/ui/IslandDrawing.h"

#include <QPainter>
#include <QtConcurrent>
#include <cmath>

namespace {

QImage draw(const IslandRenderer::Request &r)
{
    IslandDrawing island(std::make_shared<const WorldLayout>(r.layout()), r.title);
    QImage image(std::max(1, int(std::ceil(r.size.width() * r.dpr))),
                 std::max(1, int(std::ceil(r.size.height() * r.dpr))),
                 QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(r.dpr);
    image.fill(r.colors.sea);
    QPainter painter(&image);
    island.paint(painter, r.colors, QRectF(QPointF(0, 0), QSizeF(r.size)));
    return image;
}

} // namespace

IslandRenderer::IslandRenderer(QObject *parent) : QObject(parent)
{
    connect(&m_watcher, &QFutureWatcherBase::finished, this, &IslandRenderer::finished);
}

IslandRenderer::~IslandRenderer()
{
    m_waiting.reset();
    m_watcher.waitForFinished();
}

void IslandRenderer::request(Request request)
{
    if (m_drawing)
        m_waiting = std::move(request);
    else
        start(std::move(request));
}

void IslandRenderer::clear()
{
    m_waiting.reset();
    m_image = QImage();
    ++m_generation;
}

void IslandRenderer::waitForIdle()
{
    while (m_drawing) {
        m_watcher.waitForFinished();
        finished();
    }
}

void IslandRenderer::start(Request request)
{
    m_drawing = true;
    m_drawnGeneration = m_generation;
    m_watcher.setFuture(
        QtConcurrent::run([request = std::move(request)] { return draw(request); }));
}

void IslandRenderer::finished()
{
    // waitForIdle() may have taken the result before the watcher's signal arrived.
    if (!m_drawing || !m_watcher.isFinished())
        return;
    m_drawing = false;
    QImage image = m_watcher.result();
    const bool current = m_drawnGeneration == m_generation;
    if (m_waiting) {
        Request next = std::move(*m_waiting);
        m_waiting.reset();
        start(std::move(next));
    }
    if (current) {
        m_image = std::move(image);
        Q_EMIT ready();
    }
}
