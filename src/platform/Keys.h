#pragma once

#include <QString>

namespace Keys {

// Help texts name the Command key; elsewhere the same shortcuts use Ctrl.
[[nodiscard]] inline QString display(QString text)
{
#ifndef Q_OS_MACOS
    text.replace(QStringLiteral("⌘"), QStringLiteral("Ctrl+"));
#endif
    return text;
}

} // namespace Keys
