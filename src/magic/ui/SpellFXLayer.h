#pragma once

#include "magic/SpellFX.h"

#include <QPalette>
#include <QPointF>
#include <vector>

class QPainter;
class Player;

// Draws the live spell effects over the map, in world coordinates (the caller applies the
// camera). Keeps nothing: the hero holds the effects and drops each after its duration.
namespace SpellFXLayer {

// `now` is the hero's clock time; nothing is drawn while the hero has no layout.
void paint(QPainter &painter, const Player &player, double now, const QPalette &palette);

// One effect, with `hero` the hero's current map point (the trail starts there).
void paintEffect(QPainter &painter, const SpellFX &fx, QPointF hero, double now, bool dark);

} // namespace SpellFXLayer
