#pragma once

#include "world/WorldLayout.h"
#include "world/ui/Stamps.h"
#include "world/ui/WorldPalette.h"

#include <QImage>
#include <QPixmap>
#include <QString>
#include <cstdint>
#include <map>
#include <optional>
#include <utility>
#include <vector>

class QPainter;
class QPalette;

// The island of one layout: sea, waves, coast, territories, rivers, fog, borders, labels, bounty
// markers, the realm's title and the compass. Drawn into cached tiles that are reused until the
// layout's key, the title, the appearance, the resolution or the size change, so walking and
// animating over the island never redraw it; only the tiles in view are ever drawn.
class WorldCanvas
{
public:
    static constexpr int tileSize = 512;
    static constexpr std::size_t tileLimit = 40; // tiles kept; a view needs about twelve

    void setWorld(const WorldLayout &layout, const QString &title);
    [[nodiscard]] const WorldLayout &layout() const { return m_layout; }
    [[nodiscard]] const QString &title() const { return m_title; }

    // Copies the island within `area` (world coordinates) onto a painter in world coordinates,
    // drawing the tiles it lacks first.
    void draw(QPainter &painter, const QRectF &area, const QPalette &palette, qreal dpr);
    // The whole island as one image, through the same tiles.
    [[nodiscard]] QImage image(const QPalette &palette, qreal dpr);
    // Paints the island within `area` straight onto a painter in world coordinates, uncached.
    void paint(QPainter &painter, const WorldPalette &colors, const QRectF &area);

    // How many tiles have been drawn so far.
    [[nodiscard]] int renders() const { return m_renders; }

    // Where a territory's label sits: below its monster, or on its capital without one.
    [[nodiscard]] static QPointF labelAnchor(const Region &region);
    // The centre of a territory's bounty marker.
    [[nodiscard]] static QPointF bountyAnchor(const Region &region);

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
    // A short stretch of a long line. Long antialiased strokes are slow to fill, and a tile
    // only needs the stretches that cross it.
    struct Stretch
    {
        QPainterPath path;
        QRectF bounds;
    };
    struct Outline
    {
        QRectF bounds;
        std::vector<Stretch> stretches;
    };

    // Whether two layouts lay out the same ground, differing at most in what is drawn on it.
    [[nodiscard]] static bool sameGround(const WorldLayout &a, const WorldLayout &b);
    [[nodiscard]] QRectF regionArea(std::size_t index) const;
    [[nodiscard]] QRectF realmTitleBox() const;
    void prepare();
    void evictAround(QPointF centre);
    [[nodiscard]] const QPixmap &tile(int column, int row, const WorldPalette &colors, qreal dpr);
    void strokeStretches(QPainter &painter, const std::vector<Stretch> &stretches, const QPen &pen,
                         const QRectF &area) const;
    void paintTerritories(QPainter &painter, const WorldPalette &colors, const QRectF &area);
    void paintLabels(QPainter &painter, const WorldPalette &colors, const QRectF &area);
    void paintBounties(QPainter &painter, const QRectF &area);
    void paintRealmTitle(QPainter &painter, const WorldPalette &colors, const QRectF &area);

    WorldLayout m_layout;
    QString m_title;
    std::vector<Stretch> m_coast;
    std::vector<std::vector<Stretch>> m_rivers;
    std::vector<Outline> m_outlines; // one per region
    std::optional<CacheKey> m_cached;
    std::map<std::pair<int, int>, QPixmap> m_tiles;
    int m_renders = 0;
    Stamps m_stamps;
};
