#pragma once

namespace Sound {

class Mixer;

// Where the mixer is heard. The engine asks before every effect, so an output that could not
// start (no device, a failed or broken stream) gets another chance on the next one.
class Output
{
public:
    virtual ~Output() = default;

    // Makes sure `mixer` is being played; false when audio cannot play right now.
    [[nodiscard]] virtual bool start(Mixer &mixer) = 0;
};

} // namespace Sound
