#include "world/ui/HeroLayer.h"

#include "game/Game.h"
#include "session/Model.h"
#include "world/Player.h"
#include "world/Region.h"
#include "world/ui/HeroPrompt.h"
#include "world/ui/MapFonts.h"
#include "world/ui/Stamps.h"

#include <QEasingCurve>
#include <QFontMetricsF>
#include <QPainter>
#include <QPainterPath>
#include <QWidget>
#include <algorithm>
#include <cmath>
#include <limits>

namespace {

constexpr double enterSeconds = 0.2;
constexpr double leaveSeconds = 0.35;
constexpr double slide = 12;
constexpr double padding = 3;
constexpr double panelGap = 24; // between the hero point and the panel's bottom edge

QFont floaterFont()
{
    return MapFonts::system(13, QFont::Black);
}

} // namespace

HeroLayer::HeroLayer(Player &player, Model &model, Game &game, bool reduceMotion, QWidget *host)
    : QObject(host), m_player(player), m_model(model), m_game(game), m_reduceMotion(reduceMotion),
      m_prompt(new HeroPrompt(reduceMotion, host))
{
    connect(m_prompt, &HeroPrompt::enterClicked, this, [this] {
        if (m_enter)
            m_enter();
    });
    connect(m_prompt, &HeroPrompt::fightClicked, this, [this] {
        if (m_fight)
            m_fight();
    });
    connect(m_prompt, &HeroPrompt::renameClicked, this, [this] {
        if (m_rename)
            m_rename();
    });
    connect(&m_player, &Player::floaterChanged, this, &HeroLayer::floaterChanged);
    connect(&m_player, &Player::regionIndexChanged, this, &HeroLayer::refreshChoices);
    connect(&m_player, &Player::nearMonsterChanged, this, &HeroLayer::refreshChoices);
    connect(&m_model, &Model::originChanged, this, &HeroLayer::refreshChoices);
    connect(&m_model, &Model::changed, this, &HeroLayer::refreshChoices);
    connect(&m_model, &Model::dyingChanged, this, &HeroLayer::refreshChoices);
    connect(&m_game, &Game::heroChanged, this, &HeroLayer::changed);
    refreshChoices();
}

void HeroLayer::setActions(std::function<void()> enter, std::function<void()> fight,
                           std::function<void()> rename)
{
    m_enter = std::move(enter);
    m_fight = std::move(fight);
    m_rename = std::move(rename);
}

void HeroLayer::refreshChoices()
{
    const std::optional<Region> region = m_player.currentRegion();
    const NodePtr *folder = region ? region->tile.folder() : nullptr;
    const bool enter = folder && *folder && !(*folder)->children().empty();
    const bool rename = region && region->path.has_value();
    // While a monster dies there is nothing to choose, and its reward rises where the panel was.
    const bool open = !m_model.dying();
    // A remembered or opened realm is only to look at.
    const bool fight = open && m_player.nearMonster() && !m_model.readOnly();
    m_prompt->setChoices(open && enter, fight, open && rename);
    // The panel changed size, and the message moves up or down with it.
    Q_EMIT changed();
}

void HeroLayer::floaterChanged()
{
    const double now = m_player.clock().now();
    const auto &f = m_player.floater();
    const std::optional<QString> id = f ? std::optional(f->id.toString()) : std::nullopt;
    if (id == m_floaterId)
        return;
    if (m_floater)
        m_leaving = Shown{m_floater->text, now};
    m_floater.reset();
    if (f)
        m_floater = Shown{f->text, now};
    m_floaterId = id;
    Q_EMIT changed();
}

double HeroLayer::bob(double now) const
{
    if (!m_player.moving() || m_reduceMotion)
        return 0;
    return -4 * std::abs(std::sin(14 * now));
}

bool HeroLayer::animating(double now) const
{
    if (m_player.moving() && !m_reduceMotion)
        return true;
    if (m_floater && now - m_floater->since < enterSeconds)
        return true;
    return m_leaving && now - m_leaving->since < leaveSeconds;
}

QRectF HeroLayer::visibleWorld() const
{
    return QRectF(-m_player.cameraOffset(), m_player.viewSize());
}

std::optional<QRectF> HeroLayer::monsterBox() const
{
    const std::optional<Region> region = m_player.currentRegion();
    if (!region || !region->hasMonster())
        return std::nullopt;
    const double half = region->monsterSize() / 2;
    return QRectF(region->capital - QPointF(half, half), QSizeF(2 * half, 2 * half));
}

// Above the hero unless that runs off the top of the view or covers his territory's monster.
bool HeroLayer::below() const
{
    const QPointF hero = m_player.heroPoint();
    const double reach = floaterHigh + 16;
    const QRectF above(hero.x() - 60, hero.y() - reach, 120, reach - glyphSize / 2);
    if (above.top() < visibleWorld().top())
        return true;
    const std::optional<QRectF> monster = monsterBox();
    return monster && above.intersects(*monster);
}

