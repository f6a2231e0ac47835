#pragma once

#include <optional>
#include <string>
#include <string_view>

// Decides what may be moved to the Trash at all: never the scanned folder, the top of the disk,
// the home folder or its ancestors, system locations, the standard folders of the home, or any
// Trash folder, what lies in it and the folders that hold the home Trash. Every path is cleaned
// first, so no spelling ("//", ".", "..", a trailing slash) of a protected path gets through; a
// relative path is never allowed.
namespace SlayRules {

[[nodiscard]] bool canSlay(std::string_view path, std::string_view home,
                           const std::optional<std::string> &scanRoot, std::string_view homeTrash);

} // namespace SlayRules
