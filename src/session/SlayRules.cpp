#include "session/SlayRules.h"

#include "platform/Paths.h"

#include <array>

bool SlayRules::canSlay(std::string_view path, std::string_view home,
                        const std::optional<std::string> &scanRoot, std::string_view homeTrash)
{
    if (scanRoot && path == *scanRoot)
        return false;

    int pieces = 0;
    for (std::size_t i = 0; i < path.size(); ++i) {
        if (path[i] != '/' && (i == 0 || path[i - 1] == '/'))
            ++pieces;
    }
    if (pieces <= 1)
        return false;

    if (path == home)
        return false;
    if (home.starts_with(path) && home.size() > path.size() && home[path.size()] == '/')
        return false;

    static constexpr std::array<std::string_view, 23> systemPrefixes = {
        "/System", "/usr", "/bin",  "/sbin", "/private", "/Library", "/opt",   "/cores",
        "/dev",    "/etc", "/var",  "/boot", "/lib",     "/lib32",   "/lib64", "/libx32",
        "/run",    "/srv", "/proc", "/sys",  "/root",    "/snap",    "/nix"};
    for (std::string_view prefix : systemPrefixes) {
        if (Paths::isUnder(path, prefix))
            return false;
    }

    static constexpr std::array<std::string_view, 14> homeFolders = {
        "Desktop", "Documents",    "Downloads", "Library", "Movies",    "Music",  "Pictures",
        "Public",  "Applications", ".Trash",    "Videos",  "Templates", ".local", ".config"};
    if (path.size() > home.size() + 1 && path.starts_with(home) && path[home.size()] == '/') {
        const std::string_view rest = path.substr(home.size() + 1);
        for (std::string_view folder : homeFolders) {
            if (rest == folder)
                return false;
        }
    }
    return path != homeTrash;
}
