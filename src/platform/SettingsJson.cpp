#include "platform/SettingsJson.h"

#include "platform/Utf8.h"

#include <QDate>
#include <QDateTime>
#include <QStringList>
#include <QVariantHash>
#include <QVariantList>
#include <charconv>
#include <cmath>
#include <limits>
#include <string_view>

namespace {

// Far deeper than any setting, shallow enough that the recursion can never exhaust the stack.
constexpr int maxDepth = 256;

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

void appendCodePoint(QString &out, char32_t cp)
{
    if (cp >= 0x10000) {
        out += QChar(QChar::highSurrogate(cp));
        out += QChar(QChar::lowSurrogate(cp));
    } else {
        out += QChar(char16_t(cp));
    }
}

class Reader
{
public:
    explicit Reader(QByteArrayView text) : m_p(text.data()), m_end(text.data() + text.size()) {}

    std::optional<QVariantMap> document()
    {
        skipSpace();
        if (m_p == m_end || *m_p != '{')
            return std::nullopt;
        QVariant top;
        if (!value(top, 0))
            return std::nullopt;
        skipSpace();
        if (m_p != m_end)
            return std::nullopt;
        return top.toMap();
    }

private:
    void skipSpace()
    {
        while (m_p != m_end && (*m_p == ' ' || *m_p == '\n' || *m_p == '\r' || *m_p == '\t'))
            ++m_p;
    }

    bool consume(char c)
    {
        if (m_p == m_end || *m_p != c)
            return false;
        ++m_p;
        return true;
    }

    bool value(QVariant &out, int depth)
    {
        skipSpace();
        if (m_p == m_end)
            return false;
        switch (*m_p) {
        case '{':
            return object(out, depth + 1);
        case '[':
            return array(out, depth + 1);
        case '"': {
            QString text;
            if (!string(text))
                return false;
            out = text;
            return true;
        }
        case 't':
            out = true;
            return word("true");
        case 'f':
            out = false;
            return word("false");
        case 'n':
            out = QVariant::fromValue(nullptr);
            return word("null");
        default:
            return number(out);
        }
    }

    bool word(std::string_view expected)
    {
        if (m_end - m_p < qsizetype(expected.size()) ||
            std::string_view(m_p, expected.size()) != expected)
            return false;
        m_p += expected.size();
        return true;
    }

    bool object(QVariant &out, int depth)
    {
        if (depth > maxDepth)
            return false;
        ++m_p;
        QVariantMap map;
        skipSpace();
        if (!consume('}')) {
            do {
                skipSpace();
                QString key;
                QVariant item;
                if (m_p == m_end || *m_p != '"' || !string(key))
                    return false;
                skipSpace();
                if (!consume(':') || !value(item, depth))
                    return false;
                map.insert(key, item);
                skipSpace();
            } while (consume(','));
            if (!consume('}'))
                return false;
        }
        out = map;
        return true;
    }

    bool array(QVariant &out, int depth)
    {
        if (depth > maxDepth)
            return false;
        ++m_p;
        QVariantList list;
        skipSpace();
        if (!consume(']')) {
            do {
                QVariant item;
                if (!value(item, depth))
                    return false;
                list.append(item);
                skipSpace();
            } while (consume(','));
            if (!consume(']'))
                return false;
        }
        out = list;
        return true;
    }

    bool string(QString &out)
    {
        ++m_p;
        for (;;) {
            const char *run = m_p;
            while (m_p != m_end && uchar(*m_p) >= 0x20 && uchar(*m_p) < 0x80 && *m_p != '"' &&
                   *m_p != '\\')
                ++m_p;
            out += QLatin1StringView(run, m_p - run);
            if (m_p == m_end)
                return false;
            const auto c = uchar(*m_p);
            if (c == '"') {
                ++m_p;
                return true;
            }
            if (c < 0x20)
                return false;
            if (!(c == '\\' ? escape(out) : utf8(out)))
                return false;
        }
    }

