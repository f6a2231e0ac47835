#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <QVariantMap>
#include <optional>

// The text of a settings file: one JSON object whose values keep their types. Qt's own JSON
// classes turn 5.0 into the integer 5 both ways, so this is a small reader and writer of its own.
//
// Read: true/false -> bool, a number with a fraction or exponent -> double, any other number ->
// qint64 (double when it does not fit), string -> QString, array -> QVariantList, object ->
// QVariantMap, null -> QVariant holding nullptr.
namespace SettingsJson {

// nullopt unless the whole text is one well-formed JSON object in valid UTF-8, after an optional
// byte-order mark (an empty text is not a document either).
[[nodiscard]] std::optional<QVariantMap> parse(QByteArrayView text);

// Always well-formed UTF-8 JSON that `parse` reads back to equal values. Doubles always carry a
// fraction or exponent ("5.0"); non-finite doubles and values of no JSON kind become null; dates
// become ISO-8601 text.
[[nodiscard]] QByteArray serialize(const QVariantMap &values);

} // namespace SettingsJson
