#include "Fixtures.h"
#include "game/Achievement.h"
#include "magic/Magic.h"
#include "scan/Fmt.h"
#include "support/TreeBuilder.h"
#include "ui/screens/AchievementRow.h"
#include "ui/screens/CharacterSheet.h"
#include "ui/screens/HeroChoiceButton.h"
#include "ui/screens/Meter.h"
#include "ui/screens/ToggleSwitch.h"
#include "ui/screens/WelcomeView.h"

#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalSpy>

using namespace Fixtures;

namespace {

std::optional<QString> storedString(const char *key)
{
    return Settings::string(*Settings::open(), QLatin1String(key));
}

} // namespace

class TestCharacterSheet : public QObject
{
    Q_OBJECT

    std::unique_ptr<Session> m_s;
    std::unique_ptr<Magic> m_magic;

private Q_SLOTS:
    void init()
    {
        m_s = std::make_unique<Session>();
        Magic::Options o;
        o.tickInterval = std::chrono::milliseconds(0);
        m_magic = std::make_unique<Magic>(o);
    }

    void everyEditOfTheNameIsStored()
    {
        CharacterSheet sheet(*m_s->game, *m_magic, m_s->model->memory());
        WelcomeView welcome(*m_s->model, *m_s->game);
        sheet.show();
        QVERIFY(QTest::qWaitForWindowActive(&sheet));
        QLineEdit *name = sheet.nameField();
        QCOMPARE(name->text(), QStringLiteral("Sweeper"));
        QCOMPARE(name->placeholderText(), QStringLiteral("Hero name"));

        name->setFocus();
        name->selectAll();
        QTest::keyClick(name, Qt::Key_Backspace);
        QCOMPARE(m_s->game->heroName(), QString());
        QCOMPARE(storedString("heroName"), std::optional(QString()));
        QCOMPARE(welcome.title(), QStringLiteral("🧙 , your disk is full of monsters"));

        QTest::keyClicks(name, QStringLiteral("Al"));
        QCOMPARE(m_s->game->heroName(), QStringLiteral("Al"));
        QCOMPARE(storedString("heroName"), std::optional(QStringLiteral("Al")));

        // A name set elsewhere shows up in the field.
        m_s->game->setHeroName(QStringLiteral("Bo"));
        QCOMPARE(name->text(), QStringLiteral("Bo"));
    }

    void choosingAHero()
    {
        CharacterSheet sheet(*m_s->game, *m_magic, m_s->model->memory());
        sheet.show();
        QVERIFY(QTest::qWaitForWindowExposed(&sheet));
        const std::vector<HeroChoiceButton *> &heroes = sheet.heroButtons();
        QCOMPARE(int(heroes.size()), 12);
        QCOMPARE(heroes.front()->hero(), QStringLiteral("🧙"));
        QCOMPARE(heroes.back()->hero(), QStringLiteral("🐲"));
        QVERIFY(heroes.front()->isChecked());

        QSignalSpy changed(m_s->game.get(), &Game::heroChanged);
        QTest::mouseClick(heroes.front(), Qt::LeftButton);
        QCOMPARE(changed.count(), 0);
        QVERIFY(heroes.front()->isChecked());
        QCOMPARE(storedString("hero"), std::nullopt);

        QTest::mouseClick(heroes[8], Qt::LeftButton);
        QCOMPARE(m_s->game->hero(), QStringLiteral("🦊"));
        QCOMPARE(storedString("hero"), std::optional(QStringLiteral("🦊")));
        QVERIFY(heroes[8]->isChecked());
        QVERIFY(!heroes.front()->isChecked());
    }

