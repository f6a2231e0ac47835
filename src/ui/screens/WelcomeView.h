#pragma once

#include <QDateTime>
#include <QWidget>
#include <vector>

class Game;
class Model;
class QLabel;
class QPushButton;
class QVBoxLayout;
struct SnapshotSummary;

// The screen before any scan: the five monsters, the hero's greeting, the two ways to start and
// the folders scanned before, which open at once.
class WelcomeView : public QWidget
{
    Q_OBJECT

public:
    WelcomeView(Model &model, Game &game, QWidget *parent = nullptr);

    [[nodiscard]] QString title() const;
    [[nodiscard]] QPushButton *scanHomeButton() const { return m_scanHome; }
    [[nodiscard]] QPushButton *chooseButton() const { return m_choose; }
    [[nodiscard]] const std::vector<QPushButton *> &rememberedButtons() const
    {
        return m_remembered;
    }
    // "Home · 212 GB · scanned 2 days ago"
    [[nodiscard]] static QString rememberedText(const SnapshotSummary &scan, const QDateTime &now);

private:
    void refreshTitle();
    void refreshRemembered();

    Model &m_model;
    Game &m_game;
    QLabel *m_title;
    QPushButton *m_scanHome;
    QPushButton *m_choose;
    QVBoxLayout *m_rememberedColumn;
    std::vector<QPushButton *> m_remembered;
};
