#pragma once

#include <cstdint>

// The island's only source of randomness. Its output is part of what makes an island look the
// same on every machine, so the constants and the unit draw must never change.
class SplitMix64
{
public:
    explicit constexpr SplitMix64(std::uint64_t seed) : m_state(seed) {}

    constexpr std::uint64_t next()
    {
        m_state += 0x9E3779B97F4A7C15ULL;
        std::uint64_t z = m_state;
        z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ULL;
        z = (z ^ (z >> 27)) * 0x94D049BB133111EBULL;
        return z ^ (z >> 31);
    }

    // A value in [0, 0.9999] in steps of 0.0001.
    constexpr double unit() { return static_cast<double>(next() % 10000) / 10000.0; }

private:
    std::uint64_t m_state;
};
