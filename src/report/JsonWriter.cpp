#include "report/JsonWriter.h"

#include "platform/Utf8.h"

#include <QByteArray>
#include <QString>
#include <algorithm>
#include <charconv>

void JsonWriter::separate()
{
    if (m_needComma)
        m_out += ',';
    m_needComma = false;
}

void JsonWriter::beginObject()
{
    separate();
    m_out += '{';
}

void JsonWriter::endObject()
{
    m_out += '}';
    m_needComma = true;
}

void JsonWriter::beginArray()
{
    separate();
    m_out += '[';
}

void JsonWriter::endArray()
{
    m_out += ']';
    m_needComma = true;
}

void JsonWriter::key(std::string_view name)
{
    separate();
    // Keys are the writer's own ASCII names: nothing to escape.
    m_out += '"';
    m_out += name;
    m_out += "\":";
}

void JsonWriter::value(std::string_view bytes)
{
    separate();
    if (Utf8::isValid(bytes)) {
        writeString(bytes);
    } else {
        std::string repaired;
        char32_t c = 0;
        for (std::size_t i = 0; i < bytes.size();) {
            const std::size_t length = Utf8::sequence(bytes, i, c);
            repaired.append(length == 0 ? std::string_view("\xEF\xBF\xBD")
                                        : bytes.substr(i, length));
            i += std::max<std::size_t>(length, 1);
        }
        writeString(repaired);
    }
    m_needComma = true;
}

void JsonWriter::field(std::string_view name, std::string_view bytes)
{
    key(name);
    value(bytes);
    if (Utf8::isValid(bytes))
        return;
    key(std::string(name) + "Base64");
    const QByteArray base64 = QByteArray(bytes.data(), qsizetype(bytes.size())).toBase64();
    writeString(std::string_view(base64.constData(), std::size_t(base64.size())));
    m_needComma = true;
}

void JsonWriter::value(const QString &text)
{
    separate();
    const QByteArray utf8 = text.toUtf8();
    writeString(std::string_view(utf8.constData(), std::size_t(utf8.size())));
    m_needComma = true;
}

void JsonWriter::value(std::uint64_t n)
{
    separate();
    char buf[24];
    const auto r = std::to_chars(buf, buf + sizeof buf, n);
    m_out.append(buf, r.ptr);
    m_needComma = true;
}

void JsonWriter::value(std::int64_t n)
{
    separate();
    char buf[24];
    const auto r = std::to_chars(buf, buf + sizeof buf, n);
    m_out.append(buf, r.ptr);
    m_needComma = true;
}

void JsonWriter::value(bool b)
{
    separate();
    m_out += b ? "true" : "false";
    m_needComma = true;
}

void JsonWriter::writeString(std::string_view utf8)
{
    static constexpr char hex[] = "0123456789abcdef";
    m_out += '"';
    // Copy runs that need no escaping in one go; most names are such runs entirely.
    std::size_t runStart = 0;
    for (std::size_t i = 0; i < utf8.size(); ++i) {
        const auto c = static_cast<unsigned char>(utf8[i]);
        if (c >= 0x20 && c != '"' && c != '\\')
            continue;
        m_out.append(utf8.data() + runStart, i - runStart);
        runStart = i + 1;
        switch (c) {
        case '"':
            m_out += "\\\"";
            break;
        case '\\':
            m_out += "\\\\";
            break;
        case '\n':
            m_out += "\\n";
            break;
        case '\r':
            m_out += "\\r";
            break;
        case '\t':
            m_out += "\\t";
            break;
        default:
            m_out += "\\u00";
            m_out += hex[c >> 4];
            m_out += hex[c & 0xF];
        }
    }
    m_out.append(utf8.data() + runStart, utf8.size() - runStart);
    m_out += '"';
}
