#include "world/ui/WorldScene.h"

#include "game/Game.h"
#include "magic/ui/SpellFXLayer.h"
#include "platform/Appearance.h"
#include "session/Model.h"
#include "world/Player.h"
#include "world/ui/RegionHighlight.h"
#include "world/ui/SceneAccessible.h"

#include <QEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QtConcurrent>
#include <cmath>
#include <map>
#include <utility>

namespace {

// A touch slower than a 60 Hz display: a frame painted faster would never be shown.
constexpr auto framePeriod = std::chrono::milliseconds(17);

} // namespace

WorldScene::WorldScene(Model &model, Game &game, Player &player, bool reduceMotion, QWidget *parent)
    : QWidget(parent), m_model(model), m_game(game), m_player(player), m_reduceMotion(reduceMotion),
      m_hero(new HeroLayer(player, model, game, reduceMotion, this))
{
    SceneAccessible::install();
    setAttribute(Qt::WA_OpaquePaintEvent);
    setFocusPolicy(Qt::NoFocus);
    m_frames.setInterval(framePeriod);
    m_frames.setTimerType(Qt::PreciseTimer);
    connect(&m_frames, &QTimer::timeout, this, [this] {
        if (!m_player.ticking())
            frame();
    });
    connect(&m_exposure, &WindowExposure::changed, this, [this] {
        if (m_exposure.seen())
            startFrames(); // stops again at once when nothing moves
        else
            m_frames.stop();
        paintDue();
    });

    connect(&m_player, &Player::posChanged, this, &WorldScene::heroMoved);
    connect(&m_player, &Player::facingLeftChanged, this, &WorldScene::heroMoved);
    connect(&m_player, &Player::movingChanged, this, &WorldScene::heroMoved);
    connect(&m_player, &Player::regionIndexChanged, this, &WorldScene::regionChanged);
    connect(&m_player, &Player::effectsChanged, this, [this] {
        startFrames();
        invalidate(rect());
    });
    connect(m_hero, &HeroLayer::changed, this, [this] {
        m_hero->place(offset());
        updateWorldRect(m_hero->bounds(m_player.clock().now()) | m_lastHero);
        startFrames();
    });
    connect(&m_model, &Model::dyingChanged, this, &WorldScene::dyingChanged);
    m_canvas.drawInBackground([this](const QRectF &area) { updateWorldRect(area); });
    connect(&m_viewMaker, &QFutureWatcherBase::finished, this, &WorldScene::viewMade);
}

QPointF WorldScene::offset() const
{
    const double dpr = devicePixelRatioF();
    const QPointF o = m_player.cameraOffset();
    return {std::round(o.x() * dpr) / dpr, std::round(o.y() * dpr) / dpr};
}

void WorldScene::setWorld(const WorldLayout &layout, const QString &title)
{
    m_canvas.setWorld(layout, title);

    std::map<std::string, const MonsterSprite *> before;
    for (const MonsterSprite &s : m_sprites) {
        if (s.region().path)
            before.emplace(*s.region().path, &s);
    }
    const double now = m_player.clock().now();
    std::vector<MonsterSprite> sprites;
    for (const Region &r : layout.regions) {
        if (!r.hasMonster())
            continue;
        const auto old = before.find(*r.path);
        // A monster that was on the map keeps its breath; one that just came out of the fog
        // starts breathing now.
        const bool keep = old != before.end() && old->second->region().explored == r.explored;
        MonsterSprite sprite(r, keep ? old->second->shownAt() : now);
        if (old != before.end() && m_model.isDying(*r.path))
            sprite.setDeath(old->second->death());
        sprites.push_back(std::move(sprite));
    }
    m_sprites = std::move(sprites);
    m_hero->place(offset());
    startFrames();
    invalidate(rect());
}

