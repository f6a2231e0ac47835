#include "ui/screens/Confetti.h"

#include "game/Game.h"
#include "platform/Appearance.h"

#include <QPainter>
#include <QRandomGenerator>
#include <algorithm>

Confetti::Confetti(Game &game, QWidget *parent)
    : QWidget(parent), m_game(game),
      m_random([] { return QRandomGenerator::global()->generateDouble(); }),
      m_clock([] { return QDateTime::currentDateTime(); })
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_TranslucentBackground);
    setFocusPolicy(Qt::NoFocus);
    m_frames.setInterval(16);
    connect(&m_frames, &QTimer::timeout, this, &Confetti::step);
    // Hidden between bursts: a transparent layer over the window would otherwise repaint with
    // every small change beneath it.
    hide();
    connect(&m_game, &Game::confettiChanged, this, [this] {
        if (const std::optional<QDateTime> &start = m_game.confetti())
            burst(*start);
    });
}

const std::array<AdaptiveColor, 6> &Confetti::colors()
{
    static const std::array<AdaptiveColor, 6> c = {{
        {0x2A78D6, 0x3987E5},
        {0xEB6734, 0xD95A26},
        {0x1BAF7A, 0x199E70},
        {0xEDA100, 0xC98500},
        {0xE87BA4, 0xD55181},
        {0x4A3AA7, 0x9085E9},
    }};
    return c;
}

void Confetti::setReduceMotion(bool on)
{
    m_reduceMotion = on;
    if (on) {
        m_frames.stop();
        hide();
    }
}

double Confetti::uniform(double low, double high) const
{
    return low + (high - low) * m_random();
}

void Confetti::burst(const QDateTime &start)
{
    m_start = start;
    m_bits.clear();
    m_bits.reserve(count);
    for (int i = 0; i < count; ++i) {
        Bit b;
        b.vx = uniform(-380, 380);
        b.vy = uniform(-620, -220);
        b.spin = uniform(-8, 8);
        const auto pick = std::min(std::size_t(m_random() * colors().size()), colors().size() - 1);
        b.color = colors()[pick];
        m_bits.push_back(b);
    }
    if (m_reduceMotion)
        return;
    m_frames.start();
    show();
    update();
}

double Confetti::elapsed() const
{
    return m_start ? m_start->msecsTo(m_clock()) / 1000.0 : lifetime;
}

void Confetti::step()
{
    if (elapsed() >= lifetime) {
        m_frames.stop();
        hide();
    }
    update();
}

std::vector<Confetti::Piece> Confetti::frame(double t, QSizeF size) const
{
    std::vector<Confetti::Piece> pieces;
    if (t >= lifetime || t < 0)
        return pieces;
    const double opacity = std::max(1 - 0.5 * t, 0.0);
    pieces.reserve(m_bits.size());
    for (const Bit &b : m_bits) {
        const QPointF centre(size.width() * 0.5 + b.vx * t,
                             size.height() * 0.3 + b.vy * t + 700 * t * t);
        pieces.push_back({centre, b.spin * t, opacity, b.color});
    }
    return pieces;
}

void Confetti::paintEvent(QPaintEvent *)
{
    if (m_reduceMotion || !m_start)
        return;
    const std::vector<Piece> pieces = frame(elapsed(), QSizeF(size()));
    if (pieces.empty())
        return;
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    const bool dark = Appearance::isDark(palette());
    for (const Piece &piece : pieces) {
        p.save();
        p.translate(piece.centre);
        p.rotate(qRadiansToDegrees(piece.radians));
        p.setOpacity(piece.opacity);
        p.fillRect(QRectF(-4, -2, 8, 4), piece.color.resolve(dark));
        p.restore();
    }
}
