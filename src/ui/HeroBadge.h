#pragma once

#include "ui/screens/SpringAnimation.h"

#include <QAbstractButton>
#include <QVariantAnimation>

class Game;

// The hero's level ring and name, a button that opens the character sheet.
class HeroBadge : public QAbstractButton
{
    Q_OBJECT

public:
    explicit HeroBadge(Game &game, bool reduceMotion, QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] double shownProgress() const { return m_progress.currentValue().toDouble(); }
    [[nodiscard]] QString ringAccessibleText() const;
    // The level pill on the ring, in the badge's coordinates: inside it at every level.
    [[nodiscard]] QRectF levelPill() const;

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void refresh();
    [[nodiscard]] QString caption() const;
    [[nodiscard]] QFont captionFont() const;
    [[nodiscard]] QPointF ringCentre() const;

    Game &m_game;
    bool m_reduceMotion;
    int m_level = 0;
    SpringAnimation m_progress;
    QVariantAnimation m_pulse;
};
