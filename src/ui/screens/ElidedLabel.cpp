#include "ui/screens/ElidedLabel.h"

#include <QPainter>

ElidedLabel::ElidedLabel(const QString &text, Qt::TextElideMode mode, QWidget *parent)
    : QWidget(parent), m_text(text), m_mode(mode)
{
    setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Fixed);
    setAccessibleName(text);
}

void ElidedLabel::setText(const QString &text)
{
    if (text == m_text)
        return;
    m_text = text;
    setAccessibleName(text);
    updateGeometry();
    update();
}

void ElidedLabel::setOpacity(double opacity)
{
    m_opacity = opacity;
    update();
}

void ElidedLabel::setAlignment(Qt::Alignment alignment)
{
    m_alignment = alignment;
    update();
}

QSize ElidedLabel::sizeHint() const
{
    const QFontMetrics fm(font());
    return {fm.horizontalAdvance(m_text), fm.height()};
}

QSize ElidedLabel::minimumSizeHint() const
{
    return {0, QFontMetrics(font()).height()};
}

void ElidedLabel::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setOpacity(m_opacity);
    p.setPen(palette().color(foregroundRole()));
    const QString shown = QFontMetrics(font()).elidedText(m_text, m_mode, width());
    p.drawText(rect(), int(m_alignment) | Qt::TextSingleLine, shown);
}
