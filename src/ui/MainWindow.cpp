#include "ui/MainWindow.h"

#include "game/Game.h"
#include "session/Model.h"

#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QMenuBar>
#include <QMessageBox>

MainWindow::MainWindow(Model &model, Game &game, Magic &magic, ContentView::Options options,
                       QWidget *parent)
    : QMainWindow(parent), m_content(new ContentView(model, game, magic, std::move(options), this))
{
    setObjectName(QStringLiteral("main"));
    setWindowTitle(QStringLiteral("Dustmere"));
    setMinimumSize(980, 620);
    resize(1280, 820);
    setCentralWidget(m_content);
    connect(m_content, &ContentView::subtitleChanged, this, [this](const QString &subtitle) {
        setWindowTitle(subtitle.isEmpty() ? QStringLiteral("Dustmere")
                                          : subtitle + QStringLiteral(" — Dustmere"));
    });

    m_app = menuBar()->addMenu(QStringLiteral("Dustmere"));
    m_app->addAction(QStringLiteral("About Dustmere"), this, &MainWindow::showAbout);
    m_app->addSeparator();
    // Closing the one window quits, as Qt does after the last window.
    QAction *quit = m_app->addAction(QStringLiteral("Quit"), this, &QWidget::close);
    quit->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_Q));
    quit->setShortcutContext(Qt::ApplicationShortcut);

    m_file = menuBar()->addMenu(QStringLiteral("File"));
    QAction *openReport = m_file->addAction(QStringLiteral("Open Report…"), this, [this, &model] {
        const QString file = QFileDialog::getOpenFileName(
            this, QStringLiteral("Open Report"), QDir::homePath(),
            QStringLiteral("Dustmere reports and snapshots (*.json *.snapshot);;All files (*)"));
        if (!file.isEmpty())
            model.open(file);
    });
    openReport->setShortcut(QKeySequence(Qt::CTRL | Qt::Key_O));
    openReport->setShortcutContext(Qt::ApplicationShortcut);

    // The model operations ignore what does not apply, so the items stay enabled.
    m_world = menuBar()->addMenu(QStringLiteral("World"));
    m_world->addAction(QStringLiteral("Up One Level"), QKeySequence(Qt::CTRL | Qt::Key_Up), &model,
                       &Model::up);
    m_world->addAction(QStringLiteral("Rescan"), QKeySequence(Qt::CTRL | Qt::Key_R), this,
                       [&model, &game] { model.scan(game); });
    m_world->addSeparator();
    QAction *zoomIn =
        m_world->addAction(QStringLiteral("Zoom In"), this, [&model] { model.zoom(+1); });
    zoomIn->setShortcuts(
        {QKeySequence(Qt::CTRL | Qt::Key_Equal), QKeySequence(Qt::CTRL | Qt::Key_Plus)});
    m_world->addAction(QStringLiteral("Zoom Out"), QKeySequence(Qt::CTRL | Qt::Key_Minus), this,
                       [&model] { model.zoom(-1); });
    m_world->addAction(QStringLiteral("Fit Whole Realm"), QKeySequence(Qt::CTRL | Qt::Key_0), this,
                       [&model] { model.setZoomLevel(0); });
    for (QAction *action : m_world->actions())
        action->setShortcutContext(Qt::ApplicationShortcut);
}

void MainWindow::showAbout()
{
    if (m_about) {
        m_about->raise();
        return;
    }
    const QString version = QCoreApplication::applicationVersion();
    auto *box = new QMessageBox(QMessageBox::NoIcon, QStringLiteral("About Dustmere"),
                                QStringLiteral("Dustmere %1").arg(version).trimmed(),
                                QMessageBox::Close, this);
    box->setIconPixmap(windowIcon().pixmap(64, 64));
    box->setInformativeText(QStringLiteral(
        "Explore where your disk space went, as a small role-playing game. Slain monsters go to "
        "the Trash: Dustmere never deletes anything itself."));
    box->setAttribute(Qt::WA_DeleteOnClose);
    m_about = box;
    box->open();
}
