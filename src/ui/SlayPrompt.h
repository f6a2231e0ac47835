#pragma once

#include "session/Model.h"

#include <QString>

// The texts of the confirmation shown before a slay.
namespace SlayPrompt {

[[nodiscard]] QString title(const Model::Pending &pending);
[[nodiscard]] QString message(const Model::Pending &pending);
inline QString confirmLabel()
{
    return QStringLiteral("Move to Trash");
}

} // namespace SlayPrompt
