#include "game/Lore.h"
#include "report/JsonWriter.h"
#include "report/Report.h"
#include "snapshot/Counterpart.h"

#include <unordered_map>

namespace {

// Real trees repeat folder names ("src", "lib", "node_modules"), so each place name is made once.
class PlaceNames
{
public:
    const QString &of(const Node &node)
    {
        const Tier tier = Tiers::ofBytes(node.size());
        std::string key = node.name();
        key += char('0' + Tiers::index(tier));
        auto it = m_names.find(key);
        if (it == m_names.end())
            it = m_names.emplace(std::move(key), Lore::name(node.name(), tier)).first;
        return it->second;
    }

private:
    std::unordered_map<std::string, QString> m_names;
};

// depthLeft < 0 means no limit.
void writeNode(JsonWriter &w, PlaceNames &places, const Node &node, const Counterpart &then,
               bool isRoot, int depthLeft, const Report::Fragments *fragments = nullptr)
{
    w.beginObject();
    w.field("name", node.name());
    if (isRoot)
        w.field("path", node.path());
    w.key("size");
    w.value(node.size());
    w.key("files");
    w.value(node.files());
    w.key("looseSize");
    w.value(node.looseSize());
    w.key("looseFiles");
    w.value(node.looseFiles());
    w.key("tier");
    w.value(Report::tierKey(Tiers::ofBytes(node.size())));
    w.key("place");
    w.value(places.of(node));
    if (const std::optional<std::int64_t> grown = then.grown(node)) {
        w.key("grown");
        w.value(*grown);
    }
    if (isRoot && then.snapshot()) {
        const SnapshotSummary &previous = then.snapshot()->summary();
        w.key("previous");
        w.beginObject();
        w.key("date");
        w.value(previous.scanned.toString(Qt::ISODate));
        w.key("size");
        w.value(previous.size);
        w.key("files");
        w.value(previous.files);
        w.endObject();
    }
    if (depthLeft != 0) {
        const int next = depthLeft < 0 ? depthLeft : depthLeft - 1;
        w.key("children");
        w.beginArray();
        for (const NodePtr &child : node.children()) {
            const auto done =
                fragments ? fragments->find(child.get()) : Report::Fragments::const_iterator();
            if (fragments && done != fragments->end())
                w.raw(done->second);
            else
                writeNode(w, places, *child, then.child(child->name()), false, next);
        }
        w.endArray();
    }
    w.endObject();
}

} // namespace

std::vector<Advice> Report::boardOrder(const std::vector<Advice> &advice)
{
    std::vector<Advice> ordered;
    ordered.reserve(advice.size());
    for (const Advice::Safety s : Safeties::all) {
        for (const Advice &a : advice) {
            if (a.safety == s)
                ordered.push_back(a);
        }
    }
    return ordered;
}

QString Report::placeName(const Node &node)
{
    return Lore::name(node.name(), Tiers::ofBytes(node.size()));
}

const char *Report::tierKey(Tier tier)
{
    static const char *const keys[] = {"microbe", "gremlin", "ogre", "dragon", "titan"};
    return keys[Tiers::index(tier)];
}

const char *Report::safetyKey(Advice::Safety safety)
{
    static const char *const keys[] = {"safe", "rebuild", "review"};
    return keys[Safeties::index(safety)];
}

std::string Report::jsonFragment(const Node &folder, std::optional<int> depth,
                                 const Snapshot *previous)
{
    JsonWriter w;
    PlaceNames places;
    const int left = depth ? std::max(*depth - 1, 0) : -1;
    writeNode(w, places, folder, Counterpart::root(previous).child(folder.name()), false, left);
    return w.take();
}

std::string Report::json(const Input &input, std::optional<int> depth, const Fragments *fragments)
{
    JsonWriter w;
    std::size_t folders = 0;
    input.root->walk([&folders](Node &) { ++folders; });
    w.reserve(folders * 200 + input.bigFiles.size() * 160 + input.advice.size() * 400 + 1024);
    PlaceNames places;
    w.beginObject();
    w.key("root");
    writeNode(w, places, *input.root, Counterpart::root(input.previous), true, depth.value_or(-1),
              fragments);
    w.key("bigFiles");
    w.beginArray();
    for (const BigFile &f : input.bigFiles) {
        w.beginObject();
        w.field("path", f.path);
        w.key("size");
        w.value(f.size);
        w.key("modified");
        w.value(f.modified);
        w.endObject();
    }
    w.endArray();
    w.key("advice");
    w.beginArray();
    for (const Advice &a : boardOrder(input.advice)) {
        w.beginObject();
        w.field("path", a.path);
        w.key("kind");
        w.value(a.isFile() ? "file" : "folder");
        w.key("size");
        w.value(a.size);
        w.key("safety");
        w.value(safetyKey(a.safety));
        w.key("reason");
        w.value(a.reason);
        w.key("actionable");
        w.value(a.actionable);
        w.key("displayName");
        w.value(a.displayName(input.home));
        w.endObject();
    }
    w.endArray();
    // Where and when, so the report can be opened elsewhere as the realm it describes.
    if (!input.host.isEmpty()) {
        w.key("host");
        w.value(input.host);
    }
    if (input.scanned.isValid()) {
        w.key("scanned");
        w.value(input.scanned.toUTC().toString(Qt::ISODate));
    }
    w.endObject();
    std::string out = w.take();
    out += '\n';
    return out;
}
