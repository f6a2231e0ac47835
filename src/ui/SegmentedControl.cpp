#include "ui/SegmentedControl.h"

#include "platform/Appearance.h"

#include <QHBoxLayout>
#include <QPainter>
#include <QToolButton>

SegmentedControl::SegmentedControl(const QString &accessibleName, QWidget *parent)
    : QWidget(parent), m_layout(new QHBoxLayout(this))
{
    setAccessibleName(accessibleName);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    m_layout->setContentsMargins(2, 2, 2, 2);
    m_layout->setSpacing(2);
    m_group.setExclusive(true);
    connect(&m_group, &QButtonGroup::idClicked, this, &SegmentedControl::selectedChanged);
}

QToolButton *SegmentedControl::addSegment(const QString &text, const QIcon &icon,
                                          const QString &help)
{
    auto *button = new QToolButton(this);
    button->setCheckable(true);
    button->setAutoRaise(true);
    button->setText(text);
    button->setIcon(icon);
    button->setToolButtonStyle(icon.isNull() ? Qt::ToolButtonTextOnly : Qt::ToolButtonIconOnly);
    button->setToolTip(help);
    button->setAccessibleName(help);
    button->setMinimumWidth(36);
    button->setFixedHeight(24);
    button->setIconSize(QSize(16, 16));
    button->setStyleSheet(
        QStringLiteral("QToolButton { border: none; border-radius: 5px; padding: 3px 8px; }"
                       "QToolButton:checked { background: palette(base); }"));
    m_group.addButton(button, m_group.buttons().size());
    m_layout->addWidget(button);
    return button;
}

QToolButton *SegmentedControl::segment(int index) const
{
    return qobject_cast<QToolButton *>(m_group.button(index));
}

void SegmentedControl::setSelected(int index)
{
    if (QAbstractButton *b = m_group.button(index))
        b->setChecked(true);
}

void SegmentedControl::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    QColor track = Appearance::ink(palette());
    track.setAlphaF(Appearance::isDark(palette()) ? 0.14 : 0.08);
    p.setPen(Qt::NoPen);
    p.setBrush(track);
    p.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 7, 7);
}
