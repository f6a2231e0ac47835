#include "world/Squarify.h"

#include <algorithm>
#include <numeric>

namespace {

// Aspect ratio of the worst item in a row of total `sum` whose largest item is `largest` and
// smallest `smallest`, laid along a side of squared length `side2`.
double worstRatio(double side2, double sum, double largest, double smallest)
{
    return std::max(side2 * largest / (sum * sum), sum * sum / (side2 * smallest));
}

} // namespace

std::vector<QRectF> squarify(const std::vector<double> &values, const QRectF &bounds)
{
    const std::size_t n = values.size();
    std::vector<QRectF> rects(n);
    if (n == 0)
        return rects;
    const double total = std::accumulate(values.begin(), values.end(), 0.0);
    if (total <= 0 || bounds.width() <= 0 || bounds.height() <= 0)
        return rects;

    std::vector<double> areas(n);
    const double scale = bounds.width() * bounds.height() / total;
    std::transform(values.begin(), values.end(), areas.begin(),
                   [scale](double v) { return v * scale; });

    QRectF b = bounds;
    std::size_t i = 0;
    while (i < n) {
        const double side = std::min(b.width(), b.height());
        const double side2 = side * side;
        double sum = areas[i];
        std::size_t end = i + 1;
        if (i + 1 < n) {
            double worst = worstRatio(side2, sum, areas[i], areas[i]);
            for (std::size_t k = i + 1; k < n; ++k) {
                const double candidate = sum + areas[k];
                const double candidateWorst = worstRatio(side2, candidate, areas[i], areas[k]);
                if (worst < candidateWorst)
                    break;
                sum = candidate;
                worst = candidateWorst;
                end = k + 1;
            }
        }

        // Rounding can leave the last rows a sliver of zero thickness; they get empty rectangles.
        if (b.height() <= b.width()) {
            const double t = b.height() > 0 ? sum / b.height() : 0;
            double y = b.top();
            for (std::size_t q = i; q < end; ++q) {
                const double len = t > 0 ? areas[q] / t : 0;
                rects[q] = QRectF(b.left(), y, t, len);
                y += len;
            }
            b = QRectF(b.left() + t, b.top(), std::max(b.width() - t, 0.0), b.height());
        } else {
            const double t = b.width() > 0 ? sum / b.width() : 0;
            double x = b.left();
            for (std::size_t q = i; q < end; ++q) {
                const double len = t > 0 ? areas[q] / t : 0;
                rects[q] = QRectF(x, b.top(), len, t);
                x += len;
            }
            b = QRectF(b.left(), b.top() + t, b.width(), std::max(b.height() - t, 0.0));
        }
        i = end;
    }
    return rects;
}
