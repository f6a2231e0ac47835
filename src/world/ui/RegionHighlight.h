#pragma once

#include <QColor>
#include <QPolygonF>
#include <QRectF>
#include <optional>
#include <vector>

class Player;
class QPainter;
class QPainterPath;

// The outline of the territory the hero stands in. A big territory's outline has thousands of
// points, almost all of them off screen when zoomed in, and the map repaints it in many small
// spots: the outline is cut once into short chunks with their bounds, and a spot strokes only the
// chunks that reach it.
class RegionHighlight
{
public:
    static constexpr double lineWidth = 2.5;

    // Strokes only the stretches of the outline that cross `visible` (world coordinates).
    void paint(QPainter &painter, const Player &player, const QColor &ink, const QRectF &visible);
    // The world area the outline covers; empty without a current territory.
    [[nodiscard]] static QRectF bounds(const Player &player);

    // The parts of the last prepared outline whose segments touch `visible`, as open runs.
    [[nodiscard]] QPainterPath visibleRuns(const QRectF &visible) const;
    void prepare(const QPainterPath &shape);

private:
    struct Chunk
    {
        QRectF box; // the chunk's segments, line width included
        int polygon = 0;
        int first = 0; // segments first .. last-1: points i and i+1
        int last = 0;
    };
    struct Key
    {
        QRectF box;
        int elements = 0;
        bool operator==(const Key &) const = default;
    };

    std::optional<Key> m_key;
    std::vector<QPolygonF> m_polygons; // closed
    std::vector<Chunk> m_chunks;
};
