#pragma once

#include <QColor>
#include <QRectF>

class Player;
class QPainter;
class QPainterPath;

// The outline of the territory the hero stands in.
class RegionHighlight
{
public:
    static constexpr double lineWidth = 2.5;

    // Strokes only the stretches of the outline that cross `visible` (world coordinates): a big
    // territory's outline has thousands of points, almost all of them off screen when zoomed in.
    static void paint(QPainter &painter, const Player &player, const QColor &ink,
                      const QRectF &visible);
    // The world area the outline covers; empty without a current territory.
    [[nodiscard]] static QRectF bounds(const Player &player);

    // The parts of a closed outline whose segments touch `visible`, as open runs.
    [[nodiscard]] static QPainterPath visibleRuns(const QPainterPath &shape, const QRectF &visible);
};
