// Small readings of text that must come out the same on every system and in every locale.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

namespace lmf {

/// The decimal number at the start of `text`, after blanks and a sign; 0 where there is none. A number beyond the range
/// of 32 bits gives the end of the range.
[[nodiscard]] int32_t ParseNumber(const char *text);

/// The first character of `text` that is no blank; tabs count as text.
[[nodiscard]] const char *SkipBlanks(const char *text);

/// Are the two texts the same, with the letters A to Z and a to z taken as equal?
[[nodiscard]] bool SameIgnoringCase(const char *a, const char *b);
/// Does the text begin with these letters, in the same sense?
[[nodiscard]] bool StartsIgnoringCase(const char *text, std::string_view start);

/// The first character of `text` with a code above 32, bytes from 128 up among them.
[[nodiscard]] const char *SkipToText(const char *text);
/// Ends a line before its first line feed or carriage return.
void CutLineEnd(char *line);

/// Gives a text line by line.
struct LineReader {
    std::string_view rest;

    /// Copies the next line with its end, zero-terminated. What doesn't fit is left for the next line.
    /// @param room  of `line`, at least 2
    /// @return false at the end of the text
    [[nodiscard]] bool Next(char *line, size_t room);
};

} // namespace lmf
