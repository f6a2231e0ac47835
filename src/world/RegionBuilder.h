#pragma once

#include "world/SplitMix64.h"
#include "world/WorldLayout.h"

// Makes the territories of one island, drawing their decorations from the island's generator in
// tile order.
class RegionBuilder
{
public:
    // What the territories learn from outside the tiles.
    struct Sources
    {
        const WorldLayout::Explored &explored;
        const WorldLayout::Bounties &bounties;
        const WorldLayout::Title &title;
        const WorldLayout::Growth &growth;
    };

    RegionBuilder(const Warp &warp, SplitMix64 &random, Sources sources)
        : m_warp(warp), m_random(random), m_sources(sources)
    {}

    [[nodiscard]] Region build(const Tile &tile, const QRectF &rect);

private:
    [[nodiscard]] QPointF randomPoint(const QRectF &inner);

    const Warp &m_warp;
    SplitMix64 &m_random;
    Sources m_sources;
};
