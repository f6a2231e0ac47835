#pragma once

#include "session/Tile.h"

#include <QPointer>
#include <QScrollArea>
#include <memory>
#include <optional>
#include <vector>

class Game;
class Model;
class RankRow;
class SegmentedControl;

// The tiles of the current folder as ranked rows, largest first, then its own big files.
// From the keyboard: Up/Down/Home/End select a row, Backspace or Alt+Up goes up a level.
//
// Rows are widgets placed by hand in a column whose height is known up front (every row has the
// same height), and a row is only created when it scrolls near the viewport. A widget per row
// keeps each row's own animations (grow-in, hover, death) and its accessibility simple, and
// creating them lazily keeps a change of level or metric to the handful of rows on screen; a
// model/delegate list would have to re-implement the per-row animation state by hand.
class RankingView : public QScrollArea
{
    Q_OBJECT

public:
    static constexpr int limit = 100;
    static constexpr int padding = 12;
    static constexpr int spacing = 2;
    static constexpr int headerHeight = 40;

    RankingView(Model &model, Game &game, QWidget *parent = nullptr);

    void setReduceMotion(bool on);
    // Folders that grew most first, rather than the largest; only while growth is known.
    void setByGrowth(bool on);
    [[nodiscard]] bool byGrowth() const { return m_byGrowth; }
    // The choice of order, shown above the rows while there is a remembered scan to compare with.
    [[nodiscard]] SegmentedControl *orderSwitch() const { return m_order; }

    // The listed tiles, in rank order (rebuilt first when stale).
    [[nodiscard]] const std::vector<Tile> &tiles();
    // The row of a rank (0-based index), created if it was not yet; nullptr out of range.
    [[nodiscard]] RankRow *row(int index);
    // Rows that exist right now (those that came near the viewport).
    [[nodiscard]] int createdRows() const;
    [[nodiscard]] static QRect rowRect(int index, int width);
    // Gives the row of a rank the keyboard focus, scrolled into view.
    void select(int index);
    // The rank index of the focused row; nullopt when no row has focus.
    [[nodiscard]] std::optional<int> selected() const;

protected:
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void invalidate(bool freshRows);
    void refreshOrder();
    void rebuildIfStale();
    void retire(RankRow *row);
    void placeRows();
    void materialize(int from, int to);
    void materializeVisible();
    [[nodiscard]] double fractionOf(const Tile &tile) const;
    // Moves the selection for a key; false when the key is not the list's.
    bool navigate(const QKeyEvent &event, std::optional<int> from);
    void restoreSelection();

    Model &m_model;
    Game &m_game;
    QWidget *m_column;
    SegmentedControl *m_order;
    bool m_byGrowth = false;
    std::vector<Tile> m_tiles;
    std::vector<QPointer<RankRow>> m_rows;
    double m_top = 1;
    bool m_stale = true;
    bool m_freshRows = true;
    bool m_scheduled = false;
    bool m_reduceMotion = false;
    // Where the keyboard selection goes when its row is rebuilt away.
    std::optional<int> m_refocus;
    std::weak_ptr<Node> m_level;
    std::weak_ptr<Node> m_cameFrom;
};
