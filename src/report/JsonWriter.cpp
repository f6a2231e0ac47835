#include "report/JsonWriter.h"

#include <QFile>
#include <QString>
#include <charconv>

bool isValidUtf8(std::string_view s)
{
    std::size_t i = 0;
    const auto byte = [&s](std::size_t k) { return static_cast<unsigned char>(s[k]); };
    while (i < s.size()) {
        const unsigned char c = byte(i);
        if (c < 0x80) {
            ++i;
            continue;
        }
        std::size_t len = 0;
        std::uint32_t cp = 0;
        if ((c & 0xE0) == 0xC0) {
            len = 2;
            cp = c & 0x1F;
        } else if ((c & 0xF0) == 0xE0) {
            len = 3;
            cp = c & 0x0F;
        } else if ((c & 0xF8) == 0xF0) {
            len = 4;
            cp = c & 0x07;
        } else {
            return false;
        }
        if (i + len > s.size())
            return false;
        for (std::size_t k = 1; k < len; ++k) {
            if ((byte(i + k) & 0xC0) != 0x80)
                return false;
            cp = (cp << 6) | (byte(i + k) & 0x3F);
        }
        const bool overlong =
            (len == 2 && cp < 0x80) || (len == 3 && cp < 0x800) || (len == 4 && cp < 0x10000);
        if (overlong || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
            return false;
        i += len;
    }
    return true;
}

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
    if (isValidUtf8(bytes)) {
        writeString(bytes);
    } else {
        const QByteArray repaired =
            QFile::decodeName(QByteArray(bytes.data(), qsizetype(bytes.size()))).toUtf8();
        writeString(std::string_view(repaired.constData(), std::size_t(repaired.size())));
    }
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
