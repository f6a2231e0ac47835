#include "sound/Sound.h"

#include "sound/SinkOutput.h"

Sound::Engine &Sound::shared()
{
    static Engine engine(std::make_unique<SinkOutput>());
    return engine;
}
