#pragma once

#include <QWidget>

// A floating card on a translucent, material-like background with a hairline outline, for
// things laid over the map or the sea.
class MaterialCard : public QWidget
{
    Q_OBJECT

public:
    explicit MaterialCard(double radius, QWidget *parent = nullptr);

    // The card's fill and outline for a palette; shared with cards painted by hand.
    [[nodiscard]] static QColor fill(const QPalette &palette);
    [[nodiscard]] static QColor outline(const QPalette &palette);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    double m_radius;
};
