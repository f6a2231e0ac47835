#include "world/WorldLayout.h"

#include "game/Djb2.h"
#include "world/RegionBuilder.h"
#include "world/Rivers.h"
#include "world/SplitMix64.h"
#include "world/Squarify.h"

#include <QByteArray>
#include <QThreadPool>
#include <QtConcurrent/QtConcurrentRun>
#include <algorithm>
#include <atomic>
#include <bit>
#include <functional>
#include <utility>

namespace {

// FNV-1a over the inputs that change the drawing; only equality within one run matters.
class KeyHash
{
public:
    void add(const void *data, std::size_t size)
    {
        const auto *bytes = static_cast<const unsigned char *>(data);
        for (std::size_t i = 0; i < size; ++i) {
            m_h ^= bytes[i];
            m_h *= 0x100000001B3ULL;
        }
    }
    void add(double v)
    {
        const double normal = v == 0 ? 0.0 : v; // -0 and 0 draw alike
        add(&normal, sizeof normal);
    }
    void add(std::int64_t v) { add(&v, sizeof v); }
    void add(bool v) { add(static_cast<std::int64_t>(v)); }
    void add(const std::string &s)
    {
        add(static_cast<std::int64_t>(s.size()));
        add(s.data(), s.size());
    }
    void add(const QString &s)
    {
        add(static_cast<std::int64_t>(s.size()));
        add(s.constData(), static_cast<std::size_t>(s.size()) * sizeof(QChar));
    }
    [[nodiscard]] std::int64_t value() const { return std::bit_cast<std::int64_t>(m_h); }

private:
    std::uint64_t m_h = 0xCBF29CE484222325ULL;
};

// Runs job(0) … job(count − 1), each once, on pool threads and on the thread that calls
// finish(), which returns when all are done. Jobs are taken in index order.
class SharedJobs
{
public:
    SharedJobs(std::size_t count, std::function<void(std::size_t)> job)
        : m_count(count), m_job(std::move(job))
    {
        // One core is left for the caller.
        const int helpers = std::max(QThreadPool::globalInstance()->maxThreadCount() - 1, 1);
        for (int h = 0; h < helpers; ++h)
            m_helpers.push_back(QtConcurrent::run([this] { work(); }));
    }
    SharedJobs(const SharedJobs &) = delete;
    SharedJobs &operator=(const SharedJobs &) = delete;
    ~SharedJobs()
    {
        m_next = m_count;
        wait();
    }

    void finish()
    {
        work();
        wait();
    }

private:
    void work()
    {
        for (std::size_t i = m_next++; i < m_count; i = m_next++)
            m_job(i);
    }
    void wait()
    {
        for (QFuture<void> &h : m_helpers)
            h.waitForFinished();
    }

    std::size_t m_count;
    std::function<void(std::size_t)> m_job;
    std::atomic<std::size_t> m_next = 0;
    std::vector<QFuture<void>> m_helpers;
};

constexpr double waveRowStep = 46;
constexpr double waveColumnStep = 64;
constexpr double waveClearance = 22;

std::vector<QPointF> makeWaves(QSizeF size, const QRectF &land, SplitMix64 &random)
{
    std::vector<QPointF> waves;
    const double w = size.width();
    const double h = size.height();
    if (h <= 14)
        return waves;
    const QRectF clear =
        land.adjusted(-waveClearance, -waveClearance, waveClearance, waveClearance);
    // Half-open, like the layout's other rectangles: the far edges are outside.
    const auto inClear = [&clear](QPointF p) {
        return p.x() >= clear.left() && p.x() < clear.right() && p.y() >= clear.top() &&
               p.y() < clear.bottom();
    };
    for (double y = 14; y < h; y += waveRowStep) {
        const double x0 = (static_cast<int>(y) / 50) % 2 == 1 ? 48 : 18;
        for (double x = x0; x < w; x += waveColumnStep) {
            const double px = x + 20 * random.unit() - 10;
            const double py = y + 12 * random.unit() - 6;
            if (!inClear({px, py}))
                waves.emplace_back(px, py);
        }
    }
    return waves;
}

// The island is shaped at zoom 1 and a zoomed world is that island magnified. Its sea margin
// holds the coast's bulges (eased to at most `reach`) and, above them, the realm title.
struct Shore
{
    QRectF land;
    double amplitude = 0; // at zoom 1
    double reach = 0;     // at zoom 1
};

Shore shoreOf(QSizeF size, double zoom)
{
    const double w = size.width();
    const double h = size.height();
    const double m = std::min(w, h) / zoom;
    const double margin1 = std::max(0.09 * m, 46.0);
    const double margin = margin1 * zoom;
    // A world narrower than two margins keeps an empty land in its middle rather than a
    // negative one.
    const double lw = std::max(w - 2 * margin, 0.0);
    const double lh = std::max(h - 2 * margin, 0.0);
    return {QRectF(std::min(margin, w / 2), std::min(margin, h / 2), lw, lh),
            std::max(0.045 * m, 16.0), margin1 / 2 - 12};
}

} // namespace

