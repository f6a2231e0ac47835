#pragma once

#include "advisor/Advice.h"

#include <QPointer>
#include <QWidget>
#include <vector>

class BountyRow;
class Game;
class Model;

// One safety group's rows, each made only when it comes near the visible part of the board: a
// board of thousands of bounties would otherwise build thousands of row widgets before showing
// anything. Every row has the height of the first, so the list's height is known up front.
class BountyList : public QWidget
{
    Q_OBJECT

public:
    static constexpr int spacing = 2;

    BountyList(Model &model, Game &game, std::vector<Advice> items, QWidget *parent = nullptr);

    [[nodiscard]] int count() const { return int(m_items.size()); }
    // The row of item `index`, made if it was not yet; nullptr out of range.
    [[nodiscard]] BountyRow *row(int index);
    [[nodiscard]] int createdRows() const;
    // Makes the rows that reach into [top, bottom], in this widget's coordinates.
    void materialize(int top, int bottom);

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    [[nodiscard]] QRect rowRect(int index) const;

    Model &m_model;
    Game &m_game;
    std::vector<Advice> m_items;
    std::vector<QPointer<BountyRow>> m_rows;
    int m_rowHeight = 0;
};
