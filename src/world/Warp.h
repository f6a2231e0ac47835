#pragma once

#include <QPainterPath>
#include <QPointF>
#include <QRectF>
#include <vector>

// The smooth displacement that turns the straight partition of the land into organic borders.
// It is continuous, so an edge shared by two territories bends the same way from both sides, and
// it is stronger near the land's edge so the coast looks rougher than inland borders.
//
// A zoomed world is the island of zoom 1 magnified: points are warped at zoom-1 scale, so zooming
// never folds the coast. An outward bulge of the coast beyond half of `reach` is eased into the
// rest of it, so the coast never leaves the land by more than `reach` (zoom-1 units; 0 sets no
// limit) and stays off the sea margin where the realm title sits.
class Warp
{
public:
    Warp() = default;
    Warp(double phase, double amplitude, const QRectF &land, double zoom = 1, double reach = 0)
        : m_phase(phase), m_amplitude(amplitude), m_zoom(zoom), m_reach(reach),
          m_base(land.topLeft() / zoom, land.size() / zoom)
    {}

    [[nodiscard]] QPointF operator()(QPointF p) const;
    [[nodiscard]] QPointF operator()(double x, double y) const { return (*this)(QPointF(x, y)); }

    // The rectangle's edges, one point every 5 points of length (at least 2 per edge), warped;
    // closed, filled with the non-zero rule.
    [[nodiscard]] QPainterPath warpedOutline(const QRectF &rect) const;

    // The warped points from + (to − from) · j/n for j = 0 … n − 1, far cheaper than warping each.
    // The first is exact; on the land the others are within 1e-9 of the warp's.
    [[nodiscard]] std::vector<QPointF> warpedSteps(QPointF from, QPointF to, int n) const;

    [[nodiscard]] double phase() const { return m_phase; }
    [[nodiscard]] double amplitude() const { return m_amplitude; } // at zoom 1
    [[nodiscard]] double zoom() const { return m_zoom; }

private:
    // In zoom-1 units: the edge weight, and the displaced point made a world point again.
    [[nodiscard]] double edgeWeight(double x, double y) const;
    [[nodiscard]] QPointF atBase(double x, double y) const;
    [[nodiscard]] QPointF placed(double x, double y) const;
    [[nodiscard]] double eased(double v, double low, double high) const;

    double m_phase = 0;
    double m_amplitude = 0;
    double m_zoom = 1;
    double m_reach = 0;
    QRectF m_base; // the land at zoom 1
};
