#pragma once

#include <QWidget>

class Game;

// The daily quest's progress toward 1 GB as a small ring.
class QuestRing : public QWidget
{
    Q_OBJECT

public:
    explicit QuestRing(Game &game, QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override { return {28, 28}; }
    [[nodiscard]] double progress() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void refresh();

    Game &m_game;
};
