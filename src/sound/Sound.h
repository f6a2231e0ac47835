#pragma once

#include "sound/Engine.h"
#include "sound/Sfx.h"

namespace Sound {

// The application's one sound engine, created on first use and playing through the default
// audio device. Main thread only: Sound::shared().play(Sound::Sfx::dive()).
[[nodiscard]] Engine &shared();

} // namespace Sound
