#include "sound/Mixer.h"
#include "sound/MixerDevice.h"
#include "support/TestSandbox.h"

#include <QtTest>
#include <cstring>

using Sound::Mixer;

namespace {

Mixer::Buffer constant(std::size_t frames, float value)
{
    return std::make_shared<const std::vector<float>>(frames, value);
}

Mixer::Buffer ramp(std::size_t frames)
{
    std::vector<float> samples(frames);
    for (std::size_t i = 0; i < frames; ++i)
        samples[i] = float(i + 1) / float(frames);
    return std::make_shared<const std::vector<float>>(std::move(samples));
}

std::vector<float> mixed(Mixer &mixer, std::size_t frames)
{
    std::vector<float> out(frames, -7.0f);
    mixer.mix(out);
    return out;
}

QAudioFormat format(int rate, int channels, QAudioFormat::SampleFormat sampleFormat)
{
    QAudioFormat f;
    f.setSampleRate(rate);
    f.setChannelCount(channels);
    f.setSampleFormat(sampleFormat);
    return f;
}

template<typename T> std::vector<T> readAll(Sound::MixerDevice &device, std::size_t count)
{
    std::vector<T> values(count);
    const qint64 bytes =
        device.read(reinterpret_cast<char *>(values.data()), qint64(count * sizeof(T)));
    values.resize(std::size_t(bytes) / sizeof(T));
    return values;
}

} // namespace

class TestMixer : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void effectsStartedTogetherAddUp()
    {
        Mixer mixer;
        const Mixer::Buffer a = ramp(100);
        mixer.start(0, a);
        mixer.start(5, constant(50, 0.75f));
        const std::vector<float> first = mixed(mixer, 30);
        const std::vector<float> rest = mixed(mixer, 100);
        for (std::size_t i = 0; i < 30; ++i)
            QCOMPARE(first[i], (*a)[i] + 0.75f);
        // No clipping here: near the ramp's top the sum exceeds 1.
        QCOMPARE(rest[19], (*a)[49] + 0.75f);
        QVERIFY(rest[19] > 1.0f);
        QCOMPARE(rest[20], (*a)[50]);
        QCOMPARE(rest[69], (*a)[99]);
        QCOMPARE(rest[70], 0.0f);
        QVERIFY(!mixer.isPlaying(0));
        QVERIFY(!mixer.isPlaying(5));
    }

    void restartedSlotDropsItsOldBuffer()
    {
        Mixer mixer;
        mixer.start(3, constant(1000, 0.5f));
        (void)mixed(mixer, 10);
        const Mixer::Buffer fresh = ramp(20);
        mixer.start(3, fresh);
        const std::vector<float> out = mixed(mixer, 40);
        for (std::size_t i = 0; i < 20; ++i)
            QCOMPARE(out[i], (*fresh)[i]);
        QCOMPARE(out[20], 0.0f);
        QCOMPARE(out[39], 0.0f);
    }

    void masterGainScalesTheSum()
    {
        Mixer mixer;
        mixer.setGain(0.5f);
        mixer.start(0, constant(10, 0.5f));
        mixer.start(1, constant(10, 0.25f));
        QCOMPARE(mixed(mixer, 1)[0], 0.375f);

        mixer.setGain(0.0f);
        QCOMPARE(mixed(mixer, 1)[0], 0.0f);
        // Silenced slots still run to their end.
        (void)mixed(mixer, 8);
        QVERIFY(!mixer.isPlaying(0));
        QVERIFY(!mixer.isPlaying(1));
    }

    void floatMonoPassesSamplesUnchanged()
    {
        Mixer mixer;
        mixer.start(0, constant(4, 0.8f));
        mixer.start(1, constant(4, 0.4f));
        Sound::MixerDevice device(mixer, format(44'100, 1, QAudioFormat::Float));
        QVERIFY(device.open(QIODevice::ReadOnly));
        const std::vector<float> out = readAll<float>(device, 6);
        QCOMPARE(out.size(), std::size_t(6));
        QCOMPARE(out[0], 0.8f + 0.4f);
        QCOMPARE(out[3], 0.8f + 0.4f);
        QCOMPARE(out[4], 0.0f);
    }

    void int16StereoIsClippedAndDuplicated()
    {
        Mixer mixer;
        mixer.start(0, constant(2, 0.5f));
        mixer.start(1, constant(1, 0.75f));
        Sound::MixerDevice device(mixer, format(44'100, 2, QAudioFormat::Int16));
        QVERIFY(device.open(QIODevice::ReadOnly));
        const std::vector<qint16> out = readAll<qint16>(device, 6);
        QCOMPARE(out.size(), std::size_t(6));
        QCOMPARE(out[0], qint16(32767));
        QCOMPARE(out[1], qint16(32767));
        QCOMPARE(out[2], qint16(16384));
        QCOMPARE(out[3], qint16(16384));
        QCOMPARE(out[4], qint16(0));
    }

    void surroundChannelsStaySilent()
    {
        Mixer mixer;
        mixer.start(0, constant(1, -0.5f));
        Sound::MixerDevice device(mixer, format(44'100, 6, QAudioFormat::Float));
        QVERIFY(device.open(QIODevice::ReadOnly));
        const std::vector<float> out = readAll<float>(device, 6);
        QCOMPARE(out, (std::vector<float>{-0.5f, -0.5f, 0, 0, 0, 0}));
    }

    void partialFramesAreNotRead()
    {
        Mixer mixer;
        Sound::MixerDevice device(mixer, format(44'100, 2, QAudioFormat::Int16));
        QVERIFY(device.open(QIODevice::ReadOnly));
        char bytes[7];
        QCOMPARE(device.read(bytes, 7), qint64(4));
    }

    void otherRatesAreResampled()
    {
        Mixer mixer;
        mixer.start(0, constant(4410, 0.5f)); // 0.1 s
        Sound::MixerDevice device(mixer, format(48'000, 1, QAudioFormat::Float));
        QVERIFY(device.open(QIODevice::ReadOnly));
        std::vector<float> out;
        // Several reads of odd sizes, as a sink would make.
        for (const std::size_t chunk : {1000, 777, 3001, 2000}) {
            const std::vector<float> part = readAll<float>(device, chunk);
            QCOMPARE(part.size(), chunk);
            out.insert(out.end(), part.begin(), part.end());
        }
        const auto full = std::count(out.begin(), out.end(), 0.5f);
        QVERIFY2(std::abs(full - 4800) <= 3, qPrintable(QString::number(full)));
        QVERIFY(std::all_of(out.begin(), out.end(), [](float x) { return x >= 0 && x <= 0.5f; }));
        QCOMPARE(out.back(), 0.0f);
    }
};

DUSTMERE_TEST_MAIN(TestMixer)
#include "test_mixer.moc"
