#include "platform/Mounts.h"

#include <array>
#include <mntent.h>
#include <string_view>

namespace Mounts {

bool isVirtualFileSystemType(const std::string &type)
{
    static constexpr std::array<std::string_view, 16> types = {
        "proc",       "sysfs",  "devtmpfs", "devpts", "cgroup",    "cgroup2",  "tracefs", "debugfs",
        "securityfs", "pstore", "bpf",      "mqueue", "hugetlbfs", "configfs", "fusectl", "autofs"};
    for (std::string_view t : types) {
        if (type == t)
            return true;
    }
    return false;
}

PathSet virtualMountPoints()
{
    PathSet points;
    FILE *table = setmntent("/proc/self/mounts", "r");
    if (!table)
        return points;
    while (const mntent *m = getmntent(table)) {
        if (isVirtualFileSystemType(m->mnt_type))
            points.insert(m->mnt_dir);
    }
    endmntent(table);
    return points;
}

} // namespace Mounts
