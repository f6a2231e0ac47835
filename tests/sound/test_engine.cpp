#include "platform/Settings.h"
#include "sound/Engine.h"
#include "sound/Sound.h"
#include "support/TestSandbox.h"

#include <QtTest>

using namespace std::chrono_literals;
using Sound::Engine;
using Sound::Mixer;
using Sound::Sfx;

namespace {

class FakeOutput : public Sound::Output
{
public:
    bool start(Mixer &) override
    {
        ++attempts;
        return works;
    }

    bool works = true;
    int attempts = 0;
};

// An engine on a fake output and a hand-moved clock.
struct Rig
{
    Rig()
    {
        auto fake = std::make_unique<FakeOutput>();
        output = fake.get();
        engine = std::make_unique<Engine>(std::move(fake), [this] { return now; });
    }

    std::vector<float> mix(std::size_t frames)
    {
        std::vector<float> out(frames);
        engine->mixer().mix(out);
        return out;
    }

    Engine::TimePoint now = Engine::TimePoint{} + 1h;
    FakeOutput *output = nullptr;
    std::unique_ptr<Engine> engine;
};

void clearSettings()
{
    auto s = Settings::open();
    s->remove(QStringLiteral("muted"));
    s->remove(QStringLiteral("volume"));
}

} // namespace

