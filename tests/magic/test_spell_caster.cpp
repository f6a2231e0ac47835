#include "game/Game.h"
#include "magic/Magic.h"
#include "magic/ManaOnSlay.h"
#include "magic/SpellCaster.h"
#include "platform/Settings.h"
#include "scan/Fmt.h"
#include "session/Model.h"
#include "support/TestSandbox.h"
#include "support/TreeBuilder.h"
#include "world/ManualClock.h"
#include "world/Player.h"

#include <QFile>
#include <QSignalSpy>
#include <sys/stat.h>

using namespace TreeBuilder;

namespace {

constexpr std::uint64_t KB = 1000;

bool exists(const std::string &path)
{
    struct stat st;
    return lstat(path.c_str(), &st) == 0;
}

} // namespace

class TestSpellCaster : public QObject
{
    Q_OBJECT

    QDateTime m_now = QDateTime(QDate(2024, 3, 1), QTime(12, 0), Qt::UTC);
    std::unique_ptr<Game> m_game;
    std::unique_ptr<Model> m_model;
    std::unique_ptr<Magic> m_magic;
    std::shared_ptr<ManualClock> m_clock;
    std::unique_ptr<Player> m_player;
    std::unique_ptr<SpellCaster> m_caster;
    std::vector<Sound::Sfx> m_played;
    std::string m_realm;
    int m_trees = 0;

