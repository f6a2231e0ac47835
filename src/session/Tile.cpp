#include "session/Tile.h"

#include "scan/Fmt.h"

#include <algorithm>
#include <cmath>
#include <optional>

const std::string Tile::otherId = std::string(1, '\0') + "other";
const std::string Tile::looseId = std::string(1, '\0') + "loose";

QString Metrics::label(Metric m)
{
    return m == Metric::size ? QStringLiteral("Size") : QStringLiteral("Files");
}

double Metrics::valueOf(Metric m, const Node &node)
{
    return m == Metric::size ? static_cast<double>(node.size()) : static_cast<double>(node.files());
}

double Metrics::looseValueOf(Metric m, const Node &node)
{
    return m == Metric::size ? static_cast<double>(node.looseSize())
                             : static_cast<double>(node.looseFiles());
}

QString Metrics::format(Metric m, double value)
{
    if (m == Metric::files)
        return Fmt::files(static_cast<std::int64_t>(std::trunc(value)));
    return Fmt::bytes(value <= 0 ? 0 : static_cast<std::uint64_t>(value));
}

QString Modes::label(Mode m)
{
    switch (m) {
    case Mode::map:
        return QStringLiteral("Map");
    case Mode::ranking:
        return QStringLiteral("Ranking");
    case Mode::bounties:
        return QStringLiteral("Bounties");
    }
    return {};
}

std::vector<Tile> makeTiles(const Node *current, Metric metric, int limit, const GrowthOf &growth)
{
    std::vector<Tile> tiles;
    if (!current)
        return tiles;

    std::vector<NodePtr> folders = current->children();
    std::stable_sort(folders.begin(), folders.end(), [metric](const NodePtr &a, const NodePtr &b) {
        return Metrics::valueOf(metric, *a) > Metrics::valueOf(metric, *b);
    });
    if (growth) {
        std::vector<std::pair<std::int64_t, NodePtr>> keyed;
        keyed.reserve(folders.size());
        for (NodePtr &n : folders)
            keyed.emplace_back(growth(*n), std::move(n));
        std::stable_sort(keyed.begin(), keyed.end(),
                         [](const auto &a, const auto &b) { return a.first > b.first; });
        for (std::size_t i = 0; i < keyed.size(); ++i)
            folders[i] = std::move(keyed[i].second);
    }

    const std::size_t shown =
        std::min(folders.size(), static_cast<std::size_t>(std::max(limit, 0)));
    tiles.reserve(shown + 2);
    for (std::size_t i = 0; i < shown; ++i) {
        const NodePtr &n = folders[i];
        const double v = Metrics::valueOf(metric, *n);
        if (v > 0)
            tiles.push_back({n->name(), Tile::Folder{n}, n->name(), v});
    }

    double rest = 0;
    for (std::size_t i = shown; i < folders.size(); ++i)
        rest += Metrics::valueOf(metric, *folders[i]);
    if (rest > 0) {
        const auto count = static_cast<std::int64_t>(folders.size() - shown);
        tiles.push_back(
            {Tile::otherId, Tile::Other{count}, std::to_string(count) + " smaller folders", rest});
    }

    const double loose = Metrics::looseValueOf(metric, *current);
    if (loose > 0)
        tiles.push_back({Tile::looseId, Tile::Loose{}, "Loose files", loose});
    return tiles;
}

std::string Tile::path() const
{
    if (const NodePtr *node = folder())
        return (*node)->path();
    if (const BigFile *f = file())
        return f->path;
    return {};
}

std::vector<Tile> withBigFiles(std::vector<Tile> tiles, const Node &current,
                               const std::vector<BigFile> &bigFiles, Metric metric, int limit)
{
    const std::string folder = current.path();
    std::vector<const BigFile *> own;
    for (const BigFile &f : bigFiles)
        if (Paths::parent(f.path) == folder)
            own.push_back(&f);
    std::stable_sort(own.begin(), own.end(),
                     [](const BigFile *a, const BigFile *b) { return a->size > b->size; });
    own.resize(std::min(own.size(), static_cast<std::size_t>(std::max(limit, 0))));
    if (own.empty())
        return tiles;

    // makeTiles puts the loose files last; they now stand for what the list does not name.
    std::optional<Tile> loose;
    if (!tiles.empty() && tiles.back().id == Tile::looseId) {
        loose = std::move(tiles.back());
        tiles.pop_back();
    }
    double rest = loose ? loose->value : 0;
    for (const BigFile *f : own) {
        const double value = metric == Metric::size ? static_cast<double>(f->size) : 1.0;
        rest -= value;
        tiles.push_back({std::string(1, '\0') + "file/" + std::string(f->name()), Tile::File{*f},
                         std::string(f->name()), value});
    }
    // The tree may have lost loose files the list still names (another program's doing): the
    // remainder never goes below zero.
    if (loose && rest > 0) {
        loose->value = rest;
        tiles.push_back(std::move(*loose));
    }
    return tiles;
}
