#include "world/ui/MapControls.h"

#include "platform/Appearance.h"
#include "platform/Icons.h"
#include "platform/Keys.h"
#include "session/Model.h"
#include "ui/Popover.h"
#include "world/ui/MapHelp.h"

#include <QEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScreen>
#include <QToolButton>
#include <QVBoxLayout>

MapControls::MapControls(Model &model, QWidget *parent)
    : QWidget(parent), m_model(model), m_in(new QToolButton(this)), m_out(new QToolButton(this)),
      m_info(new QToolButton(this))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(4, 4, 4, 4);
    column->setSpacing(2);
    const std::pair<QToolButton *, const char *> buttons[] = {
        {m_in, "Zoom in (⌘=)"}, {m_out, "Zoom out (⌘−)"}, {m_info, "Controls, spells and map key"}};
    for (const auto &[button, tip] : buttons) {
        button->setAutoRaise(true);
        button->setFocusPolicy(Qt::NoFocus);
        button->setIconSize(QSize(16, 16));
        button->setFixedSize(28, 28);
        button->setToolTip(Keys::display(QString::fromUtf8(tip)));
        column->addWidget(button);
    }
    m_in->setAccessibleName(QStringLiteral("Zoom in"));
    m_out->setAccessibleName(QStringLiteral("Zoom out"));
    m_info->setAccessibleName(QStringLiteral("Controls, spells and map key"));
    m_info->setCheckable(true);

    connect(m_in, &QToolButton::clicked, this, [this] { m_model.zoom(+1); });
    connect(m_out, &QToolButton::clicked, this, [this] { m_model.zoom(-1); });
    connect(m_info, &QToolButton::clicked, this, [this] { setHelp(!m_help); });
    connect(&m_model, &Model::zoomLevelChanged, this, &MapControls::refresh);
    refresh();
}

void MapControls::refresh()
{
    const QColor ink = Appearance::ink(palette());
    m_in->setIcon(Icons::symbol(QStringLiteral("plus"), ink));
    m_out->setIcon(Icons::symbol(QStringLiteral("minus"), ink));
    m_info->setIcon(Icons::symbol(QStringLiteral("info"), ink));
    m_in->setEnabled(m_model.zoomLevel() < Model::maxZoomLevel);
    m_out->setEnabled(m_model.zoomLevel() > 0);
}

void MapControls::setHelp(bool shown)
{
    if (shown == m_help)
        return;
    m_help = shown;
    m_info->setChecked(shown);
    if (!shown) {
        if (m_popover)
            m_popover->hide();
        return;
    }
    if (!m_popover) {
        m_popover = new Popover(new MapHelp, this);
        connect(m_popover, &Popover::closed, this, [this] {
            m_help = false;
            m_info->setChecked(false);
        });
    }
    // Beside the button, to its left: the map's bottom right corner has no room below.
    m_popover->adjustSize();
    QPoint at = m_info->mapToGlobal(
        QPoint(-m_popover->width() - 8, m_info->height() - m_popover->height()));
    if (const QScreen *screen = m_info->screen()) {
        const QRect area = screen->availableGeometry();
        at.setX(std::max(at.x(), area.left() + 4));
        at.setY(std::clamp(at.y(), area.top() + 4,
                           std::max(area.top() + 4, area.bottom() - m_popover->height() - 4)));
    }
    m_popover->move(at);
    m_popover->show();
}

void MapControls::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    QColor fill = palette().color(QPalette::Window);
    fill.setAlphaF(0.88f);
    QColor edge = Appearance::ink(palette());
    edge.setAlphaF(0.12f);
    QPainterPath box;
    box.addRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 9, 9);
    p.fillPath(box, fill);
    p.strokePath(box, QPen(edge, 1));
}

void MapControls::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        refresh();
    QWidget::changeEvent(event);
}
