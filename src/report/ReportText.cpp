#include "platform/DisplayName.h"
#include "report/Report.h"
#include "scan/Fmt.h"

#include <QString>
#include <algorithm>

namespace {

QString display(const std::string &bytes)
{
    return DisplayName::of(bytes);
}

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

void territories(QString &out, const Node &root)
{
    constexpr std::size_t shown = 20;
    const auto &children = root.children();
    if (!children.empty())
        out += QStringLiteral("\nTerritories\n");
    for (std::size_t i = 0; i < std::min(shown, children.size()); ++i) {
        const Node &c = *children[i];
        out += QStringLiteral("  %1 %2 %3 %4 %5\n")
                   .arg(Tiers::emoji(Tiers::ofBytes(c.size())), left(Report::placeName(c), 30),
                        left(display(c.name()), 24), right(Fmt::bytes(c.size()), 10),
                        right(Fmt::count(c.files()) + QStringLiteral(" files"), 14));
    }
    if (children.size() > shown) {
        const std::size_t rest = children.size() - shown;
        std::uint64_t bytes = 0;
        for (std::size_t i = shown; i < children.size(); ++i)
            bytes += children[i]->size();
        out += QStringLiteral("     %1 %2\n")
                   .arg(left(QStringLiteral("%1 smaller folders").arg(rest), 55),
                        right(Fmt::bytes(bytes), 10));
    }
    if (root.looseFiles() > 0) {
        out += QStringLiteral("     %1 %2 %3\n")
                   .arg(left(QStringLiteral("Loose files"), 55),
                        right(Fmt::bytes(root.looseSize()), 10),
                        right(Fmt::count(root.looseFiles()) + QStringLiteral(" files"), 14));
    }
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
                            display(a.path));
        }
    }
    out += QStringLiteral("\nTotal reclaimable: %1\n").arg(Fmt::bytes(reclaimable));
}

} // namespace

std::string Report::text(const Input &input)
{
    const Node &root = *input.root;
    const Tier tier = Tiers::ofBytes(root.size());
    QString out;
    out += QStringLiteral("%1 %2 · %3\n")
               .arg(Tiers::emoji(tier), placeName(root), display(root.path()));
    out += QStringLiteral("   %1 · %2 files · %3 territories\n")
               .arg(Fmt::bytes(root.size()), Fmt::count(root.files()),
                    Fmt::count(std::int64_t(root.children().size())));
    territories(out, root);
    bounties(out, input);
    return out.toStdString();
}
