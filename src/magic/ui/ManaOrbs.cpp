#include "magic/ui/ManaOrbs.h"

#include "magic/Magic.h"
#include "platform/Appearance.h"

#include <QLinearGradient>
#include <QPainter>
#include <QRadialGradient>
#include <algorithm>
#include <cmath>

namespace {

int whole(double mana)
{
    return static_cast<int>(std::floor(mana));
}

} // namespace

ManaOrbs::ManaOrbs(const Magic &magic, QWidget *parent) : QWidget(parent), m_magic(magic)
{
    setFixedSize(sizeHint());
    describe();
    connect(&magic, &Magic::manaChanged, this, [this] {
        describe();
        update();
    });
}

QSize ManaOrbs::sizeHint() const
{
    const double width = orbCount * orbSide + (orbCount - 1) * gap;
    return {int(std::ceil(width)), int(std::ceil(orbSide))};
}

double ManaOrbs::fill(double mana, int i)
{
    return std::clamp(mana - i, 0.0, 1.0);
}

QRectF ManaOrbs::orbRect(int i)
{
    return {i * (orbSide + gap), 0, orbSide, orbSide};
}

QString ManaOrbs::toolTipFor(double mana)
{
    return QStringLiteral("Mana %1/%2 · refills 1 every %3 s and on every slay")
        .arg(whole(mana))
        .arg(int(Magic::maxMana))
        .arg(int(Magic::secondsPerMana));
}

QString ManaOrbs::accessibleNameFor(double mana)
{
    return QStringLiteral("Mana %1 of %2").arg(whole(mana)).arg(int(Magic::maxMana));
}

void ManaOrbs::describe()
{
    setToolTip(toolTipFor(m_magic.mana()));
    setAccessibleName(accessibleNameFor(m_magic.mana()));
}

void ManaOrbs::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    const bool dark = Appearance::isDark(palette());
    const QColor top = dark ? QColor(140, 190, 255) : QColor(90, 150, 245);
    const QColor bottom = dark ? QColor(150, 100, 255) : QColor(110, 70, 225);
    const double mana = m_magic.mana();

    for (int i = 0; i < orbCount; ++i) {
        const QRectF orb = orbRect(i);
        QLinearGradient body(orb.topLeft(), orb.bottomLeft());
        body.setColorAt(0, top);
        body.setColorAt(1, bottom);

        painter.setPen(Qt::NoPen);
        painter.setBrush(body);
        painter.setOpacity(emptyOpacity);
        painter.drawEllipse(orb);
        painter.setOpacity(1);

        const double f = fill(mana, i);
        if (f <= 0)
            continue;
        painter.save();
        painter.setClipRect(
            QRectF(orb.left(), orb.bottom() - f * orb.height(), orb.width(), f * orb.height()));
        painter.drawEllipse(orb);
        QRadialGradient shine(orb.center() + QPointF(-2, -2.5), orb.width() * 0.45);
        shine.setColorAt(0, QColor(255, 255, 255, 170));
        shine.setColorAt(1, QColor(255, 255, 255, 0));
        painter.setBrush(shine);
        painter.drawEllipse(orb);
        painter.restore();
    }
}
