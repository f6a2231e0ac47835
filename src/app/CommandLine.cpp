#include "app/CommandLine.h"

#include "platform/DisplayName.h"
#include "platform/Paths.h"

namespace {

std::optional<std::string_view> valueOf(std::string_view arg, std::string_view option)
{
    if (!arg.starts_with(option) || arg.size() <= option.size() || arg[option.size()] != '=')
        return std::nullopt;
    return arg.substr(option.size() + 1);
}

} // namespace

std::variant<CommandLine, CommandLine::Error>
CommandLine::parse(const std::vector<std::string> &args)
{
    CommandLine cl;
    for (const std::string &arg : args) {
        if (const auto v = valueOf(arg, "--scan")) {
            // Only the first folder counts.
            if (!cl.scanPath)
                cl.scanPath = std::string(*v);
        } else if (arg == "--report") {
            cl.report = ReportFormat::text;
        } else if (const auto v = valueOf(arg, "--report")) {
            if (*v == "text")
                cl.report = ReportFormat::text;
            else if (*v == "json")
                cl.report = ReportFormat::json;
            else
                return Error{QStringLiteral("unknown report format '%1' (use text or json)")
                                 .arg(DisplayName::of(*v))};
        } else if (const auto v = valueOf(arg, "--depth")) {
            bool ok = false;
            const int depth = QString::fromUtf8(v->data(), qsizetype(v->size())).toInt(&ok);
            if (!ok || depth < 0)
                return Error{QStringLiteral("--depth needs a whole number of 0 or more, not '%1'")
                                 .arg(DisplayName::of(*v))};
            cl.depth = depth;
        } else if (const auto v = valueOf(arg, "--walker")) {
            if (*v == "shared")
                cl.walk = Scanner::Walk::shared;
            else if (*v == "fts")
                cl.walk = Scanner::Walk::fts;
            else
                return Error{QStringLiteral("unknown walker '%1' (use shared or fts)")
                                 .arg(DisplayName::of(*v))};
        } else if (const auto v = valueOf(arg, "--appearance")) {
            if (*v == "light")
                cl.appearance = Appearance::light;
            else if (*v == "dark")
                cl.appearance = Appearance::dark;
            else
                return Error{QStringLiteral("unknown appearance '%1' (use light or dark)")
                                 .arg(DisplayName::of(*v))};
        } else if (const auto v = valueOf(arg, "--open")) {
            cl.openFile = std::string(*v);
        } else if (arg == "--no-remember") {
            cl.remember = false;
        } else if (arg == "--reduce-motion") {
            cl.reduceMotion = true;
        } else if (arg == "--help" || arg == "-h") {
            cl.help = true;
        } else if (arg == "--version") {
            cl.version = true;
        } else if (!arg.empty() && !arg.starts_with('-')) {
            // `dustmere PATH` is `dustmere --scan=PATH`.
            if (!cl.scanPath)
                cl.scanPath = arg;
        } else {
            return Error{
                QStringLiteral("unknown argument '%1' (see --help)").arg(DisplayName::of(arg))};
        }
    }
    return cl;
}

std::string CommandLine::folder(const std::string &spelled, const std::string &home,
                                const std::string &workingFolder)
{
    if (spelled == "~")
        return Paths::clean(home);
    if (spelled.starts_with("~/"))
        return Paths::absolute(std::string_view(spelled).substr(2), home);
    return Paths::absolute(spelled, workingFolder);
}

QString CommandLine::usage()
{
    return QStringLiteral(
        "Usage: dustmere [options] [PATH]\n"
        "\n"
        "Explore where your disk space went, as a small role-playing game.\n"
        "\n"
        "  PATH, --scan=PATH         scan PATH at start (~ is your home folder)\n"
        "  --report[=text|json]      no window: scan, advise, print a report to stdout, exit\n"
        "  --depth=N                 with --report: how many levels of folders to include\n"
        "                            (text: 1 unless given, json: all)\n"
        "  --walker=shared|fts       with --report: how folders are walked (both measure the\n"
        "                            same; shared is faster, fts is the reference)\n"
        "  --open=FILE               show a report (from --report=json, here or elsewhere) or a\n"
        "                            remembered scan in the window, read-only\n"
        "  --no-remember             neither read nor write remembered scans (what grew since\n"
        "                            the last scan, progress against its totals)\n"
        "  --appearance=light|dark   override the system appearance\n"
        "  --reduce-motion           keep animations to a minimum\n"
        "  --help                    show this help\n"
        "  --version                 show the version\n"
        "\n"
        "Without a display, dustmere prints the text report of PATH or of your home folder.\n");
}
