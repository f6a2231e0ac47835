#pragma once

#include <QFont>
#include <QRectF>
#include <QString>
#include <functional>
#include <vector>

class QPainter;

// Numbers with tabular figures: every digit in a cell as wide as the font's widest digit, so a
// column of sizes lines up and a counting number does not shimmer. It is what OpenType's tnum
// asks of a font, done by hand because Qt before 6.7 cannot ask for it, on the normal font
// rather than a typewriter one. Fonts whose digits are tabular already are drawn as they are.
namespace TabularDigits {

// One piece of a laid-out text: a run of other characters, or a single digit, and where it sits.
struct Piece
{
    QString text;
    double x = 0;
};
struct Layout
{
    std::vector<Piece> pieces;
    double width = 0;
};

// Pure layout: `advance` measures a run of text; digits are centred in cells of the widest.
[[nodiscard]] Layout layout(const QString &text,
                            const std::function<double(const QString &)> &advance);
[[nodiscard]] double width(const QFont &font, const QString &text);
// Draws in the painter's font and pen, aligned in `box` by `flags` (horizontal and vertical
// alignment only).
void draw(QPainter &painter, const QRectF &box, int flags, const QString &text);

} // namespace TabularDigits
