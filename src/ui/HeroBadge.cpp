#include "ui/HeroBadge.h"

#include "game/Achievement.h"
#include "game/Game.h"
#include "platform/Appearance.h"
#include "platform/Emoji.h"
#include "platform/Spring.h"

#include <QPainter>
#include <QPainterPath>
#include <cmath>

namespace {

constexpr qreal ring = 38;

// A level-up swells the ring to 1.45 in 0.18 s, then springs back (bounce 0.3) over 0.6 s.
double pulseScale(double t)
{
    if (t < 0.18)
        return 1.0 + 0.45 * QEasingCurve(QEasingCurve::OutQuad).valueForProgress(t / 0.18);
    static const Spring back(0.5, 0.7);
    return 1.45 - 0.45 * back.value(t - 0.18);
}

QFont pillFont(QFont font)
{
    font.setPixelSize(9);
    font.setWeight(QFont::Black);
    font.setStyleHint(QFont::Monospace);
    return font;
}

} // namespace

HeroBadge::HeroBadge(Game &game, bool reduceMotion, QWidget *parent)
    : QAbstractButton(parent), m_game(game), m_reduceMotion(reduceMotion), m_level(game.level())
{
    setCursor(Qt::PointingHandCursor);
    setFocusPolicy(Qt::StrongFocus);
    setToolTip(QStringLiteral("Character sheet: hero, achievements and settings"));
    m_progress.setSpring(Spring(0.5, 1.0));
    m_progress.setStartValue(game.levelProgress());
    m_progress.setEndValue(game.levelProgress());
    connect(&m_progress, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));

    // The pulse runs on elapsed seconds; pulseScale() shapes it.
    m_pulse.setDuration(780);
    m_pulse.setStartValue(0.0);
    m_pulse.setEndValue(0.78);
    connect(&m_pulse, &QVariantAnimation::valueChanged, this, qOverload<>(&QWidget::update));

    for (const auto signal :
         {&Game::xpChanged, &Game::heroChanged, &Game::heroNameChanged, &Game::unlockedChanged})
        connect(&game, signal, this, &HeroBadge::refresh);
    refresh();
}

QFont HeroBadge::captionFont() const
{
    QFont small = Emoji::mixedFont(font());
    small.setPointSizeF(font().pointSizeF() * 0.85);
    return small;
}

QPointF HeroBadge::ringCentre() const
{
    return {ring / 2 + 2, ring / 2 + 2};
}

QRectF HeroBadge::levelPill() const
{
    // It sits on the ring's lower edge, half below it.
    const QFontMetricsF fm(pillFont(font()));
    const double w = fm.horizontalAdvance(QString::number(m_game.level())) + 8;
    const double h = fm.height() + 2;
    return QRectF(ringCentre() + QPointF(-w / 2, ring / 2 - h / 2 - 2), QSizeF(w, h));
}

QSize HeroBadge::sizeHint() const
{
    QFont headline = font();
    headline.setBold(true);
    const double text = std::max(QFontMetricsF(headline).horizontalAdvance(m_game.heroName()),
                                 QFontMetricsF(captionFont()).horizontalAdvance(caption()));
    return {int(std::ceil(ring + 10 + text + 6)), int(std::ceil(levelPill().bottom() + 1))};
}

QString HeroBadge::caption() const
{
    return QStringLiteral("Lv %1 %2 · 🏅 %3/%4")
        .arg(m_game.level())
        .arg(m_game.title())
        .arg(m_game.unlocked().size())
        .arg(Achievement::all().size());
}

QString HeroBadge::ringAccessibleText() const
{
    return QStringLiteral("Level %1, %2 percent to next level")
        .arg(m_game.level())
        .arg(int(std::floor(m_game.levelProgress() * 100)));
}

void HeroBadge::refresh()
{
    const double target = m_game.levelProgress();
    const double from =
        m_progress.currentValue().isValid() ? m_progress.currentValue().toDouble() : target;
    m_progress.run(m_reduceMotion ? target : from, target);
    if (m_game.level() != m_level) {
        m_level = m_game.level();
        if (!m_reduceMotion)
            m_pulse.start();
    }
    setAccessibleName(QStringLiteral("%1, %2").arg(ringAccessibleText(), m_game.heroName()));
    updateGeometry();
    update();
}

void HeroBadge::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QColor inkColor = Appearance::ink(palette());
    const QColor dragon = Appearance::resolve(Tiers::landColor(Tier::dragon), palette());
    const QColor dragonLabel = Appearance::resolve(Tiers::labelColor(Tier::dragon), palette());

    const QPointF centre = ringCentre();
    const double scale = m_pulse.state() == QAbstractAnimation::Running
                             ? pulseScale(m_pulse.currentValue().toDouble())
                             : 1.0;
    p.save();
    p.translate(centre);
    p.scale(scale, scale);
    QColor track = inkColor;
    track.setAlphaF(0.15);
    const QRectF circle(-ring / 2 + 1.75, -ring / 2 + 1.75, ring - 3.5, ring - 3.5);
    p.setPen(QPen(track, 3.5));
    p.drawEllipse(circle);
    const double progress = std::clamp(shownProgress(), 0.0, 1.0);
    if (progress > 0) {
        p.setPen(QPen(dragon, 3.5, Qt::SolidLine, Qt::RoundCap));
        p.drawArc(circle, 90 * 16, -int(std::round(progress * 360 * 16)));
    }
    Emoji::drawCentered(p, m_game.hero(), QPointF(0, 0), 20);

    const QRectF pill = levelPill().translated(-centre);
    p.setPen(Qt::NoPen);
    p.setBrush(dragon);
    p.drawRoundedRect(pill, pill.height() / 2, pill.height() / 2);
    p.setPen(dragonLabel);
    p.setFont(pillFont(font()));
    p.drawText(pill, Qt::AlignCenter, QString::number(m_game.level()));
    p.restore();

    const qreal textX = ring + 10;
    QFont headline = font();
    headline.setBold(true);
    QColor secondary = inkColor;
    secondary.setAlphaF(0.6);
    p.setFont(headline);
    p.setPen(inkColor);
    p.drawText(QRectF(textX, 0, width() - textX, centre.y()), Qt::AlignLeft | Qt::AlignBottom,
               m_game.heroName());
    p.setFont(captionFont());
    p.setPen(secondary);
    p.drawText(QRectF(textX, centre.y() + 1, width() - textX, height() - centre.y() - 1),
               Qt::AlignLeft | Qt::AlignTop, caption());
    if (hasFocus()) {
        p.setPen(QPen(palette().color(QPalette::Highlight), 1.5));
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(QRectF(rect()).adjusted(1, 1, -1, -1), 6, 6);
    }
}
