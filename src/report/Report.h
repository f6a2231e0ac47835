#pragma once

#include "advisor/Advice.h"
#include "game/Tier.h"
#include "scan/BigFile.h"
#include "scan/Node.h"
#include "snapshot/Snapshot.h"

#include <QDateTime>
#include <QString>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

// The headless report of a finished scan, as text for a terminal or as one JSON object.
namespace Report {

struct Input
{
    NodePtr root;
    std::vector<BigFile> bigFiles;
    std::vector<Advice> advice; // largest first, as the advisor gives it
    std::string home;           // for the advice's short names
    // The remembered scan of the same folder, for growth; none without one.
    const Snapshot *previous = nullptr;
    QString host{};
    QDateTime scanned{};
};

// Top-level folders already written as JSON, so the writing overlaps the walk of the others.
using Fragments = std::unordered_map<const Node *, std::string>;

// depth limits how many levels of children the JSON tree carries; none means all.
[[nodiscard]] std::string json(const Input &input, std::optional<int> depth = std::nullopt,
                               const Fragments *fragments = nullptr);
// One top-level folder of the root as the JSON that json() would write for it.
[[nodiscard]] std::string jsonFragment(const Node &folder, std::optional<int> depth,
                                       const Snapshot *previous = nullptr);
// depth is how many levels of folders the text shows; none means one.
[[nodiscard]] std::string text(const Input &input, std::optional<int> depth = std::nullopt);

// The advice as the bounty board shows it: safe, then rebuild, then review, each in list order.
[[nodiscard]] std::vector<Advice> boardOrder(const std::vector<Advice> &advice);
// A territory's fantasy name, as the map shows it with fantasy names on and no names of the user's.
[[nodiscard]] QString placeName(const Node &node);
[[nodiscard]] const char *tierKey(Tier tier);
[[nodiscard]] const char *safetyKey(Advice::Safety safety);

} // namespace Report
