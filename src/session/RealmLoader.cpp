#include "session/RealmLoader.h"

#include "session/RealmFile.h"

#include <QtConcurrent/QtConcurrentRun>

void RealmLoader::loadRemembered(const SnapshotStore &store, const std::string &root)
{
    const std::uint64_t request = ++m_request;
    QtConcurrent::run([store, root]() -> std::optional<Realm> {
        const std::optional<Snapshot> snapshot = store.load(root);
        if (!snapshot)
            return std::nullopt;
        return RealmFile::fromSnapshot(*snapshot, RealmOrigin::Source::remembered);
    }).then(this, [this, request](const std::optional<Realm> &realm) {
        // Nothing remembered after all: the fresh scan shows as any scan does.
        if (request == m_request && realm)
            Q_EMIT loaded(*realm);
    });
}

void RealmLoader::loadFile(const QString &file)
{
    const std::uint64_t request = ++m_request;
    QtConcurrent::run([file] {
        return RealmFile::read(file);
    }).then(this, [this, request](const std::variant<Realm, QString> &result) {
        if (request != m_request)
            return;
        if (const auto *realm = std::get_if<Realm>(&result))
            Q_EMIT loaded(*realm);
        else
            Q_EMIT failed(std::get<QString>(result));
    });
}
