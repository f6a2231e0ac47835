#include "platform/TabularDigits.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>
#include <array>

namespace {

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

using Advance = std::function<double(const QString &)>;
using DigitAdvances = std::array<double, 10>;

DigitAdvances digitAdvances(const Advance &advance)
{
    DigitAdvances widths{};
    for (int d = 0; d < 10; ++d)
        widths[std::size_t(d)] = advance(QString(QChar(u'0' + d)));
    return widths;
}

// A font whose digits are tabular already is drawn as it is.
bool alreadyTabular(const DigitAdvances &digits)
{
    return std::all_of(digits.begin(), digits.end(), [&](double w) { return w == digits[0]; });
}

TabularDigits::Layout laidOut(const QString &text, const DigitAdvances &digits,
                              const Advance &advance)
{
    TabularDigits::Layout out;
    const double cell = *std::max_element(digits.begin(), digits.end());
    for (qsizetype i = 0; i < text.size();) {
        if (isDigit(text[i])) {
            const double w = digits[std::size_t(text[i].unicode() - u'0')];
            out.pieces.push_back({QString(text[i]), out.width + (cell - w) / 2});
            out.width += cell;
            ++i;
            continue;
        }
        qsizetype end = i;
        while (end < text.size() && !isDigit(text[end]))
            ++end;
        // A run is measured whole, so it keeps its kerning and shaping.
        const QString run = text.mid(i, end - i);
        out.pieces.push_back({run, out.width});
        out.width += advance(run);
        i = end;
    }
    return out;
}

} // namespace

TabularDigits::Layout TabularDigits::layout(const QString &text, const Advance &advance)
{
    return laidOut(text, digitAdvances(advance), advance);
}

double TabularDigits::width(const QFont &font, const QString &text)
{
    const QFontMetricsF metrics(font);
    const Advance advance = [&metrics](const QString &s) { return metrics.horizontalAdvance(s); };
    const DigitAdvances digits = digitAdvances(advance);
    if (alreadyTabular(digits))
        return metrics.horizontalAdvance(text);
    return laidOut(text, digits, advance).width;
}

void TabularDigits::draw(QPainter &painter, const QRectF &box, int flags, const QString &text)
{
    const QFontMetricsF metrics(painter.font());
    const Advance advance = [&metrics](const QString &s) { return metrics.horizontalAdvance(s); };
    const DigitAdvances digits = digitAdvances(advance);
    if (alreadyTabular(digits)) {
        painter.drawText(box, flags, text);
        return;
    }
    const Layout laid = laidOut(text, digits, advance);
    double x = box.left();
    if (flags & Qt::AlignRight)
        x = box.right() - laid.width;
    else if (flags & Qt::AlignHCenter)
        x = box.center().x() - laid.width / 2;
    double baseline = box.top() + metrics.ascent();
    if (flags & Qt::AlignBottom)
        baseline = box.bottom() - metrics.descent();
    else if (flags & Qt::AlignVCenter)
        baseline = box.center().y() + (metrics.ascent() - metrics.descent()) / 2;
    for (const Piece &piece : laid.pieces)
        painter.drawText(QPointF(x + piece.x, baseline), piece.text);
}