class TestEngine : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init() { clearSettings(); }

    void firstRunDefaults()
    {
        Rig rig;
        QCOMPARE(rig.engine->muted(), false);
        QCOMPARE(rig.engine->volume(), 0.8);
        QCOMPARE(rig.engine->mixer().gain(), 0.8f);
        QCOMPARE(rig.engine->nextSlot(), 0);
        QVERIFY(!rig.engine->lastHover());
    }

    void settingsPersistAndANonNumberVolumeIsAbsent()
    {
        {
            Rig rig;
            rig.engine->setMuted(true);
            rig.engine->setVolume(0.25);
            QCOMPARE(rig.engine->mixer().gain(), 0.25f);
        }
        Rig again;
        QCOMPARE(again.engine->muted(), true);
        QCOMPARE(again.engine->volume(), 0.25);
        QCOMPARE(again.engine->mixer().gain(), 0.25f);

        Settings::open()->setValue(QStringLiteral("volume"), QStringLiteral("loud"));
        QCOMPARE(again.engine->volume(), 0.8);
        QCOMPARE(Rig().engine->mixer().gain(), 0.8f);
    }

    void ringOfEightTurnsAndTheNinthReusesTheFirst()
    {
        Rig rig;
        const std::vector<Sfx> effects = {Sfx::dive(),     Sfx::up(),      Sfx::click(),
                                          Sfx::levelUp(),  Sfx::quest(),   Sfx::scanDone(),
                                          Sfx::discover(), Sfx::teleport()};
        for (std::size_t i = 0; i < effects.size(); ++i) {
            QCOMPARE(rig.engine->nextSlot(), int(i));
            rig.engine->play(effects[i]);
        }
        QCOMPARE(rig.engine->nextSlot(), 0);
        for (int slot = 0; slot < Mixer::slotCount; ++slot)
            QVERIFY(rig.engine->mixer().isPlaying(slot));

        rig.engine->mixer().setGain(1.0f);
        rig.engine->play(Sfx::step());
        QCOMPARE(rig.engine->nextSlot(), 1);
        QCOMPARE(rig.engine->cacheSize(), std::size_t(9));
        // Slot 0 now plays step from its start instead of the rest of dive.
        Rig reference;
        reference.engine->mixer().setGain(1.0f);
        for (std::size_t i = 1; i < effects.size(); ++i)
            reference.engine->play(effects[i]);
        reference.engine->play(Sfx::step());
        const std::vector<float> actual = rig.mix(3000);
        const std::vector<float> expected = reference.mix(3000);
        // Slots sum in another order here, so allow for float rounding.
        for (std::size_t i = 0; i < actual.size(); ++i)
            QVERIFY(std::abs(actual[i] - expected[i]) < 1e-5f);
    }

    void hoverIsThrottledAcrossTiers()
    {
        Rig rig;
        rig.engine->play(Sfx::hover(Tier::microbe));
        const Engine::TimePoint first = rig.now;
        QCOMPARE(rig.engine->nextSlot(), 1);

        rig.now = first + 30ms;
        rig.engine->play(Sfx::hover(Tier::microbe));
        rig.engine->play(Sfx::hover(Tier::titan));
        QCOMPARE(rig.engine->nextSlot(), 1);
        QVERIFY(!rig.engine->isCached(Sfx::hover(Tier::titan)));
        QCOMPARE(rig.engine->lastHover(), first);

        rig.now = first + 50ms;
        rig.engine->play(Sfx::hover(Tier::ogre));
        QCOMPARE(rig.engine->nextSlot(), 1);

        // Other effects are never throttled.
        rig.engine->play(Sfx::click());
        rig.engine->play(Sfx::click());
        QCOMPARE(rig.engine->nextSlot(), 3);

        rig.now = first + 60ms;
        rig.engine->play(Sfx::hover(Tier::titan));
        QCOMPARE(rig.engine->nextSlot(), 4);
        QVERIFY(rig.engine->isCached(Sfx::hover(Tier::titan)));
        QCOMPARE(rig.engine->lastHover(), first + 60ms);
    }

    void mutedPlayChangesNothing()
    {
        Rig rig;
        rig.engine->play(Sfx::hover(Tier::gremlin));
        rig.engine->setMuted(true);
        rig.now += 1s;
        const auto hoverAt = rig.engine->lastHover();
        rig.engine->play(Sfx::dive());
        rig.engine->play(Sfx::hover(Tier::dragon));
        QCOMPARE(rig.engine->nextSlot(), 1);
        QCOMPARE(rig.engine->cacheSize(), std::size_t(1));
        QCOMPARE(rig.engine->lastHover(), hoverAt);
        QCOMPARE(rig.output->attempts, 1);

        rig.engine->setMuted(false);
        rig.engine->play(Sfx::dive());
        QCOMPARE(rig.engine->nextSlot(), 2);
    }

    void volumeZeroStillRendersCachesAndTurns()
    {
        Rig rig;
        rig.engine->setVolume(0);
        rig.engine->play(Sfx::fireball());
        rig.engine->play(Sfx::fireball());
        QVERIFY(rig.engine->isCached(Sfx::fireball()));
        QCOMPARE(rig.engine->cacheSize(), std::size_t(1));
        QCOMPARE(rig.engine->nextSlot(), 2);
        QVERIFY(rig.engine->mixer().isPlaying(1));
        const std::vector<float> out = rig.mix(20'000);
        QVERIFY(std::all_of(out.begin(), out.end(), [](float x) { return x == 0.0f; }));
    }

    void failedOutputDropsTheEffectAndRetriesNextTime()
    {
        Rig rig;
        rig.output->works = false;
        rig.engine->play(Sfx::denied());
        rig.engine->play(Sfx::hover(Tier::ogre));
        QCOMPARE(rig.output->attempts, 2);
        QCOMPARE(rig.engine->nextSlot(), 0);
        QCOMPARE(rig.engine->cacheSize(), std::size_t(0));
        QVERIFY(!rig.engine->mixer().isPlaying(0));
        // The hover was let through the throttle before the output failed.
        QCOMPARE(rig.engine->lastHover(), rig.now);

        rig.output->works = true;
        rig.engine->play(Sfx::denied());
        QCOMPARE(rig.output->attempts, 3);
        QCOMPARE(rig.engine->nextSlot(), 1);
        QVERIFY(rig.engine->isCached(Sfx::denied()));
    }

    void sharedEnginePlaysWithOrWithoutADevice()
    {
        // Volume 0 keeps a machine with speakers quiet; without a device this is the silent path.
        Sound::shared().setVolume(0);
        QCOMPARE(&Sound::shared(), &Sound::shared());
        Sound::shared().play(Sfx::dive());
        Sound::shared().play(Sfx::dive());
        QCOMPARE(Rig().engine->volume(), 0.0);
    }
};

DUSTMERE_TEST_MAIN(TestEngine)
#include "test_engine.moc"
