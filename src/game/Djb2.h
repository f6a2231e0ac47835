#pragma once

#include <cstdint>
#include <string_view>

// The djb2 string hash over the bytes of a (UTF-8) string, wrapping in 64 bits. Place names and
// the island generator are seeded with it, so it must never change.
[[nodiscard]] constexpr std::uint64_t djb2(std::string_view bytes)
{
    std::uint64_t h = 5381;
    for (const char c : bytes)
        h = h * 33 + static_cast<unsigned char>(c);
    return h;
}
