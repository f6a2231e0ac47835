#include "ui/screens/EmojiMenuStyle.h"

#include "platform/Emoji.h"

#include <QApplication>
#include <QPainter>
#include <QStyleOptionMenuItem>

EmojiMenuStyle::EmojiMenuStyle() : QProxyStyle(QApplication::style()->name()) {}

QString EmojiMenuStyle::leadingEmoji(const QString &text)
{
    const qsizetype space = text.indexOf(QLatin1Char(' '));
    if (space <= 0)
        return {};
    const QString head = text.left(space);
    // Emoji lie outside the letters and digits, in the symbol planes and blocks.
    for (const char32_t c : head.toUcs4())
        if (QChar::isLetterOrNumber(c) || c < 0x2000)
            return {};
    return head;
}

QIcon EmojiMenuStyle::icon(const QString &emoji, int size)
{
    const qreal ratio = qApp ? qApp->devicePixelRatio() : 1.0;
    QPixmap pm(QSize(size, size) * ratio);
    pm.setDevicePixelRatio(ratio);
    pm.fill(Qt::transparent);
    QPainter p(&pm);
    p.setPen(Qt::black); // text is only drawn with a pen, even in colour
    Emoji::drawCentered(p, emoji, QPointF(size / 2.0, size / 2.0), size * 0.9);
    p.end();
    return QIcon(pm);
}

void EmojiMenuStyle::drawControl(ControlElement element, const QStyleOption *option,
                                 QPainter *painter, const QWidget *widget) const
{
    if (element == CE_MenuItem) {
        if (const auto *item = qstyleoption_cast<const QStyleOptionMenuItem *>(option)) {
            const QString emoji = leadingEmoji(item->text);
            if (!emoji.isEmpty() && !item->icon.isNull()) {
                QStyleOptionMenuItem copy(*item);
                copy.text = item->text.mid(emoji.size() + 1);
                QProxyStyle::drawControl(element, &copy, painter, widget);
                return;
            }
        }
    }
    QProxyStyle::drawControl(element, option, painter, widget);
}
