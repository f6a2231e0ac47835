#pragma once

#include "magic/SpellFX.h"
#include "scan/Node.h"
#include "world/Clock.h"
#include "world/WorldLayout.h"

#include <QHash>
#include <QObject>
#include <QPointF>
#include <QSet>
#include <QSizeF>
#include <QString>
#include <QTimer>
#include <QUuid>
#include <functional>
#include <memory>
#include <optional>
#include <vector>

// The hero who walks the island: position, held keys, click-to-walk, the territory he stands in,
// the monster within reach, a floating message and the live spell effects. Main thread only.
class Player : public QObject
{
    Q_OBJECT

public:
    struct Floater
    {
        QString text;
        QUuid id;
        bool operator==(const Floater &) const = default;
    };
    using RegionChange = std::function<void(const std::optional<Region> &)>;

    explicit Player(QObject *parent = nullptr);
    explicit Player(std::shared_ptr<Clock> clock, QObject *parent = nullptr);

    // Published state; each has a change signal.
    [[nodiscard]] QPointF pos() const { return m_pos; } // fractions of `land`
    [[nodiscard]] bool facingLeft() const { return m_facingLeft; }
    [[nodiscard]] bool moving() const { return m_moving; }
    [[nodiscard]] std::optional<int> regionIndex() const { return m_regionIndex; }
    [[nodiscard]] bool nearMonster() const { return m_nearMonster; }
    [[nodiscard]] const std::optional<Floater> &floater() const { return m_floater; }
    [[nodiscard]] const std::vector<SpellFX> &effects() const { return m_effects; }

    [[nodiscard]] const std::optional<WorldLayout> &layout() const { return m_layout; }
    [[nodiscard]] QSizeF viewSize() const { return m_viewSize; }
    [[nodiscard]] const NodePtr &lastNode() const { return m_lastNode; }
    void setLastNode(NodePtr node) { m_lastNode = std::move(node); }
    void setOnRegionChange(RegionChange callback) { m_onRegionChange = std::move(callback); }
    [[nodiscard]] const std::optional<QPointF> &target() const { return m_target; }
    [[nodiscard]] bool ticking() const { return m_timer.isActive(); }
    [[nodiscard]] Clock &clock() const { return *m_clock; }

    [[nodiscard]] QPointF heroPoint() const; // world coordinates
    [[nodiscard]] std::optional<Region> currentRegion() const;
    [[nodiscard]] QPointF cameraOffset() const;
    [[nodiscard]] QPointF toWorld(QPointF viewPoint) const { return viewPoint - cameraOffset(); }
    // View areas that the map's controls cover: walking never takes the hero under them.
    void setCoveredAreas(std::vector<QRectF> viewAreas) { m_covered = std::move(viewAreas); }

    // Stores both; the region is refreshed once the event loop runs again, after the view update.
    void update(const WorldLayout &layout, QSizeF viewSize);
    // `name` is "left", "right", "up" or "down"; auto-repeat arrives as further downs.
    void key(const QString &name, bool down, bool shift);
    void releaseAll();
    void walk(QPointF to);
    void jump(QPointF to);
    void tick();
    void refresh(bool force);
    void say(const QString &text);
    void add(const SpellFX &effect);

Q_SIGNALS:
    void posChanged();
    void facingLeftChanged();
    void movingChanged();
    void regionIndexChanged();
    void nearMonsterChanged();
    // The view animates the change: in with an ease-out of 0.2 s, out with its default.
    void floaterChanged();
    void effectsChanged();
    // The hero set his foot down while walking; the map view plays the step sound.
    void footstep();

private:
    void startTimer();
    void releaseKey(const QString &name);
    void setPos(QPointF pos);
    void setMoving(bool moving);
    void setNearMonster(bool isNear);
    [[nodiscard]] QPointF cameraOffsetFor(QPointF hero) const;
    [[nodiscard]] bool covered(QPointF hero) const;

    std::shared_ptr<Clock> m_clock;
    QTimer m_timer;

    QPointF m_pos{0.5, 0.5};
    bool m_facingLeft = false;
    bool m_moving = false;
    std::optional<int> m_regionIndex;
    bool m_hintValid = true; // whether m_regionIndex belongs to the layout now stored
    bool m_nearMonster = false;
    std::optional<Floater> m_floater;
    std::vector<SpellFX> m_effects;

    std::optional<WorldLayout> m_layout;
    QSizeF m_viewSize{0, 0};
    NodePtr m_lastNode;
    RegionChange m_onRegionChange;
    QSet<QString> m_keys;
    QHash<QString, double> m_pressedAt;
    bool m_sprint = false;
    std::optional<QPointF> m_target;
    std::vector<QRectF> m_covered;
    double m_lastTick = 0;
    double m_lastStep;
};
