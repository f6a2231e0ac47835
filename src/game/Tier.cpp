#include "game/Tier.h"

namespace {

struct Presentation
{
    const char *emoji;
    const char *name;
    AdaptiveColor land;
    AdaptiveColor label;
};

const std::array<Presentation, 5> &table()
{
    static const std::array<Presentation, 5> t = {{
        {"🦠", "Microbe", {0x8BC06E, 0x30602B}, {0x0B0B0B, 0xFFFFFF}},
        {"👾", "Gremlin", {0x68A74F, 0x3B7834}, {0x0B0B0B, 0xFFFFFF}},
        {"👹", "Ogre", {0x4A8D3E, 0x4B913F}, {0xFFFFFF, 0xFFFFFF}},
        {"🐉", "Dragon", {0x317030, 0x68AA55}, {0xFFFFFF, 0x0B0B0B}},
        {"🗿", "Titan", {0x1B501D, 0x90C674}, {0xFFFFFF, 0x0B0B0B}},
    }};
    return t;
}

} // namespace

Tier Tiers::of(double value, Measure measure)
{
    static constexpr std::array<double, 4> byteBounds = {100e6, 1e9, 10e9, 50e9};
    static constexpr std::array<double, 4> fileBounds = {1'000, 10'000, 50'000, 200'000};
    const auto &bounds = measure == Measure::bytes ? byteBounds : fileBounds;
    for (std::size_t i = 0; i < bounds.size(); ++i) {
        if (bounds[i] > value)
            return static_cast<Tier>(i);
    }
    return Tier::titan;
}

QString Tiers::emoji(Tier t)
{
    return QString::fromUtf8(table()[std::size_t(index(t))].emoji);
}

QString Tiers::displayName(Tier t)
{
    return QString::fromUtf8(table()[std::size_t(index(t))].name);
}

AdaptiveColor Tiers::landColor(Tier t)
{
    return table()[std::size_t(index(t))].land;
}

AdaptiveColor Tiers::labelColor(Tier t)
{
    return table()[std::size_t(index(t))].label;
}
