#include "common/text_decoding.h"

#include <cstdint>
#include <cstring>

namespace lmf {

namespace {

/// The characters of code page 1252 from 0x80 to 0x9F; the others have their byte's number.
constexpr char16_t kCodePage1252[32] = {0x20AC, 0x81,   0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                        0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x8D,   0x017D, 0x8F,
                                        0x90,   0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                        0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x9D,   0x017E, 0x0178};

/// Sequences of UTF-8 by their number of bytes.
struct Sequence {
    uint8_t firstBits; ///< the first byte without the bits of the character
    uint8_t firstMask; ///< the bits that tell
    char32_t smallest; ///< a smaller character has a shorter sequence
};
constexpr Sequence kSequences[] = {{0xC0, 0xE0, 0x80}, {0xE0, 0xF0, 0x800}, {0xF0, 0xF8, 0x10000}};

/// The character of a valid sequence of `length` bytes, or 0.
char32_t DecodeSequence(const uint8_t *bytes, size_t length) {
    const Sequence &sequence = kSequences[length - 2];
    if ((bytes[0] & sequence.firstMask) != sequence.firstBits) return 0;
    char32_t character = bytes[0] & ~sequence.firstMask & 0xFFu;
    for (size_t i = 1; i < length; i++) {
        if ((bytes[i] & 0xC0) != 0x80) return 0; // the text's end among others
        character = character << 6 | (bytes[i] & 0x3F);
    }
    const bool isSurrogate = character >= 0xD800 && character < 0xE000;
    return character < sequence.smallest || isSurrogate || character > 0x10FFFF ? 0 : character;
}

} // namespace

char32_t NextCharacter(const char *text, size_t *length) {
    const auto *bytes = reinterpret_cast<const uint8_t *>(text);
    *length = bytes[0] == 0 ? 0 : 1;
    if (bytes[0] < 0x80) return bytes[0];
    for (size_t i = 2; i <= 4; i++) {
        if (const char32_t character = DecodeSequence(bytes, i)) {
            *length = i;
            return character;
        }
    }
    return bytes[0] < 0xA0 ? kCodePage1252[bytes[0] - 0x80] : bytes[0];
}

size_t DecodeText(const char *text, char32_t *out) {
    size_t count = 0;
    size_t length;
    while (const char32_t character = NextCharacter(text, &length)) {
        out[count++] = character;
        text += length;
    }
    return count;
}

size_t EncodeUtf8(char32_t character, char *out) {
    if (character < 0x80) {
        out[0] = static_cast<char>(character);
        return 1;
    }
    size_t length = 2;
    while (length < 4 && character >= kSequences[length - 1].smallest) length++;
    for (size_t i = length; --i > 0; character >>= 6) out[i] = static_cast<char>(0x80 | (character & 0x3F));
    out[0] = static_cast<char>(kSequences[length - 2].firstBits | character);
    return length;
}

size_t TextToUtf8(const char *text, char *out, size_t room) {
    size_t count = 0;
    size_t length;
    while (const char32_t character = NextCharacter(text, &length)) {
        char encoded[4];
        const size_t bytes = EncodeUtf8(character, encoded);
        if (count + bytes >= room) break;
        std::memcpy(out + count, encoded, bytes);
        count += bytes;
        text += length;
    }
    out[count] = '\0';
    return count;
}

} // namespace lmf
