#pragma once

#include "world/WorldLayout.h"
#include "world/ui/IslandDrawing.h"
#include "world/ui/TileRenderer.h"

#include <QImage>
#include <QString>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <vector>

class QPainter;
class QPalette;

// The island of one layout, kept in square tiles that are reused until the layout's key, the
// title, the appearance, the resolution or the size change, so walking and animating over the
// island never redraw it; only the tiles in view are ever drawn. A territory discovered,
// renamed or given a bounty redraws only the tiles around it.
class WorldCanvas
{
public:
    static constexpr int tileSize = 512;
    static constexpr std::size_t tileLimit = 40; // tiles kept; a view and the ring around it

    WorldCanvas();
    ~WorldCanvas();
    WorldCanvas(const WorldCanvas &) = delete;
    WorldCanvas &operator=(const WorldCanvas &) = delete;

    void setWorld(const WorldLayout &layout, const QString &title);
    [[nodiscard]] const WorldLayout &layout() const { return m_drawing.layout(); }
    [[nodiscard]] const QString &title() const { return m_drawing.title(); }

    // From now on, tiles `draw` lacks are drawn on a worker: meanwhile the land shows in its
    // plain colours (or as it was before a change), and `drawn` is told each tile's world area
    // as it arrives. The tiles around the view are drawn ahead.
    void drawInBackground(std::function<void(const QRectF &)> drawn);
    enum class Missing { now, later };
    // Copies the island within `area` (world coordinates) onto a painter in world coordinates;
    // tiles it lacks are drawn first, or later in the background if that was asked for.
    void draw(QPainter &painter, const QRectF &area, const QPalette &palette, qreal dpr,
              Missing missing);
    // Has the background draw what `area` lacks and waits for it (for screenshots and tests).
    void settle(const QRectF &area, const QPalette &palette, qreal dpr);
    // The whole island as one image, every tile drawn at once.
    [[nodiscard]] QImage image(const QPalette &palette, qreal dpr);

    // How many tiles have been drawn so far.
    [[nodiscard]] int renders() const { return m_renders; }

private:
    struct CacheKey
    {
        std::int64_t layoutKey = 0;
        QString title;
        bool dark = false;
        QRgb ink = 0;
        qreal dpr = 0;
        QSizeF size;
        bool operator==(const CacheKey &) const = default;
    };
    struct Tile
    {
        QImage image;
        bool fresh = true; // false: drawn before a change, shown until its redrawing comes
    };
    using Cell = TileRenderer::Cell;

    void useKey(const WorldPalette &colors, qreal dpr);
    void paintTiles(QPainter &painter, const QRectF &area, const WorldPalette &colors, qreal dpr,
                    bool background);
    void request(const QRectF &world, const WorldPalette &colors, qreal dpr);
    void evictAround(QPointF centre);
    [[nodiscard]] TileRenderer::Island island(const WorldPalette &colors, qreal dpr) const;
    void tileDrawn(int generation, Cell cell, const QImage &image);

    IslandDrawing m_drawing;
    std::optional<CacheKey> m_cached;
    std::map<Cell, Tile> m_tiles;
    int m_renders = 0;
    int m_generation = 0; // bumped whenever what the tiles show changes
    bool m_islandSent = false;
    std::unique_ptr<TileRenderer> m_renderer;
    std::function<void(const QRectF &)> m_drawn;
};
