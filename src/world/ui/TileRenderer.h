#pragma once

#include "world/WorldLayout.h"
#include "world/ui/WorldPalette.h"

#include <QFutureWatcher>
#include <QImage>
#include <QObject>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

// Draws an island's square tiles on a worker thread, one at a time, so the window never waits
// for one. Only the newest wish list counts: a tile that went out of view before its turn is
// never drawn.
class TileRenderer : public QObject
{
    Q_OBJECT

public:
    using Cell = std::pair<int, int>; // column and row
    struct Island
    {
        std::shared_ptr<const WorldLayout> layout;
        QString title;
        WorldPalette colors;
        qreal dpr = 1;
        int tileSize = 512;
        int generation = 0; // told back with each tile, so the caller can drop outdated ones

        [[nodiscard]] QRectF area(Cell cell) const
        {
            return {QPointF(cell.first, cell.second) * tileSize, QSizeF(tileSize, tileSize)};
        }
    };

    explicit TileRenderer(QObject *parent = nullptr);
    // Waits for the tile in progress.
    ~TileRenderer() override;

    // Forgets the tiles still wanted of the island before.
    void setIsland(Island island);
    // The tiles wanted, most wanted first.
    void want(std::vector<Cell> cells);
    // Blocks until every wanted tile is drawn and told (for tests and screenshots).
    void waitForIdle();

Q_SIGNALS:
    void drawn(int generation, TileRenderer::Cell cell, const QImage &image);

private:
    struct Worker;

    void startNext();
    void finished();

    std::shared_ptr<Worker> m_worker;
    std::vector<Cell> m_wanted;
    QFutureWatcher<QImage> m_watcher;
    std::optional<std::pair<int, Cell>> m_drawing; // generation and cell in progress
};
