#pragma once

#include "platform/AdaptiveColor.h"

#include <QString>
#include <array>
#include <cstdint>

// The monster class of a folder, by its bytes or by its file count.
enum class Tier : int { microbe = 0, gremlin = 1, ogre = 2, dragon = 3, titan = 4 };

namespace Tiers {

inline constexpr std::array<Tier, 5> all = {Tier::microbe, Tier::gremlin, Tier::ogre, Tier::dragon,
                                            Tier::titan};

enum class Measure { bytes, files };

[[nodiscard]] Tier of(double value, Measure measure);
[[nodiscard]] inline Tier ofBytes(std::uint64_t bytes)
{
    return of(static_cast<double>(bytes), Measure::bytes);
}
[[nodiscard]] inline int index(Tier t)
{
    return static_cast<int>(t);
}

[[nodiscard]] QString emoji(Tier t);
[[nodiscard]] QString displayName(Tier t);
[[nodiscard]] AdaptiveColor landColor(Tier t);
[[nodiscard]] AdaptiveColor labelColor(Tier t);

} // namespace Tiers
