#pragma once

#include "snapshot/SnapshotCodec.h"
#include "snapshot/SnapshotStore.h"

#include <QObject>
#include <QSettings>
#include <QThreadPool>
#include <memory>
#include <vector>

// Whether the window remembers its scans (the setting "rememberScans", on unless turned off),
// and the remembering itself: a finished scan is packed and saved on a thread of its own, one
// after another, so the window never waits for the disk.
class ScanMemory : public QObject
{
    Q_OBJECT

public:
    explicit ScanMemory(SnapshotStore store = SnapshotStore(), QObject *parent = nullptr);
    ~ScanMemory() override;

    [[nodiscard]] bool enabled() const { return m_enabled; }
    void setEnabled(bool on);
    [[nodiscard]] const SnapshotStore &store() const { return m_store; }
    // The remembered roots, the most recent first; none while turned off.
    [[nodiscard]] std::vector<SnapshotSummary> remembered() const;

    void remember(SnapshotCodec::Flat flat);
    // Removes every remembered scan, after the writes already under way.
    void forget();
    void waitForWrites() { m_writer.waitForDone(); }

Q_SIGNALS:
    void enabledChanged();
    // A scan was saved, or all were forgotten.
    void rememberedChanged();
    void forgotten();

private:
    SnapshotStore m_store;
    std::unique_ptr<QSettings> m_settings;
    bool m_enabled = true;
    QThreadPool m_writer;
};
