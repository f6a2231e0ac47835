#pragma once

#include "game/Tier.h"

#include <QWidget>

// One monster drawn in a square of `size` × `size`; transparent around the drawing and hidden
// from assistive technology (the row or button it decorates carries the words).
class MonsterGlyph : public QWidget
{
    Q_OBJECT

public:
    explicit MonsterGlyph(Tier tier, int size, QWidget *parent = nullptr);

    [[nodiscard]] Tier tier() const { return m_tier; }
    void setTier(Tier tier);
    [[nodiscard]] int glyphSize() const { return m_size; }
    void setGlyphSize(int size);

    [[nodiscard]] QSize sizeHint() const override { return {m_size, m_size}; }

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    Tier m_tier;
    int m_size;
};
