#include "magic/ManaOnSlay.h"

#include "game/Game.h"
#include "magic/Magic.h"

ManaOnSlay::ManaOnSlay(Game &game, Magic &magic, QObject *parent) : QObject(parent)
{
    connect(&game, &Game::reclaimedChanged, this, [&magic] { magic.gain(Magic::manaPerSlay); });
}
