#pragma once

#include "game/Tier.h"
#include "session/Tile.h"
#include "ui/screens/SpringAnimation.h"

#include <QPointer>
#include <QVariantAnimation>
#include <QWidget>
#include <optional>

class Game;
class Meter;
class Model;
class QGraphicsOpacityEffect;
class QPainter;

// One ranked tile: place, monster, name, a bar proportional to the value, and the value. Hovering
// growls, clicking a folder enters it, the context menu (menu key, Shift+F10) offers the tile's
// actions and Delete asks to slay it.
class RankRow : public QWidget
{
    Q_OBJECT

public:
    static constexpr int rowHeight = 34;
    static constexpr int padX = 6;
    static constexpr int gap = 10;
    static constexpr int placeWidth = 34;
    static constexpr int iconWidth = 26;
    static constexpr int nameWidth = 220;
    static constexpr int valueWidth = 110;
    static constexpr int chipWidth = 84;
    static constexpr int nameX = padX + placeWidth + gap + iconWidth + gap;
    static constexpr int meterHeight = 14;
    static constexpr double slide = 40;

    RankRow(Model &model, Game &game, int rank, Tile tile, double fraction,
            QWidget *parent = nullptr);

    [[nodiscard]] int rank() const { return m_rank; }
    [[nodiscard]] const Tile &tile() const { return m_tile; }
    [[nodiscard]] double fraction() const { return m_fraction; }
    [[nodiscard]] bool grown() const { return m_grown; }
    [[nodiscard]] bool hot() const { return m_hot; }
    [[nodiscard]] bool dying() const { return m_dying; }
    [[nodiscard]] double iconScale() const { return m_iconScale; }
    [[nodiscard]] Meter *meter() const { return m_meter; }
    // The growth chip's text ("+2.1 GB", "−300 MB"); empty where the change is too small to show.
    [[nodiscard]] QString growthText() const;
    // The monster of the tile under the active metric; folders and big files have one (a file's
    // is always by its bytes).
    [[nodiscard]] std::optional<Tier> tier() const;
    [[nodiscard]] static QString placeText(int rank);
    [[nodiscard]] static int growDelayMs(int rank);

    // The same tile in a rebuilt list keeps its row and only moves or rescales.
    void setEntry(int rank, Tile tile, double fraction);
    // Where the list puts the row; a dying row slides away from it.
    void setBaseGeometry(const QRect &geometry);
    void setReduceMotion(bool on);
    // Runs the tile's click: enter a folder that has sub-folders, else refuse.
    void activate();
    // Asks for the confirmation of slaying the tile, or refuses.
    void requestSlay();
    void openMenu(const QPoint &globalPos);

    [[nodiscard]] QSize sizeHint() const override { return {600, rowHeight}; }

protected:
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void showEvent(QShowEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    void growIn();
    void refreshDying();
    void retargetIcon();
    void applyDeath(double progress);
    void layoutMeter();
    [[nodiscard]] QString valueText() const;
    // Beside the value, never over it: the room taken by the chips while growth is known.
    [[nodiscard]] int chipRoom() const;
    void paintChip(QPainter &p);
    [[nodiscard]] QPointF iconCentre() const;

    Model &m_model;
    Game &m_game;
    int m_rank;
    Tile m_tile;
    double m_fraction;
    std::optional<std::int64_t> m_growth;
    bool m_grown = false;
    bool m_hot = false;
    bool m_dying = false;
    bool m_reduceMotion = false;
    bool m_focusRing = false;
    double m_iconScale = 1.0;
    double m_death = 0;
    QRect m_base;
    Meter *m_meter;
    SpringAnimation m_iconAnimation;
    QVariantAnimation m_deathAnimation;
    QPointer<QGraphicsOpacityEffect> m_fade;
};