void WorldScene::dyingChanged()
{
    const double now = m_player.clock().now();
    const auto &dying = m_model.dying();
    for (MonsterSprite &s : m_sprites) {
        const bool isDying = dying && s.region().path && *s.region().path == dying->path;
        if (isDying && !s.death())
            s.setDeath(MonsterSprite::Death{now, dying->xpt});
    }
    startFrames();
    invalidate(rect());
}

void WorldScene::heroMoved()
{
    const QPointF o = offset();
    const QRectF hero = m_hero->bounds(m_player.clock().now());
    if (o != m_lastOffset) {
        invalidate(rect());
    } else {
        updateWorldRect(hero | m_lastHero);
    }
    m_hero->place(o);
    // While the hero walks, its own timer paces the frames: one paint a tick, with the prompt
    // and the mini-map it moved; a second timer out of step with it would paint twice.
    if (m_player.ticking())
        frame();
    else
        startFrames();
}

void WorldScene::regionChanged()
{
    updateWorldRect(RegionHighlight::bounds(m_player) | m_lastHighlight);
}

void WorldScene::updateWorldRect(const QRectF &worldRect)
{
    if (worldRect.isEmpty())
        return;
    invalidate(worldRect.translated(offset()).toAlignedRect().adjusted(-1, -1, 1, 1));
}

void WorldScene::startFrames()
{
    if (!m_frames.isActive() && m_exposure.seen())
        m_frames.start();
}

void WorldScene::frame()
{
    const double now = m_player.clock().now();
    bool full = !m_player.effects().empty();
    bool any = full;
    std::vector<QRectF> dirty;
    for (const MonsterSprite &s : m_sprites) {
        if (!s.animating(now, m_reduceMotion) && !(s.death() && s.dyingAt(now - 0.1)))
            continue;
        any = true;
        if (s.death())
            full = true;
        else
            dirty.push_back(s.bounds());
    }
    if (m_hero->animating(now)) {
        any = true;
        dirty.push_back(m_hero->bounds(now) | m_lastHero);
    }
    Q_EMIT ticked();
    if (!any) {
        m_frames.stop();
        paintDue();
        return;
    }
    if (full) {
        invalidate(rect());
    } else {
        const QRectF visible = QRectF(rect()).translated(-offset());
        for (const QRectF &r : dirty) {
            if (r.intersects(visible))
                updateWorldRect(r);
        }
    }
    paintDue();
}

// The view is kept in an image as well: the ambient layer above repaints small spots ten times
// a second, and copying them from the image is far cheaper than drawing the monsters and the
// outline again. What the scene itself changes is marked stale and drawn again before copying;
// a paint of the whole view (a scroll, a new island) goes straight to the screen and leaves the
// image to catch up when it is next needed.
void WorldScene::paintEvent(QPaintEvent *event)
{
    const double dpr = devicePixelRatioF();
    const QSize pixels = (QSizeF(size()) * dpr).toSize();
    if (m_view.size() != pixels || m_view.devicePixelRatio() != dpr) {
        m_view = QImage();
        makeView(pixels, dpr);
    }
    QPainter painter(this);
    const QRegion &dirty = event->region();
    if ((QRegion(rect()) - dirty).isEmpty() || m_view.isNull()) {
        m_stale = rect();
        paintFrame(painter, dirty, WorldCanvas::Missing::later);
        return;
    }
    if (!m_stale.isEmpty()) {
        QPainter view(&m_view);
        view.setClipRegion(m_stale);
        paintFrame(view, m_stale, WorldCanvas::Missing::later);
        m_stale = {};
    }
    for (const QRect &r : dirty)
        painter.drawImage(r, m_view, QRectF(QRectF(r).topLeft() * dpr, QSizeF(r.size()) * dpr));
}

// A new image's memory is slow to touch the first time (megabytes of page faults): a worker
// makes the kept image and touches it; until then, spots are painted straight.
void WorldScene::makeView(QSize pixels, double dpr)
{
    if (m_viewMaker.isRunning())
        return; // its image is checked against the size when it comes
    m_viewMaker.setFuture(QtConcurrent::run([pixels, dpr] {
        QImage view(pixels, QImage::Format_RGB32);
        view.setDevicePixelRatio(dpr);
        view.fill(Qt::black);
        return view;
    }));
}

