#include "magic/ui/SpellBar.h"

#include "magic/ui/SpellButton.h"
#include "platform/Appearance.h"

#include <QHBoxLayout>
#include <QPainter>

namespace {

constexpr int padding = 6;
constexpr int spacing = 6;
constexpr double cornerRadius = 14;

} // namespace

SpellBar::SpellBar(const Magic &magic, QWidget *parent) : QWidget(parent)
{
    setAccessibleName(QStringLiteral("Spells"));
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(padding, padding, padding, padding);
    row->setSpacing(spacing);
    for (const Spell spell : Spells::all) {
        auto *button = new SpellButton(spell, magic, this);
        connect(button, &QAbstractButton::clicked, this,
                [this, spell] { Q_EMIT castRequested(spell); });
        row->addWidget(button);
        m_buttons[std::size_t(Spells::index(spell))] = button;
    }
    setFixedSize(sizeHint());
}

SpellButton *SpellBar::button(Spell spell) const
{
    return m_buttons[std::size_t(Spells::index(spell))];
}

void SpellBar::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool dark = Appearance::isDark(palette());
    const QRectF box = QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5);
    painter.setBrush(dark ? QColor(28, 28, 32, 200) : QColor(250, 250, 252, 215));
    painter.setPen(QPen(dark ? QColor(255, 255, 255, 40) : QColor(0, 0, 0, 30), 1));
    painter.drawRoundedRect(box, cornerRadius, cornerRadius);
}
