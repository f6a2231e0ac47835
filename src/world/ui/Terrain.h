#pragma once

#include "game/Tier.h"

#include <QString>
#include <optional>

// The ground of a territory, by the tier of its monster: its name and the sign strewn over it.
namespace Terrain {

// "Meadow", "Woods", "Forest", "Highlands", "Peaks".
[[nodiscard]] QString name(Tier tier);
// 🌾 🌳 🌲 ⛰️ 🏔️, and 🪨 for a territory without tier.
[[nodiscard]] QString sign(std::optional<Tier> tier);
// "< 100 MB" … "50 GB+".
[[nodiscard]] QString sizeRange(Tier tier);

} // namespace Terrain
