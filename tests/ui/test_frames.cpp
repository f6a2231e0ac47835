#include "Fixtures.h"
#include "platform/Appearance.h"
#include "platform/Home.h"
#include "support/TreeBuilder.h"
#include "ui/screens/Confetti.h"
#include "ui/screens/FolderChooser.h"
#include "ui/screens/MaterialCard.h"
#include "ui/screens/ScanningView.h"
#include "ui/screens/ToastView.h"
#include "ui/screens/WelcomeView.h"

#include <QFileDialog>
#include <QLabel>
#include <QPushButton>
#include <QTimer>

using namespace Fixtures;
using namespace TreeBuilder;

namespace {

QByteArray makeTree()
{
    static const QByteArray root = [] {
        const QByteArray r = sandboxPath("charted");
        makeDir(r);
        makeDir(r + "/a");
        makeFile(r + "/a/f", 4096);
        return r;
    }();
    return root;
}

// Hands out a fixed sequence of draws, over and over.
Confetti::Random sequence(std::vector<double> draws)
{
    return [draws = std::move(draws), i = std::size_t(0)]() mutable {
        return draws[i++ % draws.size()];
    };
}

bool transparent(const QImage &img)
{
    for (int y = 0; y < img.height(); ++y)
        for (int x = 0; x < img.width(); ++x)
            if (qAlpha(img.pixel(x, y)) != 0)
                return false;
    return true;
}

QImage render(QWidget &w)
{
    QImage img(w.size(), QImage::Format_ARGB32_Premultiplied);
    img.fill(Qt::transparent);
    w.render(&img, {}, {}, QWidget::DrawChildren);
    return img;
}

} // namespace

class TestFrames : public QObject
{
    Q_OBJECT

    std::unique_ptr<Session> m_s;

private Q_SLOTS:
    void init() { m_s = std::make_unique<Session>(); }

    void welcomeStartsScans()
    {
        WelcomeView welcome(*m_s->model, *m_s->game);
        QCOMPARE(welcome.title(), QStringLiteral("🧙 Sweeper, your disk is full of monsters"));
        m_s->game->setHero(QStringLiteral("🦊"));
        m_s->game->setHeroName(QStringLiteral("Vix"));
        QCOMPARE(welcome.title(), QStringLiteral("🦊 Vix, your disk is full of monsters"));

        QVERIFY(welcome.scanHomeButton()->isDefault());
        m_s->model->setScanPath("/elsewhere");
        QTest::mouseClick(welcome.scanHomeButton(), Qt::LeftButton);
        QCOMPARE(m_s->model->scanPath(), Home::path());
        QVERIFY(m_s->model->scanning());
        m_s->model->stop();

        std::vector<std::string> asked;
        std::optional<std::string> answer;
        m_s->model->setFolderChooser([&](const std::string &start) {
            asked.push_back(start);
            return answer;
        });
        QTest::mouseClick(welcome.chooseButton(), Qt::LeftButton);
        QCOMPARE(asked, std::vector<std::string>{Home::path()});
        QVERIFY(!m_s->model->scanning());
        answer = makeTree().toStdString();
        QTest::mouseClick(welcome.chooseButton(), Qt::LeftButton);
        QCOMPARE(m_s->model->scanPath(), *answer);
        QVERIFY(m_s->model->scanning());
        m_s->model->stop();
    }

