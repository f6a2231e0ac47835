#include "platform/Settings.h"

#include "platform/Home.h"
#include "platform/SettingsJson.h"

#include <QDir>
#include <QFile>
#include <QFileDevice>
#include <QStandardPaths>
#include <cmath>
#include <limits>

namespace {

bool readJson(QIODevice &device, QSettings::SettingsMap &map)
{
    std::optional<QVariantMap> values = SettingsJson::parse(device.readAll());
    if (!values)
        return false;
    map = std::move(*values);
    return true;
}

bool sameBytes(const QString &fileName, const QByteArray &text)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) && file.readAll() == text;
}

// A file that does not parse is read as empty, but what the user had must not vanish: its bytes
// are copied to the first free "<name>.corrupt", "<name>.corrupt.1", … unless one of them already
// holds the same bytes. A copy, never a rename: a settings file that is a link into a dotfiles
// folder stays a link, and the damaged text is kept even though the save then writes through
// the link. A file that cannot be opened never gets here: QSettings will not save over a file it
// could not read, so it stays untouched and the session's changes live in memory only.
std::optional<QString> keepDamagedFile(const QString &fileName)
{
    QFile existing(fileName);
    if (!existing.open(QIODevice::ReadOnly))
        return std::nullopt;
    const QByteArray text = existing.readAll();
    existing.close();
    if (text.isEmpty() || SettingsJson::parse(text))
        return std::nullopt;
    constexpr int maxBackups = 1000;
    for (int n = 0; n < maxBackups; ++n) {
        QString backup = fileName + QStringLiteral(".corrupt");
        if (n > 0)
            backup += QStringLiteral(".%1").arg(n);
        QFile copy(backup);
        if (copy.open(QIODevice::WriteOnly | QIODevice::NewOnly,
                      QFileDevice::ReadOwner | QFileDevice::WriteOwner)) {
            if (copy.write(text) == text.size() && copy.flush())
                return backup;
            copy.remove(); // a partial copy is ours to take back; the next name is tried
            continue;
        }
        // Already kept once, or the folder cannot be written: nothing to do but keep the file.
        if (!copy.exists() || sameBytes(backup, text))
            return std::nullopt;
    }
    return std::nullopt;
}

// QSettings saves through a QSaveFile named after the final file: the text goes to a temporary
// file beside it, which is synced to disk and then renamed over it, so a crash leaves either the
// old file or the new one.
bool writeJson(QIODevice &device, const QSettings::SettingsMap &map)
{
    if (const auto *file = qobject_cast<const QFileDevice *>(&device))
        (void)keepDamagedFile(file->fileName());
    const QByteArray text = SettingsJson::serialize(map);
    return device.write(text) == text.size();
}

QSettings::Format jsonFormat()
{
    static const QSettings::Format format =
        QSettings::registerFormat(QStringLiteral("json"), readJson, writeJson);
    return format;
}

QString configHome()
{
    // Qt 6.4 takes a relative XDG_CONFIG_HOME as it is; the base directory rules ignore it.
    const QString location =
        QStandardPaths::writableLocation(QStandardPaths::GenericConfigLocation);
    if (QDir::isAbsolutePath(location))
        return location;
    return QFile::decodeName(QByteArray::fromStdString(Home::path())) + QStringLiteral("/.config");
}

bool isInteger(const QVariant &v)
{
    switch (v.typeId()) {
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Char:
        return true;
    default:
        return false;
    }
}

bool isUnsigned(const QVariant &v)
{
    const int type = v.typeId();
    return type == QMetaType::ULongLong || type == QMetaType::ULong;
}

bool isReal(const QVariant &v)
{
    return v.typeId() == QMetaType::Double || v.typeId() == QMetaType::Float;
}

} // namespace

std::unique_ptr<QSettings> Settings::open(const QString &domain)
{
    // An explicit file rather than QSettings' user scope: that reads XDG_CONFIG_HOME only once per
    // process and also consults fallback files (~/.config/dustmere.json, /etc/xdg) that belong to
    // no domain.
    return std::make_unique<QSettings>(filePath(domain), jsonFormat());
}

std::optional<QString> Settings::keepDamaged(const QString &domain)
{
    return keepDamagedFile(filePath(domain));
}

QString Settings::filePath(const QString &domain)
{
    return configHome() + QStringLiteral("/dustmere/") + domain + QStringLiteral(".json");
}

std::optional<bool> Settings::boolean(const QSettings &s, const QString &key)
{
    const QVariant v = s.value(key);
    if (v.typeId() != QMetaType::Bool)
        return std::nullopt;
    return v.toBool();
}

std::optional<qint64> Settings::integer(const QSettings &s, const QString &key)
{
    const QVariant v = s.value(key);
    if (isInteger(v)) {
        if (isUnsigned(v) && v.toULongLong() > qulonglong(std::numeric_limits<qint64>::max()))
            return std::nullopt;
        return v.toLongLong();
    }
    if (isReal(v)) {
        // -2^63 and 2^63 are exact doubles; the range is the half-open interval between them.
        const double d = v.toDouble();
        if (std::isfinite(d) && d == std::trunc(d) && d >= -0x1p63 && d < 0x1p63)
            return qint64(d);
    }
    return std::nullopt;
}

std::optional<double> Settings::number(const QSettings &s, const QString &key)
{
    const QVariant v = s.value(key);
    if (isInteger(v))
        return isUnsigned(v) ? double(v.toULongLong()) : double(v.toLongLong());
    if (isReal(v) && std::isfinite(v.toDouble()))
        return v.toDouble();
    return std::nullopt;
}

std::optional<QString> Settings::string(const QSettings &s, const QString &key)
{
    const QVariant v = s.value(key);
    if (v.typeId() != QMetaType::QString)
        return std::nullopt;
    return v.toString();
}

std::optional<QStringList> Settings::stringList(const QSettings &s, const QString &key)
{
    const QVariant v = s.value(key);
    if (v.typeId() == QMetaType::QStringList)
        return v.toStringList();
    if (v.typeId() != QMetaType::QVariantList)
        return std::nullopt;
    QStringList strings;
    const QVariantList items = v.toList();
    strings.reserve(items.size());
    for (const QVariant &item : items) {
        if (item.typeId() != QMetaType::QString)
            return std::nullopt;
        strings.append(item.toString());
    }
    return strings;
}

std::optional<QVariantMap> Settings::map(const QSettings &s, const QString &key)
{
    const QVariant v = s.value(key);
    if (v.typeId() == QMetaType::QVariantMap)
        return v.toMap();
    if (v.typeId() != QMetaType::QVariantHash)
        return std::nullopt;
    const QVariantHash hash = v.toHash();
    QVariantMap values;
    for (auto it = hash.begin(); it != hash.end(); ++it)
        values.insert(it.key(), it.value());
    return values;
}

std::optional<QDateTime> Settings::date(const QSettings &s, const QString &key)
{
    const QVariant v = s.value(key);
    QDateTime when;
    if (v.typeId() == QMetaType::QDateTime)
        when = v.toDateTime();
    else if (v.typeId() == QMetaType::QString)
        when = QDateTime::fromString(v.toString(), Qt::ISODateWithMs);
    if (!when.isValid())
        return std::nullopt;
    return when;
}

void Settings::setDate(QSettings &s, const QString &key, const QDateTime &when)
{
    if (when.isValid())
        s.setValue(key, when.toUTC().toString(Qt::ISODateWithMs));
    else
        s.remove(key);
}
