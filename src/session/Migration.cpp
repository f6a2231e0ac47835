#include "session/Migration.h"

#include "platform/Settings.h"

void Migration::migrate()
{
    const std::unique_ptr<QSettings> current = Settings::open();
    if (Settings::boolean(*current, flagKey()).value_or(false))
        return;
    const std::unique_ptr<const QSettings> old = Settings::open(Settings::oldDomain());
    const QStringList keys = old->allKeys();
    for (const QString &key : keys) {
        // A key QSettings cannot address (a hand-written "/x") has no value to copy.
        if (key.startsWith(skippedPrefix()) || current->contains(key) || !old->contains(key))
            continue;
        current->setValue(key, old->value(key));
    }
    current->setValue(flagKey(), true);
    current->sync();
}
