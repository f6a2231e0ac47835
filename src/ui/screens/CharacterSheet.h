#pragma once

#include <QScrollArea>
#include <vector>

class AchievementRow;
class Game;
class HeroChoiceButton;
class Magic;
class Meter;
class QLabel;
class QLineEdit;
class QPushButton;
class ScanMemory;
class ToggleSwitch;

// The hero's page: name, level and experience, the choice of heroes, statistics, the place-name
// and remembered-scan settings and the achievements. Every edit goes straight to the state.
class CharacterSheet : public QScrollArea
{
    Q_OBJECT

public:
    static constexpr int sheetWidth = 380;
    static constexpr int sheetHeight = 560;
    static constexpr int padding = 16;

    // The twelve heroes, in the order of the grid; the first is the default.
    [[nodiscard]] static const QStringList &heroes();

    CharacterSheet(Game &game, Magic &magic, ScanMemory &memory, QWidget *parent = nullptr);

    [[nodiscard]] QLineEdit *nameField() const { return m_name; }
    [[nodiscard]] Meter *levelMeter() const { return m_meter; }
    [[nodiscard]] ToggleSwitch *placeNameSwitch() const { return m_placeNames; }
    [[nodiscard]] ToggleSwitch *rememberSwitch() const { return m_remember; }
    [[nodiscard]] QPushButton *forgetButton() const { return m_forget; }
    [[nodiscard]] const std::vector<HeroChoiceButton *> &heroButtons() const { return m_heroes; }
    [[nodiscard]] const std::vector<AchievementRow *> &achievementRows() const
    {
        return m_achievements;
    }
    // The value shown beside a statistic's label ("Slain", "In Trash", ...).
    [[nodiscard]] QString statistic(const QString &label) const;

private:
    QWidget *buildHeader();
    QWidget *buildHeroGrid();
    QWidget *buildStatistics();
    QWidget *switchBox(ToggleSwitch *&toggle, const QString &label, const QString &explanation);
    QWidget *buildPlaceNames();
    QWidget *buildMemory();
    QWidget *buildAchievements();
    void refreshHero();
    void refreshLevel();
    void refreshStatistics();
    void refreshAchievements();
    void refreshMemory();

    Game &m_game;
    Magic &m_magic;
    ScanMemory &m_memory;
    QWidget *m_content;
    QLabel *m_heroEmoji = nullptr;
    QLineEdit *m_name = nullptr;
    QLabel *m_level = nullptr;
    Meter *m_meter = nullptr;
    QLabel *m_xp = nullptr;
    std::vector<HeroChoiceButton *> m_heroes;
    std::vector<std::pair<QString, QLabel *>> m_stats;
    ToggleSwitch *m_placeNames = nullptr;
    ToggleSwitch *m_remember = nullptr;
    QPushButton *m_forget = nullptr;
    QLabel *m_achievementsTitle = nullptr;
    std::vector<AchievementRow *> m_achievements;
};
