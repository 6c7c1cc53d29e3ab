// Small readings of text that must come out the same on every system and in every locale.
#pragma once

#include <cstdint>

namespace lmf {

/// The decimal number at the start of `text`, after blanks and a sign; 0 where there is none. A number beyond the range
/// of 32 bits gives the end of the range.
[[nodiscard]] int32_t ParseNumber(const char *text);

/// The first character of `text` that is no blank; tabs count as text.
[[nodiscard]] const char *SkipBlanks(const char *text);

/// Are the two texts the same, with the letters A to Z and a to z taken as equal?
[[nodiscard]] bool SameIgnoringCase(const char *a, const char *b);

} // namespace lmf
