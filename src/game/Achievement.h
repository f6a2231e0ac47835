#pragma once

#include <QString>
#include <optional>
#include <vector>

// One of the fixed achievements; `id` is what "unlocked" stores.
struct Achievement
{
    QString id;
    QString emoji;
    QString title;
    QString detail;

    // In the order the character sheet lists them.
    [[nodiscard]] static const std::vector<Achievement> &all();
    [[nodiscard]] static std::optional<Achievement> find(const QString &id);
};
