#pragma once

#include "game/Toast.h"
#include "ui/screens/SpringAnimation.h"

#include <QWidget>
#include <memory>
#include <optional>

class Game;

// The game's current toast as a card at the top of the window. A new toast slides down from the
// top edge while fading in; the old one leaves the same way at the same time. Lies over the
// whole window and lets every click through.
class ToastView : public QWidget
{
    Q_OBJECT

public:
    static constexpr double top = 64;
    static constexpr double radius = 12;
    static constexpr double shadow = 12; // room around the card for its shadow

    ToastView(Game &game, bool reduceMotion, QWidget *parent = nullptr);

    // The toast arriving or on screen; none while the top of the window is empty or emptying.
    [[nodiscard]] std::optional<Toast> shown() const;
    [[nodiscard]] bool leaving() const { return m_leaving != nullptr; }
    // Where the shown card rests, in this widget's coordinates.
    [[nodiscard]] QRectF restingRect() const;

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    struct Card
    {
        Toast toast;
        double progress = 0; // 0 above the top edge and transparent, 1 in place
        std::uint64_t serial = 0;
        SpringAnimation motion;
    };

    void toastChanged();
    void animate(Card &card, double to);
    void repaintCards();
    [[nodiscard]] QSizeF cardSize(const Toast &toast) const;
    [[nodiscard]] QRectF cardRect(const Card &card) const;
    void paintCard(QPainter &painter, const Card &card) const;

    Game &m_game;
    bool m_reduceMotion;
    std::unique_ptr<Card> m_current;
    std::unique_ptr<Card> m_leaving;
    QRect m_painted;
    std::uint64_t m_serials = 0;
};
