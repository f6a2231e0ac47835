#include "magic/ui/SpellFXLayer.h"

#include "magic/SpellFXGeometry.h"
#include "platform/AdaptiveColor.h"
#include "platform/Appearance.h"
#include "platform/Emoji.h"
#include "world/Player.h"

#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>

namespace {

const QColor gold = QColor::fromRgbF(1.0f, 0.83f, 0.3f);
const QColor violet = QColor::fromRgbF(0.7f, 0.55f, 1.0f);
constexpr AdaptiveColor cyan{0x32ADE6, 0x64D2FF};
constexpr AdaptiveColor orange{0xFF9500, 0xFF9F0A};

constexpr double sparklePixels = 14;
constexpr double swirlWidth = 3;
constexpr double trailWidth = 4;
constexpr double trailDash = 10;
constexpr double pulseWidth = 3;
constexpr double shadowRadius = 6;

QColor withAlpha(QColor c, double alpha)
{
    c.setAlphaF(float(std::clamp(alpha, 0.0, 1.0)));
    return c;
}

void paintRing(QPainter &painter, const SpellFX &fx, double p)
{
    if (fx.points.empty())
        return;
    const QPointF centre = fx.points.front();
    const SpellFXGeometry::Ring ring = SpellFXGeometry::ring(centre, p);
    if (ring.opacity <= 0)
        return;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(withAlpha(violet, ring.opacity), ring.lineWidth));
    painter.drawEllipse(centre, ring.radius, ring.radius);

    QFont font = painter.font();
    font.setPixelSize(int(sparklePixels));
    painter.setFont(font);
    painter.setPen(withAlpha(gold, ring.opacity));
    const QString sparkle = QStringLiteral("✦");
    for (const QPointF &at : ring.sparkles) {
        const QRectF box(at.x() - sparklePixels, at.y() - sparklePixels, 2 * sparklePixels,
                         2 * sparklePixels);
        painter.drawText(box, Qt::AlignCenter, sparkle);
    }
}

void paintSwirl(QPainter &painter, const SpellFX &fx, double p, bool dark)
{
    const double opacity = 1 - p;
    if (opacity <= 0)
        return;
    painter.setBrush(Qt::NoBrush);
    for (const QPointF &centre : fx.points) {
        for (const bool twin : {false, true}) {
            const std::vector<QPointF> spiral = SpellFXGeometry::spiral(centre, p, twin);
            const QColor colour = twin ? violet : cyan.resolve(dark);
            painter.setPen(QPen(withAlpha(colour, opacity), swirlWidth, Qt::SolidLine, Qt::RoundCap,
                                Qt::RoundJoin));
            painter.drawPolyline(spiral.data(), int(spiral.size()));
        }
    }
}

// A dashed pen whose dashes are `trailDash` points long whatever its width.
QPen dashedPen(const QColor &colour, double width, double phase)
{
    QPen pen(colour, width, Qt::CustomDashLine, Qt::FlatCap, Qt::RoundJoin);
    pen.setDashPattern({trailDash / width, trailDash / width});
    pen.setDashOffset(phase / width);
    return pen;
}

void paintTrail(QPainter &painter, const SpellFX &fx, QPointF hero, double p, double now)
{
    if (fx.points.size() != 2)
        return;
    const QPointF target = fx.points[1];
    const double a = SpellFXGeometry::trailFade(p);
    if (a <= 0)
        return;
    const QPainterPath path = SpellFXGeometry::trail(hero, target);
    const double phase = SpellFXGeometry::trailDashPhase(now);
    const double pulse = SpellFXGeometry::trailPulseRadius(now);
    painter.setBrush(Qt::NoBrush);
    // Wider, fainter, rounded strokes of the same shapes stand in for a blurred gold shadow.
    for (const double spread : {shadowRadius, shadowRadius * 2 / 3, shadowRadius / 3}) {
        const double glow = 0.12 * a;
        QPen halo = dashedPen(withAlpha(gold, glow), trailWidth + 2 * spread, phase);
        halo.setCapStyle(Qt::RoundCap);
        painter.setPen(halo);
        painter.drawPath(path);
        painter.setPen(QPen(withAlpha(gold, 0.8 * glow), pulseWidth + 2 * spread));
        painter.drawEllipse(target, pulse, pulse);
    }
    painter.setPen(dashedPen(withAlpha(gold, a), trailWidth, phase));
    painter.drawPath(path);
    painter.setPen(QPen(withAlpha(gold, 0.8 * a), pulseWidth));
    painter.drawEllipse(target, pulse, pulse);
}

void paintFire(QPainter &painter, const SpellFX &fx, double p, bool dark)
{
    const QColor glowColour = orange.resolve(dark);
    const QString flame = QStringLiteral("🔥");
    const double base = painter.opacity();
    for (std::size_t k = 0; k < fx.points.size(); ++k) {
        const double q = SpellFXGeometry::fireProgress(p, k);
        const SpellFXGeometry::Fire fire = SpellFXGeometry::fire(fx.points[k], q);
        if (fire.glowRadius > 0 && fire.glowOpacity > 0) {
            painter.setPen(Qt::NoPen);
            painter.setBrush(withAlpha(glowColour, fire.glowOpacity));
            painter.drawEllipse(fx.points[k], fire.glowRadius, fire.glowRadius);
        }
        painter.setPen(Qt::black); // text drawn with no pen, emoji included, does not show
        for (const SpellFXGeometry::Flame &f : fire.flames) {
            if (f.opacity <= 0)
                continue;
            painter.setOpacity(base * f.opacity);
            Emoji::drawCentered(painter, flame, f.centre, f.size);
            painter.setOpacity(base);
        }
    }
}

} // namespace

void SpellFXLayer::paint(QPainter &painter, const Player &player, double now,
                         const QPalette &palette)
{
    if (!player.layout())
        return;
    const bool dark = Appearance::isDark(palette);
    const QPointF hero = player.heroPoint();
    for (const SpellFX &fx : player.effects())
        paintEffect(painter, fx, hero, now, dark);
}

void SpellFXLayer::paintEffect(QPainter &painter, const SpellFX &fx, QPointF hero, double now,
                               bool dark)
{
    const double p = SpellFXGeometry::progress(fx, now);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    switch (fx.kind) {
    case SpellFX::Kind::ring:
        paintRing(painter, fx, p);
        break;
    case SpellFX::Kind::swirl:
        paintSwirl(painter, fx, p, dark);
        break;
    case SpellFX::Kind::trail:
        paintTrail(painter, fx, hero, p, now);
        break;
    case SpellFX::Kind::fire:
        paintFire(painter, fx, p, dark);
        break;
    }
    painter.restore();
}
