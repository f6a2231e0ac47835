#pragma once

#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSizeF>
#include <array>
#include <vector>

// The drifting cloud shadows and twinkling motes over the map, as functions of time in seconds
// and of the layer's size. Pure and the same on every run.
namespace AmbientGeometry {

struct Mote
{
    double x = 0; // fractions of the layer's width and height, in [0, 1)
    double y = 0;
    double phase = 0;
    double speed = 0;
};

inline constexpr int cloudCount = 2;
inline constexpr int moteCount = 22;
inline constexpr double cloudBlur = 40;
inline constexpr double moteDiameter = 5;
inline constexpr double moteBlur = 2;
// Clouds drift a few points a second under a soft edge: moved four times a second they look the
// same and cost a fraction of the repaints.
inline constexpr double cloudSteps = 4;

[[nodiscard]] std::array<Mote, moteCount> motes();

// The ellipse of cloud c (0 or 1) before blurring; empty for an empty layer.
[[nodiscard]] QRectF cloud(int c, double t, QSizeF size);
[[nodiscard]] QPointF moteCentre(const Mote &mote, double t, QSizeF size);
// The mote's disc before blurring.
[[nodiscard]] QRectF moteRect(const Mote &mote, double t, QSizeF size);
[[nodiscard]] double moteOpacity(const Mote &mote, double t);
// The whole-pixel areas a frame at `t` paints, blur included: the clouds (which move in
// cloudSteps, see cloudTime) and the motes.
[[nodiscard]] std::vector<QRect> cloudAreas(double t, QSizeF size);
[[nodiscard]] std::vector<QRect> moteAreas(const std::array<Mote, moteCount> &motes, double t,
                                           QSizeF size);
[[nodiscard]] double cloudTime(double t);

} // namespace AmbientGeometry
