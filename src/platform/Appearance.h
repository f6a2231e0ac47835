#pragma once

#include "platform/AdaptiveColor.h"

#include <QColor>
#include <QPalette>

// Light and dark appearance. The application palette says which one is current; --appearance=
// replaces the palette at start-up, so views only ever ask the palette.
namespace Appearance {

enum class Scheme { light, dark };

[[nodiscard]] bool isDark(const QPalette &palette);
[[nodiscard]] QPalette palette(Scheme scheme);
[[nodiscard]] inline QColor resolve(const AdaptiveColor &color, const QPalette &palette)
{
    return color.resolve(isDark(palette));
}
// The interface's ink: the colour of ordinary text.
[[nodiscard]] QColor ink(const QPalette &palette);
// How readable one colour is on another: the WCAG contrast ratio, 1 to 21 (4.5 reads well).
[[nodiscard]] double contrast(const QColor &a, const QColor &b);

} // namespace Appearance
