#pragma once

#include "platform/AdaptiveColor.h"

#include <QDateTime>
#include <QTimer>
#include <QWidget>
#include <array>
#include <functional>
#include <optional>
#include <vector>

class Game;

// The burst of paper bits that celebrates level-ups and achievements: 70 bits thrown up from
// the upper middle of the window, falling back and fading out within two seconds. Lies over the
// whole window and lets every click through.
class Confetti : public QWidget
{
    Q_OBJECT

public:
    static constexpr int count = 70;
    static constexpr double lifetime = 2.0;

    struct Bit
    {
        double vx = 0;
        double vy = 0;
        double spin = 0; // radians per second
        AdaptiveColor color;
    };
    // One bit as drawn at some moment.
    struct Piece
    {
        QPointF centre;
        double radians = 0;
        double opacity = 0;
        AdaptiveColor color;
    };
    // Uniform in [0, 1).
    using Random = std::function<double()>;
    using Clock = std::function<QDateTime()>;

    explicit Confetti(Game &game, QWidget *parent = nullptr);

    void setRandom(Random random) { m_random = std::move(random); }
    void setClock(Clock clock) { m_clock = std::move(clock); }
    // With reduce motion on, nothing is thrown.
    void setReduceMotion(bool on);

    // A new burst replaces the one in the air, with new bits.
    void burst(const QDateTime &start);
    [[nodiscard]] const std::optional<QDateTime> &start() const { return m_start; }
    [[nodiscard]] const std::vector<Bit> &bits() const { return m_bits; }
    [[nodiscard]] bool running() const { return m_frames.isActive(); }

    // The bits at `seconds` after the start on a canvas of `size`; empty once the burst is over.
    [[nodiscard]] std::vector<Piece> frame(double seconds, QSizeF size) const;
    [[nodiscard]] static const std::array<AdaptiveColor, 6> &colors();

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    [[nodiscard]] double uniform(double low, double high) const;
    [[nodiscard]] double elapsed() const;
    void step();

    Game &m_game;
    Random m_random;
    Clock m_clock;
    bool m_reduceMotion = false;
    std::optional<QDateTime> m_start;
    std::vector<Bit> m_bits;
    QTimer m_frames;
};
