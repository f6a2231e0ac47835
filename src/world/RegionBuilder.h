#pragma once

#include "world/SplitMix64.h"
#include "world/WorldLayout.h"

// Makes the territories of one island, drawing their decorations from the island's generator in
// tile order.
class RegionBuilder
{
public:
    RegionBuilder(const Warp &warp, SplitMix64 &random, const WorldLayout::Explored &explored,
                  const WorldLayout::Bounties &bounties, const WorldLayout::Title &title)
        : m_warp(warp), m_random(random), m_explored(explored), m_bounties(bounties), m_title(title)
    {}

    [[nodiscard]] Region build(const Tile &tile, const QRectF &rect);

private:
    [[nodiscard]] QPointF randomPoint(const QRectF &inner);

    const Warp &m_warp;
    SplitMix64 &m_random;
    const WorldLayout::Explored &m_explored;
    const WorldLayout::Bounties &m_bounties;
    const WorldLayout::Title &m_title;
};
