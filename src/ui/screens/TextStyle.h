#pragma once

#include <QColor>
#include <QFont>

class QPalette;
class QWidget;

// The type scale of the screens, in pixels so that text keeps its proportion to the geometry,
// which is given in points = device-independent pixels.
namespace TextStyle {

[[nodiscard]] QFont title();       // 22, bold titles
[[nodiscard]] QFont title2();      // 17
[[nodiscard]] QFont title3();      // 15
[[nodiscard]] QFont headline();    // 13 semibold
[[nodiscard]] QFont body();        // 13
[[nodiscard]] QFont callout();     // 12
[[nodiscard]] QFont subheadline(); // 11
[[nodiscard]] QFont caption();     // 10
[[nodiscard]] QFont caption2();    // 9, the smallest caption

[[nodiscard]] QFont weighted(QFont font, QFont::Weight weight);

// Secondary text follows the palette through its role, so a change of appearance needs no code.
void makeSecondary(QWidget *widget);
[[nodiscard]] QColor secondary(const QPalette &palette);
// Row highlight under the pointer, and the track of bars.
[[nodiscard]] QColor hover(const QPalette &palette);
[[nodiscard]] QColor track(const QPalette &palette);
[[nodiscard]] QColor accent(const QPalette &palette);

} // namespace TextStyle
