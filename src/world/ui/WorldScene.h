#pragma once

#include "platform/WindowExposure.h"
#include "world/ui/HeroLayer.h"
#include "world/ui/MonsterSprite.h"
#include "world/ui/RegionHighlight.h"
#include "world/ui/Stamps.h"
#include "world/ui/WorldCanvas.h"

#include <QFutureWatcher>
#include <QImage>
#include <QRegion>
#include <QTimer>
#include <QWidget>
#include <vector>

class Game;
class Model;
class Player;

// The world as the camera sees it: the cached island, then the monsters, the outline of the
// hero's territory, the hero and the spell effects, all shifted by the hero's camera offset and
// clipped to this widget. Walking repaints only the light layers over the cached island; one
// frame timer runs while anything moves by itself.
class WorldScene : public QWidget
{
    Q_OBJECT

public:
    // Up to this many dirty rectangles are painted one by one, more as their bounding box.
    static constexpr int maxSpots = 64;

    WorldScene(Model &model, Game &game, Player &player, bool reduceMotion,
               QWidget *parent = nullptr);

    // A new island (or the same one again: an equal key and title keep the cached drawing).
    void setWorld(const WorldLayout &layout, const QString &title);

    [[nodiscard]] const WorldCanvas &canvas() const { return m_canvas; }
    [[nodiscard]] HeroLayer &hero() { return *m_hero; }
    [[nodiscard]] Model &model() const { return m_model; }
    [[nodiscard]] Game &game() const { return m_game; }
    [[nodiscard]] const Player &player() const { return m_player; }
    [[nodiscard]] const std::vector<MonsterSprite> &sprites() const { return m_sprites; }
    [[nodiscard]] bool framesRunning() const { return m_frames.isActive(); }
    // The world's translation in this widget, rounded to whole device pixels.
    [[nodiscard]] QPointF offset() const;

    // Paints one frame of everything into `painter`, as the widget does for `viewRect`, with
    // every tile of the island drawn.
    void paintFrame(QPainter &painter, const QRectF &viewRect);
    // The island's tiles are drawn in the background: waits until the view has all of them
    // (for screenshots and tests).
    void settle();

Q_SIGNALS:
    // A frame of the scene's own is about to be painted.
    void ticked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    // Only `dirty` changes; a painter on the scene is clipped to it already.
    void paintFrame(QPainter &painter, const QRegion &dirty, WorldCanvas::Missing missing);
    // The land part of a piece of the view, `world` in world coordinates, painter translated.
    void paintLand(QPainter &painter, const QRectF &world, const QColor &ink, double now,
                   WorldCanvas::Missing missing);
    void heroMoved();
    void regionChanged();
    void dyingChanged();
    void startFrames();
    void frame();
    void updateWorldRect(const QRectF &worldRect);
    // Repaints `area` (widget coordinates) because the scene changed there.
    void invalidate(const QRect &area);
    void paintDue();
    void makeView(QSize pixels, double dpr);
    void viewMade();

    Model &m_model;
    Game &m_game;
    Player &m_player;
    bool m_reduceMotion;
    WorldCanvas m_canvas;
    Stamps m_stamps;
    RegionHighlight m_highlight;
    std::vector<MonsterSprite> m_sprites;
    HeroLayer *m_hero;
    QTimer m_frames;
    WindowExposure m_exposure;
    QPointF m_lastOffset;
    QRectF m_lastHero;
    QRectF m_lastHighlight;
    QImage m_view; // what the widget shows, where m_stale does not say otherwise; null until made
    QFutureWatcher<QImage> m_viewMaker;
    QRegion m_stale;
    QRegion m_due; // to repaint at the next frame
};
