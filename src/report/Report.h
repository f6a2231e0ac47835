#pragma once

#include "scan/BigFile.h"
#include "scan/Node.h"

#include <optional>
#include <string>
#include <vector>

// The headless report of a finished scan, as text for a terminal or as one JSON object.
namespace Report {

struct Input
{
    NodePtr root;
    std::vector<BigFile> bigFiles;
};

// depth limits how many levels of children the JSON tree carries; none means all.
[[nodiscard]] std::string json(const Input &input, std::optional<int> depth = std::nullopt);
[[nodiscard]] std::string text(const Input &input);

} // namespace Report
