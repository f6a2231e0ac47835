#pragma once

#include "world/WorldLayout.h"
#include "world/ui/Stamps.h"
#include "world/ui/WorldPalette.h"

#include <QImage>
#include <QPainterPath>
#include <QString>
#include <memory>
#include <vector>

class QPainter;

// The island of one layout: sea, waves, coast, territories, rivers, fog, borders, labels, bounty
// markers, the realm's title and the compass, painted for any part of the world. Long lines are
// cut up front so a small part only strokes what crosses it. Not for sharing between threads:
// painting fills caches in its paths and stamps.
class IslandDrawing
{
public:
    IslandDrawing() = default;
    // The layout is shared, never changed: a worker may read it while the window paints.
    IslandDrawing(std::shared_ptr<const WorldLayout> layout, QString title);

    // A new layout and title; the cut lines are kept when the ground is the same.
    void update(std::shared_ptr<const WorldLayout> layout, QString title);

    [[nodiscard]] const WorldLayout &layout() const { return *m_layout; }
    [[nodiscard]] const std::shared_ptr<const WorldLayout> &sharedLayout() const
    {
        return m_layout;
    }
    [[nodiscard]] const QString &title() const { return m_title; }

    // Paints the island within `area` onto a painter in world coordinates.
    void paint(QPainter &painter, const WorldPalette &colors, const QRectF &area);
    // The land in its colours and nothing else: stands in, for a moment, for a part not drawn yet.
    void sketch(QPainter &painter, const WorldPalette &colors, const QRectF &area) const;
    // `area` painted into an opaque image of its own.
    [[nodiscard]] QImage image(const QRectF &area, const WorldPalette &colors, qreal dpr);

    // Whether two layouts lay out the same ground, differing at most in what is drawn on it.
    [[nodiscard]] static bool sameGround(const WorldLayout &a, const WorldLayout &b);
    // Everything drawn for a territory: its land, label, bounty and growth marks.
    [[nodiscard]] QRectF regionArea(std::size_t index) const;
    [[nodiscard]] QRectF realmTitleBox() const;

    // Where a territory's label sits: below its monster, or on its capital without one.
    [[nodiscard]] static QPointF labelAnchor(const Region &region);
    // The centre of a territory's bounty marker.
    [[nodiscard]] static QPointF bountyAnchor(const Region &region);

private:
    // A short stretch of a long line. Long antialiased strokes are slow to fill, and a tile
    // only needs the stretches that cross it.
    struct Stretch
    {
        QPainterPath path;
        QRectF bounds;
    };
    struct Outline
    {
        QRectF bounds;
        std::vector<Stretch> stretches;
        QPainterPath rough; // for sketches
    };

    void prepare();
    void strokeStretches(QPainter &painter, const std::vector<Stretch> &stretches, const QPen &pen,
                         const QRectF &area) const;
    void paintTerritories(QPainter &painter, const WorldPalette &colors, const QRectF &area);
    void paintLabels(QPainter &painter, const WorldPalette &colors, const QRectF &area);
    void paintBounties(QPainter &painter, const QRectF &area);
    void paintRealmTitle(QPainter &painter, const WorldPalette &colors, const QRectF &area);

    std::shared_ptr<const WorldLayout> m_layout = std::make_shared<const WorldLayout>();
    QString m_title;
    std::vector<Stretch> m_coast;
    std::vector<std::vector<Stretch>> m_rivers;
    std::vector<Outline> m_outlines; // one per region
    Stamps m_stamps;
};
