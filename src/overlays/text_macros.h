// Macros in the texts that overlays draw.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>

namespace lmf {

inline constexpr const char *kWeekdayNames[7] = {"Sunday",   "Monday", "Tuesday", "Wednesday",
                                                 "Thursday", "Friday", "Saturday"};
inline constexpr const char *kMonthNames[12] = {"January", "February", "March",     "April",   "May",      "June",
                                                "July",    "August",   "September", "October", "November", "December"};

/// What the macros stand for.
struct TextMacroValues {
    int32_t width; ///< of the picture, in pixels
    int32_t height;
    const std::tm *time;   ///< local time; null, where there is none, leaves its macros empty
    bool (*owner)(char *); ///< gives the owner's name as UserName does; asked only where the text names him
};

/// Writes the text with its macros replaced: %C the copyright sign (the byte 0xA9), %D the date, %H the width, %N the
/// owner, %S date and time, %T the time, %V the height, %Y the year; a letter in either case. "%" before any other
/// character is dropped, so "%%" gives "%", and so is one at the end.
///
/// The text goes over in pieces, one a macro or a plain character. One that does not fit is left out, and a later one
/// may fit again.
/// @param out    receives at most `limit` - 1 bytes and a terminator
/// @param limit  at least 1
void ExpandTextMacros(char *out, const char *text, size_t limit, const TextMacroValues &values);

/// The same with the clock and the owner of this system.
void TextMacroExpand(char *out, const char *text, size_t limit, int32_t width, int32_t height);

} // namespace lmf
