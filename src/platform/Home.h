#pragma once

#include <string>

namespace Home {

// The user's home folder as bytes, absolute and clean ($HOME when absolute, else the password
// database).
[[nodiscard]] std::string path();

// The home Trash: $XDG_DATA_HOME/Trash when that variable is absolute, else
// ~/.local/share/Trash; clean, so a trailing slash in the variable changes nothing.
[[nodiscard]] std::string trash();

} // namespace Home
