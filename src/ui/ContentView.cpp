#include "ui/ContentView.h"

#include "game/Game.h"
#include "magic/Magic.h"
#include "magic/ManaOnSlay.h"
#include "platform/DisplayName.h"
#include "session/Model.h"
#include "ui/SlayPrompt.h"
#include "ui/TopBar.h"
#include "ui/screens/BountyView.h"
#include "ui/screens/Confetti.h"
#include "ui/screens/RankingView.h"
#include "ui/screens/ScanningView.h"
#include "ui/screens/ToastView.h"
#include "ui/screens/WelcomeView.h"
#include "world/ui/WorldView.h"

#include <QDir>
#include <QFrame>
#include <QGridLayout>
#include <QMessageBox>
#include <QPushButton>
#include <QStackedWidget>
#include <QTimer>
#include <QVBoxLayout>

namespace {

// QMessageBox sizes itself to its short title and wraps the rest into a narrow column; a path or
// a sentence of explanation reads better on a few wide lines.
void widen(QMessageBox &box)
{
    if (auto *grid = qobject_cast<QGridLayout *>(box.layout()))
        grid->addItem(new QSpacerItem(440, 0, QSizePolicy::Minimum, QSizePolicy::Fixed),
                      grid->rowCount(), 0, 1, grid->columnCount());
}

} // namespace

ContentView::ContentView(Model &model, Game &game, Magic &magic, Options options, QWidget *parent)
    : QWidget(parent), m_model(model), m_game(game), m_options(std::move(options))
{
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    m_topBar = new TopBar(model, game, magic, m_options.reduceMotion, this);
    column->addWidget(m_topBar);
    auto *divider = new QFrame(this);
    divider->setFrameShape(QFrame::HLine);
    divider->setFrameShadow(QFrame::Plain);
    divider->setFixedHeight(1);
    column->addWidget(divider);

    m_stack = new QStackedWidget(this);
    m_welcome = new WelcomeView(model, game, m_stack);
    m_scanning = new ScanningView(model, game, m_options.reduceMotion, m_stack);
    m_world = new WorldView(model, game, magic, m_options.reduceMotion, m_stack);
    m_ranking = new RankingView(model, game, m_stack);
    m_bounties = new BountyView(model, game, m_stack);
    for (QWidget *screen : {m_welcome, m_scanning, m_world, m_ranking, m_bounties})
        m_stack->addWidget(screen);
    column->addWidget(m_stack, 1);

    m_toast = new ToastView(game, m_options.reduceMotion, this);
    auto *confetti = new Confetti(game, this);
    confetti->setReduceMotion(m_options.reduceMotion);
    m_confetti = confetti;

    for (const auto signal : {&Model::scanningChanged, &Model::currentChanged, &Model::modeChanged})
        connect(&model, signal, this, &ContentView::chooseMainArea);
    connect(&model, &Model::metricChanged, this, [this] { m_model.play(Sound::Sfx::click()); });
    connect(&model, &Model::modeChanged, this, [this] { m_model.play(Sound::Sfx::click()); });
    connect(&model, &Model::pendingChanged, this, &ContentView::askToSlay);
    connect(&model, &Model::errorChanged, this, &ContentView::showError);
    connect(&model, &Model::openFailed, this, &ContentView::showOpenFailed);
    new ManaOnSlay(game, magic, this);
    chooseMainArea();
}

ContentView::~ContentView() = default;

QWidget *ContentView::mainArea() const
{
    return m_stack->currentWidget();
}

QString ContentView::subtitle() const
{
    if (m_model.scanning() && !m_model.current())
        return QStringLiteral("Charting…");
    if (const NodePtr current = m_model.current())
        return DisplayName::of(current->name());
    return {};
}

