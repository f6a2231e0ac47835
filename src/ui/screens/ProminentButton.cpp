#include "ui/screens/ProminentButton.h"

#include "platform/Emoji.h"
#include "platform/Icons.h"
#include "ui/screens/TextStyle.h"

#include <QPainter>
#include <QStyleOptionButton>

namespace {

constexpr int padX = 14;
constexpr int padY = 6;
constexpr int symbolSize = 14;
constexpr int gap = 6;

} // namespace

ProminentButton::ProminentButton(const QString &text, QWidget *parent) : QPushButton(text, parent)
{
    setFont(Emoji::mixedFont(TextStyle::weighted(TextStyle::body(), QFont::DemiBold)));
    setCursor(Qt::PointingHandCursor);
}

void ProminentButton::setSymbol(const QString &symbol)
{
    m_symbol = symbol;
    updateGeometry();
    update();
}

QSize ProminentButton::sizeHint() const
{
    const QFontMetrics fm(font());
    int w = fm.horizontalAdvance(text()) + 2 * padX;
    if (!m_symbol.isEmpty())
        w += symbolSize + gap;
    return {w, fm.height() + 2 * padY};
}

void ProminentButton::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    QColor fill = TextStyle::accent(palette());
    if (!isEnabled())
        fill.setAlphaF(0.4);
    else if (isDown())
        fill = fill.darker(125);
    else if (m_hot)
        fill = fill.lighter(110);
    const QRectF r = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    p.setPen(Qt::NoPen);
    p.setBrush(fill);
    p.drawRoundedRect(r, 7, 7);
    if (hasFocus()) {
        QColor ring = fill;
        ring.setAlphaF(0.45);
        p.setPen(QPen(ring, 2));
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(r.adjusted(1, 1, -1, -1), 6, 6);
    }

    const QColor ink = palette().color(QPalette::HighlightedText);
    const QFontMetrics fm(font());
    const int textWidth = fm.horizontalAdvance(text());
    const int total = textWidth + (m_symbol.isEmpty() ? 0 : symbolSize + gap);
    int x = (width() - total) / 2;
    if (!m_symbol.isEmpty()) {
        const QPixmap icon =
            Icons::symbol(m_symbol, ink, symbolSize).pixmap(symbolSize, symbolSize);
        p.drawPixmap(QPoint(x, (height() - symbolSize) / 2), icon);
        x += symbolSize + gap;
    }
    p.setPen(ink);
    p.setFont(font());
    p.drawText(QRect(x, 0, textWidth + 1, height()), Qt::AlignVCenter | Qt::AlignLeft, text());
}

void ProminentButton::enterEvent(QEnterEvent *event)
{
    m_hot = true;
    update();
    QPushButton::enterEvent(event);
}

void ProminentButton::leaveEvent(QEvent *event)
{
    m_hot = false;
    update();
    QPushButton::leaveEvent(event);
}
