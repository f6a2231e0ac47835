#include "app/HeadlessReport.h"

#include "advisor/Advisor.h"
#include "platform/DisplayName.h"
#include "report/Report.h"
#include "scan/Fmt.h"
#include "scan/ScanEstimate.h"
#include "scan/Scanner.h"
#include "snapshot/SnapshotCodec.h"
#include "snapshot/SnapshotStore.h"

#include <QSysInfo>
#include <chrono>
#include <climits>
#include <cstdio>
#include <cstring>
#include <future>
#include <mutex>
#include <unistd.h>

namespace {

void showProgress(const Scanner::Progress &p, const std::optional<ScanEstimate::Guess> &guess)
{
    const QString counts =
        QStringLiteral("%1 files · %2").arg(Fmt::count(p.files), Fmt::bytes(p.bytes));
    const QByteArray line =
        (QStringLiteral("\r\033[KScanning… ") +
         (guess ? ScanEstimate::text(*guess) + QStringLiteral(" · ") : QString()) + counts)
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

int runHeadlessReport(const std::string &path, const CommandLine &cl)
{
    const QDateTime started = QDateTime::currentDateTimeUtc();
    const SnapshotStore store;
    // The last scan of this folder, read while the walk begins: the totals at once, for the
    // progress line, and the tree for the growth of each folder.
    std::optional<ScanEstimate> estimate;
    if (const auto known = cl.remember ? store.summary(path) : std::nullopt)
        estimate.emplace(known->files, known->size);
    std::shared_future<std::optional<Snapshot>> previous =
        std::async(std::launch::async, [&store, &path, load = estimate.has_value()] {
            return load ? store.load(path) : std::nullopt;
        }).share();

    Scanner scanner;
    if (cl.walk)
        scanner.setWalk(*cl.walk);
    // Each finished top-level folder is written while the others are still being walked.
    std::mutex fragmentsLock;
    Report::Fragments fragments;
    const bool json = cl.report == CommandLine::ReportFormat::json;
    if (json) {
        scanner.setOnFolderFinished(
            [&fragmentsLock, &fragments, &previous, depth = cl.depth](const Node &folder) {
                const std::optional<Snapshot> &then = previous.get();
                std::string text = Report::jsonFragment(folder, depth, then ? &*then : nullptr);
                std::lock_guard guard(fragmentsLock);
                fragments.emplace(&folder, std::move(text));
            });
    }
    auto result = std::async(std::launch::async, [&scanner, &path] { return scanner.scan(path); });
    const bool terminal = isatty(STDERR_FILENO);
    const auto start = std::chrono::steady_clock::now();
    while (result.wait_for(std::chrono::milliseconds(150)) != std::future_status::ready) {
        if (!terminal)
            continue;
        const Scanner::Progress now = scanner.progress();
        const auto elapsed = std::chrono::duration_cast<std::chrono::milliseconds>(
            std::chrono::steady_clock::now() - start);
        showProgress(now, estimate ? estimate->at(now, elapsed) : std::nullopt);
    }
    if (terminal)
        std::fputs("\r\033[K", stderr);

    const Scanner::Gaps gaps = scanner.gaps();
    noteGaps(path, gaps);

    Report::Input input;
    input.root = result.get();
    input.bigFiles = scanner.bigFiles();
    const Advisor::Context context;
    input.advice = Advisor::advise(input.root, input.bigFiles, context);
    input.home = context.home;
    input.previous = previous.get() ? &*previous.get() : nullptr;
    input.host = QSysInfo::machineHostName();
    input.scanned = started;
    // Remembered beside the writing of the report; a folder that could not be read is not
    // remembered as empty.
    std::future<void> remembered;
    if (cl.remember && gaps.rootError == 0) {
        remembered = std::async(std::launch::async, [&store, &input, &path] {
            store.save(SnapshotCodec::pack(SnapshotCodec::flatten(*input.root, input.bigFiles,
                                                                  input.scanned, input.host)),
                       path);
        });
    }
    const std::string out =
        json ? Report::json(input, cl.depth, &fragments) : Report::text(input, cl.depth);
    std::fwrite(out.data(), 1, out.size(), stdout);
    const bool written = std::fflush(stdout) == 0;
    if (remembered.valid())
        remembered.wait();
    return written ? 0 : 1;
}
