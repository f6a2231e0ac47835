#include "ui/screens/RankRow.h"

#include "game/Game.h"
#include "platform/Appearance.h"
#include "platform/DisplayName.h"
#include "platform/Emoji.h"
#include "platform/Spring.h"
#include "platform/TabularDigits.h"
#include "scan/Fmt.h"
#include "session/Model.h"
#include "snapshot/GrowthRule.h"
#include "ui/screens/Meter.h"
#include "ui/screens/TextStyle.h"
#include "ui/screens/TileMenu.h"
#include "world/ui/MonsterArt.h"

#include <QGraphicsOpacityEffect>
#include <QKeyEvent>
#include <QPainter>
#include <algorithm>

namespace {

constexpr int glyphSize = 24;
constexpr double emojiPixels = 18;
constexpr double fileBadgePixels = 11;
constexpr int deathMs = 500;
constexpr AdaptiveColor grewColor{0xC2410C, 0xFB923C};
constexpr AdaptiveColor shrankColor{0x15803D, 0x4ADE80};

} // namespace

RankRow::RankRow(Model &model, Game &game, int rank, Tile tile, double fraction, QWidget *parent)
    : QWidget(parent), m_model(model), m_game(game), m_rank(rank), m_tile(std::move(tile)),
      m_fraction(fraction), m_meter(new Meter(this))
{
    setFocusPolicy(Qt::TabFocus);
    setAttribute(Qt::WA_Hover);
    setMouseTracking(true);
    m_meter->setAttribute(Qt::WA_TransparentForMouseEvents);
    m_meter->setTint(tier() ? std::optional(Tiers::landColor(*tier())) : std::nullopt);

    connect(&m_iconAnimation, &QVariantAnimation::valueChanged, this, [this](const QVariant &v) {
        m_iconScale = v.toDouble();
        update();
    });
    m_iconAnimation.setSpring(Spring(0.25, 0.45));
    m_deathAnimation.setDuration(deathMs);
    m_deathAnimation.setEasingCurve(QEasingCurve::InQuad);
    connect(&m_deathAnimation, &QVariantAnimation::valueChanged, this,
            [this](const QVariant &v) { applyDeath(v.toDouble()); });
    connect(&m_model, &Model::dyingChanged, this, &RankRow::refreshDying);

    setEntry(rank, m_tile, fraction);
    refreshDying();
}

std::optional<Tier> RankRow::tier() const
{
    if (const BigFile *file = m_tile.file())
        return Tiers::ofBytes(file->size);
    if (!m_tile.folder())
        return std::nullopt;
    const auto measure =
        m_model.metric() == Metric::size ? Tiers::Measure::bytes : Tiers::Measure::files;
    return Tiers::of(m_tile.value, measure);
}

QString RankRow::placeText(int rank)
{
    switch (rank) {
    case 1:
        return QStringLiteral("🥇");
    case 2:
        return QStringLiteral("🥈");
    case 3:
        return QStringLiteral("🥉");
    default:
        return QStringLiteral("#%1").arg(rank);
    }
}

int RankRow::growDelayMs(int rank)
{
    return 20 * std::min(rank, 25);
}

void RankRow::setEntry(int rank, Tile tile, double fraction)
{
    m_rank = rank;
    m_tile = std::move(tile);
    const bool rescaled = fraction != m_fraction;
    m_fraction = fraction;
    m_meter->setTint(tier() ? std::optional(Tiers::landColor(*tier())) : std::nullopt);
    if (m_grown && rescaled)
        m_meter->setValue(m_fraction);
    const NodePtr *folder = m_tile.folder();
    m_growth = folder ? m_model.grown(**folder) : std::nullopt;
    const QString growth = growthText();
    setAccessibleName(QStringLiteral("Rank %1, %2, %3%4")
                          .arg(m_rank)
                          .arg(DisplayName::of(m_tile.name), valueText(),
                               growth.isEmpty() ? QString() : QStringLiteral(", ") + growth));
    layoutMeter();
    refreshDying();
    update();
}

void RankRow::setBaseGeometry(const QRect &geometry)
{
    m_base = geometry;
    setGeometry(m_base.translated(qRound(slide * m_death), 0));
}

void RankRow::setReduceMotion(bool on)
{
    m_reduceMotion = on;
    m_meter->setReduceMotion(on);
}

