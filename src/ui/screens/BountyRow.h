#pragma once

#include "advisor/Advice.h"

#include <QWidget>
#include <memory>

class Game;
class MonsterGlyph;
class Model;
class QLabel;
class QMenu;
class QPushButton;
class QToolButton;

// One recommendation on the board: its monster, name, reason and path, what it is worth, and the
// buttons to reveal, locate and slay it.
class BountyRow : public QWidget
{
    Q_OBJECT

public:
    BountyRow(Model &model, Game &game, Advice item, QWidget *parent = nullptr);

    [[nodiscard]] const Advice &item() const { return m_item; }
    [[nodiscard]] bool hot() const { return m_hot; }
    [[nodiscard]] QPushButton *slayButton() const { return m_slay; }
    [[nodiscard]] QToolButton *revealButton() const { return m_reveal; }
    // Only folder recommendations can be shown on the map.
    [[nodiscard]] QToolButton *mapButton() const { return m_map; }
    [[nodiscard]] bool slayable() const;
    [[nodiscard]] std::unique_ptr<QMenu> makeContextMenu() const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void refreshDying();
    void refreshIcons();
    void slay();

    Model &m_model;
    Game &m_game;
    Advice m_item;
    bool m_hot = false;
    QWidget *m_iconBox;
    MonsterGlyph *m_glyph;
    // The "💥" shown instead of the monster, made when the item first dies.
    QLabel *m_boom = nullptr;
    QLabel *m_kind;
    QToolButton *m_reveal;
    QToolButton *m_map = nullptr;
    QPushButton *m_slay;
};
