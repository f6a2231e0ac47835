#include "ui/screens/HeroChoiceButton.h"

#include "platform/Emoji.h"
#include "ui/screens/TextStyle.h"

#include <QPainter>

HeroChoiceButton::HeroChoiceButton(const QString &hero, QWidget *parent)
    : QAbstractButton(parent), m_hero(hero)
{
    setCheckable(true);
    setFixedSize(cell, cell);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setAccessibleName(hero);
    setToolTip(hero);
}

void HeroChoiceButton::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF r = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    p.setPen(Qt::NoPen);
    if (isChecked()) {
        QColor fill = TextStyle::accent(palette());
        fill.setAlphaF(0.5);
        p.setBrush(fill);
        p.drawRoundedRect(r, radius, radius);
    } else if (m_hot || isDown()) {
        p.setBrush(TextStyle::hover(palette()));
        p.drawRoundedRect(r, radius, radius);
    }
    if (hasFocus()) {
        p.setPen(QPen(TextStyle::accent(palette()), 1.5));
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(r.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
    }
    // Text, emoji included, is only drawn with a pen.
    p.setPen(palette().color(QPalette::WindowText));
    Emoji::drawCentered(p, m_hero, QRectF(rect()).center(), 24);
}

void HeroChoiceButton::enterEvent(QEnterEvent *event)
{
    m_hot = true;
    update();
    QAbstractButton::enterEvent(event);
}

void HeroChoiceButton::leaveEvent(QEvent *event)
{
    m_hot = false;
    update();
    QAbstractButton::leaveEvent(event);
}