double HeroLayer::belowTop() const
{
    const std::optional<QRectF> monster = monsterBox();
    return std::max(m_player.heroPoint().y() + panelGap - 2,
                    monster ? monster->bottom() + 4 : -std::numeric_limits<double>::infinity());
}

// `box` moved the least that puts it inside the visible part of the world.
QRectF HeroLayer::insideView(QRectF box) const
{
    const QRectF view = visibleWorld().adjusted(4, 4, -4, -4);
    box.moveLeft(
        std::clamp(box.left(), view.left(), std::max(view.left(), view.right() - box.width())));
    box.moveTop(
        std::clamp(box.top(), view.top(), std::max(view.top(), view.bottom() - box.height())));
    return box;
}

QRectF HeroLayer::panelBox() const
{
    const QPointF hero = m_player.heroPoint();
    const QSizeF size = m_prompt->sizeHint();
    const double top = below() ? belowTop() : hero.y() - panelGap - size.height();
    return insideView(QRectF(QPointF(hero.x() - size.width() / 2, top), size));
}

QRectF HeroLayer::floaterBox(const QString &text) const
{
    const QPointF hero = m_player.heroPoint();
    const QFontMetricsF metrics(floaterFont());
    const double w = metrics.horizontalAdvance(text) + 2 * padding + 4;
    const double h = metrics.height() + 2 * padding;
    const bool panel = m_prompt->hasChoices();
    double top = hero.y() - (panel ? floaterHigh : floaterLow) - h / 2;
    if (below())
        top = panel ? panelBox().bottom() + 4 : belowTop();
    return insideView(QRectF(hero.x() - w / 2, top, w, h));
}

QRectF HeroLayer::bounds(double now) const
{
    Q_UNUSED(now);
    const QPointF hero = m_player.heroPoint();
    QRectF r(hero.x() - glyphSize, hero.y() - glyphSize - 6, 2 * glyphSize, 2 * glyphSize + 12);
    for (const auto &shown : {m_floater, m_leaving}) {
        if (shown)
            r |= floaterBox(shown->text).adjusted(-2, -2, 2, slide + 2);
    }
    return r;
}

void HeroLayer::paint(QPainter &painter, Stamps &stamps, double now) const
{
    if (!m_player.layout())
        return;
    const QPointF hero = m_player.heroPoint();
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    QPainterPath shadow;
    shadow.addEllipse(QPointF(hero.x(), hero.y() + glyphSize * 0.45), 11, 3.5);
    painter.fillPath(shadow, QColor(0, 0, 0, 64));

    painter.translate(hero.x(), hero.y() + bob(now));
    if (m_player.facingLeft())
        painter.scale(-1, 1);
    stamps.drawEmoji(painter, m_game.hero(), QPointF(0, 0), glyphSize);
    painter.restore();

    if (m_leaving && now - m_leaving->since < leaveSeconds)
        paintFloater(painter, *m_leaving, (now - m_leaving->since) / leaveSeconds, false);
    if (m_floater) {
        const double p =
            m_reduceMotion ? 1 : std::min((now - m_floater->since) / enterSeconds, 1.0);
        paintFloater(painter, *m_floater, p, true);
    }
}

void HeroLayer::paintFloater(QPainter &painter, const Shown &shown, double progress,
                             bool entering) const
{
    if (!entering && m_reduceMotion)
        return;
    const double eased = entering
                             ? QEasingCurve(QEasingCurve::OutCubic).valueForProgress(progress)
                             : QEasingCurve(QEasingCurve::InOutQuad).valueForProgress(progress);
    const double opacity = entering ? eased : 1 - eased;
    const double dy = entering ? slide * (1 - eased) : slide * eased;
    if (opacity <= 0)
        return;
    const QRectF box = floaterBox(shown.text).translated(0, dy);
    const QPalette &pal = m_prompt->palette();
    painter.save();
    painter.setOpacity(opacity);
    painter.setRenderHint(QPainter::Antialiasing);
    QColor material = pal.color(QPalette::Window);
    material.setAlphaF(0.78f);
    QPainterPath pill;
    pill.addRoundedRect(box, 7, 7);
    painter.fillPath(pill, material);
    painter.setFont(floaterFont());
    painter.setPen(pal.color(QPalette::WindowText));
    painter.drawText(box, Qt::AlignCenter, shown.text);
    painter.restore();
}

void HeroLayer::place(QPointF cameraOffset)
{
    if (!m_prompt->hasChoices())
        return;
    const QRectF box = panelBox().translated(cameraOffset);
    m_prompt->setGeometry(QRect(QPoint(int(std::lround(box.left())), int(std::lround(box.top()))),
                                box.size().toSize()));
}

QString HeroLayer::accessibleLabel() const
{
    const std::optional<Region> region = m_player.currentRegion();
    return m_game.heroName() + QStringLiteral(", standing in ") +
           (region ? region->title : QStringLiteral("the sea"));
}
