#pragma once

#include "world/Clock.h"
#include "world/WorldLayout.h"

#include <QPointer>
#include <QString>
#include <QWidget>
#include <memory>
#include <optional>

class AmbientLayer;
class Game;
class Magic;
class MapControls;
class MiniMap;
class Model;
class Player;
class QMessageBox;
class RenameDialog;
class SpellBar;
class SpellCaster;
class WorldScene;

// The map mode: the island of the current folder with its hero, walked with the keyboard and
// the mouse, with the minimap, the zoom and help buttons and the spell bar around it. Turns
// input into walking, entering, leaving, fighting, renaming, zooming and casting, and asks
// before a territory is renamed or a fireball burns bounties.
class WorldView : public QWidget
{
    Q_OBJECT

public:
    WorldView(Model &model, Game &game, Magic &magic, bool reduceMotion, QWidget *parent = nullptr);
    // `clock` drives the hero and every animation of the map (tests pass a ManualClock).
    WorldView(Model &model, Game &game, Magic &magic, bool reduceMotion,
              std::shared_ptr<Clock> clock, QWidget *parent = nullptr);
    ~WorldView() override;

    [[nodiscard]] Player &player() const { return *m_player; }
    [[nodiscard]] SpellCaster &caster() const { return *m_caster; }
    [[nodiscard]] WorldScene *scene() const { return m_scene; }
    [[nodiscard]] MiniMap *miniMap() const { return m_miniMap; }
    [[nodiscard]] MapControls *controls() const { return m_controls; }
    [[nodiscard]] SpellBar *spellBar() const { return m_spellBar; }
    // The open prompts, or null.
    [[nodiscard]] RenameDialog *renameDialog() const;
    [[nodiscard]] QMessageBox *fireballDialog() const;

    // The title of the current folder's realm, as the island shows it.
    [[nodiscard]] QString realmTitle() const;
    [[nodiscard]] const std::optional<Region> &renaming() const { return m_renaming; }

    void enter();
    void leave();
    void fight();
    void rename();
    void zoomIn();
    void zoomOut();
    // Casts spell `number` (1 to 5).
    void cast(int number);

    // Builds the island for the current size and state at once (normally deferred).
    void rebuild();

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    bool event(QEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void scheduleRebuild();
    void levelChanged();
    void placeAfterLevelChange(const std::shared_ptr<class Node> &previous);
    void discovered(const std::optional<Region> &region);
    void pendingFireChanged();
    void placeOverlays();
    void refreshAccessibleNames();
    [[nodiscard]] static std::optional<QString> movementKey(int key);

    Model &m_model;
    Game &m_game;
    Magic &m_magic;
    bool m_reduceMotion;
    std::unique_ptr<Player> m_player;
    std::unique_ptr<SpellCaster> m_caster;
    WorldScene *m_scene;
    AmbientLayer *m_ambient;
    MiniMap *m_miniMap;
    MapControls *m_controls;
    SpellBar *m_spellBar;
    QPointer<RenameDialog> m_renameDialog;
    QPointer<QMessageBox> m_fireDialog;
    std::optional<Region> m_renaming;
    bool m_rebuildQueued = false;
    double m_magnification = 1;
};
