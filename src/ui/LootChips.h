#pragma once

#include "ui/screens/SpringAnimation.h"

#include <QWidget>

class Game;
class Model;
class QLabel;
class TabularLabel;
class QToolButton;

// What the player has slain so far, and what still waits in the Trash.
class LootChips : public QWidget
{
    Q_OBJECT

public:
    LootChips(Model &model, Game &game, bool reduceMotion, QWidget *parent = nullptr);

    [[nodiscard]] QToolButton *trashChip() const { return m_trash; }
    [[nodiscard]] TabularLabel *reclaimedLabel() const { return m_reclaimed; }

protected:
    void changeEvent(QEvent *event) override;

private:
    void showReclaimed(double bytes);
    void refreshTrash();
    void refreshIcons();

    Game &m_game;
    bool m_reduceMotion;
    QLabel *m_icon;
    TabularLabel *m_reclaimed;
    QToolButton *m_trash;
    SpringAnimation m_count;
};
