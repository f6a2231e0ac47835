#pragma once

#include <QWidget>

class QGraphicsOpacityEffect;
class QPushButton;
class QToolButton;
class QVariantAnimation;

// The small panel beside the hero with what he can do where he stands: "Enter", "F Fight" and
// a pencil to name the territory. Its buttons never take the keyboard from the map.
class HeroPrompt : public QWidget
{
    Q_OBJECT

public:
    explicit HeroPrompt(bool reduceMotion, QWidget *parent = nullptr);

    // Shows the buttons that apply; hides the panel when none does.
    void setChoices(bool enter, bool fight, bool rename);
    [[nodiscard]] bool hasChoices() const { return m_enter || m_fight || m_rename; }

    [[nodiscard]] QPushButton *enterButton() const { return m_enterButton; }
    [[nodiscard]] QPushButton *fightButton() const { return m_fightButton; }
    [[nodiscard]] QToolButton *renameButton() const { return m_renameButton; }

Q_SIGNALS:
    void enterClicked();
    void fightClicked();
    void renameClicked();

protected:
    void paintEvent(QPaintEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void refreshIcons();

    bool m_reduceMotion;
    bool m_enter = false;
    bool m_fight = false;
    bool m_rename = false;
    QPushButton *m_enterButton;
    QPushButton *m_fightButton;
    QToolButton *m_renameButton;
    QGraphicsOpacityEffect *m_fade = nullptr;
    QVariantAnimation *m_fadeIn = nullptr;
};
