#pragma once

#include "game/Achievement.h"

#include <QWidget>

// One achievement on the character sheet: emoji, title and condition, and a check mark once it
// is unlocked. Locked ones are drawn faded.
class AchievementRow : public QWidget
{
    Q_OBJECT

public:
    static constexpr double lockedOpacity = 0.55;
    static constexpr int emojiColumn = 28;

    explicit AchievementRow(Achievement achievement, QWidget *parent = nullptr);

    [[nodiscard]] const Achievement &achievement() const { return m_achievement; }
    [[nodiscard]] bool unlocked() const { return m_unlocked; }
    void setUnlocked(bool unlocked);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Achievement m_achievement;
    bool m_unlocked = false;
};
