#include "world/RegionBuilder.h"

#include "game/Djb2.h"
#include "platform/DisplayName.h"
#include "scan/Fmt.h"
#include "snapshot/GrowthRule.h"

#include <QStringList>
#include <algorithm>
#include <cmath>

namespace {

constexpr int maxScenery = 18;
constexpr int sceneryArea = 2600;

// Scenery would hide the monster and its label, so none is kept in this box around the capital.
bool inKeepOut(QPointF p, QPointF capital)
{
    return std::abs(p.x() - capital.x()) <= 84 && p.y() >= capital.y() - 40 &&
           p.y() <= capital.y() + 70;
}

} // namespace

QPointF RegionBuilder::randomPoint(const QRectF &inner)
{
    // An empty axis must not draw, or every later territory would change.
    const double x = inner.left() < inner.right() ? inner.left() + inner.width() * m_random.unit()
                                                  : inner.left();
    const double y =
        inner.top() < inner.bottom() ? inner.top() + inner.height() * m_random.unit() : inner.top();
    return m_warp(x, y);
}

Region RegionBuilder::build(const Tile &tile, const QRectF &rect)
{
    Region r;
    r.tile = tile;
    r.rect = rect;
    const NodePtr *folder = tile.folder();
    if (folder && *folder) {
        r.tier = Tiers::ofBytes((*folder)->size());
        r.path = (*folder)->path();
    }

    const double rw = rect.width();
    const double rh = rect.height();
    const double insetX = std::min(0.25 * rw, 14.0);
    const double insetY = std::min(0.25 * rh, 14.0);
    const QRectF inner = rect.adjusted(insetX, insetY, -insetX, -insetY);
    r.capital = m_warp(rect.center());

    const int count = static_cast<int>(rw * rh / sceneryArea);
    const int attempts = std::min(count, maxScenery);
    for (int a = 0; a < attempts; ++a) {
        const QPointF p = randomPoint(inner);
        if (!inKeepOut(p, r.capital))
            r.scenery.push_back(p);
    }
    const int clouds = count < 4 ? 1 : std::min(attempts / 4, 3);
    for (int c = 0; c < clouds; ++c)
        r.clouds.push_back(randomPoint(inner));

    r.title = m_sources.title(tile, r.tier);
    const QString name = DisplayName::of(tile.name);
    QString sizeText = folder && *folder ? Fmt::bytes((*folder)->size()) : QString();
    if (folder && *folder && m_sources.growth) {
        const std::optional<std::int64_t> grown = m_sources.growth(**folder);
        if (grown && GrowthRule::mark((*folder)->size(), *grown)) {
            r.grown = grown;
            sizeText += QStringLiteral(" · ") + Fmt::growth(*grown);
        }
    }
    if (r.title == name) {
        r.subtitle = sizeText;
    } else {
        QStringList parts{name, sizeText};
        parts.removeAll(QString());
        r.subtitle = parts.join(QStringLiteral(" · "));
    }

    // `shape` uses no random draws; WorldLayout::build warps all outlines in parallel.
    if (r.path) {
        r.explored = m_sources.explored(*r.path);
        r.bounties = m_sources.bounties(*r.path);
    }
    r.shade = (static_cast<int>(djb2(tile.name) % 7) - 3) * 0.018;
    return r;
}