    void progressAndStatisticsFollowTheGame()
    {
        CharacterSheet sheet(*m_s->game, *m_magic, m_s->model->memory());
        QCOMPARE(sheet.statistic("Slain"), QStringLiteral("Zero KB"));
        QCOMPARE(sheet.statistic("Spells cast"), QStringLiteral("0"));

        m_s->game->gainXP(125); // level 2, halfway to 200
        QCOMPARE(sheet.levelMeter()->value(), 0.5);
        const QStringList texts = [&sheet] {
            QStringList out;
            for (const QLabel *l : sheet.findChildren<QLabel *>())
                out << l->text();
            return out;
        }();
        QVERIFY(texts.contains(QStringLiteral("Level 2 · Dust Bunny")));
        QVERIFY(texts.contains(QStringLiteral("125 XP · 75 to level 3")));

        m_s->game->slain({3'000'000'000}, false);
        QCOMPARE(sheet.statistic("Slain"), Fmt::bytes(3'000'000'000));
        m_s->game->noteTrashed(std::string("/nowhere/Trash/files/x"), 2'000'000);
        QCOMPARE(sheet.statistic("In Trash"), Fmt::bytes(2'000'000));
        m_s->game->discover("/a");
        m_s->game->discover("/b");
        QCOMPARE(sheet.statistic("Territories found"), QStringLiteral("2"));
    }

    void achievementsShowWhatIsUnlocked()
    {
        CharacterSheet sheet(*m_s->game, *m_magic, m_s->model->memory());
        const auto rows = sheet.achievementRows();
        QCOMPARE(rows.size(), Achievement::all().size());
        QCOMPARE(rows.front()->achievement().id, QStringLiteral("first_scan"));
        QCOMPARE(rows.back()->achievement().id, QStringLiteral("namer"));
        const auto title = [&sheet] {
            for (const QLabel *l : sheet.findChildren<QLabel *>())
                if (l->text().startsWith(QStringLiteral("Achievements")))
                    return l->text();
            return QString();
        };
        QCOMPARE(title(), QStringLiteral("Achievements · 0/15"));

        m_s->game->unlock(QStringLiteral("namer"));
        QCOMPARE(title(), QStringLiteral("Achievements · 1/15"));
        QVERIFY(rows.back()->unlocked());
        QVERIFY(!rows.front()->unlocked());
        QVERIFY(rows.back()->accessibleName().endsWith(QStringLiteral("unlocked")));
    }

    void thePlaceNameSwitchIsTheSetting()
    {
        CharacterSheet sheet(*m_s->game, *m_magic, m_s->model->memory());
        sheet.show();
        QVERIFY(QTest::qWaitForWindowExposed(&sheet));
        ToggleSwitch *toggle = sheet.placeNameSwitch();
        QCOMPARE(toggle->text(), QStringLiteral("Fantasy place names on the map"));
        QVERIFY(toggle->isChecked());
        sheet.ensureWidgetVisible(toggle);
        QTest::mouseClick(toggle, Qt::LeftButton, {}, toggle->trackRect().center());
        QVERIFY(!m_s->game->fantasyNames());
        QCOMPARE(Settings::boolean(*Settings::open(), QStringLiteral("fantasyNames")),
                 std::optional(false));
        m_s->game->setFantasyNames(true);
        QVERIFY(toggle->isChecked());
    }

    void rememberingIsASettingAndCanBeForgotten()
    {
        ScanMemory &memory = m_s->model->memory();
        CharacterSheet sheet(*m_s->game, *m_magic, memory);
        sheet.show();
        QVERIFY(QTest::qWaitForWindowExposed(&sheet));
        ToggleSwitch *toggle = sheet.rememberSwitch();
        QVERIFY(toggle->isChecked());
        QVERIFY(!sheet.forgetButton()->isEnabled());
        memory.remember(SnapshotCodec::flatten(*TreeBuilder::memoryTree("/x", {}), {},
                                               QDateTime::currentDateTimeUtc(), {}));
        QTRY_VERIFY(sheet.forgetButton()->isEnabled());

        sheet.ensureWidgetVisible(toggle);
        QTest::mouseClick(toggle, Qt::LeftButton, {}, toggle->trackRect().center());
        QVERIFY(!memory.enabled());
        QCOMPARE(Settings::boolean(*Settings::open(), QStringLiteral("rememberScans")),
                 std::optional(false));
        // Turned off, what is remembered can still be forgotten.
        sheet.ensureWidgetVisible(sheet.forgetButton());
        QTest::mouseClick(sheet.forgetButton(), Qt::LeftButton);
        QVERIFY(memory.store().remembered().empty());
        QVERIFY(!sheet.forgetButton()->isEnabled());
        memory.setEnabled(true);
    }
};

DUSTMERE_WIDGET_TEST_MAIN(TestCharacterSheet)
#include "test_character_sheet.moc"
