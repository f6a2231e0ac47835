#pragma once

#include "advisor/Advice.h"
#include "scan/BigFile.h"
#include "scan/Node.h"

#include <QString>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

// The fixed cleanup rules: turns a finished size tree and its big files into recommendations,
// largest first. Reads the tree without locks, so it must only run once the scan is done; it may
// run on the scan's thread. The file system is only asked whether a few marker files exist.
namespace Advisor {

inline constexpr std::uint64_t adviceFloor = 25'000'000;
inline constexpr std::uint64_t oldFileFloor = 200'000'000;
inline constexpr std::int64_t oldFileDays = 180;

// Everything the rules read besides the tree, so tests can pin it down.
struct Context
{
    std::string home = defaultHome();
    std::int64_t now = defaultNow(); // seconds since 1970-01-01 UTC
    std::string trash = defaultTrash();
    std::string cache = defaultCache();
    // Downloads, Desktop, Documents and Videos (Movies on macOS), in this order; installers are
    // looked for in the first. An empty entry names no folder.
    std::array<std::string, 4> userFolders = defaultUserFolders();

    [[nodiscard]] static std::string defaultHome();
    [[nodiscard]] static std::int64_t defaultNow();
    // $XDG_DATA_HOME/Trash, else ~/.local/share/Trash.
    [[nodiscard]] static std::string defaultTrash();
    // $XDG_CACHE_HOME, else ~/.cache.
    [[nodiscard]] static std::string defaultCache();
    // The desktop's user folders, localized names included.
    [[nodiscard]] static std::array<std::string, 4> defaultUserFolders();
};

// "3 months", "2 years": how old a file or a project is.
[[nodiscard]] QString ageText(std::int64_t days);

[[nodiscard]] std::vector<Advice> advise(const NodePtr &root, const std::vector<BigFile> &bigFiles,
                                         const Context &context = {});

} // namespace Advisor
