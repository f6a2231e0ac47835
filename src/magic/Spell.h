#pragma once

#include "sound/Sfx.h"

#include <QString>
#include <array>

// The five spells, in the order of the spell bar and of the number keys.
enum class Spell : int { reveal = 0, sense = 1, teleport = 2, fireball = 3, recall = 4 };

namespace Spells {

inline constexpr std::array<Spell, 5> all = {Spell::reveal, Spell::sense, Spell::teleport,
                                             Spell::fireball, Spell::recall};

[[nodiscard]] inline int index(Spell s)
{
    return static_cast<int>(s);
}
// The number key that casts it: "1" to "5".
[[nodiscard]] QString key(Spell s);
[[nodiscard]] QString emoji(Spell s);
[[nodiscard]] QString name(Spell s);
[[nodiscard]] int cost(Spell s);
[[nodiscard]] Sound::Sfx sound(Spell s);
[[nodiscard]] QString description(Spell s);

} // namespace Spells
