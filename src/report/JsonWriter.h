#pragma once

#include <cstdint>
#include <string>
#include <string_view>

class QString;

// A small streaming JSON writer: reports of large trees are written without building a DOM.
// Byte strings that are not valid UTF-8 (file names can be any bytes) are written with U+FFFD
// in place of the invalid sequences, so the output stays valid JSON; field() adds their exact
// bytes beside them.
class JsonWriter
{
public:
    void beginObject();
    void endObject();
    void beginArray();
    void endArray();
    // name must be plain ASCII without quotes or backslashes.
    void key(std::string_view name);
    void reserve(std::size_t bytes) { m_out.reserve(bytes); }
    // A complete value written elsewhere by the same rules.
    void raw(std::string_view json)
    {
        separate();
        m_out += json;
        m_needComma = true;
    }
    void value(std::string_view bytes);
    void value(const QString &text);
    void value(const char *text) { value(std::string_view(text)); }
    void value(std::uint64_t n);
    void value(std::int64_t n);
    void value(bool b);
    // A name or path: the key and the text, and, when the bytes are not valid UTF-8, the key
    // followed by "Base64" with the exact bytes.
    void field(std::string_view name, std::string_view bytes);

    [[nodiscard]] const std::string &text() const { return m_out; }
    [[nodiscard]] std::string take() { return std::move(m_out); }

private:
    void separate();
    void writeString(std::string_view utf8);

    std::string m_out;
    bool m_needComma = false;
};
