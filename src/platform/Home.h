#pragma once

#include <string>

namespace Home {

// The user's home folder as bytes, absolute, without a trailing slash ($HOME, else the password
// database).
[[nodiscard]] std::string path();

} // namespace Home
