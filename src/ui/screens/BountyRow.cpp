#include "ui/screens/BountyRow.h"

#include "game/Game.h"
#include "platform/Desktop.h"
#include "platform/DisplayName.h"
#include "platform/Emoji.h"
#include "platform/Icons.h"
#include "scan/Fmt.h"
#include "session/Model.h"
#include "ui/screens/ElidedLabel.h"
#include "ui/screens/TextStyle.h"
#include "world/ui/MonsterGlyph.h"

#include <QContextMenuEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QMenu>
#include <QPainter>
#include <QPushButton>
#include <QToolButton>

namespace {

constexpr int iconFrame = 32;
constexpr int glyphSize = 30;
constexpr int kindIconSize = 11;

QToolButton *symbolButton(const QString &help, QWidget *parent)
{
    auto *b = new QToolButton(parent);
    b->setAutoRaise(true);
    b->setToolTip(help);
    b->setAccessibleName(help);
    b->setIconSize(QSize(15, 15));
    b->setCursor(Qt::PointingHandCursor);
    return b;
}

} // namespace

BountyRow::BountyRow(Model &model, Game &game, Advice item, QWidget *parent)
    : QWidget(parent), m_model(model), m_game(game), m_item(std::move(item))
{
    setAttribute(Qt::WA_Hover);
    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(8, 6, 8, 6);
    row->setSpacing(10);

    // A fixed frame, so its pieces are placed by hand: no layout to measure in every row.
    m_iconBox = new QWidget(this);
    m_iconBox->setFixedSize(iconFrame, iconFrame);
    m_glyph = new MonsterGlyph(Tiers::ofBytes(m_item.size), glyphSize, m_iconBox);
    m_glyph->move((iconFrame - glyphSize) / 2, (iconFrame - glyphSize) / 2);
    row->addWidget(m_iconBox);

    auto *text = new QVBoxLayout;
    text->setSpacing(1);
    auto *titleLine = new QHBoxLayout;
    titleLine->setSpacing(4);
    m_kind = new QLabel(this);
    m_kind->setFixedSize(kindIconSize + 2, kindIconSize + 2);
    titleLine->addWidget(m_kind);
    auto *name = new ElidedLabel(m_item.displayName(), Qt::ElideMiddle, this);
    name->setFont(TextStyle::weighted(TextStyle::body(), QFont::DemiBold));
    titleLine->addWidget(name, 1);
    text->addLayout(titleLine);
    auto *reason = new ElidedLabel(m_item.reason, Qt::ElideRight, this);
    reason->setFont(TextStyle::caption());
    TextStyle::makeSecondary(reason);
    reason->setToolTip(m_item.reason);
    text->addWidget(reason);
    auto *path = new ElidedLabel(DisplayName::of(m_item.path), Qt::ElideMiddle, this);
    path->setFont(TextStyle::caption2());
    path->setOpacity(0.6);
    path->setToolTip(DisplayName::of(m_item.path));
    text->addWidget(path);
    row->addLayout(text, 1);

    auto *worth = new QVBoxLayout;
    worth->setSpacing(1);
    auto *size = new QLabel(Fmt::bytes(m_item.size), this);
    size->setFont(TextStyle::weighted(TextStyle::callout(), QFont::DemiBold));
    size->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    auto *xp = new QLabel(QStringLiteral("+%1 XP").arg(Game::xpFor(m_item.size)), this);
    xp->setFont(TextStyle::caption());
    xp->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
    worth->addWidget(size);
    worth->addWidget(xp);
    auto *worthBox = new QWidget(this);
    worthBox->setFixedWidth(90);
    worthBox->setLayout(worth);
    worth->setContentsMargins(0, 0, 0, 0);
    row->addWidget(worthBox);

    auto *buttons = new QHBoxLayout;
    buttons->setSpacing(4);
    m_reveal = symbolButton(tr("Reveal in File Manager"), this);
    connect(m_reveal, &QToolButton::clicked, this, [this] { m_model.reveal(m_item.path); });
    m_reveal->setEnabled(m_model.canReveal());
    buttons->addWidget(m_reveal);
    if (const NodePtr node = m_item.folder()) {
        m_map = symbolButton(tr("Show on the map"), this);
        connect(m_map, &QToolButton::clicked, this, [this, node] { m_model.show(node, m_game); });
        buttons->addWidget(m_map);
    }
    m_slay = new QPushButton(tr("Slay"), this);
    m_slay->setCursor(Qt::PointingHandCursor);
    const bool enabled = slayable();
    m_slay->setEnabled(enabled);
    m_slay->setToolTip(enabled ? tr("Move to Trash")
                               : tr("Handle this one outside the app (see the note)"));
    connect(m_slay, &QPushButton::clicked, this, &BountyRow::slay);
    buttons->addWidget(m_slay);
    row->addLayout(buttons);

    setAccessibleName(QStringLiteral("%1, %2, %3")
                          .arg(m_item.displayName(), Fmt::bytes(m_item.size), m_item.reason));
    refreshIcons();
    connect(&m_model, &Model::dyingChanged, this, &BountyRow::refreshDying);
    refreshDying();
}

