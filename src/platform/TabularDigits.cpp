#include "platform/TabularDigits.h"

#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>

namespace {

bool isDigit(QChar c)
{
    return c >= u'0' && c <= u'9';
}

double widestDigit(const std::function<double(const QString &)> &advance)
{
    double widest = 0;
    for (char16_t d = u'0'; d <= u'9'; ++d)
        widest = std::max(widest, advance(QString(QChar(d))));
    return widest;
}

bool alreadyTabular(const QFontMetricsF &metrics)
{
    const double zero = metrics.horizontalAdvance(QLatin1Char('0'));
    for (char d = '1'; d <= '9'; ++d) {
        if (metrics.horizontalAdvance(QLatin1Char(d)) != zero)
            return false;
    }
    return true;
}

} // namespace

TabularDigits::Layout TabularDigits::layout(const QString &text,
                                            const std::function<double(const QString &)> &advance)
{
    Layout out;
    const double cell = widestDigit(advance);
    for (qsizetype i = 0; i < text.size();) {
        if (isDigit(text[i])) {
            const QString digit(text[i]);
            out.pieces.push_back({digit, out.width + (cell - advance(digit)) / 2});
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

double TabularDigits::width(const QFont &font, const QString &text)
{
    const QFontMetricsF metrics(font);
    if (alreadyTabular(metrics))
        return metrics.horizontalAdvance(text);
    return layout(text, [&metrics](const QString &s) { return metrics.horizontalAdvance(s); })
        .width;
}

void TabularDigits::draw(QPainter &painter, const QRectF &box, int flags, const QString &text)
{
    const QFontMetricsF metrics(painter.font());
    if (alreadyTabular(metrics)) {
        painter.drawText(box, flags, text);
        return;
    }
    const Layout laid =
        layout(text, [&metrics](const QString &s) { return metrics.horizontalAdvance(s); });
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