    void escapeStopsTheScan()
    {
        ScanningView view(*m_s->model, *m_s->game, true);
        view.resize(700, 500);
        view.show();
        QVERIFY(QTest::qWaitForWindowActive(&view));
        view.setFocus();

        m_s->model->setScanPath(makeTree().toStdString());
        m_s->model->scan(*m_s->game);
        // Nothing has finished yet: the plain sea and an empty count.
        QVERIFY(m_s->model->scanning());
        QCOMPARE(view.heading(), QStringLiteral("Charting charted…"));
        QCOMPARE(view.status(), QStringLiteral("0 territories charted · 0 files · Zero KB"));
        QVERIFY(!view.showsIsland());
        view.setPalette(Appearance::palette(Appearance::Scheme::dark));
        QCOMPARE(view.grab().toImage().pixelColor(3, 3), QColor(0x10, 0x28, 0x3F));

        QTest::keyClick(&view, Qt::Key_Escape);
        QVERIFY(!m_s->model->scanning());
        // The stopped scan's late result is thrown away.
        QTest::qWait(200);
        QVERIFY(!m_s->model->root());
        QVERIFY(!m_s->model->scanning());
    }

    void theCardSitsAboveTheBottomEdge()
    {
        ScanningView view(*m_s->model, *m_s->game, true);
        view.resize(700, 500);
        view.show();
        QVERIFY(QTest::qWaitForWindowExposed(&view));
        const QRect card = view.card()->geometry();
        QCOMPARE(card.bottom() + 1, 500 - ScanningView::cardBottom);
        QVERIFY(std::abs(card.center().x() - 350) <= 1);

        // A longer text widens the card at once: nothing is cut off.
        m_s->model->setScanPath("/tmp/a folder with a rather long name indeed");
        QCoreApplication::sendPostedEvents();
        for (const QLabel *label : view.card()->findChildren<QLabel *>())
            QVERIFY(label->width() >= label->sizeHint().width());
    }

    void confettiFollowsItsFormula()
    {
        Confetti confetti(*m_s->game);
        confetti.setRandom(sequence({0.0}));
        const QDateTime start = QDateTime::fromMSecsSinceEpoch(1'000'000);
        confetti.burst(start);
        QCOMPARE(int(confetti.bits().size()), Confetti::count);
        const Confetti::Bit low = confetti.bits().front();
        QCOMPARE(low.vx, -380.0);
        QCOMPARE(low.vy, -620.0);
        QCOMPARE(low.spin, -8.0);
        QCOMPARE(low.color, Confetti::colors().front());

        confetti.setRandom(sequence({0.999999}));
        confetti.burst(start);
        const Confetti::Bit high = confetti.bits().front();
        QVERIFY(high.vx < 380 && high.vx > 379.9);
        QVERIFY(high.vy < -220 && high.vy > -220.1);
        QCOMPARE(high.color, Confetti::colors().back());

        const std::vector<Confetti::Piece> late = confetti.frame(1.9, QSizeF(1000, 600));
        QCOMPARE(int(late.size()), Confetti::count);
        for (const Confetti::Piece &p : late)
            QVERIFY(qFuzzyCompare(p.opacity, 0.05));
        // x = w/2 + vx t, y = 0.3 h + vy t + 700 t².
        QVERIFY(qFuzzyCompare(late.front().centre.x(), 500 + high.vx * 1.9));
        QVERIFY(qFuzzyCompare(late.front().centre.y(), 180 + high.vy * 1.9 + 700 * 1.9 * 1.9));
        QVERIFY(confetti.frame(2.0, QSizeF(1000, 600)).empty());
    }

    void confettiDrawsNothingOnceTwoSecondsHavePassed()
    {
        Confetti confetti(*m_s->game);
        confetti.resize(400, 300);
        confetti.setRandom(sequence({0.5}));
        const QDateTime start = QDateTime::fromMSecsSinceEpoch(5'000'000);
        QDateTime now = start.addMSecs(100);
        confetti.setClock([&now] { return now; });
        confetti.burst(start);
        // With every draw at the middle, all bits fly straight up together from the centre.
        const QImage early = render(confetti);
        QVERIFY(qAlpha(early.pixel(200, 90 - 42 + 7)) > 0);
        now = start.addMSecs(2000);
        QVERIFY(transparent(render(confetti)));
    }

