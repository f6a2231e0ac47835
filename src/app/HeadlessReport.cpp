#include "app/HeadlessReport.h"

#include "advisor/Advisor.h"
#include "platform/DisplayName.h"
#include "report/Report.h"
#include "scan/Fmt.h"
#include "scan/Scanner.h"

#include <chrono>
#include <climits>
#include <cstdio>
#include <cstring>
#include <future>
#include <mutex>
#include <unistd.h>

namespace {

void showProgress(const Scanner::Progress &p)
{
    const QByteArray line = QStringLiteral("\r\033[KScanning… %1 files · %2")
                                .arg(Fmt::count(p.files), Fmt::bytes(p.bytes))
                                .toUtf8();
    std::fwrite(line.constData(), 1, std::size_t(line.size()), stderr);
    std::fflush(stderr);
}

// What the report cannot show, said on stderr so that stdout stays the report alone.
void noteGaps(const std::string &path, const Scanner::Gaps &gaps)
{
    if (gaps.rootError != 0) {
        std::fprintf(stderr, "dustmere: cannot read %s: %s; the report shows nothing inside it\n",
                     qPrintable(DisplayName::of(path)), std::strerror(gaps.rootError));
    }
    if (gaps.tooLong > 0) {
        std::fprintf(stderr,
                     "dustmere: %s not measured: %s path is longer than the system allows "
                     "(%d bytes)\n",
                     qPrintable(Fmt::counted(gaps.tooLong, "entry", "entries")),
                     gaps.tooLong == 1 ? "its" : "their", PATH_MAX);
    }
}

} // namespace

int runHeadlessReport(const std::string &path, CommandLine::ReportFormat format,
                      std::optional<int> depth, std::optional<Scanner::Walk> walk)
{
    Scanner scanner;
    if (walk)
        scanner.setWalk(*walk);
    // Each finished top-level folder is written while the others are still being walked.
    std::mutex fragmentsLock;
    Report::Fragments fragments;
    const bool json = format == CommandLine::ReportFormat::json;
    if (json) {
        scanner.setOnFolderFinished([&fragmentsLock, &fragments, depth](const Node &folder) {
            std::string text = Report::jsonFragment(folder, depth);
            std::lock_guard guard(fragmentsLock);
            fragments.emplace(&folder, std::move(text));
        });
    }
    auto result = std::async(std::launch::async, [&scanner, &path] { return scanner.scan(path); });
    const bool terminal = isatty(STDERR_FILENO);
    while (result.wait_for(std::chrono::milliseconds(150)) != std::future_status::ready) {
        if (terminal)
            showProgress(scanner.progress());
    }
    if (terminal)
        std::fputs("\r\033[K", stderr);

    noteGaps(path, scanner.gaps());

    Report::Input input;
    input.root = result.get();
    input.bigFiles = scanner.bigFiles();
    const Advisor::Context context;
    input.advice = Advisor::advise(input.root, input.bigFiles, context);
    input.home = context.home;
    const std::string out =
        json ? Report::json(input, depth, &fragments) : Report::text(input, depth);
    std::fwrite(out.data(), 1, out.size(), stdout);
    return std::fflush(stdout) == 0 ? 0 : 1;
}
