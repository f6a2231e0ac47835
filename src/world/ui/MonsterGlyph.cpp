#include "world/ui/MonsterGlyph.h"

#include "world/ui/MonsterArt.h"
#include "world/ui/Unspoken.h"

#include <QPainter>

MonsterGlyph::MonsterGlyph(Tier tier, int size, QWidget *parent)
    : QWidget(parent), m_tier(tier), m_size(std::max(size, 1))
{
    Unspoken::mark(this);
    setAttribute(Qt::WA_TranslucentBackground);
    setFocusPolicy(Qt::NoFocus);
    setFixedSize(m_size, m_size);
}

void MonsterGlyph::setTier(Tier tier)
{
    if (tier == m_tier)
        return;
    m_tier = tier;
    update();
}

void MonsterGlyph::setGlyphSize(int size)
{
    size = std::max(size, 1);
    if (size == m_size)
        return;
    m_size = size;
    setFixedSize(m_size, m_size);
    updateGeometry();
    update();
}

void MonsterGlyph::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    MonsterArt::draw(painter, m_tier, QRectF(0, 0, m_size, m_size));
}
