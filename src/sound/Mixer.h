#pragma once

#include <array>
#include <cstddef>
#include <memory>
#include <span>
#include <vector>

namespace Sound {

// A fixed ring of player slots summed into one mono stream at the render rate, scaled by a
// master gain. Nothing here clips: the output stage does.
class Mixer
{
public:
    static constexpr int slotCount = 8;
    using Buffer = std::shared_ptr<const std::vector<float>>;

    // Cuts off whatever the slot was playing and plays `buffer` on it from its first sample.
    void start(int slot, Buffer buffer);

    // Writes the next out.size() mixed samples (silence where nothing plays) and advances every
    // playing slot by as many frames.
    void mix(std::span<float> out);

    void setGain(float gain) { m_gain = gain; }
    [[nodiscard]] float gain() const { return m_gain; }

    [[nodiscard]] bool isPlaying(int slot) const;

private:
    struct Slot
    {
        Buffer buffer;
        std::size_t position = 0;
    };

    std::array<Slot, slotCount> m_slots;
    float m_gain = 1.0f;
};

} // namespace Sound
