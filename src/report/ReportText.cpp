#include "platform/DisplayName.h"
#include "report/Report.h"
#include "scan/Fmt.h"
#include "snapshot/Counterpart.h"

#include <QString>
#include <algorithm>

namespace {

QString right(const QString &s, int width)
{
    return s.rightJustified(width, QLatin1Char(' '));
}

// Pads or cuts to `width` characters. A name isolated for its right-to-left letters is cut
// inside its isolates, which take no room on a terminal, so the isolation always closes.
QString left(const QString &s, int width)
{
    constexpr QChar open(0x2068);
    constexpr QChar close(0x2069);
    if (s.size() < 2 || s.front() != open || s.back() != close)
        return s.leftJustified(width, QLatin1Char(' '), true);
    const QString inner = s.mid(1, s.size() - 2).left(width);
    return open + inner + close + QString(width - inner.size(), QLatin1Char(' '));
}

QString safetySign(Advice::Safety s)
{
    switch (s) {
    case Advice::Safety::safe:
        return QStringLiteral("✅");
    case Advice::Safety::rebuild:
        return QStringLiteral("🔄");
    case Advice::Safety::review:
        return QStringLiteral("👁️");
    }
    return {};
}

// The growth column, present only when there is a remembered scan to compare with.
QString grownColumn(std::optional<std::int64_t> grown)
{
    return grown ? QLatin1Char(' ') + right(Fmt::growth(*grown), 10) : QString();
}

// One level of the tree: the biggest folders, the rest summed, then the loose files; each folder
// followed by its own level while `levels` lasts.
void territoryLevel(QString &out, const Node &folder, const Counterpart &then, int levels,
                    int indent)
{
    constexpr std::size_t shown = 20;
    constexpr int nameWidth = 24;
    const QString pad(indent, QLatin1Char(' '));
    const int width = std::max(8, nameWidth - indent);
    const auto &children = folder.children();
    for (std::size_t i = 0; i < std::min(shown, children.size()); ++i) {
        const Node &c = *children[i];
        const Counterpart place = then.child(c.name());
        out += QStringLiteral("  %1 %2 %3%4 %5%6 %7\n")
                   .arg(Tiers::emoji(Tiers::ofBytes(c.size())), left(Report::placeName(c), 30), pad,
                        left(DisplayName::of(c.name()), width), right(Fmt::bytes(c.size()), 10),
                        grownColumn(place.grown(c)), right(Fmt::files(c.files()), 14));
        if (levels > 1)
            territoryLevel(out, c, place, levels - 1, indent + 2);
    }
    const int restWidth = 55 - indent;
    if (children.size() > shown) {
        const std::size_t rest = children.size() - shown;
        std::uint64_t bytes = 0;
        std::optional<std::int64_t> grown;
        for (std::size_t i = shown; i < children.size(); ++i) {
            bytes += children[i]->size();
            if (const auto g = then.child(children[i]->name()).grown(*children[i]))
                grown = grown.value_or(0) + *g;
        }
        out += QStringLiteral("     %1%2 %3%4\n")
                   .arg(pad, left(QStringLiteral("%1 smaller folders").arg(rest), restWidth),
                        right(Fmt::bytes(bytes), 10), grownColumn(grown));
    }
    if (folder.looseFiles() > 0 && (indent == 0 || !children.empty())) {
        out += QStringLiteral("     %1%2 %3%4 %5\n")
                   .arg(pad, left(QStringLiteral("Loose files"), restWidth),
                        right(Fmt::bytes(folder.looseSize()), 10),
                        grownColumn(then.looseGrown(folder)),
                        right(Fmt::files(folder.looseFiles()), 14));
    }
}

void territories(QString &out, const Node &root, const Snapshot *previous, int levels)
{
    if (root.children().empty() || levels < 1)
        return;
    out += QStringLiteral("\nTerritories\n");
    territoryLevel(out, root, Counterpart::root(previous), levels, 0);
}

void bigFiles(QString &out, std::vector<BigFile> files)
{
    constexpr std::size_t shown = 10;
    if (files.empty())
        return;
    std::stable_sort(files.begin(), files.end(),
                     [](const BigFile &a, const BigFile &b) { return a.size > b.size; });
    out += QStringLiteral("\nBig files\n");
    for (std::size_t i = 0; i < std::min(shown, files.size()); ++i)
        out += QStringLiteral("  %1  %2\n")
                   .arg(right(Fmt::bytes(files[i].size), 10), DisplayName::of(files[i].path));
    if (files.size() > shown)
        out += QStringLiteral("  %1 more\n").arg(Fmt::count(std::int64_t(files.size() - shown)));
}

void bounties(QString &out, const Report::Input &input)
{
    if (input.advice.empty()) {
        out += QStringLiteral(
            "\n🏁 Board cleared: nothing here over 25 MB that's known to be safe to delete.\n");
        return;
    }
    std::uint64_t all = 0;
    std::uint64_t reclaimable = 0;
    for (const Advice &a : input.advice) {
        all += a.size;
        if (a.actionable)
            reclaimable += a.size;
    }
    out += QStringLiteral("\n💰 Bounty board · %1 recommendations · up to %2 reclaimable\n")
               .arg(input.advice.size())
               .arg(Fmt::bytes(all));
    const std::vector<Advice> board = Report::boardOrder(input.advice);
    for (const Advice::Safety s : Safeties::all) {
        std::uint64_t groupBytes = 0;
        int count = 0;
        for (const Advice &a : board) {
            if (a.safety == s) {
                groupBytes += a.size;
                ++count;
            }
        }
        if (count == 0)
            continue;
        out += QStringLiteral("\n%1 %2 · %3 · %4\n")
                   .arg(safetySign(s), Safeties::label(s))
                   .arg(count)
                   .arg(Fmt::bytes(groupBytes));
        for (const Advice &a : board) {
            if (a.safety != s)
                continue;
            out += QStringLiteral("  %1 %2  %3%4\n     %5\n")
                       .arg(left(a.displayName(input.home), 32), right(Fmt::bytes(a.size), 10),
                            a.reason,
                            a.actionable ? QString() : QStringLiteral(" (handle outside the app)"),
                            DisplayName::of(a.path));
        }
    }
    out += QStringLiteral("\nTotal reclaimable: %1\n").arg(Fmt::bytes(reclaimable));
}

} // namespace

std::string Report::text(const Input &input, std::optional<int> depth)
{
    const Node &root = *input.root;
    const Tier tier = Tiers::ofBytes(root.size());
    QString out;
    out += QStringLiteral("%1 %2 · %3\n")
               .arg(Tiers::emoji(tier), placeName(root), DisplayName::of(root.path()));
    const auto count = std::int64_t(root.children().size());
    out += QStringLiteral("   %1 · %2 · %3\n")
               .arg(Fmt::bytes(root.size()), Fmt::files(root.files()),
                    Fmt::counted(count, "territory", "territories"));
    if (input.previous) {
        out += QStringLiteral("   %1 since the last scan on %2\n")
                   .arg(Fmt::growth(input.previous->grown(root)),
                        Fmt::moment(input.previous->summary().scanned));
    }
    territories(out, root, input.previous, depth.value_or(1));
    bigFiles(out, input.bigFiles);
    bounties(out, input);
    return out.toStdString();
}
