#include "report/Report.h"

#include "report/JsonWriter.h"
#include "scan/Fmt.h"

#include <QFile>
#include <QString>

#include <algorithm>

namespace {

// depthLeft < 0 means no limit.
void writeNode(JsonWriter &w, const Node &node, bool isRoot, int depthLeft)
{
    w.beginObject();
    w.key("name");
    w.value(node.name());
    if (isRoot) {
        w.key("path");
        w.value(node.path());
    }
    w.key("size");
    w.value(node.size());
    w.key("files");
    w.value(node.files());
    w.key("looseSize");
    w.value(node.looseSize());
    w.key("looseFiles");
    w.value(node.looseFiles());
    if (depthLeft != 0) {
        const int next = depthLeft < 0 ? depthLeft : depthLeft - 1;
        w.key("children");
        w.beginArray();
        for (const NodePtr &child : node.children())
            writeNode(w, *child, false, next);
        w.endArray();
    }
    w.endObject();
}

QString display(const std::string &bytes)
{
    return QFile::decodeName(QByteArray(bytes.data(), qsizetype(bytes.size())));
}

QString padLeft(const QString &s, int width)
{
    return s.rightJustified(width, QLatin1Char(' '));
}

} // namespace

std::string Report::json(const Input &input, std::optional<int> depth)
{
    JsonWriter w;
    w.beginObject();
    w.key("root");
    writeNode(w, *input.root, true, depth.value_or(-1));
    w.key("bigFiles");
    w.beginArray();
    for (const BigFile &f : input.bigFiles) {
        w.beginObject();
        w.key("path");
        w.value(f.path);
        w.key("size");
        w.value(f.size);
        w.key("modified");
        w.value(f.modified);
        w.endObject();
    }
    w.endArray();
    w.endObject();
    std::string out = w.take();
    out += '\n';
    return out;
}

std::string Report::text(const Input &input)
{
    const Node &root = *input.root;
    QString out;
    out += QStringLiteral("Dustmere · %1\n").arg(display(root.path()));
    out += QStringLiteral("%1 · %2 files · %3 folders\n")
               .arg(Fmt::bytes(root.size()), Fmt::count(root.files()),
                    Fmt::count(std::int64_t(root.children().size())));

    constexpr std::size_t shown = 20;
    if (!root.children().empty()) {
        out += QStringLiteral("\nLargest folders\n");
        for (std::size_t i = 0; i < std::min(shown, root.children().size()); ++i) {
            const Node &c = *root.children()[i];
            out += QStringLiteral("  %1  %2 files  %3\n")
                       .arg(padLeft(Fmt::bytes(c.size()), 10),
                            padLeft(Fmt::count(c.files()), 10), display(c.name()));
        }
        if (root.children().size() > shown) {
            out += QStringLiteral("  … and %1 smaller folders\n")
                       .arg(Fmt::count(std::int64_t(root.children().size() - shown)));
        }
    }
    if (root.looseFiles() > 0) {
        out += QStringLiteral("  %1  %2 files  Loose files\n")
                   .arg(padLeft(Fmt::bytes(root.looseSize()), 10),
                        padLeft(Fmt::count(root.looseFiles()), 10));
    }

    if (!input.bigFiles.empty()) {
        std::vector<BigFile> files = input.bigFiles;
        std::stable_sort(files.begin(), files.end(),
                         [](const BigFile &a, const BigFile &b) { return a.size > b.size; });
        out += QStringLiteral("\nBig files\n");
        for (std::size_t i = 0; i < std::min(shown, files.size()); ++i) {
            out += QStringLiteral("  %1  %2\n")
                       .arg(padLeft(Fmt::bytes(files[i].size), 10), display(files[i].path));
        }
    }
    return out.toStdString();
}
