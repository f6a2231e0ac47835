#include "world/Player.h"

#include "world/SteadyClock.h"

#include <QMetaObject>
#include <QPointer>
#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>

namespace {

constexpr double tapMinimum = 0.12; // a brief tap still walks this long
// Absorbs the rounding of floating-point times, so a removal that falls due exactly at the tap
// minimum is not skipped (which would leave the key held for good).
constexpr double timeSlack = 1e-9;
constexpr double stepCap = 0.05;
constexpr double walkSpeed = 260;
constexpr double sprintSpeed = 468;
constexpr double arrival = 3.0;
constexpr double edgeInset = 6;
constexpr double footstepInterval = 0.3;
constexpr double sprintFootstepInterval = 0.2;
constexpr double floaterLife = 1.8;
constexpr auto tickPeriod = std::chrono::milliseconds(17); // the map paints a frame a tick

double axisOffset(double view, double world, double hero)
{
    if (view + 0.5 >= world)
        return 0;
    return std::min(0.0, std::max(view - world, view / 2 - hero));
}

} // namespace

Player::Player(QObject *parent) : Player(std::make_shared<SteadyClock>(), parent) {}

Player::Player(std::shared_ptr<Clock> clock, QObject *parent)
    : QObject(parent), m_clock(std::move(clock)), m_timer(this), m_lastTick(m_clock->now()),
      m_lastStep(-std::numeric_limits<double>::infinity())
{
    m_timer.setInterval(tickPeriod);
    m_timer.setTimerType(Qt::PreciseTimer);
    connect(&m_timer, &QTimer::timeout, this, &Player::tick);
}

QPointF Player::heroPoint() const
{
    if (!m_layout)
        return {0, 0};
    const QRectF &land = m_layout->land;
    return {land.left() + m_pos.x() * land.width(), land.top() + m_pos.y() * land.height()};
}

std::optional<Region> Player::currentRegion() const
{
    if (!m_layout || !m_regionIndex || *m_regionIndex < 0 ||
        *m_regionIndex >= static_cast<int>(m_layout->regions.size()))
        return std::nullopt;
    return m_layout->regions[static_cast<std::size_t>(*m_regionIndex)];
}

QPointF Player::cameraOffset() const
{
    return cameraOffsetFor(heroPoint());
}

QPointF Player::cameraOffsetFor(QPointF hero) const
{
    if (!m_layout)
        return {0, 0};
    return {axisOffset(m_viewSize.width(), m_layout->size.width(), hero.x()),
            axisOffset(m_viewSize.height(), m_layout->size.height(), hero.y())};
}

bool Player::covered(QPointF hero) const
{
    const QPointF onView = hero + cameraOffsetFor(hero);
    return std::any_of(m_covered.begin(), m_covered.end(),
                       [onView](const QRectF &r) { return r.contains(onView); });
}

void Player::update(const WorldLayout &layout, QSizeF viewSize)
{
    // An index into another island's regions names some unrelated territory there.
    if (m_layout && m_layout->key != layout.key)
        m_hintValid = false;
    m_layout = layout;
    m_viewSize = viewSize;
    QMetaObject::invokeMethod(
        this, [this] { refresh(false); }, Qt::QueuedConnection);
}

void Player::key(const QString &name, bool down, bool shift)
{
    m_sprint = shift;
    if (down) {
        if (!m_keys.contains(name))
            m_pressedAt.insert(name, m_clock->now());
        m_keys.insert(name);
        m_target.reset();
    } else {
        const auto pressed = m_pressedAt.constFind(name);
        const double held = pressed == m_pressedAt.cend() ? std::numeric_limits<double>::infinity()
                                                          : m_clock->now() - *pressed;
        if (held >= tapMinimum - timeSlack) {
            m_keys.remove(name);
        } else {
            m_clock->after(tapMinimum - held, this, [this, name] { releaseKey(name); });
        }
    }
    startTimer();
}

void Player::releaseKey(const QString &name)
{
    const double pressed = m_pressedAt.value(name, -std::numeric_limits<double>::infinity());
    if (m_clock->now() - pressed >= tapMinimum - timeSlack)
        m_keys.remove(name);
}

void Player::releaseAll()
{
    m_keys.clear();
    m_target.reset();
}

void Player::walk(QPointF to)
{
    m_target = to;
    startTimer();
}

void Player::jump(QPointF to)
{
    if (!m_layout || m_layout->land.width() <= 0)
        return;
    m_target.reset();
    const QRectF &land = m_layout->land;
    const double fy = land.height() > 0 ? (to.y() - land.top()) / land.height() : m_pos.y();
    setPos({(to.x() - land.left()) / land.width(), fy});
    refresh(true);
}

void Player::startTimer()
{
    if (m_timer.isActive())
        return;
    m_lastTick = m_clock->now();
    m_timer.start();
}

