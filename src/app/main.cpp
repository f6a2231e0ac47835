#include "app/CommandLine.h"
#include "app/HeadlessReport.h"
#include "app/WindowEntry.h"
#include "platform/Home.h"

#include <QFile>
#include <cstdio>
#include <cstdlib>
#include <dlfcn.h>
#include <optional>
#include <sys/stat.h>
#include <unistd.h>

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

// The window module sits beside the executable in the build tree and in the library folder
// once installed.
int runWindow(int argc, char *argv[], const CommandLine &cl)
{
    std::string exe(4096, '\0');
    const ssize_t n = readlink("/proc/self/exe", exe.data(), exe.size() - 1);
    const std::string dir =
        n > 0 ? exe.substr(0, exe.rfind('/', std::size_t(n))) : std::string(".");
    std::string error;
    for (const std::string &candidate :
         {dir + "/" DUSTMERE_WINDOW_MODULE, dir + "/" DUSTMERE_INSTALLED_MODULE}) {
        void *module = dlopen(candidate.c_str(), RTLD_NOW | RTLD_LOCAL);
        if (!module) {
            error = dlerror();
            continue;
        }
        if (auto run = reinterpret_cast<RunWindowFunction>(dlsym(module, "dustmere_run_window")))
            return run(argc, argv, &cl);
        error = dlerror();
    }
    std::fprintf(stderr, "dustmere: cannot load the window: %s\n", error.c_str());
    return 1;
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
    if (const auto problem = folderProblem(path);
        problem && (named || cl.report || !hasDisplay())) {
        std::fprintf(stderr, "dustmere: %s\n", problem->c_str());
        return 2;
    }
    if (cl.report || !hasDisplay())
        return runHeadlessReport(path, cl.report.value_or(CommandLine::ReportFormat::text),
                                 cl.depth, cl.walk);
    return runWindow(argc, argv, cl);
}
