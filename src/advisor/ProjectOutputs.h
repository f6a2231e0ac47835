#pragma once

#include "advisor/Advisor.h"
#include "advisor/Verdict.h"
#include "scan/Node.h"

#include <optional>
#include <string>

// Build outputs and tool caches inside projects, wherever they lie (external drives too). A
// folder counts only when its project's marker file is beside it, and the file system is asked
// about markers only once the folder's name matched.
namespace ProjectOutputs {

[[nodiscard]] std::optional<Verdict> folder(const Node &node, const std::string &path,
                                            const std::string &parentPath,
                                            const Advisor::Context &context);

} // namespace ProjectOutputs
