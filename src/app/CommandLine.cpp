#include "app/CommandLine.h"

namespace {

std::optional<QString> valueOf(const QString &arg, QLatin1StringView option)
{
    if (!arg.startsWith(option) || arg.size() <= option.size() || arg[option.size()] != u'=')
        return std::nullopt;
    return arg.mid(option.size() + 1);
}

} // namespace

std::variant<CommandLine, CommandLine::Error> CommandLine::parse(const QStringList &args)
{
    CommandLine cl;
    for (const QString &arg : args) {
        if (const auto v = valueOf(arg, QLatin1StringView("--scan"))) {
            // Only the first --scan= counts; an empty one starts nothing.
            if (!cl.scanPath)
                cl.scanPath = *v;
        } else if (arg == QLatin1StringView("--report")) {
            cl.report = ReportFormat::text;
        } else if (const auto v = valueOf(arg, QLatin1StringView("--report"))) {
            if (*v == QLatin1StringView("text"))
                cl.report = ReportFormat::text;
            else if (*v == QLatin1StringView("json"))
                cl.report = ReportFormat::json;
            else
                return Error{
                    QStringLiteral("unknown report format '%1' (use text or json)").arg(*v)};
        } else if (const auto v = valueOf(arg, QLatin1StringView("--depth"))) {
            bool ok = false;
            const int depth = v->toInt(&ok);
            if (!ok || depth < 0)
                return Error{
                    QStringLiteral("--depth needs a whole number of 0 or more, not '%1'").arg(*v)};
            cl.depth = depth;
        } else if (const auto v = valueOf(arg, QLatin1StringView("--walker"))) {
            if (*v == QLatin1StringView("shared"))
                cl.walk = Scanner::Walk::shared;
            else if (*v == QLatin1StringView("fts"))
                cl.walk = Scanner::Walk::fts;
            else
                return Error{QStringLiteral("unknown walker '%1' (use shared or fts)").arg(*v)};
        } else if (const auto v = valueOf(arg, QLatin1StringView("--appearance"))) {
            if (*v == QLatin1StringView("light"))
                cl.appearance = Appearance::light;
            else if (*v == QLatin1StringView("dark"))
                cl.appearance = Appearance::dark;
            else
                return Error{QStringLiteral("unknown appearance '%1' (use light or dark)").arg(*v)};
        } else if (arg == QLatin1StringView("--reduce-motion")) {
            cl.reduceMotion = true;
        } else if (arg == QLatin1StringView("--help") || arg == QLatin1StringView("-h")) {
            cl.help = true;
        } else if (arg == QLatin1StringView("--version")) {
            cl.version = true;
        } else {
            return Error{QStringLiteral("unknown argument '%1' (see --help)").arg(arg)};
        }
    }
    return cl;
}

QString CommandLine::usage()
{
    return QStringLiteral(
        "Usage: dustmere [options]\n"
        "\n"
        "Explore where your disk space went, as a small role-playing game.\n"
        "\n"
        "  --scan=PATH               scan PATH at start\n"
        "  --report[=text|json]      no window: scan, advise, print a report to stdout, exit\n"
        "  --depth=N                 with --report=json: how many levels of folders to include\n"
        "  --walker=shared|fts       with --report: how folders are walked (both measure the\n"
        "                            same; shared is faster, fts is the reference)\n"
        "  --appearance=light|dark   override the system appearance\n"
        "  --reduce-motion           keep animations to a minimum\n"
        "  --help                    show this help\n"
        "  --version                 show the version\n"
        "\n"
        "Without a display, dustmere prints the text report of --scan=PATH or of your home\n"
        "folder.\n");
}
