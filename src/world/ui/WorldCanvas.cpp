#include "world/ui/WorldCanvas.h"

#include <QPainter>
#include <QPalette>
#include <algorithm>
#include <cmath>

WorldCanvas::WorldCanvas() = default;

WorldCanvas::~WorldCanvas() = default;

void WorldCanvas::setWorld(const WorldLayout &layout, const QString &title)
{
    const WorldLayout &was = m_drawing.layout();
    const bool sameGround = IslandDrawing::sameGround(was, layout);
    std::vector<QRectF> dirty;
    if (sameGround) {
        for (std::size_t i = 0; i < layout.regions.size(); ++i) {
            const Region &before = was.regions[i];
            const Region &now = layout.regions[i];
            if (before.explored != now.explored || before.bounties != now.bounties ||
                before.title != now.title || before.subtitle != now.subtitle ||
                before.grown != now.grown)
                dirty.push_back(m_drawing.regionArea(i));
        }
        if (title != m_drawing.title())
            dirty.push_back(m_drawing.realmTitleBox());
    }
    const bool kept =
        m_cached && m_cached->layoutKey == was.key && m_cached->title == m_drawing.title();
    m_drawing.update(std::make_shared<const WorldLayout>(layout), title);
    if (!sameGround)
        return; // a new key: every tile is drawn again
    // Only the tiles around what changed (a territory discovered, renamed or given a bounty)
    // are drawn again; until then they show what was there.
    if (kept) {
        for (auto &[cell, tile] : m_tiles) {
            const QRectF area(QPointF(cell.first, cell.second) * tileSize,
                              QSizeF(tileSize, tileSize));
            if (std::any_of(dirty.begin(), dirty.end(),
                            [&area](const QRectF &d) { return d.intersects(area); }))
                tile.fresh = false;
        }
        m_cached->layoutKey = layout.key;
        m_cached->title = title;
    }
    if (!dirty.empty()) {
        ++m_generation;
        m_islandSent = false;
    }
}

void WorldCanvas::drawInBackground(std::function<void(const QRectF &)> drawn)
{
    m_drawn = std::move(drawn);
    m_renderer = std::make_unique<TileRenderer>();
    QObject::connect(m_renderer.get(), &TileRenderer::drawn, m_renderer.get(),
                     [this](int generation, Cell cell, const QImage &image) {
                         tileDrawn(generation, cell, image);
                     });
}

void WorldCanvas::draw(QPainter &painter, const QRectF &area, const QPalette &palette, qreal dpr,
                       Missing missing)
{
    paintTiles(painter, area, WorldPalette::of(palette), dpr,
               m_renderer && missing == Missing::later);
}

QImage WorldCanvas::image(const QPalette &palette, qreal dpr)
{
    const WorldPalette colors = WorldPalette::of(palette);
    const QSizeF size = layout().size;
    QImage out(std::max(1, int(std::ceil(size.width() * dpr))),
               std::max(1, int(std::ceil(size.height() * dpr))),
               QImage::Format_ARGB32_Premultiplied);
    out.setDevicePixelRatio(dpr);
    out.fill(colors.sea);
    QPainter painter(&out);
    paintTiles(painter, QRectF(QPointF(0, 0), size), colors, dpr, false);
    return out;
}

void WorldCanvas::useKey(const WorldPalette &colors, qreal dpr)
{
    const CacheKey key{layout().key, title(), colors.dark, colors.ink.rgba(), dpr, layout().size};
    if (m_cached && *m_cached == key)
        return;
    m_tiles.clear();
    m_cached = key;
    ++m_generation;
    m_islandSent = false;
}

