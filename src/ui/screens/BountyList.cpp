#include "ui/screens/BountyList.h"

#include "ui/screens/BountyRow.h"

#include <algorithm>

BountyList::BountyList(Model &model, Game &game, std::vector<Advice> items, QWidget *parent)
    : QWidget(parent), m_model(model), m_game(game), m_items(std::move(items)),
      m_rows(m_items.size())
{
    if (m_items.empty())
        return;
    m_rowHeight = row(0)->sizeHint().height();
    const int n = count();
    setFixedHeight(n * m_rowHeight + (n - 1) * spacing);
}

QRect BountyList::rowRect(int index) const
{
    return {0, index * (m_rowHeight + spacing), width(), m_rowHeight};
}

BountyRow *BountyList::row(int index)
{
    if (index < 0 || index >= count())
        return nullptr;
    QPointer<BountyRow> &row = m_rows[std::size_t(index)];
    if (!row) {
        row = new BountyRow(m_model, m_game, m_items[std::size_t(index)], this);
        row->setGeometry(rowRect(index));
        row->show();
    }
    return row;
}

int BountyList::createdRows() const
{
    return int(
        std::count_if(m_rows.begin(), m_rows.end(), [](const auto &r) { return !r.isNull(); }));
}

void BountyList::materialize(int top, int bottom)
{
    if (m_items.empty() || bottom < 0 || top > height())
        return;
    const int pitch = m_rowHeight + spacing;
    const int last = std::min(bottom / pitch, count() - 1);
    for (int i = std::max(0, top / pitch); i <= last; ++i)
        (void)row(i);
}

void BountyList::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    for (int i = 0; i < count(); ++i)
        if (m_rows[std::size_t(i)])
            m_rows[std::size_t(i)]->setGeometry(rowRect(i));
}
