#include "ui/screens/ToastView.h"

#include "game/Game.h"
#include "platform/Appearance.h"
#include "platform/Emoji.h"
#include "platform/Spring.h"
#include "ui/screens/MaterialCard.h"
#include "ui/screens/TextStyle.h"

#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace {

constexpr double padX = 18;
constexpr double padY = 10;
constexpr double emojiSize = 28;
constexpr double gap = 12;

} // namespace

ToastView::ToastView(Game &game, bool reduceMotion, QWidget *parent)
    : QWidget(parent), m_game(game), m_reduceMotion(reduceMotion)
{
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_TranslucentBackground);
    setFocusPolicy(Qt::NoFocus);
    connect(&m_game, &Game::toastChanged, this, &ToastView::toastChanged);
    toastChanged();
}

std::optional<Toast> ToastView::shown() const
{
    return m_current ? std::optional(m_current->toast) : std::nullopt;
}

void ToastView::toastChanged()
{
    const std::optional<Toast> &next = m_game.toast();
    if (m_current && next && m_current->toast == *next)
        return;
    if (m_current) {
        m_leaving = std::move(m_current);
        animate(*m_leaving, 0);
    }
    if (next) {
        m_current = std::make_unique<Card>();
        m_current->toast = *next;
        m_current->serial = ++m_serials;
        Card *card = m_current.get();
        connect(&card->motion, &QVariantAnimation::valueChanged, this,
                [this, card](const QVariant &v) {
                    card->progress = v.toDouble();
                    repaintCards();
                });
        setAccessibleName(next->title);
        setAccessibleDescription(next->subtitle);
        animate(*m_current, 1);
    } else {
        setAccessibleName({});
        setAccessibleDescription({});
    }
    repaintCards();
}

void ToastView::animate(Card &card, double to)
{
    card.motion.stop();
    if (m_reduceMotion) {
        card.progress = to;
        if (to == 0 && &card == m_leaving.get())
            m_leaving.reset();
        return;
    }
    card.motion.setSpring(Spring(0.4, 1.0));
    if (to == 0) {
        // The card owns the animation that is finishing, so it goes once the signal is over.
        connect(&card.motion, &QVariantAnimation::finished, this, [this, serial = card.serial] {
            QMetaObject::invokeMethod(
                this,
                [this, serial] {
                    if (m_leaving && m_leaving->serial == serial) {
                        m_leaving.reset();
                        repaintCards();
                    }
                },
                Qt::QueuedConnection);
        });
    }
    card.motion.run(card.progress, to);
}

QSizeF ToastView::cardSize(const Toast &toast) const
{
    const QFontMetricsF title(Emoji::mixedFont(TextStyle::headline()));
    const QFontMetricsF subtitle(Emoji::mixedFont(TextStyle::caption()));
    const double textWidth =
        std::max(title.horizontalAdvance(toast.title), subtitle.horizontalAdvance(toast.subtitle));
    const double textHeight = title.height() + subtitle.height();
    return {padX + emojiSize + gap + std::ceil(textWidth) + padX,
            padY + std::max(emojiSize, textHeight) + padY};
}

QRectF ToastView::cardRect(const Card &card) const
{
    const QSizeF s = cardSize(card.toast);
    const double hidden = -s.height() - shadow;
    const double y = hidden + (top - hidden) * card.progress;
    return {(width() - s.width()) / 2, y, s.width(), s.height()};
}

QRectF ToastView::restingRect() const
{
    if (!m_current)
        return {};
    const QSizeF s = cardSize(m_current->toast);
    return {(width() - s.width()) / 2, top, s.width(), s.height()};
}

void ToastView::repaintCards()
{
    QRect now;
    for (const Card *card : {m_current.get(), m_leaving.get()})
        if (card)
            now |= cardRect(*card).adjusted(-shadow, -shadow, shadow, shadow).toAlignedRect();
    update(now | m_painted);
    m_painted = now;
    // Hidden while empty: a transparent layer over the window would otherwise repaint with every
    // small change beneath it.
    const bool cards = m_current || m_leaving;
    if (isHidden() == cards)
        setVisible(cards);
}

void ToastView::resizeEvent(QResizeEvent *)
{
    m_painted = rect();
    repaintCards();
}

void ToastView::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    if (m_leaving)
        paintCard(p, *m_leaving);
    if (m_current)
        paintCard(p, *m_current);
}

void ToastView::paintCard(QPainter &p, const Card &card) const
{
    if (card.progress <= 0)
        return;
    const QRectF r = cardRect(card);
    p.save();
    p.setOpacity(std::clamp(card.progress, 0.0, 1.0));

    // A soft shadow: widening rounded rectangles, each fainter, a little below the card.
    p.setPen(Qt::NoPen);
    const double strength = Appearance::isDark(palette()) ? 0.30 : 0.12;
    constexpr int layers = 8;
    for (int i = layers; i >= 1; --i) {
        const double grow = i * 1.2;
        p.setBrush(QColor(0, 0, 0, int(255 * strength / layers * (1.0 - double(i - 1) / layers))));
        p.drawRoundedRect(r.adjusted(-grow, -grow + 3, grow, grow + 3), radius + grow,
                          radius + grow);
    }

    p.setPen(QPen(MaterialCard::outline(palette()), 1));
    QColor fill = MaterialCard::fill(palette());
    fill.setAlphaF(0.96f);
    p.setBrush(fill);
    p.drawRoundedRect(r.adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);

    p.setPen(Appearance::ink(palette()));
    Emoji::drawCentered(p, card.toast.emoji,
                        QPointF(r.left() + padX + emojiSize / 2, r.center().y()), emojiSize);
    const QFont titleFont = Emoji::mixedFont(TextStyle::headline());
    const QFont subtitleFont = Emoji::mixedFont(TextStyle::caption());
    const double textX = r.left() + padX + emojiSize + gap;
    const double textWidth = r.right() - padX - textX + 1;
    const double titleHeight = QFontMetricsF(titleFont).height();
    const double subtitleHeight = QFontMetricsF(subtitleFont).height();
    const double textTop = r.center().y() - (titleHeight + subtitleHeight) / 2;
    p.setFont(titleFont);
    p.setPen(Appearance::ink(palette()));
    p.drawText(QRectF(textX, textTop, textWidth, titleHeight), Qt::AlignLeft | Qt::AlignVCenter,
               card.toast.title);
    p.setFont(subtitleFont);
    p.setPen(TextStyle::secondary(palette()));
    p.drawText(QRectF(textX, textTop + titleHeight, textWidth, subtitleHeight),
               Qt::AlignLeft | Qt::AlignVCenter, card.toast.subtitle);
    p.restore();
}
