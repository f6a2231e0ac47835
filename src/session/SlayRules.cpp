#include "session/SlayRules.h"

#include "platform/Paths.h"

#include <array>

namespace {

bool isAncestor(std::string_view folder, std::string_view of)
{
    return of.size() > folder.size() && Paths::isUnder(of, folder);
}

// Trash folders of other file systems: $topdir/.Trash (which holds $topdir/.Trash/$uid) and
// $topdir/.Trash-$uid, wherever they are, with everything in them.
bool isInAnyTrash(std::string_view path)
{
    for (std::size_t start = 1; start < path.size();) {
        std::size_t end = path.find('/', start);
        if (end == std::string_view::npos)
            end = path.size();
        const std::string_view piece = path.substr(start, end - start);
        if (piece == ".Trash" || piece.starts_with(".Trash-"))
            return true;
        start = end + 1;
    }
    return false;
}

} // namespace

bool SlayRules::canSlay(std::string_view rawPath, std::string_view rawHome,
                        const std::optional<std::string> &scanRoot, std::string_view rawHomeTrash)
{
    if (!rawPath.starts_with('/'))
        return false;
    const std::string path = Paths::clean(rawPath);
    const std::string home = Paths::clean(rawHome);
    const std::string homeTrash = Paths::clean(rawHomeTrash);
    if (scanRoot && path == Paths::clean(*scanRoot))
        return false;
    // "/" and every top-level folder.
    if (path.find('/', 1) == std::string::npos)
        return false;
    // Home itself and its ancestors; the home Trash, what lies in it and its ancestors.
    if (Paths::isUnder(home, path))
        return false;
    if (Paths::isUnder(path, homeTrash) || Paths::isUnder(homeTrash, path) || isInAnyTrash(path))
        return false;

    static constexpr std::array<std::string_view, 23> systemPrefixes = {
        "/System", "/usr", "/bin",  "/sbin", "/private", "/Library", "/opt",   "/cores",
        "/dev",    "/etc", "/var",  "/boot", "/lib",     "/lib32",   "/lib64", "/libx32",
        "/run",    "/srv", "/proc", "/sys",  "/root",    "/snap",    "/nix"};
    for (std::string_view prefix : systemPrefixes) {
        // The root user's own home lies under /root; the home rules below guard it instead.
        if (prefix == "/root" && Paths::isUnder(home, prefix))
            continue;
        if (Paths::isUnder(path, prefix))
            return false;
    }

    // (~/.Trash is a Trash folder like any other, refused above.)
    static constexpr std::array<std::string_view, 13> homeFolders = {
        "Desktop", "Documents",    "Downloads", "Library",   "Movies", "Music",  "Pictures",
        "Public",  "Applications", "Videos",    "Templates", ".local", ".config"};
    if (isAncestor(home, path)) {
        const std::string_view rest =
            std::string_view(path).substr(home == "/" ? 1 : home.size() + 1);
        for (std::string_view folder : homeFolders) {
            if (rest == folder)
                return false;
        }
    }
    return true;
}
