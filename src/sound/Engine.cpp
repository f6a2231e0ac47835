#include "sound/Engine.h"

#include "platform/Settings.h"
#include "sound/Render.h"

#include <algorithm>
#include <utility>

namespace {

const QString mutedKey = QStringLiteral("muted");
const QString volumeKey = QStringLiteral("volume");

float gainOf(double volume)
{
    return float(std::clamp(volume, 0.0, 1.0));
}

} // namespace

Sound::Engine::Engine(std::unique_ptr<Output> output, Clock clock)
    : m_output(std::move(output)), m_clock(std::move(clock))
{
    if (!m_clock)
        m_clock = [] { return std::chrono::steady_clock::now(); };
    m_mixer.setGain(gainOf(volume()));
}

void Sound::Engine::play(const Sfx &sfx)
{
    if (muted())
        return;
    if (sfx.kind() == Sfx::Kind::hover) {
        const TimePoint now = m_clock();
        if (m_lastHover && now - *m_lastHover <= hoverInterval)
            return;
        m_lastHover = now;
    }
    if (!m_output || !m_output->start(m_mixer))
        return;
    Mixer::Buffer samples = buffer(sfx);
    const int slot = m_nextSlot;
    m_nextSlot = (m_nextSlot + 1) % Mixer::slotCount;
    m_mixer.start(slot, std::move(samples));
}

Sound::Mixer::Buffer Sound::Engine::buffer(const Sfx &sfx)
{
    auto found = m_cache.find(sfx);
    if (found == m_cache.end()) {
        auto samples = std::make_shared<const std::vector<float>>(render(sfx, sampleRate));
        found = m_cache.emplace(sfx, std::move(samples)).first;
    }
    return found->second;
}

bool Sound::Engine::muted() const
{
    return Settings::boolean(*Settings::open(), mutedKey).value_or(false);
}

void Sound::Engine::setMuted(bool muted)
{
    Settings::open()->setValue(mutedKey, muted);
}

double Sound::Engine::volume() const
{
    return Settings::number(*Settings::open(), volumeKey).value_or(defaultVolume);
}

void Sound::Engine::setVolume(double volume)
{
    Settings::open()->setValue(volumeKey, volume);
    m_mixer.setGain(gainOf(volume));
}
