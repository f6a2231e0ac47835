#include "scan/ScanEstimate.h"

#include <algorithm>
#include <cmath>

std::optional<ScanEstimate::Guess> ScanEstimate::at(const Scanner::Progress &now,
                                                    std::chrono::milliseconds elapsed) const
{
    double sum = 0;
    int parts = 0;
    if (m_files > 0) {
        sum += std::min(1.0, double(now.files) / double(m_files));
        ++parts;
    }
    if (m_bytes > 0) {
        sum += std::min(1.0, double(now.bytes) / double(m_bytes));
        ++parts;
    }
    if (parts == 0)
        return std::nullopt;
    const double done = sum / parts;
    Guess guess;
    guess.percent = std::clamp(int(done * 100), 0, 99);
    // The first second and the first few percent say little about the rest.
    if (elapsed >= std::chrono::seconds(1) && done >= 0.03) {
        const double seconds = std::chrono::duration<double>(elapsed).count() * (1 - done) / done;
        guess.left = std::chrono::seconds(std::llround(seconds));
    }
    return guess;
}

QString ScanEstimate::text(const Guess &guess)
{
    QString s = QStringLiteral("%1%").arg(guess.percent);
    if (!guess.left)
        return s;
    const auto seconds = guess.left->count();
    if (seconds < 5)
        return s + QStringLiteral(" · a few seconds left");
    if (seconds < 60)
        return s + QStringLiteral(" · about %1 s left").arg((seconds + 4) / 5 * 5);
    if (seconds < 90 * 60)
        return s + QStringLiteral(" · about %1 min left").arg((seconds + 30) / 60);
    return s + QStringLiteral(" · about %1 h left").arg((seconds + 1800) / 3600);
}