WorldLayout WorldLayout::build(const std::vector<Tile> &tiles, const std::string &key, QSizeF size,
                               const Explored &explored, const Bounties &bounties,
                               const Title &title, double zoom, const Growth &growth)
{
    WorldLayout layout;
    layout.size = size;
    const Shore shore = shoreOf(size, std::max(zoom, 1.0));
    layout.land = shore.land;

    const std::uint64_t seed = djb2(key);
    // One mixing step first: sibling folders ("t1", "t2") have nearly equal hashes and would
    // otherwise get nearly the same coast.
    const double phase = static_cast<double>(SplitMix64(seed).next() % 10000) / 97.0;
    layout.warp = Warp(phase, shore.amplitude, layout.land, std::max(zoom, 1.0), shore.reach);
    SplitMix64 random(seed);

    std::vector<double> values;
    values.reserve(tiles.size());
    for (const Tile &t : tiles)
        values.push_back(t.value);
    const std::vector<QRectF> rects = squarify(values, layout.land);

    // The outlines are most of the work and need neither the generator nor each other: pool
    // threads start on them at once, and this thread joins in once the regions are built.
    std::vector<QPainterPath> shapes(rects.size());
    const Warp &warp = layout.warp;
    SharedJobs outlines(rects.size() + 1, [&](std::size_t i) {
        // The coast goes first: it is the longest outline.
        if (i == 0)
            layout.coast = warp.warpedOutline(layout.land);
        else
            shapes[i - 1] = warp.warpedOutline(rects[i - 1]);
    });

    RegionBuilder builder(layout.warp, random, {explored, bounties, title, growth});
    layout.regions.reserve(tiles.size());
    for (std::size_t i = 0; i < tiles.size(); ++i)
        layout.regions.push_back(builder.build(tiles[i], rects[i]));
    layout.rivers = Rivers::trace(layout.regions, layout.land, layout.warp);
    layout.waves = makeWaves(size, layout.land, random);

    KeyHash hash;
    hash.add(size.width());
    hash.add(size.height());
    hash.add(zoom);
    hash.add(key);
    for (const Region &r : layout.regions) {
        hash.add(r.tile.id);
        hash.add(r.tile.value);
        hash.add(r.explored);
        hash.add(r.bounties);
        hash.add(r.title);
        hash.add(r.subtitle);
    }
    layout.key = hash.value();

    outlines.finish();
    for (std::size_t i = 0; i < shapes.size(); ++i)
        layout.regions[i].shape = std::move(shapes[i]);
    return layout;
}

std::optional<int> WorldLayout::regionIndex(QPointF point, std::optional<int> hint) const
{
    const auto count = static_cast<int>(regions.size());
    if (hint && *hint >= 0 && *hint < count &&
        regions[static_cast<std::size_t>(*hint)].shape.contains(point))
        return hint;
    for (int i = 0; i < count; ++i) {
        if (regions[static_cast<std::size_t>(i)].shape.contains(point))
            return i;
    }
    return std::nullopt;
}
