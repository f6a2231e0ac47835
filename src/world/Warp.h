#pragma once

#include <QPainterPath>
#include <QPointF>
#include <QRectF>
#include <vector>

// The smooth displacement that turns the straight partition of the land into organic borders.
// It is continuous, so an edge shared by two territories bends the same way from both sides, and
// it is stronger near the land's edge so the coast looks rougher than inland borders.
class Warp
{
public:
    Warp() = default;
    Warp(double phase, double amplitude, const QRectF &land)
        : m_phase(phase), m_amplitude(amplitude), m_land(land)
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
    [[nodiscard]] double amplitude() const { return m_amplitude; }
    [[nodiscard]] const QRectF &land() const { return m_land; }

private:
    [[nodiscard]] double edgeWeight(double x, double y) const;

    double m_phase = 0;
    double m_amplitude = 0;
    QRectF m_land;
};
