#pragma once

#include "magic/AmbientGeometry.h"
#include "platform/WindowExposure.h"

#include <QElapsedTimer>
#include <QImage>
#include <QRegion>
#include <QTimer>
#include <QWidget>
#include <array>
#include <utility>
#include <vector>

// Drifting cloud shadows and twinkling motes over the map. Each frame repaints only where the
// shapes were and are (the map below repaints those spots from its cache), motes 10 times a second
// and clouds when they move. With reduce motion it draws nothing. Mouse events pass through.
class AmbientLayer : public QWidget
{
    Q_OBJECT

public:
    explicit AmbientLayer(bool reduceMotion, QWidget *parent = nullptr);

    [[nodiscard]] bool reduceMotion() const { return m_reduceMotion; }
    void setReduceMotion(bool on);
    [[nodiscard]] bool animating() const { return m_frames.isActive(); }
    // Where controls lie over the layer: nothing is drawn there, so a mote drifting by never
    // makes them repaint.
    void setCovered(const QRegion &covered);

    // Called on each frame of something below that repaints anyway (the map while the hero
    // walks): while these come, the layer's own frames wait for the next of them, so the two
    // never paint apart.
    void pace();

    // One frame at `t` seconds over a layer of `size`.
    void paintFrame(QPainter &painter, QSizeF size, double t, bool dark);
    // Only the part of that frame inside `area`.
    void paintFrame(QPainter &painter, QSizeF size, double t, bool dark, const QRegion &area);

protected:
    void paintEvent(QPaintEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void hideEvent(QHideEvent *event) override;

private:
    void updateTimer();
    void nextFrame();
    [[nodiscard]] const QImage &sprite(QSizeF ellipse, double blur, QColor colour, double scale);

    bool m_reduceMotion;
    const std::array<AmbientGeometry::Mote, AmbientGeometry::moteCount> m_motes;
    QTimer m_frames;
    QElapsedTimer m_clock;
    QElapsedTimer m_paced; // since the last pace()
    bool m_due = false;
    double m_frameTime = 0; // what every paint shows, in seconds
    struct SpriteKey
    {
        QSizeF ellipse;
        double blur = 0;
        QRgb colour = 0;
        double scale = 1;
        bool operator==(const SpriteKey &) const = default;
    };
    std::vector<std::pair<SpriteKey, QImage>> m_sprites;
    QRegion m_covered;
    WindowExposure m_exposure;
};
