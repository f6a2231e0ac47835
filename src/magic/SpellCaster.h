#pragma once

#include "advisor/Advice.h"
#include "magic/Spell.h"

#include <QObject>
#include <QPointF>
#include <QString>
#include <optional>
#include <vector>

class Game;
class Magic;
class Model;
class Player;

// Casts the spells on the realm shown on the map: checks and spends mana, acts on the session,
// the game and the hero, and leaves a visual effect with the hero. Fireball waits for the map
// view's confirmation of the bounties it would burn. Main thread only.
class SpellCaster : public QObject
{
    Q_OBJECT

public:
    static constexpr double teleportDelay = 0.3;
    static constexpr double recallDelay = 0.35;
    static constexpr double fireballDelay = 0.6;

    SpellCaster(Magic &magic, Model &model, Game &game, Player &player, QObject *parent = nullptr);

    void cast(Spell spell);

    // The bounties a fireball would burn, while their confirmation is open.
    [[nodiscard]] const std::optional<std::vector<Advice>> &pendingFire() const
    {
        return m_pendingFire;
    }
    void confirmFireball();
    void cancelFireball();

    // The texts of the fireball confirmation.
    [[nodiscard]] static QString fireballTitle(const std::vector<Advice> &items);
    [[nodiscard]] static QString fireballMessage();
    [[nodiscard]] static QString fireballAction();

Q_SIGNALS:
    void pendingFireChanged();

private:
    void reveal(QPointF hero);
    void sense(QPointF hero);
    void teleport(QPointF hero);
    void fireball();
    void recall(QPointF hero);
    void spend(Spell spell);
    void setPendingFire(std::optional<std::vector<Advice>> items);

    Magic &m_magic;
    Model &m_model;
    Game &m_game;
    Player &m_player;
    std::optional<std::vector<Advice>> m_pendingFire;
};
