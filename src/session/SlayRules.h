#pragma once

#include <optional>
#include <string>
#include <string_view>

// Decides what may be moved to the Trash at all: never the scanned folder, the top of the disk,
// the home folder or its ancestors, system locations, or the standard folders of the home.
namespace SlayRules {

[[nodiscard]] bool canSlay(std::string_view path, std::string_view home,
                           const std::optional<std::string> &scanRoot, std::string_view homeTrash);

} // namespace SlayRules
