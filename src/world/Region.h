#pragma once

#include "game/Tier.h"
#include "session/Tile.h"

#include <QPainterPath>
#include <QPointF>
#include <QRectF>
#include <QString>
#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// One territory of the island: the tile it stands for, where it lies, and what is drawn on it.
struct Region
{
    Tile tile;
    QRectF rect;        // from the partition of the land
    QPainterPath shape; // rect's edges, warped; neighbours share their borders point for point
    QPointF capital;    // where the monster and the label sit
    std::optional<Tier> tier;        // folders only, by byte size
    std::optional<std::string> path; // folders only; bytes
    QString title;
    QString subtitle;
    bool explored = true;
    std::int64_t bounties = 0;
    // Bytes grown since the remembered scan, set only where that is worth a mark on the map.
    std::optional<std::int64_t> grown;
    double shade = 0;
    std::vector<QPointF> scenery;
    std::vector<QPointF> clouds;

    [[nodiscard]] double shortSide() const { return std::min(rect.width(), rect.height()); }
    [[nodiscard]] bool hasMonster() const { return tier.has_value() && shortSide() > 34; }
    [[nodiscard]] bool hasLabel() const { return rect.width() > 64 && rect.height() > 44; }
    // The monster's size; it also sets the hero's reach and the label's offset.
    [[nodiscard]] double monsterSize() const { return std::clamp(0.3 * shortSide(), 18.0, 56.0); }

    // Where the hero lands when he comes up from this territory: just right of the monster, or,
    // where the warped coast or a border cuts that spot off, the first of a few others that still
    // lies inside the territory.
    [[nodiscard]] QPointF besideMonster() const
    {
        const double offset = 1.1 * monsterSize();
        for (const double scale : {1.0, 0.6, 0.3}) {
            for (const QPointF step :
                 {QPointF(1, 0), QPointF(-1, 0), QPointF(0, 1), QPointF(0, -1)}) {
                const QPointF spot = capital + scale * offset * step;
                if (shape.contains(spot))
                    return spot;
            }
        }
        return capital;
    }
};
