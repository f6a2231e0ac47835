#include "world/ui/MapHelp.h"

#include "game/Tier.h"
#include "magic/Spell.h"
#include "platform/Appearance.h"
#include "platform/Emoji.h"
#include "platform/Keys.h"
#include "world/ui/Terrain.h"

#include <QFontDatabase>
#include <QGridLayout>
#include <QLabel>
#include <QPainter>
#include <QPainterPath>
#include <QVBoxLayout>

namespace {

QFont caption(const QFont &base)
{
    QFont f = base;
    f.setPointSizeF(std::max(base.pointSizeF() - 1.5, 7.0));
    return f;
}

QLabel *text(const QString &words, const QFont &font, QWidget *parent)
{
    auto *label = new QLabel(words, parent);
    label->setFont(font.families().contains(QStringLiteral("Noto Color Emoji"))
                       ? font
                       : Emoji::mixedFont(font));
    label->setTextFormat(Qt::PlainText);
    return label;
}

QLabel *heading(const QString &words, QWidget *parent)
{
    QFont f = parent->font();
    f.setWeight(QFont::Bold);
    return text(words, f, parent);
}

// A hairline in the ink at 20 %, painted from the palette so it follows the appearance.
class Divider : public QWidget
{
public:
    explicit Divider(QWidget *parent) : QWidget(parent) { setFixedHeight(1); }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QColor c = Appearance::ink(palette());
        c.setAlphaF(0.2f);
        QPainter(this).fillRect(rect(), c);
    }
};

QWidget *divider(QWidget *parent)
{
    return new Divider(parent);
}

// A rounded square of a tier's land colour.
class Swatch : public QWidget
{
public:
    Swatch(AdaptiveColor color, QWidget *parent) : QWidget(parent), m_color(color)
    {
        setFixedSize(14, 14);
    }

protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter p(this);
        p.setRenderHint(QPainter::Antialiasing);
        QPainterPath box;
        box.addRoundedRect(QRectF(0, 0, 14, 14), 3, 3);
        p.fillPath(box, Appearance::resolve(m_color, palette()));
    }

private:
    AdaptiveColor m_color;
};

} // namespace

MapHelp::MapHelp(QWidget *parent) : QWidget(parent)
{
    const QFont small = caption(font());
    QFont keys = QFontDatabase::systemFont(QFontDatabase::FixedFont);
    keys.setPointSizeF(small.pointSizeF());
    keys.setWeight(QFont::DemiBold);
    const QFont digits = small; // its digits are tabular already

    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(14, 12, 14, 12);
    column->setSpacing(8);

    column->addWidget(heading(QStringLiteral("How to play"), this));
    auto *controls = new QGridLayout;
    controls->setHorizontalSpacing(12);
    controls->setVerticalSpacing(3);
    const std::pair<const char *, const char *> rows[] = {
        {"WASD / arrows", "walk (⇧ to sprint)"},
        {"Click", "walk there · double-click enters"},
        {"⏎ / Space", "enter the territory you're in"},
        {"Esc", "leave to the parent realm"},
        {"F", "fight the monster next to you"},
        {"N", "name this territory"},
        {"⌘= / ⌘− / pinch", "zoom · ⌘0 shows the whole realm"},
        {"1 – 5", "cast a spell"},
    };
    int row = 0;
    for (const auto &[k, meaning] : rows) {
        controls->addWidget(text(Keys::display(QString::fromUtf8(k)), keys, this), row, 0);
        controls->addWidget(text(Keys::display(QString::fromUtf8(meaning)), small, this), row, 1);
        ++row;
    }
    controls->setColumnStretch(1, 1);
    column->addLayout(controls);
    column->addWidget(divider(this));

    column->addWidget(heading(QStringLiteral("Spells"), this));
    auto *spells = new QGridLayout;
    spells->setHorizontalSpacing(10);
    spells->setVerticalSpacing(3);
    row = 0;
    for (const Spell s : Spells::all) {
        spells->addWidget(text(Spells::key(s), keys, this), row, 0, Qt::AlignTop);
        spells->addWidget(text(Spells::emoji(s) + QLatin1Char(' ') + Spells::name(s), small, this),
                          row, 1, Qt::AlignTop);
        spells->addWidget(text(QStringLiteral("%1 mana").arg(Spells::cost(s)), digits, this), row,
                          2, Qt::AlignTop);
        QLabel *description = text(Spells::description(s), small, this);
        description->setWordWrap(true);
        description->setMinimumWidth(220);
        spells->addWidget(description, row, 3, Qt::AlignTop);
        ++row;
    }
    column->addLayout(spells);
    column->addWidget(divider(this));

    column->addWidget(heading(QStringLiteral("Map key"), this));
    auto *legend = new QGridLayout;
    legend->setHorizontalSpacing(10);
    legend->setVerticalSpacing(4);
    row = 0;
    for (const Tier t : Tiers::all) {
        legend->addWidget(new Swatch(Tiers::landColor(t), this), row, 0, Qt::AlignVCenter);
        legend->addWidget(text(Tiers::displayName(t) + QStringLiteral(" · ") + Terrain::name(t) +
                                   QLatin1Char(' ') + Terrain::sign(t),
                               small, this),
                          row, 1);
        legend->addWidget(text(Terrain::sizeRange(t), digits, this), row, 2, Qt::AlignRight);
        ++row;
    }
    const QFont emoji = Emoji::font(small.pointSizeF());
    legend->addWidget(text(QStringLiteral("☁️"), emoji, this), row, 0, Qt::AlignCenter);
    legend->addWidget(text(QStringLiteral("Unexplored: walk in or cast Reveal"), small, this), row,
                      1, 1, 2);
    ++row;
    legend->addWidget(text(QStringLiteral("💰"), emoji, this), row, 0, Qt::AlignCenter);
    legend->addWidget(
        text(QStringLiteral("Bounty: something here is safe to clean up"), small, this), row, 1, 1,
        2);
    column->addLayout(legend);
}
