#include "ui/screens/RankingView.h"

#include "game/Game.h"
#include "session/Model.h"
#include "ui/SegmentedControl.h"
#include "ui/screens/RankRow.h"

#include <QEvent>
#include <QKeyEvent>
#include <QScrollBar>
#include <QTimer>
#include <QToolButton>
#include <algorithm>
#include <unordered_map>

RankingView::RankingView(Model &model, Game &game, QWidget *parent)
    : QScrollArea(parent), m_model(model), m_game(game), m_column(new QWidget),
      m_order(new SegmentedControl(tr("Order"), this))
{
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(false);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    setWidget(m_column);
    m_column->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);
    setAccessibleName(tr("Ranking"));
    m_order->addSegment(QString(), QIcon(), tr("Largest first"));
    m_order->addSegment(tr("By growth"), QIcon(), tr("What grew most since the last scan first"));
    connect(m_order, &SegmentedControl::selectedChanged, this,
            [this](int i) { setByGrowth(i == 1); });
    connect(&m_model, &Model::previousChanged, this, [this] {
        if (!m_model.previous())
            m_byGrowth = false;
        refreshOrder();
        invalidate(true);
    });
    refreshOrder();

    connect(&m_model, &Model::currentChanged, this, [this] {
        m_cameFrom = m_level;
        m_level = m_model.current();
        invalidate(true);
    });
    connect(&m_model, &Model::rootChanged, this, [this] { invalidate(true); });
    // A new metric re-sorts everything and runs the grow-in again, so every row starts afresh.
    connect(&m_model, &Model::metricChanged, this, [this] {
        refreshOrder();
        invalidate(true);
    });
    connect(&m_model, &Model::changed, this, [this] { invalidate(false); });
    connect(verticalScrollBar(), &QScrollBar::valueChanged, this, &RankingView::materializeVisible);
}

void RankingView::setReduceMotion(bool on)
{
    m_reduceMotion = on;
    for (const auto &row : m_rows)
        if (row)
            row->setReduceMotion(on);
}

void RankingView::setByGrowth(bool on)
{
    on = on && m_model.previous();
    if (on == m_byGrowth)
        return;
    m_byGrowth = on;
    refreshOrder();
    invalidate(true);
}

void RankingView::refreshOrder()
{
    const bool shown = m_model.previous() != nullptr;
    m_order->setVisible(shown);
    m_order->segment(0)->setText(tr("By %1").arg(Metrics::label(m_model.metric()).toLower()));
    m_order->setSelected(m_byGrowth ? 1 : 0);
    m_order->adjustSize();
    m_order->move(padding, (headerHeight - m_order->height()) / 2);
    setViewportMargins(0, shown ? headerHeight : 0, 0, 0);
}

QRect RankingView::rowRect(int index, int width)
{
    return {padding, padding + index * (RankRow::rowHeight + spacing), width - 2 * padding,
            RankRow::rowHeight};
}

double RankingView::fractionOf(const Tile &tile) const
{
    return tile.value / m_top;
}

void RankingView::invalidate(bool freshRows)
{
    m_stale = true;
    m_freshRows = m_freshRows || freshRows;
    if (!isVisible() || m_scheduled)
        return;
    m_scheduled = true;
    QTimer::singleShot(0, this, [this] {
        m_scheduled = false;
        rebuildIfStale();
    });
}

void RankingView::rebuildIfStale()
{
    if (!m_stale)
        return;
    m_stale = false;
    m_tiles = m_model.rankedTiles(limit, m_byGrowth);
    // Bars measure against the largest folder, which by growth need not come first; the loose
    // files and the rest may outgrow it and fill their bar.
    m_top = m_tiles.empty() ? 0 : m_tiles.front().value;
    for (const Tile &t : m_tiles)
        if (t.folder())
            m_top = std::max(m_top, t.value);
    if (m_top <= 0)
        m_top = 1;

    // Rows whose tile is still listed keep their state; the rest go.
    std::unordered_map<std::string, QPointer<RankRow>> kept;
    for (const auto &row : m_rows) {
        if (!row)
            continue;
        if (m_freshRows) {
            retire(row);
        } else {
            kept.emplace(row->tile().id, row);
        }
    }
    m_freshRows = false;
    m_rows.assign(m_tiles.size(), nullptr);
    for (std::size_t i = 0; i < m_tiles.size(); ++i) {
        const auto found = kept.find(m_tiles[i].id);
        if (found == kept.end())
            continue;
        m_rows[i] = found->second;
        m_rows[i]->setEntry(int(i) + 1, m_tiles[i], fractionOf(m_tiles[i]));
        kept.erase(found);
    }
    for (auto &[id, row] : kept)
        retire(row);
    placeRows();
    restoreSelection();
}

void RankingView::restoreSelection()
{
    const std::optional<int> from = std::exchange(m_refocus, std::nullopt);
    // Only the first rebuild after a change of level selects the folder just left.
    const NodePtr cameFrom = std::exchange(m_cameFrom, {}).lock();
    if (!from || !hasFocus() || m_tiles.empty())
        return;
    // Up a level, the folder just left is selected (it is one of the tiles); otherwise the row
    // where the selection was, or the last.
    const auto found = std::find_if(m_tiles.begin(), m_tiles.end(), [&](const Tile &t) {
        const NodePtr *node = t.folder();
        return cameFrom && node && *node == cameFrom;
    });
    select(found != m_tiles.end() ? int(found - m_tiles.begin())
                                  : std::min(*from, int(m_tiles.size()) - 1));
}

