#pragma once

#include "game/Tier.h"

#include <QString>
#include <map>
#include <optional>
#include <string>
#include <string_view>

// Fantasy place names for territories: fixed names for well-known folders, and for every other
// folder a name picked by hashing the folder name, the same on every machine and every run.
namespace Lore {

// The user's own names, keyed by the folder's absolute path (bytes).
using CustomNames = std::map<std::string, QString, std::less<>>;

// folderName is the folder's own name as bytes; no tier picks the island names.
[[nodiscard]] QString name(std::string_view folderName, std::optional<Tier> tier);

// The name shown for a territory: the user's own name for the path, else the fantasy name when
// fantasy names are on, else the folder's real name.
[[nodiscard]] QString placeName(std::optional<std::string_view> path, std::string_view folderName,
                                std::optional<Tier> tier, const CustomNames &customNames,
                                bool fantasyNames);

} // namespace Lore
