#include "ui/screens/BountyView.h"

#include "game/Game.h"
#include "platform/Appearance.h"
#include "platform/Emoji.h"
#include "platform/Icons.h"
#include "scan/Fmt.h"
#include "session/Model.h"
#include "ui/screens/BountyList.h"
#include "ui/screens/BountyRow.h"
#include "ui/screens/ProminentButton.h"
#include "ui/screens/TextStyle.h"

#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>
#include <cmath>
#include <numeric>

namespace {

QLabel *label(const QString &text, const QFont &font, QWidget *parent)
{
    auto *l = new QLabel(text, parent);
    l->setFont(Emoji::mixedFont(font));
    return l;
}

QWidget *emptyBoard(QWidget *parent)
{
    auto *page = new QWidget(parent);
    auto *column = new QVBoxLayout(page);
    column->setSpacing(8);
    column->addStretch();
    auto *flag = new QLabel(QStringLiteral("🏁"), page);
    QFont flagFont = Emoji::font(12);
    flagFont.setPixelSize(56);
    flag->setFont(flagFont);
    flag->setAlignment(Qt::AlignCenter);
    column->addWidget(flag);
    auto *title = label(QObject::tr("Board cleared"),
                        TextStyle::weighted(TextStyle::title3(), QFont::Bold), page);
    title->setAlignment(Qt::AlignCenter);
    column->addWidget(title);
    auto *text = label(QObject::tr("Nothing here over 25 MB that's known to be safe to delete.\n"
                                   "Use the map or Ranking to hunt manually."),
                       TextStyle::body(), page);
    text->setAlignment(Qt::AlignCenter);
    TextStyle::makeSecondary(text);
    column->addWidget(text);
    column->addStretch();
    return page;
}

} // namespace

BountyView::BountyView(Model &model, Game &game, QWidget *parent)
    : QStackedWidget(parent), m_model(model), m_game(game), m_empty(emptyBoard(this)),
      m_scroll(new QScrollArea(this))
{
    m_scroll->setFrameShape(QFrame::NoFrame);
    m_scroll->setWidgetResizable(true);
    m_scroll->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    m_scroll->viewport()->setAutoFillBackground(false);
    addWidget(m_empty);
    addWidget(m_scroll);
    connect(m_scroll->verticalScrollBar(), &QScrollBar::valueChanged, this,
            &BountyView::materializeVisible);
    m_scroll->viewport()->installEventFilter(this);
    setAccessibleName(tr("Bounty board"));

    m_countDown.setDuration(450);
    m_countDown.setEasingCurve(QEasingCurve::OutCubic);
    // Animated as a double: Qt has no interpolator for 64-bit integers and would hold the start.
    connect(&m_countDown, &QVariantAnimation::valueChanged, this, [this](const QVariant &v) {
        if (m_slayAll)
            m_slayAll->setText(tr("Slay all safe · %1")
                                   .arg(Fmt::bytes(std::uint64_t(std::llround(v.toDouble())))));
    });
    connect(&m_countDown, &QVariantAnimation::finished, this, [this] {
        if (m_slayAll)
            m_slayAll->setText(tr("Slay all safe · %1").arg(Fmt::bytes(m_safeTotal)));
    });

    connect(&m_model, &Model::adviceChanged, this, &BountyView::invalidate);
    // Whether an item may be slain depends on the scanned folder.
    connect(&m_model, &Model::rootChanged, this, &BountyView::invalidate);
}

void BountyView::invalidate()
{
    m_stale = true;
    if (!isVisible() || m_scheduled)
        return;
    m_scheduled = true;
    QTimer::singleShot(0, this, [this] {
        m_scheduled = false;
        rebuildIfStale();
    });
}

void BountyView::changeEvent(QEvent *event)
{
    QStackedWidget::changeEvent(event);
    if (event->type() == QEvent::PaletteChange)
        invalidate();
}

void BountyView::showEvent(QShowEvent *event)
{
    QStackedWidget::showEvent(event);
    rebuildIfStale();
}

std::vector<Advice> BountyView::safeItems() const
{
    std::vector<Advice> safe;
    for (const Advice &a : m_model.advice())
        if (a.safety == Advice::Safety::safe && a.actionable && m_model.canSlay(a.path))
            safe.push_back(a);
    return safe;
}

bool BountyView::showsEmptyBoard()
{
    rebuildIfStale();
    return currentWidget() == m_empty;
}

std::vector<BountyRow *> BountyView::rows()
{
    rebuildIfStale();
    std::vector<BountyRow *> rows;
    for (BountyList *list : m_lists)
        for (int i = 0; i < list->count(); ++i)
            rows.push_back(list->row(i));
    return rows;
}

int BountyView::createdRows() const
{
    int n = 0;
    for (const BountyList *list : m_lists)
        n += list->createdRows();
    return n;
}

bool BountyView::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::Resize)
        QTimer::singleShot(0, this, &BountyView::materializeVisible); // once the layout has run
    return QStackedWidget::eventFilter(watched, event);
}

void BountyView::materializeVisible()
{
    const QWidget *board = m_scroll->widget();
    if (!board)
        return;
    // One screen ahead in both directions, so scrolling and tabbing find rows already there.
    const int view = m_scroll->viewport()->height();
    const int top = m_scroll->verticalScrollBar()->value() - view;
    for (BountyList *list : m_lists) {
        const int y = list->mapTo(board, QPoint(0, 0)).y();
        list->materialize(top - y, top + 3 * view - y);
    }
}

