#include "sound/MixerDevice.h"

#include "sound/Render.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace {

template<typename T> void store(char *where, T value)
{
    std::memcpy(where, &value, sizeof value);
}

} // namespace

Sound::MixerDevice::MixerDevice(Mixer &mixer, const QAudioFormat &format, QObject *parent)
    : QIODevice(parent), m_mixer(mixer), m_format(format),
      m_step(sampleRate / std::max(1, format.sampleRate()))
{}

qint64 Sound::MixerDevice::bytesAvailable() const
{
    return QIODevice::bytesAvailable() + m_format.bytesForDuration(1'000'000);
}

qint64 Sound::MixerDevice::readData(char *data, qint64 maxSize)
{
    const int frameBytes = m_format.bytesPerFrame();
    if (frameBytes <= 0)
        return -1;
    const auto frames = std::size_t(maxSize / frameBytes);
    m_output.resize(frames);
    produce(m_output);
    for (std::size_t i = 0; i < frames; ++i)
        write(data + i * std::size_t(frameBytes), m_output[i]);
    return qint64(frames) * frameBytes;
}

qint64 Sound::MixerDevice::writeData(const char *, qint64)
{
    return -1;
}

void Sound::MixerDevice::produce(std::span<float> out)
{
    if (m_format.sampleRate() == int(sampleRate)) {
        m_mixer.mix(out);
        return;
    }
    // Linear interpolation is plenty for short effects through a device of another rate.
    for (float &x : out) {
        while (m_fraction >= 1.0) {
            m_previous = m_next;
            m_next = nextSource();
            m_fraction -= 1.0;
        }
        x = m_previous + (m_next - m_previous) * float(m_fraction);
        m_fraction += m_step;
    }
}

float Sound::MixerDevice::nextSource()
{
    if (m_sourceAt >= m_source.size()) {
        // Small refills keep the latency the resampling adds at a few milliseconds.
        m_source.resize(256);
        m_mixer.mix(m_source);
        m_sourceAt = 0;
    }
    return m_source[m_sourceAt++];
}

void Sound::MixerDevice::write(char *frame, float value) const
{
    const float x = std::clamp(value, -1.0f, 1.0f);
    const int channels = m_format.channelCount();
    const int bytes = m_format.bytesPerSample();
    // Mono effects go to the front pair only, never to centre, LFE or surround.
    for (int c = 0; c < channels; ++c) {
        const float v = c < 2 ? x : 0.0f;
        char *where = frame + c * bytes;
        switch (m_format.sampleFormat()) {
        case QAudioFormat::UInt8:
            store(where, quint8(std::lround(v * 127.0f) + 128));
            break;
        case QAudioFormat::Int16:
            store(where, qint16(std::lround(v * 32767.0f)));
            break;
        case QAudioFormat::Int32:
            store(where, qint32(std::llround(double(v) * 2147483647.0)));
            break;
        case QAudioFormat::Float:
            store(where, c < 2 ? value : 0.0f);
            break;
        case QAudioFormat::Unknown:
        case QAudioFormat::NSampleFormats:
            std::memset(where, 0, std::size_t(bytes));
            break;
        }
    }
}
