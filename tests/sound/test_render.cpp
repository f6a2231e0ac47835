#include "sound/Render.h"
#include "sound/Sfx.h"
#include "sound/Voices.h"
#include "support/TestSandbox.h"

#include <QtTest>
#include <unordered_set>

using Sound::Sfx;
using Sound::Voice;
using Wave = Voice::Wave;

Q_DECLARE_METATYPE(Sound::Sfx)

namespace {

std::vector<int> upwardZeroCrossings(const std::vector<float> &samples, std::size_t from,
                                     std::size_t to)
{
    std::vector<int> at;
    for (std::size_t i = from + 1; i < to; ++i) {
        if (samples[i - 1] < 0 && samples[i] >= 0)
            at.push_back(int(i));
    }
    return at;
}

} // namespace

class TestRender : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void frameCounts_data()
    {
        QTest::addColumn<Sfx>("sfx");
        QTest::addColumn<int>("frames");
        for (const Tier t : Tiers::all)
            QTest::addRow("hover %d", Tiers::index(t)) << Sfx::hover(t) << 3087;
        QTest::newRow("click") << Sfx::click() << 2646;
        QTest::newRow("step") << Sfx::step() << 2425;
        QTest::newRow("dive") << Sfx::dive() << 9702;
        QTest::newRow("up") << Sfx::up() << 9702;
        QTest::newRow("noMana") << Sfx::noMana() << 11907;
        QTest::newRow("denied") << Sfx::denied() << 14112;
        QTest::newRow("discover") << Sfx::discover() << 15435;
        QTest::newRow("scanDone") << Sfx::scanDone() << 20727;
        QTest::newRow("teleport") << Sfx::teleport() << 24255;
        QTest::newRow("recall") << Sfx::recall() << 28224;
        QTest::newRow("quest") << Sfx::quest() << 29987;
        QTest::newRow("achievement, just below 0.88 s") << Sfx::achievement() << 39689;
        QTest::newRow("levelUp") << Sfx::levelUp() << 43218;
        QTest::newRow("reveal") << Sfx::reveal() << 43218;
        QTest::newRow("sense") << Sfx::sense() << 46746;
        QTest::newRow("fireball") << Sfx::fireball() << 53802;
        QTest::newRow("slay microbe") << Sfx::slay(Tier::microbe) << 20727;
        QTest::newRow("slay gremlin") << Sfx::slay(Tier::gremlin) << 24255;
        QTest::newRow("slay ogre") << Sfx::slay(Tier::ogre) << 33957;
        QTest::newRow("slay dragon") << Sfx::slay(Tier::dragon) << 43659;
        QTest::newRow("slay titan") << Sfx::slay(Tier::titan) << 58212;
    }

    void frameCounts()
    {
        QFETCH(Sfx, sfx);
        QFETCH(int, frames);
        const std::vector<float> samples = Sound::render(sfx, Sound::sampleRate);
        QCOMPARE(int(samples.size()), frames);
        // Soft clipping holds even where voices pile up at full gain.
        for (const float x : samples)
            QVERIFY2(x >= -1.0f && x <= 1.0f, qPrintable(sfx.name()));
        // The 20 ms tail after the longest voice is silent.
        QCOMPARE(samples.back(), 0.0f);
    }

    void emptyVoiceListIsTheTailAlone()
    {
        const std::vector<float> samples = Sound::render(std::span<const Voice>{}, 44'100);
        QCOMPARE(samples.size(), std::size_t(882));
        QVERIFY(std::all_of(samples.begin(), samples.end(), [](float x) { return x == 0.0f; }));
    }

    void everyVoiceStartsSilentAndIsHeard()
    {
        for (const Sfx &sfx : Sfx::all()) {
            for (const Voice &v : Sound::voices(sfx)) {
                const std::vector<float> alone = Sound::render(std::span(&v, 1), 44'100);
                const auto start = std::size_t(44'100 * v.at);
                QCOMPARE(alone.at(start), 0.0f);
                const auto peak =
                    std::max_element(alone.begin(), alone.end(),
                                     [](float a, float b) { return std::abs(a) < std::abs(b); });
                QVERIFY2(std::abs(*peak) > 0.01f, qPrintable(sfx.name()));
            }
        }
    }

    void renderingIsDeterministic()
    {
        const std::vector<float> first = Sound::render(Sfx::dive(), Sound::sampleRate);
        QCOMPARE(Sound::render(Sfx::dive(), Sound::sampleRate), first);
        (void)Sound::render(Sfx::step(), Sound::sampleRate);
        QCOMPARE(Sound::render(Sfx::dive(), Sound::sampleRate), first);
        QCOMPARE(Sound::render(Sfx::slay(Tier::titan), Sound::sampleRate),
                 Sound::render(Sfx::slay(Tier::titan), Sound::sampleRate));
    }

    void noiseRunsOnAcrossVoices()
    {
        const Voice early{Wave::noise, 2000, 2000, 0, 0.01, 0.5, 1};
        const Voice late{Wave::noise, 2000, 2000, 0.05, 0.01, 0.5, 1};
        const std::vector<Voice> both = {early, late};
        const std::vector<float> together = Sound::render(both, 44'100);
        const std::vector<float> earlyAlone = Sound::render(std::span(&early, 1), 44'100);
        const std::vector<float> lateAlone = Sound::render(std::span(&late, 1), 44'100);
        QCOMPARE(together.size(), lateAlone.size());
        QVERIFY(std::equal(earlyAlone.begin(), earlyAlone.begin() + 441, together.begin()));
        // The later voice continues the generator instead of starting over.
        QVERIFY(!std::equal(lateAlone.begin() + 2205, lateAlone.begin() + 2646,
                            together.begin() + 2205));
    }

    void constantPitchWithoutGlide()
    {
        const Voice steady{Wave::sine, 441, 441, 0, 0.5, 0.5, 0};
        const std::vector<float> samples = Sound::render(std::span(&steady, 1), 44'100);
        const std::vector<int> crossings = upwardZeroCrossings(samples, 0, 22'050);
        QVERIFY(crossings.size() > 200);
        for (std::size_t i = 1; i < crossings.size(); ++i)
            QVERIFY(std::abs(crossings[i] - crossings[i - 1] - 100) <= 1);

        const Voice glide{Wave::sine, 441, 882, 0, 0.5, 0.5, 0};
        const std::vector<float> rising = Sound::render(std::span(&glide, 1), 44'100);
        const std::vector<int> faster = upwardZeroCrossings(rising, 0, 22'050);
        QVERIFY(faster.back() - faster[faster.size() - 2] < 60);
    }

    void squareEnvelope()
    {
        // A square wave is ±1, so each sample shows the envelope: a 4 ms linear attack, then
        // (1 - p)^decay, soft-clipped in single precision.
        const Voice v{Wave::square, 1000, 1000, 0, 0.1, 0.9, 2};
        const std::vector<float> samples = Sound::render(std::span(&v, 1), 44'100);
        const auto expected = [](double t) {
            const double a = std::min(t / 0.004, 1.0);
            const double d = std::pow(1 - t / 0.1, 2);
            return std::tanh(float(0.9 * (a * d)));
        };
        for (const int i : {44, 88, 176, 441, 2205, 4000})
            QCOMPARE(std::abs(samples[std::size_t(i)]), expected(i / 44'100.0));
    }

    void voiceTables()
    {
        const std::vector<Voice> hover = Sound::voices(Sfx::hover(Tier::ogre));
        QCOMPARE(hover.size(), std::size_t(1));
        QCOMPARE(hover[0].f1, 760.0 * 1.08);
        const std::vector<Voice> reveal = Sound::voices(Sfx::reveal());
        QCOMPARE(reveal[0].vibRate, 12.0);
        QCOMPARE(reveal[1].vibRate, 7.0);
        QCOMPARE(Sound::voices(Sfx::slay(Tier::dragon)).at(3).at, 0.6);
    }

    void sfxIsAKeyByCaseAndPayload()
    {
        const std::vector<Sfx> all = Sfx::all();
        QCOMPARE(all.size(), std::size_t(26));
        std::unordered_set<Sfx> keys(all.begin(), all.end());
        QCOMPARE(keys.size(), all.size());
        QVERIFY(Sfx::hover(Tier::ogre) != Sfx::hover(Tier::titan));
        QVERIFY(Sfx::hover(Tier::ogre) != Sfx::slay(Tier::ogre));
        QVERIFY(Sfx::slay(Tier::dragon) == Sfx::slay(Tier::dragon));
        QVERIFY(!Sfx::dive().tier());

        for (const Sfx &sfx : all)
            QVERIFY(Sfx::fromName(sfx.name()) == sfx);
        QCOMPARE(Sfx::slay(Tier::titan).name(), QStringLiteral("slay:titan"));
        for (const char *bad : {"slay", "dive:ogre", "hover:giant", "Dive", ""})
            QVERIFY2(!Sfx::fromName(QString::fromLatin1(bad)), bad);
    }
};

DUSTMERE_TEST_MAIN(TestRender)
#include "test_render.moc"
