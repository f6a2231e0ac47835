#pragma once

#include <string>
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

// True when path is folder itself or lies inside it (everything absolute lies inside "/").
[[nodiscard]] constexpr bool isUnder(std::string_view path, std::string_view folder)
{
    return path.starts_with(folder) &&
           (path.size() == folder.size() || folder.ends_with('/') || path[folder.size()] == '/');
}

// `name` inside `folder`, with one slash between them ("/" + "usr" is "/usr").
[[nodiscard]] inline std::string join(std::string_view folder, std::string_view name)
{
    std::string path(folder);
    if (!path.ends_with('/'))
        path += '/';
    path += name;
    return path;
}

// The one spelling of a path: no empty or "." components, ".." taken away with the component
// before it (never above "/"), no trailing slash; "/" stays "/". Purely textual, on bytes, so it
// never touches the disk. A relative path stays relative ("" and "." become ".").
[[nodiscard]] std::string clean(std::string_view path);

// `path` made absolute against the folder `base` (absolute) and cleaned.
[[nodiscard]] std::string absolute(std::string_view path, std::string_view base);

// The process's working folder, or "/" when it cannot be named.
[[nodiscard]] std::string currentFolder();

} // namespace Paths
