#pragma once

#include "sound/Output.h"

#include <QAudioFormat>
#include <QPointer>

class QAudioDevice;
class QAudioSink;

namespace Sound {

// The default audio device through one QAudioSink in pull mode, reading the mixer.
class SinkOutput : public Output
{
public:
    SinkOutput() = default;
    ~SinkOutput() override;
    SinkOutput(const SinkOutput &) = delete;
    SinkOutput &operator=(const SinkOutput &) = delete;

    [[nodiscard]] bool start(Mixer &mixer) override;

    // Mono float at the render rate when the device takes it, else the closest it prefers.
    [[nodiscard]] static QAudioFormat formatFor(const QAudioDevice &device);

private:
    void release();

    // Parented to the application, which deletes it on the way out; the pointer notices.
    QPointer<QAudioSink> m_sink;
};

} // namespace Sound