    // A realm of folders, each holding one file of the given size, scanned for real.
    void scanRealm(const std::vector<std::pair<QByteArray, std::uint64_t>> &folders)
    {
        const QByteArray root = QFile::encodeName(TestSandbox::instance()->root()) + "/realm" +
                                QByteArray::number(++m_trees);
        makeDir(root);
        for (const auto &[name, bytes] : folders) {
            makeDir(root + "/" + name);
            makeFile(root + "/" + name + "/data", bytes);
        }
        m_model->setScanPath(root.toStdString());
        m_model->scan(*m_game);
        QTRY_VERIFY_WITH_TIMEOUT(!m_model->scanning(), 60'000);
        QVERIFY(m_model->root());
        m_model->setAdvice({});
        m_realm = root.toStdString();
        m_played.clear();
    }

    std::string at(const std::string &name) const { return m_realm + "/" + name; }

    // A recommendation for a folder of the scanned tree, or else for a file.
    Advice bounty(const std::string &path, std::uint64_t size,
                  Advice::Safety safety = Advice::Safety::safe, bool actionable = true) const
    {
        Advice a;
        if (NodePtr node = m_model->node(path))
            a.target = node;
        else
            a.target = BigFile{path, size, 0};
        a.path = path;
        a.size = size;
        a.safety = safety;
        a.actionable = actionable;
        return a;
    }

    // The island of the current folder, as the map view builds it, handed to the hero.
    void buildWorld(QSizeF size = {800, 600})
    {
        const NodePtr current = m_model->current();
        const WorldLayout layout = WorldLayout::build(
            m_model->tiles(40), current ? current->path() : std::string("/"), size,
            [this](const std::string &path) { return m_game->hasSeen(path); },
            [this](const std::string &path) {
                return std::int64_t(m_model->adviceUnder(path).size());
            },
            [](const Tile &t, std::optional<Tier>) {
                return QFile::decodeName(QByteArray::fromStdString(t.name));
            });
        m_player->update(layout, size);
    }

    const Region &region(const std::string &name) const
    {
        for (const Region &r : m_player->layout()->regions) {
            if (r.path == at(name))
                return r;
        }
        qFatal("no region %s", name.c_str());
    }

    void openMagic(double mana, std::int64_t casts = 0)
    {
        auto s = Settings::open();
        s->setValue(QStringLiteral("mana"), mana);
        Settings::setDate(*s, QStringLiteral("manaAt"), m_now);
        s->setValue(QStringLiteral("casts"), qint64(casts));
        Magic::Options o;
        o.now = [this] { return m_now; };
        o.tickInterval = std::chrono::milliseconds(0);
        m_magic = std::make_unique<Magic>(o);
        m_caster = std::make_unique<SpellCaster>(*m_magic, *m_model, *m_game, *m_player);
    }

    QString said() const { return m_player->floater() ? m_player->floater()->text : QString(); }

    // Nothing was spent, played or shown beyond the one line.
    void verifyRefused(const QString &message, double mana = 5.0)
    {
        QCOMPARE(said(), message);
        QCOMPARE(m_magic->mana(), mana);
        QVERIFY(m_played.empty());
        QVERIFY(m_player->effects().empty());
    }

private Q_SLOTS:
    void init()
    {
        auto s = Settings::open();
        s->clear();
        s->sync();
        Game::Options o;
        o.toastDuration = std::chrono::milliseconds(0);
        o.play = [](const Sound::Sfx &) {};
        m_game = std::make_unique<Game>(o);
        m_model = std::make_unique<Model>();
        m_model->setSoundPlayer([this](const Sound::Sfx &sfx) { m_played.push_back(sfx); });
        m_clock = std::make_shared<ManualClock>(100);
        m_player = std::make_unique<Player>(m_clock);
        m_played.clear();
        openMagic(5);
    }

    void cleanup()
    {
        m_caster.reset();
        m_player.reset();
        m_magic.reset();
        m_model.reset();
        m_game.reset();
    }

    void nothingHappensWithoutAWorldOrAFolder()
    {
        // A layout but no scanned folder.
        m_player->update(WorldLayout::build({}, "/", {800, 600}, {}, {}, {}), {800, 600});
        m_caster->cast(Spell::recall);
        QVERIFY(!m_player->floater());
        QVERIFY(m_played.empty());

        // A folder but no layout.
        scanRealm({{"alpha", 40 * KB}});
        m_player = std::make_unique<Player>(m_clock);
        openMagic(0);
        m_caster->cast(Spell::fireball);
        QVERIFY(!m_player->floater());
        QVERIFY(m_played.empty());
    }

    void tooLittleManaRefusesUntilTheRefillCatchesUp()
    {
        scanRealm({{"alpha", 40 * KB}, {"beta", 20 * KB}});
        m_model->setAdvice({bounty(at("alpha/data"), 40 * KB)});
        openMagic(2.96);
        buildWorld();

        m_caster->cast(Spell::fireball);
        QCOMPARE(said(), QStringLiteral("Not enough mana (3 needed)"));
        QCOMPARE(m_played, std::vector<Sound::Sfx>{Sound::Sfx::noMana()});
        QCOMPARE(m_magic->mana(), 2.96);
        QCOMPARE(m_magic->casts(), 0);
        QVERIFY(!m_caster->pendingFire());

        m_magic->tick();
        m_caster->cast(Spell::fireball);
        QVERIFY(m_caster->pendingFire());
    }

    void revealLiftsTheFogOfEveryHiddenTerritory()
    {
        scanRealm({{"alpha", 80 * KB}, {"beta", 60 * KB}, {"gamma", 40 * KB}, {"delta", 20 * KB}});
        QVERIFY(m_game->discover(at("beta")));
        buildWorld();
        m_player->jump({300, 300});
        const std::int64_t xp = m_game->xp();

        m_caster->cast(Spell::reveal);
        QCOMPARE(said(), QStringLiteral("The fog lifts from 3 territories"));
        QCOMPARE(m_magic->mana(), 3.0);
        QCOMPARE(m_played, std::vector<Sound::Sfx>{Sound::Sfx::reveal()});
        QCOMPARE(m_game->xp(), xp + 9); // a discovery each, as if walked into
        for (const char *name : {"alpha", "beta", "gamma", "delta"})
            QVERIFY(m_game->hasSeen(at(name)));
        QCOMPARE(m_player->effects().size(), 1u);
        const SpellFX &ring = m_player->effects().front();
        QCOMPARE(ring.kind, SpellFX::Kind::ring);
        QCOMPARE(ring.points, std::vector<QPointF>{QPointF(300, 300)});
        QCOMPARE(ring.duration, 1.4);
        QCOMPARE(ring.start, 100.0);

        // The rebuilt island has nothing left to show.
        m_clock->advance(2);
        m_played.clear();
        buildWorld();
        m_caster->cast(Spell::reveal);
        verifyRefused(QStringLiteral("Nothing hidden in this realm"), 3.0);
    }

    void senseLeadsToTheRichestTerritory()
    {
        scanRealm({{"alpha", 80 * KB}, {"beta", 60 * KB}, {"gamma", 40 * KB}, {"delta", 20 * KB}});
        buildWorld();
        m_caster->cast(Spell::sense);
        verifyRefused(QStringLiteral("No treasure in this realm"));

        // beta and gamma tie at 300 bytes; beta comes first on the island.
        m_model->setAdvice({bounty(at("alpha/data"), 100), bounty(at("gamma"), 300),
                            bounty(at("beta/data"), 200),
                            bounty(at("beta/x"), 100, Advice::Safety::review)});
        buildWorld();
        m_player->jump({700, 500});
        m_caster->cast(Spell::sense);
        QCOMPARE(said(), QStringLiteral("Treasure: %1 in beta").arg(Fmt::bytes(300)));
        QCOMPARE(m_magic->mana(), 4.0);
        QCOMPARE(m_played, std::vector<Sound::Sfx>{Sound::Sfx::sense()});
        const SpellFX &trail = m_player->effects().front();
        QCOMPARE(trail.kind, SpellFX::Kind::trail);
        QCOMPARE(trail.points, (std::vector<QPointF>{QPointF(700, 500), region("beta").capital}));
        QCOMPARE(trail.duration, 8.0);
    }

    void teleportBlinksBesideTheBiggestMonsterNotYourOwn()
    {
        scanRealm({{"gamma", 40 * KB}, {"alpha", 80 * KB}, {"beta", 60 * KB}});
        buildWorld();
        const Region &alpha = region("alpha");
        const Region &beta = region("beta");
        QVERIFY(alpha.hasMonster() && beta.hasMonster());

        // Standing in the sea (where the random coast leaves some): the biggest monster.
        QPointF sea;
        for (int i = 0; i < 80 * 60 && m_player->layout()->regionIndex(sea, {}); ++i)
            sea = QPointF(i % 80, i / 80) * 10;
        m_player->jump(sea);
        QVERIFY(!m_player->regionIndex());
        m_caster->cast(Spell::teleport);
        const QPointF besideAlpha = alpha.besideMonster();
        QCOMPARE(m_player->effects().front().kind, SpellFX::Kind::swirl);
        QCOMPARE(m_player->effects().front().points, (std::vector<QPointF>{sea, besideAlpha}));
        QCOMPARE(m_player->effects().front().duration, 0.8);
        m_clock->advance(0.29);
        QCOMPARE(m_player->heroPoint(), sea);
        m_clock->advance(0.01);
        QCOMPARE(m_player->heroPoint(), besideAlpha);
        QCOMPARE(m_magic->mana(), 4.0);
        QCOMPARE(m_played, std::vector<Sound::Sfx>{Sound::Sfx::teleport()});

        // Standing in alpha's territory now: on to the second biggest.
        QCOMPARE(m_player->currentRegion()->path, alpha.path);
        m_caster->cast(Spell::teleport);
        m_clock->advance(0.3);
        QCOMPARE(m_player->heroPoint(), beta.besideMonster());
        QCOMPARE(m_magic->mana(), 3.0);
    }

    void teleportNeedsAMonster()
    {
        scanRealm({{"alpha", 40 * KB}});
        buildWorld({90, 90}); // a land too small for any monster
        m_caster->cast(Spell::teleport);
        verifyRefused(QStringLiteral("Nowhere to go"));
    }

    void fireballBurnsOnlySafeBountiesAfterConfirmation()
    {
        std::vector<std::pair<QByteArray, std::uint64_t>> folders;
        for (int i = 0; i < 12; ++i)
            folders.push_back(
                {"cache" + QByteArray::number(i).rightJustified(2, '0'), (30 + i) * KB});
        folders.push_back({"keep", 200 * KB});
        scanRealm(folders);
        ManaOnSlay refill(*m_game, *m_magic);

        std::vector<Advice> advice;
        for (int i = 0; i < 12; ++i)
            advice.push_back(bounty(at(folders[std::size_t(i)].first.toStdString()), 30 * KB));
        advice.push_back(bounty(at("keep"), 200 * KB, Advice::Safety::rebuild));
        advice.push_back(bounty(at("keep/data"), 200 * KB, Advice::Safety::safe, false));
        advice.push_back(bounty(m_realm, 500 * KB)); // the scanned folder itself is protected
        m_model->setAdvice(advice);
        buildWorld();

        QSignalSpy pending(m_caster.get(), &SpellCaster::pendingFireChanged);
        m_caster->cast(Spell::fireball);
        QCOMPARE(pending.count(), 1);
        QVERIFY(m_caster->pendingFire());
        QCOMPARE(m_caster->pendingFire()->size(), 12u);
        for (std::size_t i = 0; i < 12; ++i)
            QCOMPARE((*m_caster->pendingFire())[i].path, advice[i].path);
        QCOMPARE(
            SpellCaster::fireballTitle(*m_caster->pendingFire()),
            QStringLiteral("Burn 12 safe bounties in this realm (%1)?").arg(Fmt::bytes(360 * KB)));
        QCOMPARE(m_magic->mana(), 5.0); // nothing spent before the confirmation
        QVERIFY(m_played.empty());

        m_caster->confirmFireball();
        QVERIFY(!m_caster->pendingFire());
        QCOMPARE(m_magic->mana(), 2.0);
        QCOMPARE(m_played, std::vector<Sound::Sfx>{Sound::Sfx::fireball()});
        const SpellFX &fire = m_player->effects().front();
        QCOMPARE(fire.kind, SpellFX::Kind::fire);
        QCOMPARE(fire.duration, 1.4);
        QCOMPARE(fire.points.size(), 12u);
        for (std::size_t i = 0; i < 12; ++i)
            QCOMPARE(fire.points[i], region(folders[i].first.toStdString()).capital);

        // The fire lands before anything goes to the Trash.
        m_clock->advance(0.59);
        QVERIFY(exists(at("cache00")));
        m_clock->advance(0.01);
        for (std::size_t i = 0; i < 12; ++i)
            QVERIFY(!exists(at(folders[i].first.toStdString())));
        QVERIFY(exists(at("keep")));
        QCOMPARE(m_game->reclaimed(), 12 * 30 * KB);
        QCOMPARE(m_magic->mana(), 3.0); // one mana for the whole batch
        QCOMPARE(m_played.size(), 2u);
        QCOMPARE(m_played.back().kind(), Sound::Sfx::Kind::slay);

        // Confirming again, or with nothing pending, does nothing.
        m_caster->confirmFireball();
        QCOMPARE(m_magic->mana(), 3.0);
    }

    void fireballRefusesWhenNothingSafeCanBurn()
    {
        scanRealm({{"alpha", 40 * KB}});
        m_model->setAdvice(
            {bounty(m_realm, 40 * KB), bounty(at("alpha"), 40 * KB, Advice::Safety::review)});
        buildWorld();
        m_caster->cast(Spell::fireball);
        verifyRefused(QStringLiteral("No safe bounties to burn here"));
        QVERIFY(!m_caster->pendingFire());
    }

    void aCancelledFireballSpendsNothing()
    {
        scanRealm({{"alpha", 40 * KB}});
        m_model->setAdvice({bounty(at("alpha"), 40 * KB)});
        buildWorld();
        m_caster->cast(Spell::fireball);
        QVERIFY(m_caster->pendingFire());
        m_caster->cancelFireball();
        QVERIFY(!m_caster->pendingFire());
        m_caster->confirmFireball();
        QCOMPARE(m_magic->mana(), 5.0);
        QVERIFY(exists(at("alpha")));

        // Mana drained while the dialog was open: the confirmation burns nothing.
        m_caster->cast(Spell::fireball);
        m_magic->spend(Spell::fireball);
        m_caster->confirmFireball();
        QVERIFY(!m_caster->pendingFire());
        QCOMPARE(m_magic->mana(), 2.0);
        m_clock->advance(1);
        QVERIFY(exists(at("alpha")));
    }

    void recallReturnsToTheRoot()
    {
        scanRealm({{"alpha", 40 * KB}, {"beta", 20 * KB}});
        buildWorld();
        m_caster->cast(Spell::recall);
        verifyRefused(QStringLiteral("You're already home"));

        const NodePtr alpha = m_model->node(at("alpha"));
        m_model->go(alpha, *m_game);
        m_played.clear();
        buildWorld();
        m_player->jump({400, 300});
        m_caster->cast(Spell::recall);
        QCOMPARE(m_magic->mana(), 4.0);
        QCOMPARE(m_player->effects().front().kind, SpellFX::Kind::swirl);
        QCOMPARE(m_player->effects().front().points, std::vector<QPointF>{QPointF(400, 300)});
        QCOMPARE(m_player->effects().front().duration, 0.6);
        m_clock->advance(0.34);
        QCOMPARE(m_model->current(), alpha);
        m_clock->advance(0.01);
        QCOMPARE(m_model->current(), m_model->root());
        QCOMPARE(m_played, (std::vector<Sound::Sfx>{Sound::Sfx::recall(), Sound::Sfx::up()}));
    }

    void theTwentyFifthCastMakesAnArchmage()
    {
        scanRealm({{"alpha", 40 * KB}, {"beta", 20 * KB}});
        openMagic(5, 23);
        buildWorld();
        m_caster->cast(Spell::teleport);
        QCOMPARE(m_magic->casts(), 24);
        QVERIFY(!m_game->unlocked().contains(QStringLiteral("archmage")));
        m_caster->cast(Spell::teleport);
        QCOMPARE(m_magic->casts(), 25);
        QVERIFY(m_game->unlocked().contains(QStringLiteral("archmage")));
    }
};

DUSTMERE_TEST_MAIN(TestSpellCaster)
#include "test_spell_caster.moc"
