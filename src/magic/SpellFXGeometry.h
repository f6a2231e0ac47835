#pragma once

#include "magic/SpellFX.h"

#include <QPainterPath>
#include <QPointF>
#include <array>
#include <cstddef>
#include <vector>

// Where and how strongly each kind of spell effect is drawn at a moment of its life, in map
// points. Pure, so the drawing can be checked on the numbers.
namespace SpellFXGeometry {

// How far the effect has run, 0 to 1.
[[nodiscard]] double progress(const SpellFX &fx, double now);

struct Ring
{
    double radius = 0;
    double opacity = 0;
    double lineWidth = 0;
    std::vector<QPointF> sparkles; // centres of the 36 sparkles
};
[[nodiscard]] Ring ring(QPointF centre, double p);

// The 60 vertices of a swirl's spiral; its twin is the same spiral turned half a circle.
[[nodiscard]] std::vector<QPointF> spiral(QPointF centre, double p, bool twin = false);

// The golden trail from the hero to the target, bowed upward.
[[nodiscard]] QPainterPath trail(QPointF hero, QPointF target);
[[nodiscard]] double trailFade(double p);
// Where the dash pattern starts, in points; it moves back 40 points a second so the dashes
// march toward the target.
[[nodiscard]] double trailDashPhase(double seconds);
[[nodiscard]] double trailPulseRadius(double seconds);

inline constexpr double fireStagger = 0.04;
inline constexpr std::size_t fireGroups = 6;
inline constexpr std::array<QPointF, 5> flameOffsets = {
    QPointF(26, 0), QPointF(8.03, 13.31), QPointF(-21.03, 8.23), QPointF(-21.03, -8.23),
    QPointF(8.03, -13.31)};

// Local progress of the k-th fire point: six groups that light one after another.
[[nodiscard]] double fireProgress(double p, std::size_t k);

struct Flame
{
    QPointF centre;
    double size = 0; // font size in points
    double opacity = 0;
};
struct Fire
{
    double glowRadius = 0;
    double glowOpacity = 0;
    std::array<Flame, 5> flames;
};
[[nodiscard]] Fire fire(QPointF point, double q);

} // namespace SpellFXGeometry
