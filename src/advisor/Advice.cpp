#include "advisor/Advice.h"

#include "platform/DisplayName.h"
#include "platform/Home.h"
#include "platform/Paths.h"

#include <string_view>

namespace {

struct Presentation
{
    const char *symbol;
    const char *label;
    std::uint32_t rgb;
    const char *description;
};

const Presentation &presentation(Advice::Safety s)
{
    static const std::array<Presentation, 3> table = {{
        {"checkmark.seal.fill", "Safe to delete", 0x0CA30C,
         "Caches, logs and build leftovers. Apps and tools recreate these automatically."},
        {"arrow.triangle.2.circlepath", "Rebuilt when needed", 0xFAB219,
         "Dependencies and downloads. Deleting is safe; the next install or build fetches them "
         "again (takes time and bandwidth)."},
        {"eye.fill", "Review first", 0xEC835A,
         "Probably yours to judge: installers, old big files, backups, models and disk images. "
         "Have a look before slaying."},
    }};
    return table[std::size_t(Safeties::index(s))];
}

} // namespace

NodePtr Advice::folder() const
{
    const NodePtr *node = std::get_if<NodePtr>(&target);
    return node ? *node : nullptr;
}

QString Advice::displayName(const std::string &home) const
{
    const std::string_view name = Paths::lastComponent(path);
    const bool qualified =
        !isFile() && (name.starts_with('.') || name == "Caches" || name == "Cache");
    if (!qualified)
        return DisplayName::of(name);

    const std::string_view parent = Paths::parent(path);
    std::string label;
    if (parent == home)
        label = "~";
    else if (parent != "/")
        label = Paths::lastComponent(parent);
    return DisplayName::of(label + '/' + std::string(name));
}

QString Advice::displayName() const
{
    return displayName(Home::path());
}

QString Safeties::symbolName(Advice::Safety s)
{
    return QString::fromLatin1(presentation(s).symbol);
}

QString Safeties::label(Advice::Safety s)
{
    return QString::fromLatin1(presentation(s).label);
}

AdaptiveColor Safeties::color(Advice::Safety s)
{
    return {presentation(s).rgb, presentation(s).rgb};
}

QString Safeties::description(Advice::Safety s)
{
    return QString::fromLatin1(presentation(s).description);
}
