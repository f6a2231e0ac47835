#include "ui/screens/MaterialCard.h"

#include "platform/Appearance.h"

#include <QPainter>

MaterialCard::MaterialCard(double radius, QWidget *parent) : QWidget(parent), m_radius(radius)
{
    setAttribute(Qt::WA_TranslucentBackground);
}

QColor MaterialCard::fill(const QPalette &palette)
{
    QColor c = palette.color(QPalette::Window);
    c.setAlphaF(Appearance::isDark(palette) ? 0.86 : 0.88);
    return c;
}

QColor MaterialCard::outline(const QPalette &palette)
{
    QColor c = Appearance::ink(palette);
    c.setAlphaF(Appearance::isDark(palette) ? 0.18 : 0.12);
    return c;
}

void MaterialCard::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(outline(palette()), 1));
    p.setBrush(fill(palette()));
    p.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), m_radius, m_radius);
}
