#include "ui/screens/AchievementRow.h"

#include "platform/Emoji.h"
#include "platform/Icons.h"
#include "ui/screens/TextStyle.h"

#include <QPainter>

namespace {

constexpr int checkSize = 16;
constexpr int gap = 8;

QFont titleFont()
{
    return TextStyle::weighted(TextStyle::subheadline(), QFont::DemiBold);
}

} // namespace

AchievementRow::AchievementRow(Achievement achievement, QWidget *parent)
    : QWidget(parent), m_achievement(std::move(achievement))
{
    setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    setUnlocked(false);
}

void AchievementRow::setUnlocked(bool unlocked)
{
    m_unlocked = unlocked;
    setAccessibleName(QStringLiteral("%1, %2, %3")
                          .arg(m_achievement.title, m_achievement.detail,
                               unlocked ? tr("unlocked") : tr("locked")));
    update();
}

QSize AchievementRow::sizeHint() const
{
    const int h = QFontMetrics(titleFont()).height() + QFontMetrics(TextStyle::caption()).height();
    return {300, std::max(h, 26) + 4};
}

void AchievementRow::paintEvent(QPaintEvent *)
{
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.setOpacity(m_unlocked ? 1.0 : lockedOpacity);
    Emoji::drawCentered(p, m_achievement.emoji, QPointF(emojiColumn / 2.0, height() / 2.0), 18);

    const int x = emojiColumn + gap;
    const int right = width() - (m_unlocked ? checkSize + gap : 0);
    const QFontMetrics title(titleFont());
    const QFontMetrics detail(TextStyle::caption());
    const int top = (height() - title.height() - detail.height()) / 2;
    p.setFont(titleFont());
    p.setPen(palette().color(QPalette::WindowText));
    p.drawText(QRect(x, top, right - x, title.height()), Qt::AlignLeft | Qt::AlignVCenter,
               title.elidedText(m_achievement.title, Qt::ElideRight, right - x));
    p.setFont(TextStyle::caption());
    p.setPen(TextStyle::secondary(palette()));
    p.drawText(QRect(x, top + title.height(), right - x, detail.height()),
               Qt::AlignLeft | Qt::AlignVCenter,
               detail.elidedText(m_achievement.detail, Qt::ElideRight, right - x));
    if (m_unlocked) {
        const QColor green(0x0C, 0xA3, 0x0C);
        const QPixmap check =
            Icons::symbol(QStringLiteral("checkmark.circle.fill"), green, checkSize)
                .pixmap(checkSize, checkSize);
        p.drawPixmap(QPoint(width() - checkSize, (height() - checkSize) / 2), check);
    }
}
