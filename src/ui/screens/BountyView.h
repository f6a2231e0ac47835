#pragma once

#include "advisor/Advice.h"

#include <QStackedWidget>
#include <QVariantAnimation>
#include <vector>

class BountyList;
class BountyRow;
class Game;
class Model;
class ProminentButton;
class QScrollArea;
class QVBoxLayout;

// The advisor's recommendations as a bounty board: totals, one button for every safe item, and
// one group per safety class, whose rows are made as they scroll into view. An empty list shows
// the cleared board instead.
class BountyView : public QStackedWidget
{
    Q_OBJECT

public:
    BountyView(Model &model, Game &game, QWidget *parent = nullptr);

    void setReduceMotion(bool on) { m_reduceMotion = on; }

    // Everything below rebuilds first when the board is stale.
    [[nodiscard]] bool showsEmptyBoard();
    // Every row, made if it was not yet.
    [[nodiscard]] std::vector<BountyRow *> rows();
    // Rows made so far: those that came near the visible part of the board.
    [[nodiscard]] int createdRows() const;
    // Absent when no item is safe to slay from here.
    [[nodiscard]] ProminentButton *slayAllButton();
    // The safe items: safe, actionable and allowed by the protected-item rule.
    [[nodiscard]] std::vector<Advice> safeItems() const;

protected:
    void showEvent(QShowEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void invalidate();
    void rebuildIfStale();
    void buildBoard();
    void addGroup(QVBoxLayout *column, Advice::Safety safety);
    void showSafeTotal(std::uint64_t bytes);
    void materializeVisible();

    Model &m_model;
    Game &m_game;
    QWidget *m_empty;
    QScrollArea *m_scroll;
    ProminentButton *m_slayAll = nullptr;
    std::vector<BountyList *> m_lists;
    std::uint64_t m_safeTotal = 0;
    QVariantAnimation m_countDown;
    bool m_stale = true;
    bool m_scheduled = false;
    bool m_reduceMotion = false;
};
