#include "session/RealmFile.h"

#include "advisor/Advisor.h"
#include "platform/DisplayName.h"
#include "platform/Paths.h"
#include "session/Model.h"
#include "snapshot/SnapshotCodec.h"

#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

namespace {

// A name or path as the report wrote it: its exact bytes beside the text when it is not UTF-8.
std::optional<std::string> bytesOf(const QJsonObject &o, const QString &key)
{
    const QJsonValue exact = o[key + QStringLiteral("Base64")];
    if (exact.isString())
        return QByteArray::fromBase64(exact.toString().toLatin1()).toStdString();
    const QJsonValue text = o[key];
    return text.isString() ? std::optional(text.toString().toStdString()) : std::nullopt;
}

std::uint64_t bytesField(const QJsonObject &o, const char *key)
{
    return std::uint64_t(std::max<qint64>(o[QLatin1String(key)].toInteger(), 0));
}

bool isName(const std::string &name)
{
    return !name.empty() && name != "." && name != ".." && name.find('/') == std::string::npos &&
           name.find('\0') == std::string::npos;
}

NodePtr folderOf(const QJsonObject &o, const NodePtr &parent)
{
    const std::optional<std::string> name = bytesOf(o, QStringLiteral("name"));
    if (!name || (parent && !isName(*name)))
        return nullptr;
    NodePtr node = Node::create(*name, parent);
    const QJsonValue children = o[QLatin1String("children")];
    if (children.isArray()) {
        node->setLoose(bytesField(o, "looseSize"), std::int64_t(bytesField(o, "looseFiles")));
        std::vector<NodePtr> made;
        for (const QJsonValue c : children.toArray()) {
            NodePtr child = folderOf(c.toObject(), node);
            if (!child)
                return nullptr;
            made.push_back(std::move(child));
        }
        node->setChildren(std::move(made));
    } else {
        // A report cut short by --depth: what lies below counts as the folder's own.
        node->setLoose(bytesField(o, "size"), std::int64_t(bytesField(o, "files")));
    }
    node->finish();
    return node;
}

std::optional<Advice> adviceOf(const QJsonObject &o, const Realm &realm)
{
    const std::optional<std::string> path = bytesOf(o, QStringLiteral("path"));
    const QString safety = o[QLatin1String("safety")].toString();
    if (!path)
        return std::nullopt;
    Advice a;
    a.path = *path;
    a.size = bytesField(o, "size");
    a.reason = o[QLatin1String("reason")].toString();
    a.actionable = o[QLatin1String("actionable")].toBool();
    a.safety = safety == QLatin1String("safe")      ? Advice::Safety::safe
               : safety == QLatin1String("rebuild") ? Advice::Safety::rebuild
                                                    : Advice::Safety::review;
    if (o[QLatin1String("kind")].toString() == QLatin1String("file")) {
        BigFile f{a.path, a.size, 0};
        for (const BigFile &big : realm.bigFiles)
            if (big.path == a.path)
                f = big;
        a.target = f;
    } else if (NodePtr folder = Model::find(realm.root, a.path)) {
        a.target = folder;
    } else {
        return std::nullopt;
    }
    return a;
}

std::variant<Realm, QString> fromJson(const QByteArray &bytes, const QString &notOne)
{
    QJsonParseError error;
    const QJsonDocument doc = QJsonDocument::fromJson(bytes, &error);
    const QJsonObject top = doc.object();
    const QJsonObject rootObject = top[QLatin1String("root")].toObject();
    const std::optional<std::string> path = bytesOf(rootObject, QStringLiteral("path"));
    if (error.error != QJsonParseError::NoError || !path || !path->starts_with('/'))
        return notOne;
    Realm realm;
    realm.root = folderOf(rootObject, nullptr);
    if (!realm.root)
        return notOne;
    realm.root->setBasePath(Paths::clean(*path));
    for (const QJsonValue v : top[QLatin1String("bigFiles")].toArray()) {
        const QJsonObject o = v.toObject();
        if (const auto p = bytesOf(o, QStringLiteral("path")))
            realm.bigFiles.push_back(
                {*p, bytesField(o, "size"), o[QLatin1String("modified")].toInteger()});
    }
    for (const QJsonValue v : top[QLatin1String("advice")].toArray()) {
        if (std::optional<Advice> a = adviceOf(v.toObject(), realm))
            realm.advice.push_back(std::move(*a));
    }
    realm.origin = {RealmOrigin::Source::report, top[QLatin1String("host")].toString(),
                    QDateTime::fromString(top[QLatin1String("scanned")].toString(), Qt::ISODate)};
    return realm;
}

} // namespace

Realm RealmFile::fromSnapshot(const Snapshot &snapshot, RealmOrigin::Source source)
{
    Realm realm;
    realm.root = snapshot.toTree();
    realm.bigFiles = snapshot.bigFiles();
    realm.advice = Advisor::advise(realm.root, realm.bigFiles);
    realm.origin = {source, snapshot.summary().host, snapshot.summary().scanned};
    return realm;
}

std::variant<Realm, QString> RealmFile::read(const QString &file)
{
    const QString shown = DisplayName::of(QFile::encodeName(file).toStdString());
    QFile f(file);
    if (!f.open(QIODevice::ReadOnly))
        return QStringLiteral("cannot read %1: %2").arg(shown, f.errorString());
    const QByteArray bytes = f.readAll();
    const QString notOne = QStringLiteral("not a Dustmere report or snapshot: %1").arg(shown);
    if (const std::optional<SnapshotSummary> summary = SnapshotCodec::summary(bytes)) {
        const std::optional<Snapshot> snapshot = SnapshotCodec::unpack(bytes, summary->root);
        if (!snapshot)
            return notOne;
        return fromSnapshot(*snapshot, RealmOrigin::Source::report);
    }
    return fromJson(bytes, notOne);
}