ProminentButton *BountyView::slayAllButton()
{
    rebuildIfStale();
    return m_slayAll;
}

void BountyView::rebuildIfStale()
{
    if (!m_stale)
        return;
    m_stale = false;
    if (m_model.advice().empty()) {
        setCurrentWidget(m_empty);
        m_lists.clear();
        m_slayAll = nullptr;
        m_safeTotal = 0;
        delete m_scroll->takeWidget();
        return;
    }
    buildBoard();
    setCurrentWidget(m_scroll);
}

void BountyView::buildBoard()
{
    const int scrolled = m_scroll->verticalScrollBar()->value();
    m_lists.clear();
    m_slayAll = nullptr;
    m_countDown.stop();
    auto *board = new QWidget;
    board->setAutoFillBackground(false);
    auto *column = new QVBoxLayout(board);
    column->setContentsMargins(16, 16, 16, 16);
    column->setSpacing(20);

    const std::vector<Advice> &advice = m_model.advice();
    const std::uint64_t total =
        std::accumulate(advice.begin(), advice.end(), std::uint64_t(0),
                        [](std::uint64_t sum, const Advice &a) { return sum + a.size; });

    auto *header = new QVBoxLayout;
    header->setSpacing(4);
    header->addWidget(
        label(tr("💰 Bounty board"), TextStyle::weighted(TextStyle::title2(), QFont::Bold), board));
    auto *summary = label(
        tr("%1 recommendations · up to %2 reclaimable").arg(advice.size()).arg(Fmt::bytes(total)),
        TextStyle::body(), board);
    summary->setObjectName(QStringLiteral("summary"));
    TextStyle::makeSecondary(summary);
    header->addWidget(summary);
    auto *note = label(tr("Slain items wait in the Trash. Empty it in your file manager to "
                          "actually free the space."),
                       TextStyle::caption(), board);
    note->setWordWrap(true);
    TextStyle::makeSecondary(note);
    header->addWidget(note);

    const std::vector<Advice> safe = safeItems();
    if (!safe.empty()) {
        const std::uint64_t safeTotal =
            std::accumulate(safe.begin(), safe.end(), std::uint64_t(0),
                            [](std::uint64_t sum, const Advice &a) { return sum + a.size; });
        m_slayAll = new ProminentButton({}, board);
        m_slayAll->setObjectName(QStringLiteral("slayAll"));
        m_slayAll->setSymbol(QStringLiteral("bolt.fill"));
        connect(m_slayAll, &QPushButton::clicked, this,
                [this] { m_model.setPending(Model::PendingBulk{safeItems()}); });
        header->addSpacing(6);
        header->addWidget(m_slayAll, 0, Qt::AlignLeft);
        showSafeTotal(safeTotal);
    } else {
        m_safeTotal = 0;
    }
    column->addLayout(header);

    for (const Advice::Safety safety : Safeties::all)
        addGroup(column, safety);
    column->addStretch();

    delete m_scroll->takeWidget();
    m_scroll->setWidget(board);
    column->activate();
    m_scroll->verticalScrollBar()->setValue(scrolled);
    materializeVisible();
}

void BountyView::showSafeTotal(std::uint64_t bytes)
{
    const std::uint64_t from = m_safeTotal;
    m_safeTotal = bytes;
    m_slayAll->setText(tr("Slay all safe · %1").arg(Fmt::bytes(bytes)));
    // Slaying counts the total down; anything else just shows the new figure.
    if (m_reduceMotion || from <= bytes || !isVisible())
        return;
    m_slayAll->setText(tr("Slay all safe · %1").arg(Fmt::bytes(from)));
    m_countDown.setStartValue(double(from));
    m_countDown.setEndValue(double(bytes));
    m_countDown.start();
}

void BountyView::addGroup(QVBoxLayout *column, Advice::Safety safety)
{
    std::vector<Advice> items;
    for (const Advice &a : m_model.advice())
        if (a.safety == safety)
            items.push_back(a);
    if (items.empty())
        return;
    const std::uint64_t bytes =
        std::accumulate(items.begin(), items.end(), std::uint64_t(0),
                        [](std::uint64_t sum, const Advice &a) { return sum + a.size; });

    QWidget *board = column->parentWidget();
    auto *group = new QVBoxLayout;
    group->setSpacing(6);
    auto *heading = new QHBoxLayout;
    heading->setSpacing(6);
    auto *symbol = new QLabel(board);
    const QColor colour = Appearance::resolve(Safeties::color(safety), palette());
    symbol->setPixmap(Icons::symbol(Safeties::symbolName(safety), colour, 16).pixmap(16, 16));
    heading->addWidget(symbol);
    auto *title = label(Safeties::label(safety), TextStyle::headline(), board);
    title->setObjectName(QStringLiteral("groupTitle"));
    heading->addWidget(title);
    auto *count = label(QStringLiteral("%1 · %2").arg(items.size()).arg(Fmt::bytes(bytes)),
                        TextStyle::callout(), board);
    count->setObjectName(QStringLiteral("groupSummary"));
    TextStyle::makeSecondary(count);
    heading->addWidget(count);
    heading->addStretch();
    group->addLayout(heading);

    auto *description = label(Safeties::description(safety), TextStyle::caption(), board);
    description->setWordWrap(true);
    TextStyle::makeSecondary(description);
    group->addWidget(description);

    auto *list = new BountyList(m_model, m_game, std::move(items), board);
    m_lists.push_back(list);
    group->addWidget(list);
    column->addLayout(group);
}
