#pragma once

#include "sound/Mixer.h"
#include "sound/Output.h"
#include "sound/Sfx.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <unordered_map>

namespace Sound {

// Plays effects: renders each one once, keeps it, and starts it on the next slot of the mixer's
// ring, so up to eight overlap and the ninth cuts off the oldest. Owns the two sound settings,
// "muted" and "volume". Never reports a failure: without audio, effects are simply not heard.
// Main thread only.
class Engine
{
public:
    using TimePoint = std::chrono::steady_clock::time_point;
    using Clock = std::function<TimePoint()>;

    // Hover effects closer together than this are dropped, whatever their tier.
    static constexpr std::chrono::milliseconds hoverInterval{50};
    static constexpr double defaultVolume = 0.8;

    explicit Engine(std::unique_ptr<Output> output, Clock clock = {});
    Engine(const Engine &) = delete;
    Engine &operator=(const Engine &) = delete;

    void play(const Sfx &sfx);

    [[nodiscard]] bool muted() const;
    void setMuted(bool muted);
    // The master gain, 0 to 1.
    [[nodiscard]] double volume() const;
    void setVolume(double volume);

    [[nodiscard]] int nextSlot() const { return m_nextSlot; }
    [[nodiscard]] bool isCached(const Sfx &sfx) const { return m_cache.contains(sfx); }
    [[nodiscard]] std::size_t cacheSize() const { return m_cache.size(); }
    [[nodiscard]] std::optional<TimePoint> lastHover() const { return m_lastHover; }
    [[nodiscard]] Mixer &mixer() { return m_mixer; }

private:
    [[nodiscard]] Mixer::Buffer buffer(const Sfx &sfx);

    Mixer m_mixer;
    std::unique_ptr<Output> m_output;
    Clock m_clock;
    int m_nextSlot = 0;
    std::unordered_map<Sfx, Mixer::Buffer> m_cache;
    std::optional<TimePoint> m_lastHover; // none: the distant past
};

} // namespace Sound
