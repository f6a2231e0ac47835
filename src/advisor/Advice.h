#pragma once

#include "platform/AdaptiveColor.h"
#include "scan/BigFile.h"
#include "scan/Node.h"

#include <QString>
#include <array>
#include <cstdint>
#include <string>
#include <variant>

// One cleanup recommendation: a folder of the tree or a big file, how safe it is to trash, and
// why. Identified by its path. Holds no Qt object, so it may be built on the scan's thread.
struct Advice
{
    enum class Safety : int { safe = 0, rebuild = 1, review = 2 };
    // The folder case keeps its node alive even after the node leaves the tree.
    using Target = std::variant<NodePtr, BigFile>;

    Target target;
    std::string path;
    std::uint64_t size = 0;
    Safety safety = Safety::safe;
    QString reason;
    bool actionable = true;

    [[nodiscard]] bool isFile() const { return std::holds_alternative<BigFile>(target); }
    [[nodiscard]] NodePtr folder() const;
    [[nodiscard]] const BigFile *file() const { return std::get_if<BigFile>(&target); }
    [[nodiscard]] const std::string &id() const { return path; }

    // The row title: hidden and cache folders carry their parent's name ("~/.npm",
    // "Slack/Cache"), everything else is the last path component.
    [[nodiscard]] QString displayName(const std::string &home) const;
    [[nodiscard]] QString displayName() const;
};

namespace Safeties {

inline constexpr std::array<Advice::Safety, 3> all = {Advice::Safety::safe, Advice::Safety::rebuild,
                                                      Advice::Safety::review};

[[nodiscard]] inline int index(Advice::Safety s)
{
    return static_cast<int>(s);
}
[[nodiscard]] QString symbolName(Advice::Safety s);
[[nodiscard]] QString label(Advice::Safety s);
// The same in both appearances.
[[nodiscard]] AdaptiveColor color(Advice::Safety s);
[[nodiscard]] QString description(Advice::Safety s);

} // namespace Safeties
