#include "magic/ui/SpellButton.h"

#include "magic/Magic.h"
#include "platform/Appearance.h"
#include "platform/Emoji.h"

#include <QPainter>
#include <QPainterPath>

namespace {

constexpr int emojiPixels = 20;
constexpr int smallPixels = 9;
constexpr double cornerRadius = 9;
const QColor manaColour = QColor::fromRgbF(0.55f, 0.6f, 1.0f);
const QColor manaColourLight = QColor::fromRgbF(0.36f, 0.33f, 0.9f);

} // namespace

SpellButton::SpellButton(Spell spell, const Magic &magic, QWidget *parent)
    : QAbstractButton(parent), m_spell(spell), m_magic(magic)
{
    setFixedSize(side, side);
    setFocusPolicy(Qt::TabFocus);
    setCursor(Qt::PointingHandCursor);
    setToolTip(toolTipFor(spell));
    setAccessibleName(accessibleNameFor(spell));
    setAccessibleDescription(Spells::description(spell));
    connect(&magic, &Magic::manaChanged, this, qOverload<>(&QWidget::update));
}

double SpellButton::contentOpacity() const
{
    return m_magic.canCast(m_spell) ? 1.0 : unaffordableOpacity;
}

QString SpellButton::toolTipFor(Spell spell)
{
    return QStringLiteral("%1 (%2) · %3 mana\n%4")
        .arg(Spells::name(spell), Spells::key(spell), QString::number(Spells::cost(spell)),
             Spells::description(spell));
}

QString SpellButton::accessibleNameFor(Spell spell)
{
    return QStringLiteral("%1, costs %2 mana").arg(Spells::name(spell)).arg(Spells::cost(spell));
}

void SpellButton::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    const QPalette &pal = palette();
    const bool dark = Appearance::isDark(pal);
    const QColor ink = Appearance::ink(pal);
    const QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);

    painter.setOpacity(contentOpacity());
    QColor fill = ink;
    fill.setAlphaF(isDown() ? 0.22f : m_hovered ? 0.15f : 0.08f);
    painter.setPen(Qt::NoPen);
    painter.setBrush(fill);
    painter.drawRoundedRect(box, cornerRadius, cornerRadius);
    if (hasFocus()) {
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(pal.color(QPalette::Highlight), 2));
        painter.drawRoundedRect(box.adjusted(1, 1, -1, -1), cornerRadius - 1, cornerRadius - 1);
    }

    painter.setPen(ink); // text drawn with no pen, emoji included, does not show
    Emoji::drawCentered(painter, Spells::emoji(m_spell), QPointF(side / 2.0, 17), emojiPixels);

    QFont dots = font();
    dots.setPixelSize(smallPixels);
    dots.setWeight(QFont::Black);
    painter.setFont(dots);
    painter.setPen(dark ? manaColour : manaColourLight);
    painter.drawText(QRectF(0, 28, side, 11), Qt::AlignHCenter | Qt::AlignVCenter,
                     QString(Spells::cost(m_spell), QChar(0x2022)));

    QFont key = font();
    key.setFamily(QStringLiteral("monospace"));
    key.setStyleHint(QFont::Monospace);
    key.setPixelSize(smallPixels);
    key.setBold(true);
    painter.setFont(key);
    QColor keyInk = ink;
    keyInk.setAlphaF(0.6f);
    painter.setPen(keyInk);
    painter.drawText(QRectF(4, 2, 12, 11), Qt::AlignLeft | Qt::AlignTop, Spells::key(m_spell));
}

void SpellButton::enterEvent(QEnterEvent *event)
{
    m_hovered = true;
    update();
    QAbstractButton::enterEvent(event);
}

void SpellButton::leaveEvent(QEvent *event)
{
    m_hovered = false;
    update();
    QAbstractButton::leaveEvent(event);
}
