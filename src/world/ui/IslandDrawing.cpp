#include "world/ui/IslandDrawing.h"

#include "platform/TabularDigits.h"
#include "world/ui/Glow.h"
#include "world/ui/GrowthMark.h"
#include "world/ui/MapFonts.h"
#include "world/ui/Terrain.h"

#include <QPainter>
#include <QPolygonF>
#include <algorithm>
#include <cmath>
#include <optional>

namespace {

constexpr int stretchSegments = 24;
constexpr double labelHalfWidth = 300; // labels are centred and never clipped to their land

QColor withAlpha(QColor c, double a)
{
    c.setAlphaF(float(a * c.alphaF()));
    return c;
}

// `top` laid over opaque `base` at `opacity`.
QColor over(const QColor &base, const QColor &top, double opacity)
{
    const auto mix = [opacity](float b, float t) { return float(b + (t - b) * opacity); };
    return QColor::fromRgbF(mix(base.redF(), top.redF()), mix(base.greenF(), top.greenF()),
                            mix(base.blueF(), top.blueF()));
}

QPen roundPen(const QColor &color, double width)
{
    return QPen(color, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

bool near(const QRectF &box, const QRectF &area, double margin)
{
    return box.adjusted(-margin, -margin, margin, margin).intersects(area);
}

bool near(QPointF p, const QRectF &area, double margin)
{
    return p.x() >= area.left() - margin && p.x() <= area.right() + margin &&
           p.y() >= area.top() - margin && p.y() <= area.bottom() + margin;
}

template<typename Out> void cut(const QPainterPath &path, Out &out)
{
    for (QPolygonF poly : path.toSubpathPolygons()) {
        if (poly.size() < 2)
            continue;
        for (qsizetype i = 0; i + 1 < poly.size(); i += stretchSegments) {
            const qsizetype end = std::min(i + stretchSegments, poly.size() - 1);
            QPainterPath piece(poly[i]);
            double left = poly[i].x(), right = left, top = poly[i].y(), bottom = top;
            for (qsizetype j = i + 1; j <= end; ++j) {
                piece.lineTo(poly[j]);
                left = std::min(left, poly[j].x());
                right = std::max(right, poly[j].x());
                top = std::min(top, poly[j].y());
                bottom = std::max(bottom, poly[j].y());
            }
            // Built by hand: uniting with a point (a null rectangle) would leave it out.
            out.push_back({piece, QRectF(QPointF(left, top), QPointF(right, bottom))});
        }
    }
}

// The shade is a veil of black or white over opaque land: one fill of the blend.
QColor landColor(const WorldPalette &colors, const Region &r)
{
    const QColor land = colors.land(r.tier);
    return r.shade < 0   ? over(land, Qt::black, -r.shade)
           : r.shade > 0 ? over(land, Qt::white, r.shade)
                         : land;
}

QImage blank(const QRectF &area, const WorldPalette &colors, qreal dpr)
{
    QImage out(std::max(1, int(std::ceil(area.width() * dpr))),
               std::max(1, int(std::ceil(area.height() * dpr))), QImage::Format_RGB32);
    out.setDevicePixelRatio(dpr);
    out.fill(colors.sea);
    return out;
}

} // namespace

IslandDrawing::IslandDrawing(std::shared_ptr<const WorldLayout> layout, QString title)
    : m_layout(std::move(layout)), m_title(std::move(title))
{
    prepare();
}

void IslandDrawing::update(std::shared_ptr<const WorldLayout> layout, QString title)
{
    const bool same = sameGround(*m_layout, *layout) && m_outlines.size() == layout->regions.size();
    m_layout = std::move(layout);
    m_title = std::move(title);
    if (!same)
        prepare();
}

QImage IslandDrawing::image(const QRectF &area, const WorldPalette &colors, qreal dpr)
{
    QImage out = blank(area, colors, dpr);
    QPainter painter(&out);
    painter.translate(-area.topLeft());
    painter.setClipRect(area);
    paint(painter, colors, area);
    return out;
}

void IslandDrawing::sketch(QPainter &painter, const WorldPalette &colors, const QRectF &area) const
{
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(area & QRectF(QPointF(0, 0), m_layout->size), colors.sea);
    for (std::size_t i = 0; i < m_layout->regions.size(); ++i) {
        const Region &r = m_layout->regions[i];
        if (r.shape.isEmpty() || !near(m_outlines[i].bounds, area, 2))
            continue;
        const QColor land = landColor(colors, r);
        painter.fillPath(m_outlines[i].rough,
                         r.explored ? land : over(land, colors.fog, colors.fog.alphaF()));
    }
    painter.restore();
}

bool IslandDrawing::sameGround(const WorldLayout &a, const WorldLayout &b)
{
    if (a.size != b.size || a.land != b.land || a.warp.phase() != b.warp.phase() ||
        a.warp.zoom() != b.warp.zoom() || a.regions.size() != b.regions.size() ||
        a.waves != b.waves)
        return false;
    for (std::size_t i = 0; i < a.regions.size(); ++i) {
        const Region &x = a.regions[i];
        const Region &y = b.regions[i];
        if (x.rect != y.rect || x.capital != y.capital || x.tier != y.tier || x.shade != y.shade ||
            x.scenery != y.scenery || x.clouds != y.clouds)
            return false;
    }
    return true;
}

QRectF IslandDrawing::regionArea(std::size_t index) const
{
    const Region &r = m_layout->regions[index];
    QRectF area = m_outlines[index].bounds.adjusted(-24, -24, 24, 24);
    const QPointF label = labelAnchor(r);
    area |= QRectF(label.x() - labelHalfWidth, label.y() - 24, 2 * labelHalfWidth, 64);
    const QPointF bounty = bountyAnchor(r);
    area |= QRectF(bounty.x() - 40, bounty.y() - 40, 80, 80);
    const QPointF growth = GrowthMark::anchor(r);
    area |= QRectF(growth.x() - 20, growth.y() - 20, 40, 40);
    return area;
}

QRectF IslandDrawing::realmTitleBox() const
{
    const QRectF &land = m_layout->land;
    const double y = std::max(land.top() * 0.5, 13.0);
    return QRectF(land.left() + 4, y - 20, 1000, 40);
}

void IslandDrawing::prepare()
{
    m_coast.clear();
    cut(m_layout->coast, m_coast);
    m_rivers.clear();
    for (const QPainterPath &river : m_layout->rivers) {
        m_rivers.emplace_back();
        cut(river, m_rivers.back());
    }
    m_outlines.clear();
    for (const Region &r : m_layout->regions) {
        Outline o{r.shape.boundingRect(), {}, {}};
        cut(r.shape, o.stretches);
        // The stretches' ends alone: a few points a side, quick to fill.
        for (const Stretch &s : o.stretches) {
            const QPointF start = s.path.elementAt(0);
            if (o.rough.isEmpty() || o.rough.currentPosition() != start)
                o.rough.moveTo(start);
            o.rough.lineTo(s.path.elementAt(s.path.elementCount() - 1));
        }
        o.rough.setFillRule(r.shape.fillRule());
        m_outlines.push_back(std::move(o));
    }
}

QPointF IslandDrawing::labelAnchor(const Region &region)
{
    const double d = region.hasMonster() ? 0.62 * region.monsterSize() + 10 : 0;
    return region.capital + QPointF(0, d);
}

QPointF IslandDrawing::bountyAnchor(const Region &region)
{
    // Up and to the right, so the marker keeps clear of both the monster and the label below it.
    if (region.hasMonster()) {
        const double size = region.monsterSize();
        return region.capital + QPointF(0.75 * size, -0.55 * size);
    }
    return region.capital + QPointF(14, -14);
}

void IslandDrawing::strokeStretches(QPainter &painter, const std::vector<Stretch> &stretches,
                                    const QPen &pen, const QRectF &area) const
{
    const double margin = pen.widthF() / 2 + 2;
    for (const Stretch &s : stretches) {
        if (near(s.bounds, area, margin))
            painter.strokePath(s.path, pen);
    }
}

void IslandDrawing::paint(QPainter &painter, const WorldPalette &colors, const QRectF &area)
{
    const WorldLayout &l = *m_layout;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);

    painter.fillRect(area & QRectF(QPointF(0, 0), l.size), colors.sea);
    for (const QPointF &w : l.waves) {
        if (near(w, area, 14))
            m_stamps.drawEmoji(painter, QStringLiteral("〰"), w, 12, colors.waves);
    }
    strokeStretches(painter, m_coast, roundPen(colors.coast, 18), area);

    paintTerritories(painter, colors, area);

    for (const auto &river : m_rivers) {
        strokeStretches(painter, river, roundPen(colors.coast, 7), area);
        strokeStretches(painter, river, roundPen(colors.river, 3.5), area);
    }

    for (std::size_t i = 0; i < l.regions.size(); ++i) {
        const Region &r = l.regions[i];
        if (r.explored || !near(m_outlines[i].bounds, area, 20))
            continue;
        painter.fillPath(r.shape, colors.fog);
        for (const QPointF &c : r.clouds) {
            if (near(c, area, 20))
                m_stamps.drawEmoji(painter, QStringLiteral("☁️"), c, 18);
        }
    }

    QPen dashed(colors.border, 1, Qt::CustomDashLine, Qt::FlatCap, Qt::RoundJoin);
    dashed.setDashPattern({5, 3});
    for (std::size_t i = 0; i < l.regions.size(); ++i) {
        if (near(m_outlines[i].bounds, area, 2))
            painter.strokePath(l.regions[i].shape, dashed);
    }
    strokeStretches(painter, m_coast, roundPen(colors.border, 1.5), area);

    paintLabels(painter, colors, area);
    paintBounties(painter, area);
    GrowthMark::paint(painter, m_stamps, l.regions, area);
    paintRealmTitle(painter, colors, area);
    const QPointF compass(26, l.size.height() - 26);
    if (near(compass, area, 30))
        m_stamps.drawEmoji(painter, QStringLiteral("🧭"), compass, 26);
    painter.restore();
}

void IslandDrawing::paintTerritories(QPainter &painter, const WorldPalette &colors,
                                     const QRectF &area)
{
    const QPen rim(QColor(0, 0, 0, 31), 8, Qt::SolidLine, Qt::FlatCap, Qt::BevelJoin);
    for (std::size_t i = 0; i < m_layout->regions.size(); ++i) {
        const Region &r = m_layout->regions[i];
        const Outline &outline = m_outlines[i];
        if (r.shape.isEmpty() || !near(outline.bounds, area, 2))
            continue;
        painter.fillPath(r.shape, landColor(colors, r));
        painter.save();
        painter.setClipPath(r.shape, Qt::IntersectClip);
        strokeStretches(painter, outline.stretches, rim, area);
        painter.restore();

        if (r.explored && !r.scenery.empty()) {
            const QString sign = Terrain::sign(r.tier);
            painter.setOpacity(0.75);
            for (const QPointF &s : r.scenery) {
                if (near(s, area, 14))
                    m_stamps.drawEmoji(painter, sign, s, 13);
            }
            painter.setOpacity(1);
        }
    }
}

void IslandDrawing::paintLabels(QPainter &painter, const WorldPalette &colors, const QRectF &area)
{
    const QFont titleFont = MapFonts::serif(13, QFont::DemiBold);
    const QFont subtitleFont = MapFonts::system(10);
    const QFontMetricsF titleMetrics(titleFont);
    const QFontMetricsF subtitleMetrics(subtitleFont);
    for (const Region &r : m_layout->regions) {
        if (!r.hasLabel())
            continue;
        const QPointF at = labelAnchor(r);
        const QRectF titleBox(at.x() - labelHalfWidth, at.y() - 20, 2 * labelHalfWidth, 40);
        if (!near(titleBox, area, 0))
            continue;
        // Long names end in "…" within their own territory rather than run over the next one.
        const double width = std::min(r.rect.width() - 8, 2 * labelHalfWidth);
        const WorldPalette::Label label = colors.label(r.tier, r.explored);
        Glow::drawText(painter, titleBox, Qt::AlignCenter,
                       titleMetrics.elidedText(r.title, Qt::ElideRight, width), titleFont,
                       label.text, label.halo, 2);
        if (r.rect.height() > 76 && !r.subtitle.isEmpty()) {
            painter.save();
            painter.setOpacity(0.9);
            painter.setFont(subtitleFont);
            painter.setPen(label.text);
            TabularDigits::draw(painter, titleBox.translated(0, 15), Qt::AlignCenter,
                                subtitleMetrics.elidedText(r.subtitle, Qt::ElideRight, width));
            painter.restore();
        }
    }
}

void IslandDrawing::paintBounties(QPainter &painter, const QRectF &area)
{
    const QColor gold = QColor::fromRgbF(1.0f, 0.8f, 0.2f, 0.9f);
    const QString bag = QStringLiteral("💰");
    std::optional<QImage> glow;
    const QFont badgeFont = MapFonts::system(9, QFont::Black);
    for (const Region &r : m_layout->regions) {
        if (r.bounties < 1 || r.shortSide() <= 30)
            continue;
        const QPointF at = bountyAnchor(r);
        if (!near(at, area, 40))
            continue;
        if (!glow)
            glow = Glow::shadow(m_stamps.emoji(bag, 17, Stamps::scaleOf(painter)), gold, 5);
        const double w = glow->width() / glow->devicePixelRatio();
        const double h = glow->height() / glow->devicePixelRatio();
        painter.drawImage(QRectF(at.x() - w / 2, at.y() - h / 2, w, h), *glow);
        m_stamps.drawEmoji(painter, bag, at, 17);
        if (r.bounties > 1) {
            const QPointF badge = at + QPointF(12, 8);
            const QRectF box(badge.x() - 8, badge.y() - 7, 16, 14);
            QPainterPath pill;
            pill.addRoundedRect(box, 7, 7);
            painter.fillPath(pill, QColor::fromRgbF(0.85f, 0.25f, 0.2f));
            painter.setFont(badgeFont);
            painter.setPen(Qt::white);
            painter.drawText(box.adjusted(-8, 0, 8, 0), Qt::AlignCenter,
                             QString::number(r.bounties));
        }
    }
}

void IslandDrawing::paintRealmTitle(QPainter &painter, const WorldPalette &colors,
                                    const QRectF &area)
{
    if (m_title.isEmpty())
        return;
    const QRectF box = realmTitleBox();
    if (!near(box, area, 8))
        return;
    Glow::drawText(painter, box, Qt::AlignLeft | Qt::AlignVCenter, m_title,
                   MapFonts::serif(16, QFont::Bold), colors.ink, withAlpha(colors.labelShadow, 0.7),
                   3);
}