void Player::tick()
{
    const double now = m_clock->now();
    const double dt = now - m_lastTick;
    m_lastTick = now;
    if (!m_layout || m_layout->land.width() <= 0)
        return;
    const QRectF &land = m_layout->land;
    const QPointF hero = heroPoint();

    double dx = (m_keys.contains(QStringLiteral("right")) ? 1 : 0) +
                (m_keys.contains(QStringLiteral("left")) ? -1 : 0);
    double dy = (m_keys.contains(QStringLiteral("up")) ? -1 : 0) +
                (m_keys.contains(QStringLiteral("down")) ? 1 : 0);
    if (dx == 0 && dy == 0 && m_target) {
        const QPointF v = *m_target - hero;
        const double d = std::hypot(v.x(), v.y());
        if (d < arrival) {
            m_target.reset();
        } else {
            dx = v.x() / d;
            dy = v.y() / d;
        }
    }

    const double len = std::hypot(dx, dy);
    if (len == 0) {
        setMoving(false);
        m_timer.stop();
        return;
    }

    const double step = std::min(dt, stepCap) * (m_sprint ? sprintSpeed : walkSpeed);
    QPointF next = hero + QPointF(dx, dy) / len * step;
    if (m_target) {
        const QPointF left = *m_target - hero;
        if (std::hypot(left.x(), left.y()) < step) {
            next = *m_target;
            m_target.reset();
        }
    }
    next.setX(std::min(std::max(next.x(), land.left() + edgeInset), land.right() - edgeInset));
    next.setY(std::min(std::max(next.y(), land.top() + edgeInset), land.bottom() - edgeInset));
    // Slide along a control's edge rather than walk under it; one already under may walk out.
    if (covered(next) && !covered(hero)) {
        if (!covered(QPointF(next.x(), hero.y())))
            next.setY(hero.y());
        else if (!covered(QPointF(hero.x(), next.y())))
            next.setX(hero.x());
        else
            next = hero;
        // A slide that barely moves is a walk straight into the control.
        if (std::hypot(next.x() - hero.x(), next.y() - hero.y()) < 0.25 * step)
            next = hero;
    }
    if (next == hero) {
        // Against a control: a walk to a point under it ends here; held keys keep pressing.
        m_target.reset();
        setMoving(false);
        return;
    }
    const double fy = land.height() > 0 ? (next.y() - land.top()) / land.height() : m_pos.y();
    setPos({(next.x() - land.left()) / land.width(), fy});

    if (dx != 0 && m_facingLeft != (dx < 0)) {
        m_facingLeft = dx < 0;
        Q_EMIT facingLeftChanged();
    }
    setMoving(true);

    if (now - m_lastStep > (m_sprint ? sprintFootstepInterval : footstepInterval)) {
        m_lastStep = now;
        Q_EMIT footstep();
    }
    refresh(false);
}

void Player::refresh(bool force)
{
    if (!m_layout)
        return;
    const std::optional<int> found =
        m_layout->regionIndex(heroPoint(), m_hintValid ? m_regionIndex : std::nullopt);
    m_hintValid = true;
    if (found != m_regionIndex || force) {
        const bool changed = found != m_regionIndex;
        m_regionIndex = found;
        if (changed)
            Q_EMIT regionIndexChanged();
        if (m_onRegionChange)
            m_onRegionChange(currentRegion());
    }

    const std::optional<Region> region = currentRegion();
    if (region && region->hasMonster()) {
        const double reach = std::max(1.5 * region->monsterSize(), 34.0);
        const QPointF v = heroPoint() - region->capital;
        setNearMonster(std::hypot(v.x(), v.y()) < reach);
    } else {
        setNearMonster(false);
    }
}

void Player::say(const QString &text)
{
    const QUuid id = QUuid::createUuid();
    m_floater = Floater{text, id};
    Q_EMIT floaterChanged();
    m_clock->after(floaterLife, this, [this, id] {
        if (m_floater && m_floater->id == id) {
            m_floater.reset();
            Q_EMIT floaterChanged();
        }
    });
}

void Player::add(const SpellFX &effect)
{
    m_effects.push_back(effect);
    Q_EMIT effectsChanged();
    const QUuid id = effect.id;
    m_clock->after(effect.duration, this, [this, id] {
        if (std::erase_if(m_effects, [&id](const SpellFX &e) { return e.id == id; }) > 0)
            Q_EMIT effectsChanged();
    });
}

void Player::setPos(QPointF pos)
{
    if (pos.x() == m_pos.x() && pos.y() == m_pos.y())
        return;
    m_pos = pos;
    Q_EMIT posChanged();
}

void Player::setMoving(bool moving)
{
    if (moving == m_moving)
        return;
    m_moving = moving;
    Q_EMIT movingChanged();
}

void Player::setNearMonster(bool isNear)
{
    if (isNear == m_nearMonster)
        return;
    m_nearMonster = isNear;
    Q_EMIT nearMonsterChanged();
}
