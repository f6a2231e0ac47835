#include "sound/SinkOutput.h"

#include "sound/MixerDevice.h"
#include "sound/Render.h"

#include <QAudioDevice>
#include <QAudioSink>
#include <QCoreApplication>
#include <QMediaDevices>

namespace {

// Short enough that a hover sounds with the pointer, long enough to ride out a busy frame of
// the main thread, which feeds the sink.
constexpr qint64 bufferMicroseconds = 80'000;

bool isRunning(const QAudioSink &sink)
{
    return sink.state() == QAudio::ActiveState || sink.state() == QAudio::IdleState;
}

} // namespace

Sound::SinkOutput::~SinkOutput()
{
    release();
}

bool Sound::SinkOutput::start(Mixer &mixer)
{
    if (m_sink && isRunning(*m_sink))
        return true;
    release();
    QCoreApplication *app = QCoreApplication::instance();
    if (!app)
        return false;
    const QAudioDevice device = QMediaDevices::defaultAudioOutput();
    if (device.isNull())
        return false;
    const QAudioFormat format = formatFor(device);
    m_sink = new QAudioSink(device, format, app);
    auto *feed = new MixerDevice(mixer, format, m_sink);
    feed->open(QIODevice::ReadOnly);
    m_sink->setBufferSize(int(format.bytesForDuration(bufferMicroseconds)));
    m_sink->start(feed);
    if (m_sink->error() != QAudio::NoError || !isRunning(*m_sink)) {
        release();
        return false;
    }
    return true;
}

QAudioFormat Sound::SinkOutput::formatFor(const QAudioDevice &device)
{
    QAudioFormat wanted;
    wanted.setSampleRate(int(sampleRate));
    wanted.setChannelCount(1);
    wanted.setSampleFormat(QAudioFormat::Float);
    if (device.isFormatSupported(wanted))
        return wanted;
    QAudioFormat preferred = device.preferredFormat();
    QAudioFormat atOurRate = preferred;
    atOurRate.setSampleRate(int(sampleRate));
    if (device.isFormatSupported(atOurRate))
        return atOurRate;
    return preferred;
}

void Sound::SinkOutput::release()
{
    if (!m_sink)
        return;
    m_sink->stop();
    delete m_sink.data();
}
