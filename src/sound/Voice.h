#pragma once

namespace Sound {

// One source of an effect: an oscillator or low-passed noise with an exponential pitch glide
// from f0 to f1, a start time, a length and an envelope (4 ms attack, then (1 - p)^decay).
struct Voice
{
    enum class Wave : int { sine, square, saw, triangle, noise };

    Wave wave = Wave::sine;
    double f0 = 0;  // Hz; for noise, the low-pass cut-off
    double f1 = 0;  // Hz, at the voice's end
    double at = 0;  // s, start within the effect
    double dur = 0; // s
    double gain = 0;
    double decay = 0;
    double vibrato = 0; // relative depth of frequency modulation; 0 for none
    double vibRate = 7; // Hz

    friend bool operator==(const Voice &, const Voice &) = default;
};

} // namespace Sound
