#pragma once

#include "sound/Mixer.h"

#include <QAudioFormat>
#include <QIODevice>
#include <cstddef>
#include <span>
#include <vector>

namespace Sound {

// The mixer as an endless read-only stream in the output's format: mono float at the render rate
// converted to the device's sample format, channel count and rate. An audio sink in pull mode
// reads it on the thread the sink lives on.
class MixerDevice : public QIODevice
{
    Q_OBJECT

public:
    MixerDevice(Mixer &mixer, const QAudioFormat &format, QObject *parent = nullptr);

    // Always unbuffered: a buffered read would mix ahead and add latency.
    bool open(OpenMode mode) override { return QIODevice::open(mode | Unbuffered); }
    [[nodiscard]] bool isSequential() const override { return true; }
    [[nodiscard]] qint64 bytesAvailable() const override;

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    qint64 writeData(const char *data, qint64 maxSize) override;

private:
    void produce(std::span<float> out);
    [[nodiscard]] float nextSource();
    void write(char *frame, float value) const;

    Mixer &m_mixer;
    QAudioFormat m_format;
    double m_step; // source frames per output frame
    std::vector<float> m_output;
    std::vector<float> m_source;
    std::size_t m_sourceAt = 0;
    double m_fraction = 1.0; // position between m_previous and m_next, for resampling
    float m_previous = 0;
    float m_next = 0;
};

} // namespace Sound
