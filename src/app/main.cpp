#include "app/CommandLine.h"
#include "app/HeadlessReport.h"
#include "app/WindowEntry.h"
#include "platform/DisplayName.h"
#include "platform/Home.h"
#include "platform/Paths.h"
#include "snapshot/SnapshotCodec.h"

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
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

// A one-line complaint when the folder to scan is unusable.
std::optional<std::string> folderProblem(const std::string &path)
{
    const std::string shown = DisplayName::of(path).toStdString();
    struct stat st;
    if (stat(path.c_str(), &st) != 0) {
        if (errno == ENOENT || errno == ENOTDIR)
            return "no such folder: " + shown;
        if (errno == EACCES)
            return "permission denied: " + shown;
        return shown + ": " + std::strerror(errno);
    }
    if (!S_ISDIR(st.st_mode))
        return "not a folder: " + shown;
    return std::nullopt;
}

// Whether a file could be a report or a snapshot at all; the window reads it in full.
std::optional<std::string> reportProblem(const std::string &file)
{
    const std::string shown = DisplayName::of(file).toStdString();
    std::FILE *f = std::fopen(file.c_str(), "rb");
    if (!f)
        return "cannot read " + shown + ": " + std::strerror(errno);
    char start[8] = {};
    std::size_t n = std::fread(start, 1, sizeof start, f);
    std::fclose(f);
    std::size_t at = 0;
    while (at < n && std::isspace(static_cast<unsigned char>(start[at])))
        ++at;
    if (SnapshotCodec::hasMagic(QByteArrayView(start, qsizetype(n))))
        return std::nullopt;
    if (at < n && start[at] == '{')
        return std::nullopt;
    return "not a Dustmere report or snapshot: " + shown;
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
    // Bytes as the system passed them: a folder's name need not be valid in any encoding.
    const auto parsed = CommandLine::parse(std::vector<std::string>(argv + 1, argv + argc));
    if (const auto *error = std::get_if<CommandLine::Error>(&parsed)) {
        std::fprintf(stderr, "dustmere: %s\n", qPrintable(error->message));
        return 2;
    }
    CommandLine cl = std::get<CommandLine>(parsed);
    if (cl.help) {
        std::fputs(qPrintable(CommandLine::usage()), stdout);
        return 0;
    }
    if (cl.version) {
        std::printf("dustmere %s\n", DUSTMERE_VERSION);
        return 0;
    }
    if (cl.openFile) {
        cl.openFile = Paths::absolute(*cl.openFile, Paths::currentFolder());
        std::optional<std::string> problem = reportProblem(*cl.openFile);
        if (!problem && (cl.report || !hasDisplay()))
            problem = "--open shows a report in the window, and there is no display here";
        if (problem) {
            std::fprintf(stderr, "dustmere: %s\n", problem->c_str());
            return 2;
        }
        return runWindow(argc, argv, cl);
    }
    const bool named = cl.scanPath && !cl.scanPath->empty();
    const std::string path =
        named ? CommandLine::folder(*cl.scanPath, Home::path(), Paths::currentFolder())
              : Home::path();
    if (const auto problem = folderProblem(path);
        problem && (named || cl.report || !hasDisplay())) {
        std::fprintf(stderr, "dustmere: %s\n", problem->c_str());
        return 2;
    }
    if (cl.report || !hasDisplay())
        return runHeadlessReport(path, cl);
    if (named)
        cl.scanPath = path;
    return runWindow(argc, argv, cl);
}