void RankRow::growIn()
{
    m_grown = true;
    if (m_reduceMotion)
        m_meter->jumpTo(m_fraction);
    else
        m_meter->animateTo(m_fraction, Spring(0.5, 0.8), growDelayMs(m_rank));
}

void RankRow::activate()
{
    const NodePtr *node = m_tile.folder();
    if (node && !(*node)->children().empty())
        m_model.go(*node, m_game);
    else
        m_model.play(Sound::Sfx::denied());
}

void RankRow::requestSlay()
{
    if (const auto pending = m_model.slayRequest(m_tile))
        m_model.setPending(*pending);
    else
        m_model.play(Sound::Sfx::denied());
}

QString RankRow::valueText() const
{
    // A file is one file whatever the metric; its bytes say more.
    if (const BigFile *file = m_tile.file())
        return Fmt::bytes(file->size);
    return Metrics::format(m_model.metric(), m_tile.value);
}

QString RankRow::growthText() const
{
    const NodePtr *folder = m_tile.folder();
    if (!m_growth || !folder || !GrowthRule::chip((*folder)->size(), *m_growth))
        return {};
    return Fmt::growth(*m_growth);
}

int RankRow::chipRoom() const
{
    return m_model.previous() ? chipWidth + gap : 0;
}

void RankRow::paintChip(QPainter &p)
{
    const QString text = growthText();
    if (text.isEmpty())
        return;
    const QColor tint = Appearance::resolve(*m_growth > 0 ? grewColor : shrankColor, palette());
    const QRectF chip(width() - padX - valueWidth - gap - chipWidth, (height() - 20) / 2.0,
                      chipWidth, 20);
    QColor fill = tint;
    fill.setAlphaF(0.16);
    p.setPen(Qt::NoPen);
    p.setBrush(fill);
    p.drawRoundedRect(chip, 10, 10);
    p.setPen(tint);
    p.setFont(TextStyle::caption());
    TabularDigits::draw(p, chip.toRect(), Qt::AlignCenter, text);
}

void RankRow::refreshDying()
{
    const std::string path = m_tile.path();
    const bool dying = !path.empty() && m_model.isDying(path);
    // A death ends with the item gone: the row keeps its last look until the list drops it.
    if (dying == m_dying || !dying)
        return;
    m_dying = dying;
    retargetIcon();
    if (m_reduceMotion) {
        applyDeath(1.0);
        return;
    }
    m_deathAnimation.setStartValue(m_death);
    m_deathAnimation.setEndValue(1.0);
    m_deathAnimation.start();
}

void RankRow::applyDeath(double progress)
{
    m_death = progress;
    if (progress > 0 && !m_fade) {
        m_fade = new QGraphicsOpacityEffect(this);
        setGraphicsEffect(m_fade);
    }
    if (m_fade)
        m_fade->setOpacity(1.0 - 0.7 * progress);
    if (!m_base.isNull())
        setGeometry(m_base.translated(qRound(slide * progress), 0));
}

void RankRow::retargetIcon()
{
    const double target = m_dying ? 1.8 : (m_hot ? 1.25 : 1.0);
    m_iconAnimation.stop();
    if (m_reduceMotion) {
        m_iconScale = target;
        update();
        return;
    }
    m_iconAnimation.run(m_iconScale, target);
}

QPointF RankRow::iconCentre() const
{
    return {padX + placeWidth + gap + iconWidth / 2.0, height() / 2.0};
}

void RankRow::layoutMeter()
{
    const int x = nameX + nameWidth + gap;
    const int w = std::max(0, width() - x - gap - chipRoom() - valueWidth - padX);
    m_meter->setGeometry(x, (height() - meterHeight) / 2, w, meterHeight);
}

void RankRow::resizeEvent(QResizeEvent *)
{
    layoutMeter();
}

void RankRow::showEvent(QShowEvent *)
{
    if (!m_grown)
        growIn();
}