void ContentView::chooseMainArea()
{
    QWidget *area = m_welcome;
    // A remembered realm stays on show while its fresh scan runs.
    if (m_model.scanning() && !m_model.current()) {
        area = m_scanning;
    } else if (m_model.current()) {
        switch (m_model.mode()) {
        case Mode::map:
            area = m_world;
            break;
        case Mode::ranking:
            area = m_ranking;
            break;
        case Mode::bounties:
            area = m_bounties;
            break;
        }
    }
    if (m_stack->currentWidget() != area) {
        m_stack->setCurrentWidget(area);
        area->setFocus();
    }
    Q_EMIT subtitleChanged(subtitle());
}

void ContentView::showEvent(QShowEvent *event)
{
    QWidget::showEvent(event);
    placeOverlays();
    if (m_shown)
        return;
    m_shown = true;
    if (m_options.scanPath && !m_options.scanPath->empty() && !m_model.root() &&
        !m_model.scanning()) {
        m_model.setScanPath(*m_options.scanPath);
        m_model.scan(m_game);
    }
    if (m_options.openFile)
        m_model.open(*m_options.openFile);
    if (m_options.settingsKept)
        tellSettingsKept(*m_options.settingsKept);
}

void ContentView::tellSettingsKept(const QString &backup)
{
    auto *box = new QMessageBox(QMessageBox::Information, QStringLiteral("Dustmere"),
                                QStringLiteral("Your settings file was damaged"), QMessageBox::Ok,
                                window());
    box->setInformativeText(
        QStringLiteral("Dustmere started with fresh settings and kept the damaged file as %1.")
            .arg(DisplayName::of(QDir::toNativeSeparators(backup))));
    widen(*box);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void ContentView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    placeOverlays();
}

void ContentView::placeOverlays()
{
    m_confetti->setGeometry(rect());
    m_toast->setGeometry(rect());
    m_confetti->raise();
    m_toast->raise();
}

void ContentView::askToSlay()
{
    const std::optional<Model::Pending> pending = m_model.pending();
    if (!pending) {
        if (m_confirm)
            m_confirm->close();
        return;
    }
    if (m_confirm)
        m_confirm->deleteLater();
    auto *box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Dustmere"),
                                SlayPrompt::title(*pending), QMessageBox::Cancel, window());
    box->setInformativeText(SlayPrompt::message(*pending));
    QPushButton *trash = box->addButton(SlayPrompt::confirmLabel(), QMessageBox::DestructiveRole);
    box->setDefaultButton(qobject_cast<QPushButton *>(box->button(QMessageBox::Cancel)));
    box->setAttribute(Qt::WA_DeleteOnClose);
    m_confirm = box;
    connect(box, &QMessageBox::finished, this, [this, box, trash, pending = *pending] {
        const bool confirmed = box->clickedButton() == trash;
        m_confirm.clear(); // clearing `pending` below must not close this box a second time
        m_model.setPending(std::nullopt);
        if (!confirmed)
            return;
        if (const auto *f = std::get_if<Model::PendingFolder>(&pending))
            m_model.slay(f->node, m_game);
        else if (const auto *f = std::get_if<Model::PendingFile>(&pending))
            m_model.slay(f->file, m_game);
        else
            m_model.slayAll(std::get<Model::PendingBulk>(pending).items, m_game);
    });
    box->open();
}

void ContentView::showOpenFailed(const QString &message)
{
    auto *box =
        new QMessageBox(QMessageBox::Warning, QStringLiteral("Dustmere"),
                        QStringLiteral("Couldn't open that report"), QMessageBox::Ok, window());
    box->setInformativeText(message);
    widen(*box);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void ContentView::showError()
{
    const std::optional<QString> error = m_model.error();
    if (!error)
        return;
    if (m_alert)
        m_alert->deleteLater();
    auto *box =
        new QMessageBox(QMessageBox::Critical, QStringLiteral("Dustmere"),
                        QStringLiteral("Couldn't slay that one"), QMessageBox::Ok, window());
    box->setInformativeText(*error);
    widen(*box);
    box->setAttribute(Qt::WA_DeleteOnClose);
    m_alert = box;
    connect(box, &QMessageBox::finished, this, [this] {
        m_alert.clear();
        m_model.setError(std::nullopt);
    });
    box->open();
}
