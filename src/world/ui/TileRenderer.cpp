#include "world/ui/TileRenderer.h"

#include "world/ui/IslandDrawing.h"

#include <QtConcurrent>
#include <algorithm>

namespace {

// A copy of `path` that shares nothing with it. Painting a path caches things inside its shared
// data, so the worker and the window must never paint the same one.
QPainterPath unshared(const QPainterPath &path)
{
    QPainterPath copy;
    copy.addPath(path);
    copy.setFillRule(path.fillRule());
    return copy;
}

WorldLayout unshared(WorldLayout layout)
{
    layout.coast = unshared(layout.coast);
    for (QPainterPath &river : layout.rivers)
        river = unshared(river);
    for (Region &region : layout.regions)
        region.shape = unshared(region.shape);
    return layout;
}

} // namespace

// Touched only by jobs, which run one after another.
struct TileRenderer::Worker
{
    Island island;
    std::optional<IslandDrawing> drawing;

    QImage draw(Cell cell)
    {
        if (!drawing)
            drawing.emplace(std::make_shared<const WorldLayout>(unshared(*island.layout)),
                            island.title);
        return drawing->image(island.area(cell), island.colors, island.dpr);
    }
};

TileRenderer::TileRenderer(QObject *parent) : QObject(parent)
{
    connect(&m_watcher, &QFutureWatcherBase::finished, this, &TileRenderer::finished);
}

TileRenderer::~TileRenderer()
{
    m_wanted.clear();
    m_watcher.waitForFinished();
}

void TileRenderer::setIsland(Island island)
{
    m_worker = std::make_shared<Worker>();
    m_worker->island = std::move(island);
    m_wanted.clear();
}

void TileRenderer::want(std::vector<Cell> cells)
{
    m_wanted = std::move(cells);
    if (m_drawing && m_worker && m_drawing->first == m_worker->island.generation)
        std::erase(m_wanted, m_drawing->second);
    if (!m_drawing)
        startNext();
}

void TileRenderer::waitForIdle()
{
    while (m_drawing) {
        m_watcher.waitForFinished();
        finished();
    }
}

void TileRenderer::startNext()
{
    if (m_wanted.empty() || !m_worker)
        return;
    const Cell cell = m_wanted.front();
    m_wanted.erase(m_wanted.begin());
    m_drawing.emplace(m_worker->island.generation, cell);
    m_watcher.setFuture(
        QtConcurrent::run([worker = m_worker, cell] { return worker->draw(cell); }));
}

void TileRenderer::finished()
{
    // waitForIdle() may have taken the result before the watcher's signal arrived.
    if (!m_drawing || !m_watcher.isFinished())
        return;
    const auto [generation, cell] = *std::exchange(m_drawing, std::nullopt);
    const QImage image = m_watcher.result();
    startNext();
    Q_EMIT drawn(generation, cell, image);
}