void WorldCanvas::paintTiles(QPainter &painter, const QRectF &area, const WorldPalette &colors,
                             qreal dpr, bool background)
{
    useKey(colors, dpr);
    const QSizeF size = layout().size;
    const QRectF world = area & QRectF(QPointF(0, 0), size);
    if (world.isEmpty())
        return;
    const int c0 = int(std::floor(world.left() / tileSize));
    const int c1 = int(std::ceil(world.right() / tileSize));
    const int r0 = int(std::floor(world.top() / tileSize));
    const int r1 = int(std::ceil(world.bottom() / tileSize));
    for (int row = r0; row < r1; ++row) {
        for (int column = c0; column < c1; ++column) {
            const QRectF cell(column * tileSize, row * tileSize, tileSize, tileSize);
            const QRectF part = cell & world;
            if (part.isEmpty())
                continue;
            const Cell at(column, row);
            auto found = m_tiles.find(at);
            if (background && found == m_tiles.end()) {
                // Drawn straight onto the painter: a new image's memory is slow to touch.
                painter.save();
                painter.setClipRect(part, Qt::IntersectClip);
                m_drawing.sketch(painter, colors, part);
                painter.restore();
                continue;
            }
            if (!background && (found == m_tiles.end() || !found->second.fresh)) {
                found =
                    m_tiles.insert_or_assign(at, Tile{m_drawing.image(cell, colors, dpr)}).first;
                ++m_renders;
            }
            painter.drawImage(part, found->second.image,
                              QRectF((part.topLeft() - cell.topLeft()) * dpr, part.size() * dpr));
        }
    }
    if (background)
        request(world, colors, dpr);
    evictAround(world.center());
}

void WorldCanvas::request(const QRectF &world, const WorldPalette &colors, qreal dpr)
{
    // The view first, then the ring around it, so walking on rarely meets a sketch.
    const QSizeF size = layout().size;
    const int columns = int(std::ceil(size.width() / tileSize));
    const int rows = int(std::ceil(size.height() / tileSize));
    const int c0 = int(std::floor(world.left() / tileSize));
    const int c1 = int(std::ceil(world.right() / tileSize));
    const int r0 = int(std::floor(world.top() / tileSize));
    const int r1 = int(std::ceil(world.bottom() / tileSize));
    std::vector<Cell> view;
    std::vector<Cell> ring;
    for (int row = std::max(0, r0 - 1); row <= std::min(r1, rows - 1); ++row) {
        for (int column = std::max(0, c0 - 1); column <= std::min(c1, columns - 1); ++column) {
            const auto found = m_tiles.find(Cell(column, row));
            if (found != m_tiles.end() && found->second.fresh)
                continue;
            const bool inView = row >= r0 && row < r1 && column >= c0 && column < c1;
            (inView ? view : ring).emplace_back(column, row);
        }
    }
    view.insert(view.end(), ring.begin(), ring.end());
    if (!m_islandSent) {
        m_renderer->setIsland(island(colors, dpr));
        m_islandSent = true;
    }
    m_renderer->want(std::move(view));
}

void WorldCanvas::settle(const QRectF &area, const QPalette &palette, qreal dpr)
{
    if (!m_renderer)
        return;
    const WorldPalette colors = WorldPalette::of(palette);
    useKey(colors, dpr);
    const QRectF world = area & QRectF(QPointF(0, 0), layout().size);
    if (!world.isEmpty())
        request(world, colors, dpr);
    m_renderer->waitForIdle();
}

TileRenderer::Island WorldCanvas::island(const WorldPalette &colors, qreal dpr) const
{
    return {m_drawing.sharedLayout(), title(), colors, dpr, tileSize, m_generation};
}

void WorldCanvas::tileDrawn(int generation, Cell cell, const QImage &image)
{
    if (generation != m_generation)
        return;
    m_tiles.insert_or_assign(cell, Tile{image});
    ++m_renders;
    if (m_drawn)
        m_drawn(QRectF(QPointF(cell.first, cell.second) * tileSize, QSizeF(tileSize, tileSize)));
}

void WorldCanvas::evictAround(QPointF centre)
{
    if (m_tiles.size() <= tileLimit)
        return;
    // Keep the tiles nearest the view; a big island at high zoom would otherwise hold hundreds
    // of megabytes of tiles walked past long ago.
    std::vector<std::pair<double, Cell>> byDistance;
    for (const auto &entry : m_tiles) {
        const QPointF c((entry.first.first + 0.5) * tileSize,
                        (entry.first.second + 0.5) * tileSize);
        byDistance.emplace_back(std::hypot(c.x() - centre.x(), c.y() - centre.y()), entry.first);
    }
    std::sort(byDistance.begin(), byDistance.end());
    for (std::size_t i = tileLimit; i < byDistance.size(); ++i)
        m_tiles.erase(byDistance[i].second);
}
