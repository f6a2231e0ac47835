#include "ui/QuestRing.h"

#include "game/Game.h"
#include "platform/Appearance.h"
#include "platform/Emoji.h"
#include "scan/Fmt.h"

#include <QPainter>
#include <cmath>

QuestRing::QuestRing(Game &game, QWidget *parent) : QWidget(parent), m_game(game)
{
    setFixedSize(28, 28);
    connect(&game, &Game::questBytesChanged, this, &QuestRing::refresh);
    refresh();
}

double QuestRing::progress() const
{
    return std::min(static_cast<double>(m_game.questBytes()) / static_cast<double>(Game::questGoal),
                    1.0);
}

void QuestRing::refresh()
{
    setToolTip(m_game.questDone() ? QStringLiteral("Daily quest complete!")
                                  : QStringLiteral("Daily quest: reclaim 1 GB · %1 so far")
                                        .arg(Fmt::bytes(m_game.questBytes())));
    setAccessibleName(
        QStringLiteral("Daily quest, %1 percent").arg(int(std::floor(progress() * 100))));
    update();
}

void QuestRing::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QRectF circle = QRectF(rect()).adjusted(1.5, 1.5, -1.5, -1.5);
    QColor track = Appearance::ink(palette());
    track.setAlphaF(0.15);
    p.setPen(QPen(track, 3));
    p.drawEllipse(circle);
    const QColor done = Appearance::resolve(Tiers::landColor(Tier::dragon), palette());
    if (progress() > 0) {
        p.setPen(QPen(m_game.questDone() ? done : QColor(0xED, 0xA1, 0x00), 3, Qt::SolidLine,
                      Qt::RoundCap));
        p.drawArc(circle, 90 * 16, -int(std::round(progress() * 360 * 16)));
    }
    Emoji::drawCentered(p, m_game.questDone() ? QStringLiteral("✅") : QStringLiteral("📜"),
                        circle.center(), 13);
}
