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

    // A territory's label: the tier's label colour with a soft halo of the label-shadow colour;
    // under fog, whichever of near-black and white reads better on the fogged ground (at least
    // 4.5:1), haloed in the other.
    struct Label
    {
        QColor text;
        QColor halo;
    };

    [[nodiscard]] QColor land(std::optional<Tier> tier) const;
    [[nodiscard]] Label label(std::optional<Tier> tier, bool explored = true) const;
    // The territory's ground as seen under its label: its land, under fog when unexplored.
    [[nodiscard]] QColor ground(std::optional<Tier> tier, bool explored) const;
};
