#include "app/WindowEntry.h"

#include "game/Game.h"
#include "magic/Magic.h"
#include "platform/Appearance.h"
#include "platform/DesktopScheme.h"
#include "platform/Settings.h"
#include "session/Migration.h"
#include "session/Model.h"
#include "ui/MainWindow.h"
#include "ui/screens/FolderChooser.h"

#include <QApplication>
#include <QFile>
#include <QIcon>
#include <QLoggingCategory>
#include <QStyleFactory>

int dustmere_run_window(int argc, char *argv[], const CommandLine *commandLine)
{
    const CommandLine &cl = *commandLine;
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Dustmere"));
    QApplication::setApplicationVersion(QStringLiteral(DUSTMERE_VERSION));
    QApplication::setDesktopFileName(QStringLiteral(DUSTMERE_APP_ID));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/dustmere.svg")));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    // --appearance= wins; otherwise the desktop's preference, followed live, or failing that
    // the platform theme's own palette.
    std::unique_ptr<DesktopScheme> desktop;
    if (cl.appearance != CommandLine::Appearance::system) {
        QApplication::setPalette(Appearance::palette(cl.appearance == CommandLine::Appearance::dark
                                                         ? Appearance::Scheme::dark
                                                         : Appearance::Scheme::light));
    } else {
        desktop = std::make_unique<DesktopScheme>();
        const QPalette platform = QApplication::palette();
        const auto follow = [scheme = desktop.get(), platform] {
            const std::optional<Appearance::Scheme> s = scheme->scheme();
            QApplication::setPalette(s ? Appearance::palette(*s) : platform);
        };
        follow();
        QObject::connect(desktop.get(), &DesktopScheme::changed, &app, follow);
    }
    // Without a sound server Qt Multimedia complains on every attempt; silence is the intended
    // outcome.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.multimedia*=false"));

    // A damaged settings file is copied aside before anything reads (and later saves over) it.
    const std::optional<QString> settingsKept = Settings::keepDamaged();
    // Old settings are copied before the state objects read theirs.
    Migration::migrate();
    const bool reduceMotion =
        cl.reduceMotion ||
        Settings::boolean(*Settings::open(), QStringLiteral("reduceMotion")).value_or(false);

    Model model;
    Game game;
    Magic magic;
    model.setFolderChooser(FolderChooser::dialog());
    std::optional<QString> openFile;
    if (cl.openFile)
        openFile = QFile::decodeName(QByteArray::fromStdString(*cl.openFile));
    MainWindow window(model, game, magic, {cl.scanPath, settingsKept, reduceMotion, openFile});
    window.show();
    return QApplication::exec();
}
