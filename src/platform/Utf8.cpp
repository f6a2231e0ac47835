#include "platform/Utf8.h"

#include <QByteArray>

std::size_t Utf8::sequence(std::string_view bytes, std::size_t at, char32_t &codePoint)
{
    const auto byte = [&bytes](std::size_t k) { return static_cast<unsigned char>(bytes[k]); };
    const unsigned char lead = byte(at);
    if (lead < 0x80) {
        codePoint = lead;
        return 1;
    }
    std::size_t length = 0;
    char32_t cp = 0;
    char32_t smallest = 0;
    if (lead >= 0xC2 && lead <= 0xDF) {
        length = 2;
        cp = lead & 0x1F;
        smallest = 0x80;
    } else if (lead >= 0xE0 && lead <= 0xEF) {
        length = 3;
        cp = lead & 0x0F;
        smallest = 0x800;
    } else if (lead >= 0xF0 && lead <= 0xF4) {
        length = 4;
        cp = lead & 0x07;
        smallest = 0x10000;
    } else {
        return 0;
    }
    if (at + length > bytes.size())
        return 0;
    for (std::size_t k = 1; k < length; ++k) {
        if ((byte(at + k) & 0xC0) != 0x80)
            return 0;
        cp = (cp << 6) | (byte(at + k) & 0x3F);
    }
    if (cp < smallest || cp > 0x10FFFF || (cp >= 0xD800 && cp <= 0xDFFF))
        return 0;
    codePoint = cp;
    return length;
}

bool Utf8::isValid(std::string_view bytes)
{
    char32_t cp = 0;
    for (std::size_t i = 0; i < bytes.size();) {
        // Most names are ASCII: skip it without decoding.
        while (i < bytes.size() && static_cast<unsigned char>(bytes[i]) < 0x80)
            ++i;
        if (i == bytes.size())
            break;
        const std::size_t length = sequence(bytes, i, cp);
        if (length == 0)
            return false;
        i += length;
    }
    return true;
}

QString Utf8::lossless(std::string_view bytes)
{
    if (isValid(bytes))
        return QString::fromUtf8(bytes.data(), qsizetype(bytes.size()));
    QString text;
    text.reserve(qsizetype(bytes.size()));
    char32_t cp = 0;
    for (std::size_t i = 0; i < bytes.size();) {
        const std::size_t length = sequence(bytes, i, cp);
        if (length == 0) {
            text += QChar(char16_t(0xDC00 | static_cast<unsigned char>(bytes[i])));
            ++i;
            continue;
        }
        if (QChar::requiresSurrogates(cp)) {
            text += QChar(QChar::highSurrogate(cp));
            text += QChar(QChar::lowSurrogate(cp));
        } else {
            text += QChar(char16_t(cp));
        }
        i += length;
    }
    return text;
}

std::string Utf8::bytes(const QString &text)
{
    std::string out;
    out.reserve(std::size_t(text.size()));
    for (qsizetype i = 0; i < text.size(); ++i) {
        const char16_t unit = text.at(i).unicode();
        const bool pair =
            QChar::isHighSurrogate(unit) && i + 1 < text.size() && text.at(i + 1).isLowSurrogate();
        if (!pair && unit >= 0xDC80 && unit <= 0xDCFF) {
            out += char(unit & 0xFF);
            continue;
        }
        const QByteArray utf8 = text.mid(i, pair ? 2 : 1).toUtf8();
        out.append(utf8.constData(), std::size_t(utf8.size()));
        i += pair ? 1 : 0;
    }
    return out;
}
