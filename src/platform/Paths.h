#pragma once

#include <string_view>

// Byte paths joined with "/": the few string operations every subsystem needs.
namespace Paths {

[[nodiscard]] constexpr std::string_view lastComponent(std::string_view path)
{
    const auto slash = path.rfind('/');
    return slash == std::string_view::npos ? path : path.substr(slash + 1);
}

// The path without its last component: "/" for an item at the top, empty without any slash.
[[nodiscard]] constexpr std::string_view parent(std::string_view path)
{
    const auto slash = path.rfind('/');
    if (slash == std::string_view::npos)
        return {};
    return slash == 0 ? path.substr(0, 1) : path.substr(0, slash);
}

// True when path is folder itself or lies inside it.
[[nodiscard]] constexpr bool isUnder(std::string_view path, std::string_view folder)
{
    return path.starts_with(folder) && (path.size() == folder.size() || path[folder.size()] == '/');
}

} // namespace Paths
