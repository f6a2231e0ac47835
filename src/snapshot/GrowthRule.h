#pragma once

#include <algorithm>
#include <cstdint>

// When a folder's growth is worth showing: by at least a share of what it was and a number of
// bytes, so that neither a tiny folder doubling nor a huge one moving by a rounding catches the
// eye.
namespace GrowthRule {

[[nodiscard]] constexpr bool notable(std::uint64_t size, std::int64_t grown, double share,
                                     std::uint64_t least)
{
    const std::uint64_t change = grown < 0 ? 0 - std::uint64_t(grown) : std::uint64_t(grown);
    const double before = std::max(double(size) - double(grown), 0.0);
    return change >= least && double(change) >= share * before;
}

// A ranking row's chip: changed, either way, by at least 1 % and 1 MB.
[[nodiscard]] constexpr bool chip(std::uint64_t size, std::int64_t grown)
{
    return notable(size, grown, 0.01, 1'000'000);
}

// A territory's mark on the map: grew by at least 10 % and 100 MB.
[[nodiscard]] constexpr bool mark(std::uint64_t size, std::int64_t grown)
{
    return grown > 0 && notable(size, grown, 0.10, 100'000'000);
}

} // namespace GrowthRule
