#pragma once

#include <QObject>

class Game;
class Magic;

// Gives one mana for every slaying action: the game's reclaimed total changes once per slay,
// whether of one item or of a whole batch. Both objects must outlive this one.
class ManaOnSlay : public QObject
{
    Q_OBJECT

public:
    ManaOnSlay(Game &game, Magic &magic, QObject *parent = nullptr);
};