void RankingView::retire(RankRow *row)
{
    // Hiding a focused row hands the focus to the next one, which scrolls the list to itself: down
    // the whole column when every row goes. The list keeps the focus instead.
    const QWidget *focused = row->window()->focusWidget();
    if (focused && (focused == row || row->isAncestorOf(focused))) {
        setFocus(Qt::OtherFocusReason);
        m_refocus = m_freshRows ? 0 : row->rank() - 1;
    }
    row->hide();
    row->deleteLater();
}

void RankingView::placeRows()
{
    const int n = int(m_tiles.size());
    const int width = viewport()->width();
    const int height = n == 0 ? 0 : 2 * padding + n * RankRow::rowHeight + (n - 1) * spacing;
    m_column->resize(width, height);
    for (int i = 0; i < n; ++i)
        if (m_rows[i])
            m_rows[i]->setBaseGeometry(rowRect(i, width));
    materializeVisible();
}

void RankingView::materializeVisible()
{
    if (m_tiles.empty())
        return;
    // One screen ahead in both directions, so scrolling and tabbing find rows already there.
    const int top = verticalScrollBar()->value() - viewport()->height();
    const int bottom = verticalScrollBar()->value() + 2 * viewport()->height();
    const int pitch = RankRow::rowHeight + spacing;
    materialize(std::max(0, (top - padding) / pitch), (bottom - padding) / pitch);
}

void RankingView::materialize(int from, int to)
{
    to = std::min(to, int(m_tiles.size()) - 1);
    const int width = viewport()->width();
    for (int i = from; i <= to; ++i) {
        if (m_rows[i])
            continue;
        auto *row =
            new RankRow(m_model, m_game, i + 1, m_tiles[i], fractionOf(m_tiles[i]), m_column);
        row->setReduceMotion(m_reduceMotion);
        row->setBaseGeometry(rowRect(i, width));
        row->installEventFilter(this);
        m_rows[i] = row;
        row->show();
    }
}

const std::vector<Tile> &RankingView::tiles()
{
    rebuildIfStale();
    return m_tiles;
}

RankRow *RankingView::row(int index)
{
    rebuildIfStale();
    if (index < 0 || index >= int(m_tiles.size()))
        return nullptr;
    materialize(index, index);
    return m_rows[index];
}

int RankingView::createdRows() const
{
    return int(
        std::count_if(m_rows.begin(), m_rows.end(), [](const auto &r) { return !r.isNull(); }));
}

void RankingView::resizeEvent(QResizeEvent *event)
{
    QScrollArea::resizeEvent(event);
    placeRows();
}

void RankingView::showEvent(QShowEvent *event)
{
    QScrollArea::showEvent(event);
    rebuildIfStale();
    placeRows();
}

void RankingView::select(int index)
{
    if (RankRow *r = row(index)) {
        r->setFocus(Qt::ShortcutFocusReason);
        ensureWidgetVisible(r, 0, padding);
    }
}

std::optional<int> RankingView::selected() const
{
    for (std::size_t i = 0; i < m_rows.size(); ++i)
        if (m_rows[i] && m_rows[i]->hasFocus())
            return int(i);
    return std::nullopt;
}

bool RankingView::navigate(const QKeyEvent &event, std::optional<int> from)
{
    const int last = int(tiles().size()) - 1;
    const int page = std::max(1, viewport()->height() / (RankRow::rowHeight + spacing));
    const int key = event.key();
    if (key == Qt::Key_Backspace || (key == Qt::Key_Up && event.modifiers() == Qt::AltModifier)) {
        m_model.up();
        return true;
    }
    if (event.modifiers() & ~Qt::KeypadModifier)
        return false;
    std::optional<int> to;
    if (key == Qt::Key_Down)
        to = from ? *from + 1 : 0;
    else if (key == Qt::Key_Up)
        to = from ? *from - 1 : last;
    else if (key == Qt::Key_PageDown)
        to = from.value_or(0) + page;
    else if (key == Qt::Key_PageUp)
        to = from.value_or(0) - page;
    else if (key == Qt::Key_Home)
        to = 0;
    else if (key == Qt::Key_End)
        to = last;
    if (!to)
        return false;
    if (last >= 0)
        select(std::clamp(*to, 0, last));
    return true;
}

void RankingView::keyPressEvent(QKeyEvent *event)
{
    if (!navigate(*event, std::nullopt))
        QScrollArea::keyPressEvent(event);
}

bool RankingView::eventFilter(QObject *watched, QEvent *event)
{
    auto *row = qobject_cast<RankRow *>(watched);
    if (row && event->type() == QEvent::FocusIn)
        ensureWidgetVisible(row, 0, padding);
    if (row && event->type() == QEvent::KeyPress &&
        navigate(*static_cast<QKeyEvent *>(event), row->rank() - 1))
        return true;
    return QScrollArea::eventFilter(watched, event);
}
