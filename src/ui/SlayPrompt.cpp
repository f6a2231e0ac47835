#include "ui/SlayPrompt.h"

#include "game/Tier.h"
#include "platform/DisplayName.h"
#include "scan/Fmt.h"

QString SlayPrompt::title(const Model::Pending &pending)
{
    if (const auto *f = std::get_if<Model::PendingFolder>(&pending)) {
        const Node &node = *f->node;
        return QStringLiteral("Slay the %1 of “%2” and reclaim %3?")
            .arg(Tiers::displayName(Tiers::ofBytes(node.size())), DisplayName::of(node.name()),
                 Fmt::bytes(node.size()));
    }
    if (const auto *f = std::get_if<Model::PendingFile>(&pending))
        return QStringLiteral("Slay “%1” and reclaim %2?")
            .arg(DisplayName::of(f->file.name()), Fmt::bytes(f->file.size));
    const auto &items = std::get<Model::PendingBulk>(pending).items;
    std::uint64_t total = 0;
    for (const Advice &a : items)
        total += a.size;
    return QStringLiteral("Slay all %1 safe items and reclaim %2?")
        .arg(items.size())
        .arg(Fmt::bytes(total));
}

QString SlayPrompt::message(const Model::Pending &pending)
{
    if (std::holds_alternative<Model::PendingBulk>(pending)) {
        return QStringLiteral(
            "These are caches, logs and build leftovers that get recreated automatically. "
            "Quit the apps they belong to first for best results. Everything goes to the "
            "Trash, so you can still put it back.");
    }
    return QStringLiteral("It goes to the Trash, so you can still put it back.");
}
