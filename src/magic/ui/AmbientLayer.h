#pragma once

#include "magic/AmbientGeometry.h"

#include <QElapsedTimer>
#include <QHash>
#include <QImage>
#include <QTimer>
#include <QWidget>
#include <array>

// Drifting cloud shadows and twinkling motes over the map, redrawn at most 30 times a second.
// With reduce motion it draws nothing. Mouse events pass through to the map below.
class AmbientLayer : public QWidget
{
    Q_OBJECT

public:
    explicit AmbientLayer(bool reduceMotion, QWidget *parent = nullptr);

    [[nodiscard]] bool reduceMotion() const { return m_reduceMotion; }
    void setReduceMotion(bool on);
    [[nodiscard]] bool animating() const { return m_frames.isActive(); }

    // One frame at `t` seconds over a layer of `size`.
    void paintFrame(QPainter &painter, QSizeF size, double t, bool dark);

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void updateTimer();
    [[nodiscard]] const QImage &sprite(QSizeF ellipse, double blur, QColor colour, double scale);

    bool m_reduceMotion;
    const std::array<AmbientGeometry::Mote, AmbientGeometry::moteCount> m_motes;
    QTimer m_frames;
    QElapsedTimer m_clock;
    QHash<QString, QImage> m_sprites;
};
