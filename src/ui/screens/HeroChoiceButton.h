#pragma once

#include <QAbstractButton>

// One hero on the character sheet's grid: the emoji in a rounded cell, filled with the accent
// colour when it is the hero in play. The game decides which one is checked; a click only asks.
class HeroChoiceButton : public QAbstractButton
{
    Q_OBJECT

public:
    static constexpr int cell = 38;
    static constexpr double radius = 8;

    explicit HeroChoiceButton(const QString &hero, QWidget *parent = nullptr);

    [[nodiscard]] const QString &hero() const { return m_hero; }
    [[nodiscard]] QSize sizeHint() const override { return {cell, cell}; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void nextCheckState() override {}
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    QString m_hero;
    bool m_hot = false;
};
