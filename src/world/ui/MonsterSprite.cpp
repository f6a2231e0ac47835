#include "world/ui/MonsterSprite.h"

#include "platform/Spring.h"
#include "world/ui/Glow.h"
#include "world/ui/MapFonts.h"
#include "world/ui/Stamps.h"

#include <QEasingCurve>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace {

constexpr double breathGrowth = 0.08;
constexpr double fadeSeconds = 0.35;
constexpr double blastFirst = 0.25;
constexpr double blastSecond = 0.3;
constexpr double xpRise = 90;
constexpr double xpSeconds = 0.55;

double clamp01(double v)
{
    return std::clamp(v, 0.0, 1.0);
}

double cubicInOut(double t)
{
    return QEasingCurve(QEasingCurve::InOutCubic).valueForProgress(clamp01(t));
}

// 0.3 by a critically damped spring toward 1.6 for 0.25 s, then on to 2.2 in 0.3 s.
double blastScale(double t)
{
    static const Spring spring(0.5, 1.0);
    const double first = 0.3 + 1.3 * spring.value(std::min(t, blastFirst));
    if (t <= blastFirst)
        return first;
    return first + (2.2 - first) * cubicInOut((t - blastFirst) / blastSecond);
}

} // namespace

MonsterSprite::MonsterSprite(Region region, double shownAt)
    : m_region(std::move(region)), m_shownAt(shownAt)
{}

bool MonsterSprite::breathes() const
{
    return m_region.explored && m_region.tier &&
           (*m_region.tier == Tier::dragon || *m_region.tier == Tier::titan);
}

bool MonsterSprite::dyingAt(double now) const
{
    return m_death && now - m_death->start < deathSeconds;
}

bool MonsterSprite::animating(double now, bool reduceMotion) const
{
    return dyingAt(now) || (breathes() && !reduceMotion && !m_death);
}

QRectF MonsterSprite::bounds() const
{
    const double s = size();
    const double half = s * (1 + breathGrowth) / 2 + 2;
    return QRectF(m_region.capital.x() - half, m_region.capital.y() - half, 2 * half,
                  2 * half + 0.1 * s);
}

double MonsterSprite::breathScale(double now, bool reduceMotion) const
{
    if (!breathes() || reduceMotion)
        return 1.0;
    const double period = *m_region.tier == Tier::dragon ? 1.2 : 1.8;
    const double u = std::fmod(std::max(now - m_shownAt, 0.0), 2 * period) / period;
    const double there = u <= 1 ? u : 2 - u;
    return 1 + breathGrowth * QEasingCurve(QEasingCurve::InOutSine).valueForProgress(there);
}

void MonsterSprite::paint(QPainter &painter, Stamps &stamps, double now, bool reduceMotion) const
{
    if (!m_region.hasMonster())
        return;
    const double s = size();
    const QPointF c = m_region.capital;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);

    double scale = breathScale(now, reduceMotion);
    double angle = 0;
    double opacity = 1;
    if (m_death) {
        const double m = QEasingCurve(QEasingCurve::InOutQuad)
                             .valueForProgress(clamp01((now - m_death->start) / fadeSeconds));
        scale = 1 - 0.8 * m;
        angle = 20 * m;
        opacity = 1 - m;
    }

    if (opacity > 0) {
        painter.setOpacity(opacity);
        stamps.drawShadow(painter, QPointF(c.x(), c.y() + 0.42 * s * scale), 0.36 * s * scale,
                          0.09 * s * scale, QColor(0, 0, 0, 77));

        if (!m_region.explored) {
            stamps.drawEmoji(painter, QStringLiteral("❔"), c, 0.6 * s);
        } else {
            painter.translate(c);
            painter.rotate(angle);
            painter.scale(scale, scale);
            painter.setRenderHint(QPainter::SmoothPixmapTransform);
            stamps.drawMonster(painter, *m_region.tier, QPointF(0, 0), s);
        }
    }
    painter.restore();

    if (m_death)
        paintDeath(painter, stamps, now - m_death->start);
}

void MonsterSprite::paintDeath(QPainter &painter, Stamps &stamps, double elapsed) const
{
    if (elapsed < 0 || elapsed >= deathSeconds)
        return;
    const QPointF c = m_region.capital;
    const double s = size();
    painter.save();
    const double blast = blastScale(elapsed);
    if (blast < 2.0) {
        painter.translate(c);
        painter.scale(blast, blast);
        stamps.drawEmoji(painter, QStringLiteral("💥"), QPointF(0, 0), 1.6 * s);
    }
    painter.restore();
}

void MonsterSprite::paintReward(QPainter &painter, double now) const
{
    if (!m_death)
        return;
    const double elapsed = now - m_death->start;
    if (elapsed < 0 || elapsed >= deathSeconds)
        return;
    const QPointF c = m_region.capital;
    const double v = xpRise * cubicInOut(elapsed / xpSeconds);
    painter.save();
    painter.setOpacity(std::max(0.0, 1 - v / xpRise));
    const QString text = QStringLiteral("+%1 XP").arg(m_death->xp);
    Glow::drawText(painter, QRectF(c.x() - 100, c.y() - v - 15, 200, 30), Qt::AlignCenter, text,
                   MapFonts::system(16, QFont::Black), QColor::fromRgbF(1.0f, 0.83f, 0.3f),
                   QColor(0, 0, 0, 180), 2);
    painter.restore();
}
