#pragma once

#include "magic/Spell.h"

#include <QWidget>
#include <array>

class Magic;
class SpellButton;

// The row of five spell buttons under the map, in spell order. Asks for a cast; the map view
// decides what casting does.
class SpellBar : public QWidget
{
    Q_OBJECT

public:
    explicit SpellBar(const Magic &magic, QWidget *parent = nullptr);

    [[nodiscard]] SpellButton *button(Spell spell) const;

Q_SIGNALS:
    void castRequested(Spell spell);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    std::array<SpellButton *, 5> m_buttons{};
};
