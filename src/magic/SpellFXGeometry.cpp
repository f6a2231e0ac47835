#include "magic/SpellFXGeometry.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace {

constexpr double ringReach = 1100;
constexpr int sparkleCount = 36;
constexpr int spiralVertices = 60;
constexpr double dashCycle = 20; // a dash of 10 and a gap of 10

} // namespace

double SpellFXGeometry::progress(const SpellFX &fx, double now)
{
    if (fx.duration <= 0)
        return 1;
    return std::clamp((now - fx.start) / fx.duration, 0.0, 1.0);
}

SpellFXGeometry::Ring SpellFXGeometry::ring(QPointF centre, double p)
{
    Ring r;
    r.radius = p * ringReach;
    r.opacity = 1 - p;
    r.lineWidth = (1 - p) * 10 + 1;
    r.sparkles.reserve(sparkleCount);
    for (int i = 0; i < sparkleCount; ++i) {
        const double angle = 2 * p + 2 * std::numbers::pi * i / sparkleCount;
        const double distance = r.radius * (0.75 + 0.25 * std::sin(1.7 * i));
        r.sparkles.push_back(centre + distance * QPointF(std::cos(angle), std::sin(angle)));
    }
    return r;
}

std::vector<QPointF> SpellFXGeometry::spiral(QPointF centre, double p, bool twin)
{
    std::vector<QPointF> vertices;
    vertices.reserve(spiralVertices);
    const double turn = twin ? std::numbers::pi : 0.0;
    for (int j = 0; j < spiralVertices; ++j) {
        const double angle = 10 * p + 4 * std::numbers::pi * j / spiralVertices + turn;
        const double radius = 40 * (1 - p) * j / spiralVertices + 4;
        vertices.push_back(centre + radius * QPointF(std::cos(angle), std::sin(angle)));
    }
    return vertices;
}

QPainterPath SpellFXGeometry::trail(QPointF hero, QPointF target)
{
    QPainterPath path(hero);
    path.quadTo(QPointF((hero.x() + target.x()) / 2, std::min(hero.y(), target.y()) - 60), target);
    return path;
}

double SpellFXGeometry::trailFade(double p)
{
    return p <= 0.85 ? 1.0 : (1 - p) / 0.15;
}

double SpellFXGeometry::trailDashPhase(double seconds)
{
    const double phase = std::fmod(-40 * seconds, dashCycle);
    return phase < 0 ? phase + dashCycle : phase;
}

double SpellFXGeometry::trailPulseRadius(double seconds)
{
    return 24 + 10 * std::sin(6 * seconds);
}

double SpellFXGeometry::fireProgress(double p, std::size_t k)
{
    return std::clamp((p - fireStagger * double(k % fireGroups)) * 1.2, 0.0, 1.0);
}

SpellFXGeometry::Fire SpellFXGeometry::fire(QPointF point, double q)
{
    Fire f;
    f.glowRadius = 60 * q;
    f.glowOpacity = 0.45 * (1 - q);
    for (std::size_t i = 0; i < flameOffsets.size(); ++i)
        f.flames[i] = {point + q * flameOffsets[i] - QPointF(0, 40 * q), 18 * (1 + q), 1 - q};
    return f;
}
