#pragma once

#include "world/Region.h"
#include "world/Warp.h"

#include <QPainterPath>
#include <QPointF>
#include <QRectF>
#include <QSizeF>
#include <QString>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

// The island generated from the tiles of the current level. Building is pure: the same tiles,
// names, key and size give the same island in every run, so rebuilding never makes it jump.
struct WorldLayout
{
    using Explored = std::function<bool(const std::string &path)>;
    using Bounties = std::function<std::int64_t(const std::string &path)>;
    using Title = std::function<QString(const Tile &tile, std::optional<Tier> tier)>;
    // Bytes a folder grew since the remembered scan; none without one.
    using Growth = std::function<std::optional<std::int64_t>(const Node &folder)>;

    QSizeF size;
    QRectF land;
    QPainterPath coast;
    std::vector<QPainterPath> rivers; // open paths, at most 3
    std::vector<Region> regions;      // one per tile, in tile order
    std::vector<QPointF> waves;
    std::int64_t key = 0; // equal keys draw the same island (within one run)
    Warp warp;

    // `key` is the current folder's path ("/" without one); it seeds every random draw. `size` is
    // the view's size times `zoom`: the island of zoom 1, magnified.
    [[nodiscard]] static WorldLayout build(const std::vector<Tile> &tiles, const std::string &key,
                                           QSizeF size, const Explored &explored,
                                           const Bounties &bounties, const Title &title,
                                           double zoom = 1, const Growth &growth = {});

    // The territory under a world point; the hint is tried first so that the hero keeps his
    // territory where outlines overlap.
    [[nodiscard]] std::optional<int> regionIndex(QPointF point, std::optional<int> hint) const;
};
