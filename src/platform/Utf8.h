#pragma once

#include <QString>
#include <cstddef>
#include <string>
#include <string_view>

// File names are bytes and need not be UTF-8. These read them strictly (no overlong forms, no
// encoded surrogates, nothing past U+10FFFF) and carry them through QString without loss.
namespace Utf8 {

// The length of the valid sequence that starts at `at`, with its code point; 0 when the byte
// there starts none.
[[nodiscard]] std::size_t sequence(std::string_view bytes, std::size_t at, char32_t &codePoint);
[[nodiscard]] bool isValid(std::string_view bytes);

// Text for storing a byte string where only text fits (settings): valid UTF-8 as it reads, each
// other byte b as the lone surrogate U+DC00 + b, which no valid UTF-8 can produce, so `bytes()`
// gives back exactly the bytes that went in.
[[nodiscard]] QString lossless(std::string_view bytes);
[[nodiscard]] std::string bytes(const QString &text);

} // namespace Utf8
