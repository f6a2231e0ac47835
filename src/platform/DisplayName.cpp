#include "platform/DisplayName.h"

#include "platform/Utf8.h"

#include <algorithm>

namespace {

bool isBidiControl(char32_t c)
{
    return c == 0x061C || c == 0x200E || c == 0x200F || (c >= 0x202A && c <= 0x202E) ||
           (c >= 0x2066 && c <= 0x2069);
}

bool needsEscape(char32_t c)
{
    return c < 0x20 || (c >= 0x7F && c <= 0x9F) || c == 0x2028 || c == 0x2029 || isBidiControl(c);
}

void appendHex(QString &out, char32_t value, int digits)
{
    out += QString::number(value, 16).toUpper().rightJustified(digits, QLatin1Char('0'));
}

// Collects the shown text and whether it needs isolating.
class Shown
{
public:
    void add(char32_t c)
    {
        if (!needsEscape(c)) {
            const QChar::Direction direction = QChar::direction(c);
            m_rightToLeft = m_rightToLeft || direction == QChar::DirR || direction == QChar::DirAL;
            m_text += QString::fromUcs4(&c, 1);
            return;
        }
        switch (c) {
        case '\n':
            m_text += QStringLiteral("\\n");
            return;
        case '\r':
            m_text += QStringLiteral("\\r");
            return;
        case '\t':
            m_text += QStringLiteral("\\t");
            return;
        default:
            break;
        }
        m_text += c < 0x80 ? QStringLiteral("\\x") : QStringLiteral("\\u");
        appendHex(m_text, c, c < 0x80 ? 2 : 4);
    }

    void addInvalidByte(unsigned char byte)
    {
        m_text += QStringLiteral("\\x");
        appendHex(m_text, byte, 2);
    }

    QString take()
    {
        if (m_rightToLeft)
            return QChar(0x2068) + m_text + QChar(0x2069);
        return std::move(m_text);
    }

private:
    QString m_text;
    bool m_rightToLeft = false;
};

} // namespace

QString DisplayName::of(std::string_view bytes)
{
    // Most names are plain printable ASCII; they are shown as they are.
    if (std::all_of(bytes.begin(), bytes.end(), [](char b) { return b >= 0x20 && b < 0x7F; }))
        return QString::fromLatin1(bytes.data(), qsizetype(bytes.size()));
    Shown shown;
    char32_t c = 0;
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t length = Utf8::sequence(bytes, i, c);
        if (length == 0) {
            shown.addInvalidByte(static_cast<unsigned char>(bytes[i]));
            ++i;
        } else {
            shown.add(c);
            i += length;
        }
    }
    return shown.take();
}

QString DisplayName::of(const QString &text)
{
    if (std::all_of(text.begin(), text.end(), [](QChar c) { return c >= u' ' && c < u'\x7F'; }))
        return text;
    Shown shown;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text.at(i).unicode();
        if (QChar::isHighSurrogate(unit) && i + 1 < text.size() &&
            text.at(i + 1).isLowSurrogate()) {
            shown.add(QChar::surrogateToUcs4(unit, text.at(++i).unicode()));
        } else if (unit >= 0xDC80 && unit <= 0xDCFF) {
            shown.addInvalidByte(static_cast<unsigned char>(unit & 0xFF)); // see Utf8::lossless
        } else {
            shown.add(QChar::isSurrogate(unit) ? char32_t(0xFFFD) : char32_t(unit));
        }
    }
    return shown.take();
}
