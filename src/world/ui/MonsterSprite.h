#pragma once

#include "world/Region.h"

#include <QRectF>
#include <cstdint>
#include <optional>

class Stamps;
class QPainter;

// One territory's monster on the map: the drawing of its tier at the territory's size over a
// ground shadow, breathing for dragons and titans, a "❔" while the fog hides it, and the death
// when its folder is slain. Paints from its own state and a time; the map owns the clock.
class MonsterSprite
{
public:
    struct Death
    {
        double start = 0; // seconds on the map's clock
        std::int64_t xp = 0;
    };

    static constexpr double deathSeconds = 0.6;

    MonsterSprite(Region region, double shownAt);

    [[nodiscard]] const Region &region() const { return m_region; }
    [[nodiscard]] double size() const { return m_region.monsterSize(); }
    [[nodiscard]] bool breathes() const;
    [[nodiscard]] double shownAt() const { return m_shownAt; }

    void setDeath(std::optional<Death> death) { m_death = death; }
    [[nodiscard]] const std::optional<Death> &death() const { return m_death; }
    [[nodiscard]] bool dyingAt(double now) const;

    // Whether the sprite changes with time at `now`.
    [[nodiscard]] bool animating(double now, bool reduceMotion) const;
    // The world area the living monster covers, breathing and shadow included.
    [[nodiscard]] QRectF bounds() const;

    // The breathing scale at a time: 1.0 to 1.08 and back, eased, forever.
    [[nodiscard]] double breathScale(double now, bool reduceMotion) const;

    void paint(QPainter &painter, Stamps &stamps, double now, bool reduceMotion) const;
    // The rising "+N XP" of a death, painted over the hero so nothing hides it.
    void paintReward(QPainter &painter, double now) const;

private:
    void paintDeath(QPainter &painter, Stamps &stamps, double elapsed) const;

    Region m_region;
    double m_shownAt;
    std::optional<Death> m_death;
};
