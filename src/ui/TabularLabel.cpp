#include "ui/TabularLabel.h"

#include "platform/TabularDigits.h"

#include <QFontMetricsF>
#include <QPainter>
#include <cmath>

TabularLabel::TabularLabel(QWidget *parent) : QWidget(parent)
{
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
}

void TabularLabel::setText(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    setAccessibleName(text);
    updateGeometry();
    update();
}

QSize TabularLabel::sizeHint() const
{
    return {int(std::ceil(TabularDigits::width(font(), m_text))),
            int(std::ceil(QFontMetricsF(font()).height()))};
}

void TabularLabel::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setPen(palette().color(foregroundRole()));
    p.setFont(font());
    TabularDigits::draw(p, rect(), Qt::AlignLeft | Qt::AlignVCenter, m_text);
}