void WorldScene::viewMade()
{
    // Taken, not copied: a copy would share it, and the first paint would copy it all again.
    // (Taking leaves the future unfinished for good: never wait on it afterwards.)
    QImage view = m_viewMaker.future().takeResult();
    const double dpr = devicePixelRatioF();
    if (view.size() != (QSizeF(size()) * dpr).toSize() || view.devicePixelRatio() != dpr) {
        update(); // the size changed meanwhile; the next paint asks again
        return;
    }
    m_view = std::move(view);
    m_stale = rect();
}

void WorldScene::invalidate(const QRect &area)
{
    const QRect part = area & rect();
    m_stale += part;
    // While frames run, changes wait for the next one: the hero's timer and the frame timer tick
    // out of step, and each would otherwise bring a paint of its own.
    if (m_frames.isActive())
        m_due += part;
    else
        update(part);
}

void WorldScene::paintDue()
{
    if (!m_due.isEmpty())
        update(std::exchange(m_due, {}));
}

void WorldScene::paintFrame(QPainter &painter, const QRectF &viewRect)
{
    paintFrame(painter, QRegion(viewRect.toAlignedRect()), WorldCanvas::Missing::now);
}

void WorldScene::settle()
{
    m_canvas.settle(QRectF(rect()).translated(-offset()), palette(), devicePixelRatioF());
    // The tiles came in while waiting; the scene's kept image still holds their sketches.
    invalidate(rect());
}

void WorldScene::paintFrame(QPainter &painter, const QRegion &dirty, WorldCanvas::Missing missing)
{
    const WorldPalette colors = WorldPalette::of(palette());
    const QColor ink = Appearance::ink(palette());
    const double now = m_player.clock().now();
    const QPointF o = offset();
    const QRectF land(QPointF(0, 0), m_canvas.layout().size);
    m_lastHighlight = RegionHighlight::bounds(m_player);
    m_lastHero = m_hero->bounds(now);
    m_lastOffset = o;
    // The ambient layer above dirties a scatter of small spots: each is painted on its own, with
    // only what reaches it (their bounding box, even clipped, would cost a full frame).
    const bool spots = dirty.rectCount() > 1 && dirty.rectCount() <= maxSpots;
    for (const QRect &piece : spots ? dirty : QRegion(dirty.boundingRect())) {
        painter.save();
        if (spots)
            painter.setClipRect(piece);
        painter.fillRect(piece, colors.sea);
        const QRectF world = QRectF(piece).translated(-o) & land;
        if (!world.isEmpty()) {
            painter.translate(o);
            paintLand(painter, world, ink, now, missing);
        }
        painter.restore();
    }
}

void WorldScene::paintLand(QPainter &painter, const QRectF &world, const QColor &ink, double now,
                           WorldCanvas::Missing missing)
{
    m_canvas.draw(painter, world, palette(), devicePixelRatioF(), missing);
    for (const MonsterSprite &s : m_sprites) {
        if (s.death() || s.bounds().intersects(world))
            s.paint(painter, m_stamps, now, m_reduceMotion);
    }
    if (m_lastHighlight.intersects(world))
        m_highlight.paint(painter, m_player, ink, world);
    if (m_lastHero.intersects(world))
        m_hero->paint(painter, m_stamps, now);
    for (const MonsterSprite &s : m_sprites)
        s.paintReward(painter, now);
    if (!m_player.effects().empty())
        SpellFXLayer::paint(painter, m_player, now, palette());
}

void WorldScene::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    m_exposure.watch(window()->windowHandle());
    startFrames();
}

void WorldScene::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_hero->place(offset());
}

void WorldScene::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        invalidate(rect());
    QWidget::changeEvent(event);
}
