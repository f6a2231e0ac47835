#pragma once

#include <QWidget>

class Game;
class Model;
class QLabel;
class QPushButton;

// The screen before any scan: the five monsters, the hero's greeting and the two ways to start.
class WelcomeView : public QWidget
{
    Q_OBJECT

public:
    WelcomeView(Model &model, Game &game, QWidget *parent = nullptr);

    [[nodiscard]] QString title() const;
    [[nodiscard]] QPushButton *scanHomeButton() const { return m_scanHome; }
    [[nodiscard]] QPushButton *chooseButton() const { return m_choose; }

private:
    void refreshTitle();

    Model &m_model;
    Game &m_game;
    QLabel *m_title;
    QPushButton *m_scanHome;
    QPushButton *m_choose;
};
