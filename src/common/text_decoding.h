// Texts of settings, which are read leniently: what is valid UTF-8 counts as such, and every other byte above 127 as a
// character of code page 1252. So any script can be typed, and files from before still read right.
#pragma once

#include <cstddef>

namespace lmf {

/// The character at the start of `text`, 0 at the end of the text. The five bytes that code page 1252 leaves unused are
/// the control characters of the same number.
/// @param length  receives the bytes that it takes, 1 to 4; 0 at the end
[[nodiscard]] char32_t NextCharacter(const char *text, size_t *length);

/// Writes the characters of a text as code points, without a terminator.
/// @param out  room for as many characters as the text has bytes
/// @return the number of characters
size_t DecodeText(const char *text, char32_t *out);

/// Writes one character in UTF-8, without a terminator.
/// @param character  up to 0x10FFFF and no surrogate
/// @param out        room for 4 bytes
/// @return the number of bytes, 1 to 4
size_t EncodeUtf8(char32_t character, char *out);

/// Writes a text in UTF-8, with a terminator; what does not fit is left out from a whole character on.
/// @param room  bytes of `out`, at least 1; three times the bytes of the text and 1 are always enough
/// @return the number of bytes without the terminator
size_t TextToUtf8(const char *text, char *out, size_t room);

} // namespace lmf