bool BountyRow::slayable() const
{
    return m_item.actionable && m_model.canSlay(m_item.path);
}

void BountyRow::slay()
{
    if (const NodePtr node = m_item.folder())
        m_model.setPending(Model::PendingFolder{node});
    else if (const BigFile *file = m_item.file())
        m_model.setPending(Model::PendingFile{*file});
}

void BountyRow::refreshDying()
{
    const bool dying = m_model.isDying(m_item.path);
    // Made on the first death only: measuring a colour emoji decodes its bitmap glyph, which
    // thousands of rows would pay for nothing.
    if (dying && !m_boom) {
        m_boom = new QLabel(QStringLiteral("💥"), m_iconBox);
        QFont boomFont = Emoji::font(12);
        boomFont.setPixelSize(TextStyle::title2().pixelSize());
        m_boom->setFont(boomFont);
        m_boom->setAlignment(Qt::AlignCenter);
        m_boom->setGeometry(m_iconBox->rect());
    }
    m_glyph->setVisible(!dying);
    if (m_boom)
        m_boom->setVisible(dying);
}

void BountyRow::refreshIcons()
{
    const QColor ink = palette().color(QPalette::WindowText);
    const QString kind =
        m_item.isFile() ? QStringLiteral("doc.fill") : QStringLiteral("folder.fill");
    m_kind->setPixmap(Icons::symbol(kind, ink, kindIconSize).pixmap(kindIconSize, kindIconSize));
    m_reveal->setIcon(Icons::symbol(QStringLiteral("magnifyingglass"), ink, 15));
    if (m_map)
        m_map->setIcon(Icons::symbol(QStringLiteral("map"), ink, 15));
}

void BountyRow::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::PaletteChange)
        refreshIcons();
    QWidget::changeEvent(event);
}

void BountyRow::paintEvent(QPaintEvent *)
{
    if (!m_hot)
        return;
    QPainter p(this);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(Qt::NoPen);
    p.setBrush(TextStyle::hover(palette()));
    p.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 8, 8);
}

void BountyRow::enterEvent(QEnterEvent *)
{
    m_hot = true;
    update();
    m_model.play(Sound::Sfx::hover(Tiers::ofBytes(m_item.size)));
}

void BountyRow::leaveEvent(QEvent *)
{
    m_hot = false;
    update();
}

std::unique_ptr<QMenu> BountyRow::makeContextMenu() const
{
    // Holds what it needs by value: the board may rebuild its rows while the menu is open.
    auto menu = std::make_unique<QMenu>();
    QAction *reveal = menu->addAction(tr("Reveal in File Manager"));
    connect(reveal, &QAction::triggered, reveal,
            [&model = m_model, path = m_item.path] { model.reveal(path); });
    QAction *copy = menu->addAction(tr("Copy Path"));
    connect(copy, &QAction::triggered, copy, [path = m_item.path] { Desktop::copyPath(path); });
    return menu;
}

void BountyRow::contextMenuEvent(QContextMenuEvent *event)
{
    QMenu *menu = makeContextMenu().release();
    menu->setAttribute(Qt::WA_DeleteOnClose);
    menu->popup(event->globalPos());
}
