#include "world/ui/Terrain.h"

QString Terrain::name(Tier tier)
{
    switch (tier) {
    case Tier::microbe:
        return QStringLiteral("Meadow");
    case Tier::gremlin:
        return QStringLiteral("Woods");
    case Tier::ogre:
        return QStringLiteral("Forest");
    case Tier::dragon:
        return QStringLiteral("Highlands");
    case Tier::titan:
        return QStringLiteral("Peaks");
    }
    return {};
}

QString Terrain::sign(std::optional<Tier> tier)
{
    if (!tier)
        return QStringLiteral("🪨");
    switch (*tier) {
    case Tier::microbe:
        return QStringLiteral("🌾");
    case Tier::gremlin:
        return QStringLiteral("🌳");
    case Tier::ogre:
        return QStringLiteral("🌲");
    case Tier::dragon:
        return QStringLiteral("⛰️");
    case Tier::titan:
        return QStringLiteral("🏔️");
    }
    return {};
}

QString Terrain::sizeRange(Tier tier)
{
    switch (tier) {
    case Tier::microbe:
        return QStringLiteral("< 100 MB");
    case Tier::gremlin:
        return QStringLiteral("< 1 GB");
    case Tier::ogre:
        return QStringLiteral("< 10 GB");
    case Tier::dragon:
        return QStringLiteral("< 50 GB");
    case Tier::titan:
        return QStringLiteral("50 GB+");
    }
    return {};
}
