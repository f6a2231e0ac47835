#pragma once

#include <string>
#include <unordered_set>

namespace Mounts {

using PathSet = std::unordered_set<std::string>;

// Mount points of pseudo file systems (proc, sysfs, devtmpfs, cgroup, ...) that hold no disk
// space and must not be walked when scanning "/".
[[nodiscard]] PathSet virtualMountPoints();

[[nodiscard]] bool isVirtualFileSystemType(const std::string &type);

} // namespace Mounts
