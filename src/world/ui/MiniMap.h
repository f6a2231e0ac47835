#pragma once

#include "world/WorldLayout.h"

#include <QPixmap>
#include <QWidget>
#include <optional>

class Player;

// The whole island in small, top right of the map: territories in their tier colours, bounty
// marks, the part in view and the hero. A click walks the hero there.
class MiniMap : public QWidget
{
    Q_OBJECT

public:
    static constexpr double mapWidth = 180;
    static constexpr int margin = 8; // room for the shadow around the map

    explicit MiniMap(Player &player, QWidget *parent = nullptr);

    void setWorld(const WorldLayout &layout);
    // Minimap scale: map points per world point.
    [[nodiscard]] double scale() const;
    // The world point under a point of this widget.
    [[nodiscard]] QPointF toWorld(QPointF widgetPoint) const;

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;

private:
    [[nodiscard]] QRectF mapRect() const;
    void paintGround(QPainter &painter);

    Player &m_player;
    WorldLayout m_layout;
    QPixmap m_ground;
    std::optional<std::pair<std::int64_t, bool>> m_groundKey;
    QImage m_shadow;
};