    bool escape(QString &out)
    {
        ++m_p;
        if (m_p == m_end)
            return false;
        const char c = *m_p++;
        switch (c) {
        case '"':
        case '\\':
        case '/':
            out += QLatin1Char(c);
            return true;
        case 'b':
            out += QLatin1Char('\b');
            return true;
        case 'f':
            out += QLatin1Char('\f');
            return true;
        case 'n':
            out += QLatin1Char('\n');
            return true;
        case 'r':
            out += QLatin1Char('\r');
            return true;
        case 't':
            out += QLatin1Char('\t');
            return true;
        case 'u':
            break;
        default:
            return false;
        }
        char16_t unit = 0;
        if (!hex4(unit))
            return false;
        out += QChar(unit);
        // A lone surrogate is kept as it is, so that every QString survives a round trip.
        if (QChar::isHighSurrogate(unit) && m_end - m_p >= 6 && m_p[0] == '\\' && m_p[1] == 'u') {
            const char *back = m_p;
            m_p += 2;
            char16_t low = 0;
            if (hex4(low) && QChar::isLowSurrogate(low))
                out += QChar(low);
            else
                m_p = back;
        }
        return true;
    }

    bool hex4(char16_t &unit)
    {
        if (m_end - m_p < 4)
            return false;
        unsigned result = 0;
        const auto [end, ec] = std::from_chars(m_p, m_p + 4, result, 16);
        if (ec != std::errc() || end != m_p + 4)
            return false;
        unit = char16_t(result);
        m_p += 4;
        return true;
    }

    bool utf8(QString &out)
    {
        char32_t cp = 0;
        const std::size_t length = Utf8::sequence(std::string_view(m_p, m_end - m_p), 0, cp);
        if (length == 0)
            return false;
        appendCodePoint(out, cp);
        m_p += length;
        return true;
    }

    bool digits()
    {
        const char *start = m_p;
        while (m_p != m_end && isDigit(*m_p))
            ++m_p;
        return m_p != start;
    }

    bool number(QVariant &out)
    {
        const char *start = m_p;
        consume('-');
        if (m_p == m_end || !isDigit(*m_p))
            return false;
        if (!consume('0'))
            digits();
        bool integral = true;
        if (consume('.')) {
            integral = false;
            if (!digits())
                return false;
        }
        if (consume('e') || consume('E')) {
            integral = false;
            if (!consume('+'))
                consume('-');
            if (!digits())
                return false;
        }
        if (integral) {
            qint64 n = 0;
            if (const auto [end, ec] = std::from_chars(start, m_p, n); ec == std::errc()) {
                out = n;
                return true;
            }
        }
        double d = 0;
        const auto [end, ec] = std::from_chars(start, m_p, d);
        if (ec != std::errc() || end != m_p || !std::isfinite(d))
            return false;
        out = d;
        return true;
    }

    const char *m_p;
    const char *m_end;
};

class Writer
{
public:
    QByteArray take() { return std::move(m_out); }

    // depth counts the containers around `v` plus one, as the reader counts them.
    void value(const QVariant &v, int depth)
    {
        switch (v.typeId()) {
        case QMetaType::Bool:
            m_out += v.toBool() ? "true" : "false";
            return;
        case QMetaType::Int:
        case QMetaType::Short:
        case QMetaType::Long:
        case QMetaType::LongLong:
        case QMetaType::SChar:
        case QMetaType::Char:
            m_out += QByteArray::number(v.toLongLong());
            return;
        case QMetaType::UInt:
        case QMetaType::UShort:
        case QMetaType::ULong:
        case QMetaType::ULongLong:
        case QMetaType::UChar: {
            const qulonglong n = v.toULongLong();
            if (n <= qulonglong(std::numeric_limits<qint64>::max()))
                m_out += QByteArray::number(n);
            else
                real(double(n));
            return;
        }
        case QMetaType::Double:
        case QMetaType::Float:
            real(v.toDouble());
            return;
        case QMetaType::QString:
            string(v.toString());
            return;
        case QMetaType::QByteArray:
            string(QString::fromUtf8(v.toByteArray()));
            return;
        case QMetaType::QDateTime:
            if (const QDateTime when = v.toDateTime(); when.isValid())
                string(when.toUTC().toString(Qt::ISODateWithMs));
            else
                m_out += "null";
            return;
        case QMetaType::QDate:
            string(v.toDate().toString(Qt::ISODate));
            return;
        case QMetaType::QVariantHash: {
            const QVariantHash hash = v.toHash();
            QVariantMap sorted;
            for (auto it = hash.begin(); it != hash.end(); ++it)
                sorted.insert(it.key(), it.value());
            object(sorted, depth + 1);
            return;
        }
        case QMetaType::QVariantMap:
            object(v.toMap(), depth + 1);
            return;
        case QMetaType::QStringList:
        case QMetaType::QVariantList:
            array(v.toList(), depth + 1);
            return;
        case QMetaType::UnknownType:
        case QMetaType::Nullptr:
            m_out += "null";
            return;
        default:
            // Other sequences, associative containers and text-like types (QUrl, …).
            if (v.canConvert<QVariantList>())
                array(v.toList(), depth + 1);
            else if (v.canConvert<QVariantMap>())
                object(v.toMap(), depth + 1);
            else if (v.canConvert<QString>())
                string(v.toString());
            else
                m_out += "null";
        }
    }

