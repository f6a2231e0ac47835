#pragma once

#include <QString>
#include <string_view>

// Names and paths as people read them. A file name may hold anything but "/" and NUL: escape
// sequences that clear a terminal, line breaks that split a row, bidirectional controls that
// reverse the text around them. Here control characters (C0, DEL, C1, line and paragraph
// separators) and bidirectional controls become visible escapes ("\n", "\x1B", "\u202E"), bytes
// that are not UTF-8 become "\xFF", and text with right-to-left letters is isolated (FSI … PDI),
// so it keeps its own order without reordering what stands around it.
namespace DisplayName {

[[nodiscard]] QString of(std::string_view bytes);
// For text that is already decoded: a place name made from a folder's name, a custom name. Bytes
// kept by Utf8::lossless show as they would from the bytes.
[[nodiscard]] QString of(const QString &text);

} // namespace DisplayName
