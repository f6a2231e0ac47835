#pragma once

#include <QRectF>
#include <QWidget>

class Magic;

// Five orbs that fill from the bottom with the mana in the pool; a part-filled orb shows the
// point that is refilling.
class ManaOrbs : public QWidget
{
    Q_OBJECT

public:
    static constexpr int orbCount = 5;
    static constexpr double orbSide = 12;
    static constexpr double gap = 3;
    static constexpr double emptyOpacity = 0.15;

    explicit ManaOrbs(const Magic &magic, QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

    // The filled fraction of orb i's height.
    [[nodiscard]] static double fill(double mana, int i);
    [[nodiscard]] static QRectF orbRect(int i);
    [[nodiscard]] static QString toolTipFor(double mana);
    [[nodiscard]] static QString accessibleNameFor(double mana);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    void describe();

    const Magic &m_magic;
};
