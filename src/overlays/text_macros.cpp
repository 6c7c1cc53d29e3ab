#include "overlays/text_macros.h"

#include <cstdio>
#include <cstring>

#include "common/text_decoding.h"
#include "platform/system.h"

namespace lmf {

namespace {

/// Room for any piece: a name whose letters all take four bytes.
constexpr size_t kPieceSize = 4 * kUserNameSize;

/// A time as C's own ctime writes it, without its line end: "Wed Jun 30 21:49:08 1993".
void CTimeText(char *out, const std::tm &time) {
    std::snprintf(out, kPieceSize, "%.3s %.3s%3d %02d:%02d:%02d %4d", kWeekdayNames[time.tm_wday],
                  kMonthNames[time.tm_mon], time.tm_mday, time.tm_hour, time.tm_min, time.tm_sec, 1900 + time.tm_year);
}

/// The owner's name with capitals at its start and after each blank, and nowhere else.
void OwnerName(char *out, const TextMacroValues &values) {
    char name[kUserNameSize];
    char32_t letters[kUserNameSize];
    const size_t count = values.owner(name) ? DecodeText(name, letters) : 0;
    for (size_t i = 0; i < count; i++) {
        const bool isFirst = i == 0 || letters[i - 1] == ' ';
        out += EncodeUtf8(isFirst ? UpperCase(letters[i]) : LowerCase(letters[i]), out);
    }
    *out = '\0';
}

/// Writes what a macro of the time stands for; nothing for another letter.
void TimePiece(char *out, char macro, const std::tm &time) {
    constexpr size_t kYearAt = 20;
    char ctime[kPieceSize];
    CTimeText(ctime, time);
    const int hour = time.tm_hour;
    switch (macro) {
    case 'D':
        std::snprintf(out, kPieceSize, "%10.10s %4.4s", ctime, ctime + kYearAt);
        break;
    case 'S':
        std::snprintf(out, kPieceSize, "%24.24s", ctime);
        break;
    case 'T': // the hour after noon is one of the morning, and the one after midnight is 0
        std::snprintf(out, kPieceSize, "%d:%02d:%02d %s", hour < 13 ? hour : hour - 12, time.tm_min, time.tm_sec,
                      hour < 13 ? "AM" : "PM");
        break;
    case 'Y':
        std::snprintf(out, kPieceSize, "%4.4s", ctime + kYearAt);
        break;
    default:
        break;
    }
}

/// Writes what a macro stands for.
/// @param macro  a capital
/// @return false for a letter that is none
bool MacroPiece(char *out, char macro, const TextMacroValues &values) {
    out[0] = '\0';
    switch (macro) {
    case 'C':
        std::strcpy(out, "\xA9");
        return true;
    case 'H':
        std::snprintf(out, kPieceSize, "%d", values.width);
        return true;
    case 'V':
        std::snprintf(out, kPieceSize, "%d", values.height);
        return true;
    case 'N':
        OwnerName(out, values);
        return true;
    case 'D':
    case 'S':
    case 'T':
    case 'Y':
        if (values.time != nullptr) TimePiece(out, macro, *values.time);
        return true;
    default:
        return false;
    }
}

} // namespace

void ExpandTextMacros(char *out, const char *text, size_t limit, const TextMacroValues &values) {
    size_t length = 0;
    const auto add = [&](const char *piece, size_t bytes) {
        if (length + bytes >= limit) return;
        std::memcpy(out + length, piece, bytes);
        length += bytes;
    };
    size_t bytes;
    while (char32_t character = NextCharacter(text, &bytes)) {
        char piece[kPieceSize];
        if (character == '%') {
            text++;
            character = NextCharacter(text, &bytes);
            const bool isLetter = character >= 'a' && character <= 'z';
            const auto macro = static_cast<char>(isLetter ? character - ('a' - 'A') : character);
            if (character < 0x80 && MacroPiece(piece, macro, values)) {
                add(piece, std::strlen(piece));
                text++;
                continue;
            }
        }
        add(text, bytes);
        text += bytes;
    }
    out[length] = '\0';
}

void TextMacroExpand(char *out, const char *text, size_t limit, int32_t width, int32_t height) {
    std::tm time;
    const bool hasTime = LocalTime(SystemTime(), &time);
    ExpandTextMacros(out, text, limit, {width, height, hasTime ? &time : nullptr, UserName});
}

} // namespace lmf
