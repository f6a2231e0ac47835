#include "sound/Mixer.h"

#include <algorithm>
#include <utility>

void Sound::Mixer::start(int slot, Buffer buffer)
{
    m_slots.at(std::size_t(slot)) = Slot{std::move(buffer), 0};
}

void Sound::Mixer::mix(std::span<float> out)
{
    std::fill(out.begin(), out.end(), 0.0f);
    for (Slot &slot : m_slots) {
        if (!slot.buffer)
            continue;
        const std::vector<float> &samples = *slot.buffer;
        const std::size_t count = std::min(out.size(), samples.size() - slot.position);
        for (std::size_t i = 0; i < count; ++i)
            out[i] += samples[slot.position + i];
        slot.position += count;
        if (slot.position >= samples.size())
            slot = Slot{};
    }
    if (m_gain != 1.0f) {
        for (float &x : out)
            x *= m_gain;
    }
}

bool Sound::Mixer::isPlaying(int slot) const
{
    return m_slots.at(std::size_t(slot)).buffer != nullptr;
}
