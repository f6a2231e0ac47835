#include "ui/Popover.h"

#include <QGuiApplication>
#include <QScreen>
#include <QVBoxLayout>

Popover::Popover(QWidget *content, QWidget *parent) : QFrame(parent, Qt::Popup)
{
    setFrameShape(QFrame::StyledPanel);
    setAttribute(Qt::WA_DeleteOnClose, false);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(content);
}

void Popover::showBelow(QWidget *anchor)
{
    adjustSize();
    QPoint at =
        anchor->mapToGlobal(QPoint(anchor->width() / 2 - width() / 2, anchor->height() + 4));
    if (const QScreen *screen = anchor->screen()) {
        const QRect area = screen->availableGeometry();
        at.setX(std::clamp(at.x(), area.left() + 4,
                           std::max(area.left() + 4, area.right() - width() - 4)));
        at.setY(std::min(at.y(), std::max(area.top(), area.bottom() - height() - 4)));
    }
    move(at);
    show();
    setFocus();
}

void Popover::hideEvent(QHideEvent *event)
{
    QFrame::hideEvent(event);
    Q_EMIT closed();
}
