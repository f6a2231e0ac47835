#pragma once

#include "game/Tier.h"

#include <QColor>
#include <QPalette>
#include <optional>

// The colours of the island in one appearance.
struct WorldPalette
{
    QColor sea;
    QColor coast; // the coast band and the river banks
    QColor waves;
    QColor river;
    QColor plainLand; // a territory without tier
    QColor border;    // territory borders and the coast line
    QColor fog;
    QColor labelShadow;
    QColor ink; // the interface's text colour
    bool dark = false;

    [[nodiscard]] static WorldPalette of(const QPalette &palette);
    [[nodiscard]] static WorldPalette of(bool dark, const QColor &ink);

    [[nodiscard]] QColor land(std::optional<Tier> tier) const;
    [[nodiscard]] QColor label(std::optional<Tier> tier) const;
};
