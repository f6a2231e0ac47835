#pragma once

#include <QPointF>
#include <QUuid>
#include <vector>

// A timed visual effect of a spell, drawn over the map while the hero keeps it in his effects.
struct SpellFX
{
    enum class Kind { ring, swirl, trail, fire };

    QUuid id;
    Kind kind = Kind::ring;
    std::vector<QPointF> points; // map points
    double duration = 0;         // seconds
    double start = 0;            // seconds on the hero's clock

    // `now` comes from the same clock the effect is drawn against, usually the hero's.
    [[nodiscard]] static SpellFX make(Kind kind, std::vector<QPointF> points, double duration,
                                      double now)
    {
        return {QUuid::createUuid(), kind, std::move(points), duration, now};
    }

    bool operator==(const SpellFX &) const = default;
};
