#include "app/CommandLine.h"
#include "app/HeadlessReport.h"
#include "game/Game.h"
#include "magic/Magic.h"
#include "platform/Appearance.h"
#include "platform/Home.h"
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

#include <cstdio>
#include <optional>
#include <sys/stat.h>
#include <cstdlib>

namespace {

bool hasDisplay()
{
    const auto set = [](const char *name) {
        const char *v = std::getenv(name);
        return v && *v;
    };
    return set("DISPLAY") || set("WAYLAND_DISPLAY");
}

std::string normalized(const QString &path)
{
    std::string p = QFile::encodeName(path).toStdString();
    while (p.size() > 1 && p.back() == '/')
        p.pop_back();
    return p;
}

// A one-line complaint when the folder to scan is unusable.
std::optional<std::string> folderProblem(const std::string &path)
{
    struct stat st;
    if (stat(path.c_str(), &st) != 0)
        return "no such folder: " + path;
    if (!S_ISDIR(st.st_mode))
        return "not a folder: " + path;
    return std::nullopt;
}

int runWindow(int argc, char *argv[], const CommandLine &cl)
{
    QApplication app(argc, argv);
    QApplication::setApplicationName(QStringLiteral("Dustmere"));
    QApplication::setApplicationVersion(QStringLiteral(DUSTMERE_VERSION));
    QApplication::setDesktopFileName(QStringLiteral("dustmere"));
    QApplication::setWindowIcon(QIcon(QStringLiteral(":/dustmere.svg")));
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    if (cl.appearance != CommandLine::Appearance::system) {
        QApplication::setPalette(Appearance::palette(cl.appearance == CommandLine::Appearance::dark
                                                         ? Appearance::Scheme::dark
                                                         : Appearance::Scheme::light));
    }
    // Without a sound server Qt Multimedia complains on every attempt; silence is the intended outcome.
    QLoggingCategory::setFilterRules(QStringLiteral("qt.multimedia*=false"));

    // Old settings are copied before the state objects read theirs.
    Migration::migrate();
    const bool reduceMotion =
        cl.reduceMotion || Settings::boolean(*Settings::open(), QStringLiteral("reduceMotion")).value_or(false);

    Model model;
    Game game;
    Magic magic;
    model.setFolderChooser(FolderChooser::dialog());
    MainWindow window(model, game, magic, {cl.scanPath, reduceMotion});
    window.show();
    return QApplication::exec();
}

} // namespace

int main(int argc, char *argv[])
{
    QStringList args;
    for (int i = 1; i < argc; ++i)
        args << QString::fromLocal8Bit(argv[i]);

    const auto parsed = CommandLine::parse(args);
    if (const auto *error = std::get_if<CommandLine::Error>(&parsed)) {
        std::fprintf(stderr, "dustmere: %s\n", qPrintable(error->message));
        return 2;
    }
    const auto &cl = std::get<CommandLine>(parsed);
    if (cl.help) {
        std::fputs(qPrintable(CommandLine::usage()), stdout);
        return 0;
    }
    if (cl.version) {
        std::printf("dustmere %s\n", DUSTMERE_VERSION);
        return 0;
    }
    const bool named = cl.scanPath && !cl.scanPath->isEmpty();
    const std::string path = named ? normalized(*cl.scanPath) : Home::path();
    if (const auto problem = folderProblem(path); problem && (named || cl.report || !hasDisplay())) {
        std::fprintf(stderr, "dustmere: %s\n", problem->c_str());
        return 2;
    }
    if (cl.report || !hasDisplay())
        return runHeadlessReport(path, cl.report.value_or(CommandLine::ReportFormat::text), cl.depth);
    return runWindow(argc, argv, cl);
}