    void aSecondBurstRestartsWithNewBits()
    {
        Confetti confetti(*m_s->game);
        int draws = 0;
        confetti.setRandom([&draws] { return (draws++ % 97) / 97.0; });
        const QDateTime first = QDateTime::fromMSecsSinceEpoch(9'000'000);
        m_s->game->unlock(QStringLiteral("first_scan")); // sets the game's confetti
        QVERIFY(confetti.start());
        QCOMPARE(*confetti.start(), *m_s->game->confetti());

        confetti.burst(first);
        const std::vector<Confetti::Bit> before = confetti.bits();
        const QDateTime second = first.addMSecs(900);
        confetti.burst(second);
        QCOMPARE(*confetti.start(), second);
        QCOMPARE(confetti.bits().size(), before.size());
        QVERIFY(confetti.bits().front().vx != before.front().vx);
        QVERIFY(confetti.running());
    }

    void toastsComeAndGoByTheirIdentity()
    {
        Game::Options o;
        o.play = [](const Sound::Sfx &) {};
        o.toastDuration = std::chrono::milliseconds(150);
        Game game(o);
        QWidget window;
        window.resize(800, 500);
        ToastView toast(game, false, &window);
        toast.setGeometry(window.rect());
        window.show();
        QVERIFY(QTest::qWaitForWindowExposed(&window));
        QVERIFY(!toast.shown());

        game.post(Toast::make(QStringLiteral("💰"), QStringLiteral("12 bounties posted"),
                              QStringLiteral("Up to 3 GB you could reclaim")));
        game.post(Toast::make(QStringLiteral("🐉"), QStringLiteral("Dragon slain!"),
                              QStringLiteral("+190 XP")));
        QCOMPARE(toast.shown()->title, QStringLiteral("12 bounties posted"));
        const QRectF rest = toast.restingRect();
        QCOMPARE(rest.top(), ToastView::top);
        QVERIFY(std::abs(rest.center().x() - 400) < 1);
        QCOMPARE(toast.accessibleName(), QStringLiteral("12 bounties posted"));

        // The same toast announced again is no new arrival.
        const QUuid id = toast.shown()->id;
        Q_EMIT game.toastChanged();
        QCOMPARE(toast.shown()->id, id);
        QVERIFY(!toast.leaving());

        // The next one arrives while the first leaves; then the top empties.
        QTRY_COMPARE(toast.shown()->title, QStringLiteral("Dragon slain!"));
        QTRY_VERIFY(!toast.shown());
        QTRY_VERIFY(!toast.leaving());
    }

    void theFolderChooserAsksForAFolderToScan()
    {
        const std::string start = makeTree().toStdString();
        const std::string chosen = start + "/a";
        QString accept;
        bool foldersOnly = false;
        QString startedIn;
        QTimer::singleShot(0, this, [&] {
            auto *panel = qobject_cast<QFileDialog *>(QApplication::activeModalWidget());
            QVERIFY(panel);
            accept = panel->labelText(QFileDialog::Accept);
            foldersOnly = panel->fileMode() == QFileDialog::Directory &&
                          panel->testOption(QFileDialog::ShowDirsOnly);
            startedIn = panel->directory().absolutePath();
            panel->selectFile(QFile::decodeName(QByteArray::fromStdString(chosen)));
            static_cast<QDialog *>(panel)->accept();
        });
        const std::optional<std::string> answer = FolderChooser::dialog()(start);
        QCOMPARE(accept, QStringLiteral("Scan"));
        QVERIFY(foldersOnly);
        QCOMPARE(startedIn, QFile::decodeName(QByteArray::fromStdString(start)));
        QCOMPARE(answer, std::optional(chosen));

        QTimer::singleShot(0, this, [] {
            if (auto *panel = qobject_cast<QFileDialog *>(QApplication::activeModalWidget()))
                panel->reject();
        });
        QCOMPARE(FolderChooser::dialog()(start), std::nullopt);
    }
};

DUSTMERE_WIDGET_TEST_MAIN(TestFrames)
#include "test_frames.moc"