void RankRow::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    const QPalette &pal = palette();
    const QRectF bounds = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    if (m_hot) {
        p.setPen(Qt::NoPen);
        p.setBrush(TextStyle::hover(pal));
        p.drawRoundedRect(bounds, 6, 6);
    }
    if (m_focusRing && hasFocus()) {
        QColor ring = TextStyle::accent(pal);
        ring.setAlphaF(0.6);
        p.setPen(QPen(ring, 1.5));
        p.setBrush(Qt::NoBrush);
        p.drawRoundedRect(bounds.adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
    }

    // Text, emoji included, is only drawn with a pen.
    p.setPen(pal.color(QPalette::WindowText));
    const QRect place(padX, 0, placeWidth, height());
    if (m_rank <= 3) {
        Emoji::drawCentered(p, placeText(m_rank), QPointF(place.right() - 9, height() / 2.0), 18);
    } else {
        p.setFont(TextStyle::callout());
        p.setPen(TextStyle::secondary(pal));
        TabularDigits::draw(p, place, Qt::AlignRight | Qt::AlignVCenter, placeText(m_rank));
    }

    const QPointF centre = iconCentre();
    p.setPen(pal.color(QPalette::WindowText));
    if (m_dying) {
        Emoji::drawCentered(p, QStringLiteral("💥"), centre, emojiPixels * m_iconScale);
    } else if (const auto t = tier()) {
        const double s = glyphSize * m_iconScale;
        MonsterArt::draw(p, *t, QRectF(centre.x() - s / 2, centre.y() - s / 2, s, s));
        // A file's monster carries a page, so it is not taken for a folder's.
        if (m_tile.file())
            Emoji::drawCentered(p, QStringLiteral("📄"), centre + QPointF(s / 2 - 2, s / 2 - 4),
                                fileBadgePixels);
    } else {
        Emoji::drawCentered(p, QStringLiteral("📄"), centre, emojiPixels * m_iconScale);
    }

    p.setFont(TextStyle::body());
    p.setPen(pal.color(QPalette::WindowText));
    const QString name =
        QFontMetrics(p.font()).elidedText(DisplayName::of(m_tile.name), Qt::ElideRight, nameWidth);
    p.drawText(QRect(nameX, 0, nameWidth, height()), Qt::AlignLeft | Qt::AlignVCenter, name);

    p.setFont(TextStyle::callout());
    TabularDigits::draw(p, QRect(width() - padX - valueWidth, 0, valueWidth, height()),
                        Qt::AlignRight | Qt::AlignVCenter, valueText());
    paintChip(p);
}

void RankRow::enterEvent(QEnterEvent *)
{
    m_hot = true;
    retargetIcon();
    update();
    if (const auto t = tier())
        m_model.play(Sound::Sfx::hover(*t));
}

void RankRow::leaveEvent(QEvent *)
{
    m_hot = false;
    retargetIcon();
    update();
}

void RankRow::mousePressEvent(QMouseEvent *event)
{
    // Taking the press makes the release ours, so a click is a press and release on the row.
    event->setAccepted(event->button() == Qt::LeftButton);
}

void RankRow::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() == Qt::LeftButton && rect().contains(event->position().toPoint()))
        activate();
}

void RankRow::keyPressEvent(QKeyEvent *event)
{
    const int key = event->key();
    if (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space) {
        activate();
    } else if (key == Qt::Key_Delete) {
        requestSlay();
    } else if (key == Qt::Key_Menu ||
               (key == Qt::Key_F10 && event->modifiers() == Qt::ShiftModifier)) {
        // Under the name, where a pointer's menu would open.
        openMenu(mapToGlobal(QPoint(nameX, height())));
    } else {
        QWidget::keyPressEvent(event);
    }
}

void RankRow::contextMenuEvent(QContextMenuEvent *event)
{
    openMenu(event->globalPos());
}

void RankRow::openMenu(const QPoint &globalPos)
{
    // Not modal and not owned by the row: the list may drop the row while the menu is open.
    auto menu = std::make_unique<TileMenu>(m_model, m_game, m_tile);
    if (menu->isEmpty())
        return;
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu.release()->popup(globalPos);
}

void RankRow::focusInEvent(QFocusEvent *event)
{
    // The ring is for keyboard users; a window that hands focus on by itself shows none.
    m_focusRing = event->reason() == Qt::TabFocusReason ||
                  event->reason() == Qt::BacktabFocusReason ||
                  event->reason() == Qt::ShortcutFocusReason;
    update();
    QWidget::focusInEvent(event);
}

void RankRow::focusOutEvent(QFocusEvent *event)
{
    m_focusRing = false;
    update();
    QWidget::focusOutEvent(event);
}
