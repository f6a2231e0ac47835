#include "session/ScanMemory.h"

#include "platform/Settings.h"

#include <QtConcurrent/QtConcurrentRun>

namespace {

const QString key = QStringLiteral("rememberScans");

} // namespace

ScanMemory::ScanMemory(SnapshotStore store, QObject *parent)
    : QObject(parent), m_store(std::move(store)), m_settings(Settings::open())
{
    m_enabled = Settings::boolean(*m_settings, key).value_or(true);
    m_writer.setMaxThreadCount(1);
}

ScanMemory::~ScanMemory()
{
    m_writer.waitForDone();
}

void ScanMemory::setEnabled(bool on)
{
    if (on == m_enabled)
        return;
    m_enabled = on;
    m_settings->setValue(key, on);
    Q_EMIT enabledChanged();
    Q_EMIT rememberedChanged();
}

std::vector<SnapshotSummary> ScanMemory::remembered() const
{
    return m_enabled ? m_store.remembered() : std::vector<SnapshotSummary>();
}

void ScanMemory::remember(SnapshotCodec::Flat flat)
{
    QtConcurrent::run(&m_writer, [store = m_store, flat = std::move(flat)] {
        return store.save(SnapshotCodec::pack(flat), flat.summary.root);
    }).then(this, [this](bool) { Q_EMIT rememberedChanged(); });
}

void ScanMemory::forget()
{
    m_writer.waitForDone();
    m_store.forgetAll();
    Q_EMIT forgotten();
    Q_EMIT rememberedChanged();
}
