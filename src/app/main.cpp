#include "app/CommandLine.h"
#include "app/HeadlessReport.h"
#include "platform/Home.h"

#include <QCoreApplication>
#include <QFile>

#include <cstdio>
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

    const std::string path =
        cl.scanPath && !cl.scanPath->isEmpty() ? normalized(*cl.scanPath) : Home::path();
    if (cl.report || !hasDisplay())
        return runHeadlessReport(path, cl.report.value_or(CommandLine::ReportFormat::text), cl.depth);

    // The window arrives with the main-window work; until then a desktop gets the report too.
    return runHeadlessReport(path, CommandLine::ReportFormat::text, cl.depth);
}
