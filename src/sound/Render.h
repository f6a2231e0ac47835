#pragma once

#include "sound/Sfx.h"
#include "sound/Voice.h"

#include <span>
#include <vector>

namespace Sound {

// The one rate effects are rendered and mixed at.
inline constexpr double sampleRate = 44'100.0;

// The effect's mono samples, soft-clipped into [-1, 1]: every voice summed, then 0.02 s of
// silence after the longest one. Deterministic, bit for bit: the noise is seeded per rendering.
[[nodiscard]] std::vector<float> render(const Sfx &sfx, double rate);
[[nodiscard]] std::vector<float> render(std::span<const Voice> voices, double rate);

} // namespace Sound
