#pragma once

#include <QFont>

// The map's type: serif names for places, the system face for everything else. Sizes in pixels,
// which are the map's points.
namespace MapFonts {

[[nodiscard]] QFont serif(double pixelSize, QFont::Weight weight);
[[nodiscard]] QFont system(double pixelSize, QFont::Weight weight = QFont::Normal);

} // namespace MapFonts
