#pragma once

#include "magic/Spell.h"

#include <QAbstractButton>

class Magic;

// One button of the spell bar: the spell's emoji, its cost in dots and its number key; faded
// while the pool cannot pay for it. Still clickable then: casting says what is missing.
class SpellButton : public QAbstractButton
{
    Q_OBJECT

public:
    static constexpr int side = 40;
    static constexpr double unaffordableOpacity = 0.4;

    SpellButton(Spell spell, const Magic &magic, QWidget *parent = nullptr);

    [[nodiscard]] Spell spell() const { return m_spell; }
    [[nodiscard]] double contentOpacity() const;
    [[nodiscard]] QSize sizeHint() const override { return {side, side}; }
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

    [[nodiscard]] static QString toolTipFor(Spell spell);
    [[nodiscard]] static QString accessibleNameFor(Spell spell);

protected:
    void paintEvent(QPaintEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;

private:
    Spell m_spell;
    const Magic &m_magic;
    bool m_hovered = false;
};
