#pragma once

#include "scan/BigFile.h"
#include "scan/Node.h"

#include <QString>
#include <array>
#include <functional>
#include <string>
#include <variant>
#include <vector>

// What the tiles of the current level are measured by. The label is also the raw value.
enum class Metric { size, files };
// How the current level is shown.
enum class Mode { map, ranking, bounties };

namespace Metrics {
inline constexpr std::array<Metric, 2> all = {Metric::size, Metric::files};
[[nodiscard]] QString label(Metric m);
[[nodiscard]] double valueOf(Metric m, const Node &node);
[[nodiscard]] double looseValueOf(Metric m, const Node &node);
[[nodiscard]] QString format(Metric m, double value);
} // namespace Metrics

namespace Modes {
inline constexpr std::array<Mode, 3> all = {Mode::map, Mode::ranking, Mode::bounties};
[[nodiscard]] QString label(Mode m);
} // namespace Modes

// One cell of the current level: a sub-folder, the aggregate of the folders beyond the display
// limit, the folder's own loose files, or (in the ranking only) one of its big files.
struct Tile
{
    struct Folder
    {
        NodePtr node;
        bool operator==(const Folder &) const = default;
    };
    struct Other
    {
        std::int64_t count = 0;
        bool operator==(const Other &) const = default;
    };
    struct Loose
    {
        bool operator==(const Loose &) const = default;
    };
    struct File
    {
        BigFile file;
        bool operator==(const File &) const = default;
    };
    using Kind = std::variant<Folder, Other, Loose, File>;

    std::string id; // the folder's name, or NUL + "other" / NUL + "loose"
    Kind kind;
    std::string name; // bytes; display through DisplayName::of
    double value = 0;

    static const std::string otherId;
    static const std::string looseId;

    [[nodiscard]] const NodePtr *folder() const
    {
        const auto *f = std::get_if<Folder>(&kind);
        return f ? &f->node : nullptr;
    }
    [[nodiscard]] const BigFile *file() const
    {
        const auto *f = std::get_if<File>(&kind);
        return f ? &f->file : nullptr;
    }
    // The folder's or file's path; empty for the aggregates.
    [[nodiscard]] std::string path() const;
    bool operator==(const Tile &) const = default;
};

// The ordered tiles of `current` under `metric`, at most `limit` folders shown on their own:
// the largest first, or, given a growth, the folders that grew most.
using GrowthOf = std::function<std::int64_t(const Node &)>;
[[nodiscard]] std::vector<Tile> makeTiles(const Node *current, Metric metric, int limit,
                                          const GrowthOf &growth = {});
// The same tiles with the biggest `limit` of `current`'s own big files listed before the loose
// files, which then stand for the rest of them.
[[nodiscard]] std::vector<Tile> withBigFiles(std::vector<Tile> tiles, const Node &current,
                                             const std::vector<BigFile> &bigFiles, Metric metric,
                                             int limit);
