#pragma once

#include <QColor>
#include <QIcon>
#include <QString>

// Symbol images by their symbol names ("folder", "chevron.left", ...), drawn in one colour so
// they suit both appearances: a freedesktop icon when the theme (or Adwaita) has one, else a
// glyph drawn here.
namespace Icons {

[[nodiscard]] QIcon symbol(const QString &name, const QColor &color, int size = 16);
// The freedesktop icon a symbol maps to; empty when it is drawn instead.
[[nodiscard]] QString themeName(const QString &symbol);

} // namespace Icons
