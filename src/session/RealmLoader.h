#pragma once

#include "session/Realm.h"
#include "snapshot/SnapshotStore.h"

#include <QObject>
#include <QString>
#include <cstdint>
#include <string>

// Reads a realm that is not scanned now off the main thread: the remembered scan of a folder, or
// a report or snapshot file. Only the latest request is answered.
class RealmLoader : public QObject
{
    Q_OBJECT

public:
    using QObject::QObject;

    void loadRemembered(const SnapshotStore &store, const std::string &root);
    void loadFile(const QString &file);
    // Drops the answer of the request under way.
    void cancel() { ++m_request; }

Q_SIGNALS:
    void loaded(const Realm &realm);
    void failed(const QString &message);

private:
    std::uint64_t m_request = 0;
};
