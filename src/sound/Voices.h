#pragma once

#include "sound/Sfx.h"
#include "sound/Voice.h"

#include <vector>

namespace Sound {

// The voices of an effect, in the order they are rendered.
[[nodiscard]] std::vector<Voice> voices(const Sfx &sfx);

} // namespace Sound
