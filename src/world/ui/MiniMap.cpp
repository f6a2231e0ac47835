#include "world/ui/MiniMap.h"

#include "platform/Appearance.h"
#include "world/Player.h"
#include "world/ui/Glow.h"
#include "world/ui/Unspoken.h"
#include "world/ui/WorldPalette.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>

namespace {

constexpr double corner = 8;

} // namespace

MiniMap::MiniMap(Player &player, QWidget *parent) : QWidget(parent), m_player(player)
{
    setToolTip(QStringLiteral("Minimap · click to walk there"));
    setFocusPolicy(Qt::NoFocus);
    setCursor(Qt::PointingHandCursor);
    Unspoken::mark(this);
    setAttribute(Qt::WA_TranslucentBackground);
    connect(&m_player, &Player::posChanged, this, qOverload<>(&QWidget::update));
}

void MiniMap::setWorld(const WorldLayout &layout)
{
    const QSize before = sizeHint();
    m_layout = layout;
    if (sizeHint() != before) {
        m_shadow = QImage();
        updateGeometry();
        resize(sizeHint());
    }
    update();
}

double MiniMap::scale() const
{
    return m_layout.size.width() > 0 ? mapWidth / m_layout.size.width() : 0;
}

QRectF MiniMap::mapRect() const
{
    return QRectF(margin, margin, mapWidth, m_layout.size.height() * scale());
}

QSize MiniMap::sizeHint() const
{
    const QRectF r = mapRect();
    return QSize(int(std::ceil(r.width())) + 2 * margin, int(std::ceil(r.height())) + 2 * margin);
}

QPointF MiniMap::toWorld(QPointF widgetPoint) const
{
    const double s = scale();
    if (s <= 0)
        return {};
    const QPointF p = widgetPoint - mapRect().topLeft();
    return {p.x() / s, p.y() / s};
}

void MiniMap::paintGround(QPainter &painter)
{
    const WorldPalette colors = WorldPalette::of(palette());
    const double s = scale();
    painter.save();
    painter.scale(s, s);
    painter.fillRect(QRectF(QPointF(0, 0), m_layout.size), colors.sea);
    for (const Region &r : m_layout.regions)
        painter.fillRect(r.rect, colors.land(r.tier));
    const QColor gold = QColor::fromRgbF(1.0f, 0.8f, 0.2f);
    painter.setPen(QPen(QColor(0, 0, 0, 120), 1 / s));
    painter.setBrush(gold);
    painter.setRenderHint(QPainter::Antialiasing);
    for (const Region &r : m_layout.regions) {
        if (r.bounties > 0)
            painter.drawEllipse(r.rect.center(), 3 / s, 3 / s);
    }
    painter.restore();
}

void MiniMap::paintEvent(QPaintEvent *)
{
    if (m_layout.size.isEmpty())
        return;
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const QRectF map = mapRect();
    QPainterPath frame;
    frame.addRoundedRect(map, corner, corner);

    if (m_shadow.isNull()) {
        QImage shape(map.size().toSize() + QSize(1, 1), QImage::Format_ARGB32_Premultiplied);
        shape.fill(Qt::transparent);
        QPainter p(&shape);
        p.setRenderHint(QPainter::Antialiasing);
        QPainterPath local;
        local.addRoundedRect(QRectF(QPointF(0, 0), map.size()), corner, corner);
        p.fillPath(local, Qt::black);
        p.end();
        m_shadow = Glow::shadow(shape, QColor(0, 0, 0, 84), 6);
    }
    const double pad = (m_shadow.width() - map.width() - 1) / 2;
    painter.drawImage(map.topLeft() - QPointF(pad, pad) + QPointF(0, 1), m_shadow);

    const bool dark = Appearance::isDark(palette());
    if (!m_groundKey || *m_groundKey != std::make_pair(m_layout.key, dark) ||
        m_ground.devicePixelRatio() != devicePixelRatioF()) {
        const double dpr = devicePixelRatioF();
        m_ground = QPixmap((map.size() * dpr).toSize() + QSize(1, 1));
        m_ground.setDevicePixelRatio(dpr);
        m_ground.fill(Qt::transparent);
        QPainter p(&m_ground);
        paintGround(p);
        m_groundKey = std::make_pair(m_layout.key, dark);
    }
    painter.save();
    painter.setClipPath(frame);
    painter.drawPixmap(map.topLeft(), m_ground);

    const double s = scale();
    const QPointF offset = m_player.cameraOffset();
    const QRectF visible(-offset * s + map.topLeft(), m_player.viewSize() * s);
    painter.setPen(QPen(Qt::white, 1.5));
    painter.setBrush(Qt::NoBrush);
    painter.drawRoundedRect(visible & map.adjusted(0.75, 0.75, -0.75, -0.75), 3, 3);

    const QPointF hero = m_player.heroPoint() * s + map.topLeft();
    painter.setPen(QPen(Qt::white, 1.5));
    painter.setBrush(QColor(0xE5, 0x39, 0x35));
    painter.drawEllipse(hero, 4, 4);
    painter.restore();

    QColor edge(Qt::white);
    edge.setAlphaF(0.25f);
    painter.strokePath(frame, QPen(edge, 1));
}

void MiniMap::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton || scale() <= 0) {
        QWidget::mousePressEvent(event);
        return;
    }
    m_player.walk(toWorld(event->position()));
    event->accept();
}
