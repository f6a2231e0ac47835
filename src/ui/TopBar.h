#pragma once

#include <QWidget>

class Breadcrumbs;
class Game;
class HeroBadge;
class LootChips;
class Magic;
class Model;
class Popover;
class QFrame;
class QToolButton;
class QuestRing;
class SegmentedControl;
class VolumeButton;

// The bar above the main area: the hero, where you are, how the level is shown, the quest, loot,
// sound and the folder buttons.
class TopBar : public QWidget
{
    Q_OBJECT

public:
    TopBar(Model &model, Game &game, Magic &magic, bool reduceMotion, QWidget *parent = nullptr);

    [[nodiscard]] HeroBadge *heroBadge() const { return m_badge; }
    [[nodiscard]] QToolButton *upButton() const { return m_up; }
    [[nodiscard]] Breadcrumbs *breadcrumbs() const { return m_crumbs; }
    [[nodiscard]] SegmentedControl *modeSwitch() const { return m_mode; }
    [[nodiscard]] SegmentedControl *metricSwitch() const { return m_metric; }
    [[nodiscard]] LootChips *lootChips() const { return m_loot; }
    [[nodiscard]] VolumeButton *volumeButton() const { return m_volume; }
    [[nodiscard]] QToolButton *folderButton() const { return m_folder; }
    [[nodiscard]] QToolButton *rescanButton() const { return m_rescan; }
    [[nodiscard]] Popover *sheet() const { return m_sheet; }

protected:
    void changeEvent(QEvent *event) override;

private:
    void refresh();
    void refreshIcons();

    Model &m_model;
    Game &m_game;
    HeroBadge *m_badge;
    QFrame *m_divider;
    QToolButton *m_up;
    Breadcrumbs *m_crumbs;
    SegmentedControl *m_mode;
    SegmentedControl *m_metric;
    QuestRing *m_quest;
    LootChips *m_loot;
    VolumeButton *m_volume;
    QToolButton *m_folder;
    QToolButton *m_rescan;
    Popover *m_sheet;
};
