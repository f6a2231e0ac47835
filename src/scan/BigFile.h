#pragma once

#include "platform/Paths.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>

// One file of at least the big-file threshold, met during a scan. Paths are bytes.
struct BigFile
{
    std::string path;
    std::uint64_t size = 0;
    std::int64_t modified = 0; // seconds since 1970-01-01 UTC

    [[nodiscard]] std::string_view name() const { return Paths::lastComponent(path); }

    bool operator==(const BigFile &) const = default;
};

template<> struct std::hash<BigFile>
{
    std::size_t operator()(const BigFile &f) const noexcept
    {
        std::size_t h = std::hash<std::string>{}(f.path);
        h ^= std::hash<std::uint64_t>{}(f.size) + 0x9e3779b97f4a7c15ULL + (h << 6) + (h >> 2);
        h ^= std::hash<std::int64_t>{}(f.modified) + 0x9e3779b97f4a7c15ULL + (h << 6) + (h >> 2);
        return h;
    }
};