    void object(const QVariantMap &map, int depth)
    {
        if (depth > maxDepth) {
            m_out += "null";
            return;
        }
        if (map.isEmpty()) {
            m_out += "{}";
            return;
        }
        m_out += "{\n";
        for (auto it = map.begin(); it != map.end(); ++it) {
            indent(depth);
            string(it.key());
            m_out += ": ";
            value(it.value(), depth);
            m_out += std::next(it) == map.end() ? "\n" : ",\n";
        }
        indent(depth - 1);
        m_out += '}';
    }

private:
    void array(const QVariantList &list, int depth)
    {
        if (depth > maxDepth) {
            m_out += "null";
            return;
        }
        if (list.isEmpty()) {
            m_out += "[]";
            return;
        }
        m_out += "[\n";
        for (qsizetype i = 0; i < list.size(); ++i) {
            indent(depth);
            value(list.at(i), depth);
            m_out += i + 1 == list.size() ? "\n" : ",\n";
        }
        indent(depth - 1);
        m_out += ']';
    }

    void indent(int depth) { m_out.append(2 * depth, ' '); }

    void real(double d)
    {
        if (!std::isfinite(d)) {
            m_out += "null";
            return;
        }
        char buffer[32];
        const auto [end, ec] = std::to_chars(buffer, buffer + sizeof buffer, d);
        const std::string_view text(buffer, end - buffer);
        m_out.append(text.data(), text.size());
        // Shortest form prints 5.0 as "5"; the fraction is what makes it read back as a double.
        if (text.find_first_of(".e") == std::string_view::npos)
            m_out += ".0";
    }

    void string(const QString &text)
    {
        m_out += '"';
        for (qsizetype i = 0; i < text.size(); ++i) {
            const char16_t c = text.at(i).unicode();
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
            case '\b':
                m_out += "\\b";
                break;
            case '\f':
                m_out += "\\f";
                break;
            default:
                if (c < 0x20) {
                    escaped(c);
                } else if (c < 0x80) {
                    m_out += char(c);
                } else if (QChar::isHighSurrogate(c) && i + 1 < text.size() &&
                           text.at(i + 1).isLowSurrogate()) {
                    utf8(QChar::surrogateToUcs4(c, text.at(i + 1).unicode()));
                    ++i;
                } else if (QChar::isSurrogate(c)) {
                    escaped(c);
                } else {
                    utf8(c);
                }
            }
        }
        m_out += '"';
    }

    void escaped(char16_t unit)
    {
        char hex[4];
        for (int i = 3; i >= 0; --i, unit >>= 4)
            hex[i] = "0123456789abcdef"[unit & 0xF];
        m_out += "\\u";
        m_out.append(hex, 4);
    }

    void utf8(char32_t cp)
    {
        if (cp < 0x800) {
            m_out += char(0xC0 | (cp >> 6));
        } else {
            if (cp < 0x10000) {
                m_out += char(0xE0 | (cp >> 12));
            } else {
                m_out += char(0xF0 | (cp >> 18));
                m_out += char(0x80 | ((cp >> 12) & 0x3F));
            }
            m_out += char(0x80 | ((cp >> 6) & 0x3F));
        }
        m_out += char(0x80 | (cp & 0x3F));
    }

    QByteArray m_out;
};

} // namespace

std::optional<QVariantMap> SettingsJson::parse(QByteArrayView text)
{
    // Some editors start UTF-8 files with a byte-order mark; it is not damage.
    if (text.startsWith("\xEF\xBB\xBF"))
        text = text.sliced(3);
    return Reader(text).document();
}

QByteArray SettingsJson::serialize(const QVariantMap &values)
{
    Writer writer;
    writer.object(values, 1);
    QByteArray text = writer.take();
    text += '\n';
    return text;
}
