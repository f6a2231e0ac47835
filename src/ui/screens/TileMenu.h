#pragma once

#include "session/Tile.h"

#include <QMenu>

class Game;
class Model;

// The context menu of one tile: open, locate on the map, reveal, and slay when allowed. A big file
// is revealed, its path copied or slain; tiles that stand for no single item only offer to reveal
// the folder they sit in.
class TileMenu : public QMenu
{
    Q_OBJECT

public:
    TileMenu(Model &model, Game &game, Tile tile, QWidget *parent = nullptr);

    [[nodiscard]] const Tile &tile() const { return m_tile; }

private:
    void addFolderItems(const NodePtr &node);
    void addFileItems(const BigFile &file);

    Model &m_model;
    Game &m_game;
    Tile m_tile;
};
