#include "engine/config_text.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "common/random.h"
#include "platform/files.h"
#include "platform/system.h"

namespace lmf {

LineWriter::LineWriter(size_t lines, size_t lineSize) : room(lines * lineSize + 1), bytes(room), whole(bool{bytes}) {}

void LineWriter::Add(const char *format, ...) {
    if (!whole) return;
    std::va_list values;
    va_start(values, format);
    const int count = std::vsnprintf(bytes.data + length, room - length, format, values);
    va_end(values);
    const size_t end = std::strlen(kLineEnd);
    whole = count >= 0 && static_cast<size_t>(count) + end < room - length;
    if (!whole) return;
    length += static_cast<size_t>(count);
    std::memcpy(bytes.data + length, kLineEnd, end);
    length += end;
}

void HexCodeText(SettingText &text, bool encode) {
    if (std::strlen(text) < 2) return;
    SettingText coded = "";
    size_t length = 0;
    if (encode) {
        static bool seeded = false;
        if (!seeded) SeedRandom(static_cast<uint32_t>(SystemTime()));
        seeded = true;
        const auto addByte = [&](unsigned byte) {
            static constexpr char kDigits[] = "0123456789ABCDEF";
            coded[length++] = kDigits[byte >> 4 & 15];
            coded[length++] = kDigits[byte & 15];
        };
        addByte(static_cast<unsigned>(NextRandom()) & 0xFF);
        for (const char *c = text; *c != '\0' && length + 2 < kTextSize; c++) addByte(static_cast<unsigned char>(*c));
    } else {
        const auto digitAt = [&](size_t i) {
            const char c = text[i];
            if (c >= '0' && c <= '9') return c - '0';
            if (c >= 'A' && c <= 'F') return c - 'A' + 10;
            if (c >= 'a' && c <= 'f') return c - 'a' + 10;
            return -1;
        };
        for (size_t i = 2; digitAt(i) >= 0 && digitAt(i + 1) >= 0; i += 2)
            coded[length++] = static_cast<char>(digitAt(i) * 16 + digitAt(i + 1));
    }
    std::memcpy(text, coded, kTextSize);
}

namespace {

/// The number of characters before the first that is below 32 or the end. Characters from 128 up count as text.
size_t PrintableLength(const char *text) {
    const char *end = text;
    while (static_cast<unsigned char>(*end) >= ' ') end++;
    return static_cast<size_t>(end - text);
}

/// The row that a line of the file names: the first whose key starts with what the line gives of it. An empty key
/// names the first row of all.
const ConfigEntry *FindRow(std::span<const ConfigEntry> table, const char *key, size_t length) {
    for (const ConfigEntry &row : table) {
        if (row.type & kConfigWriteOnly) continue;
        // The first letter turns most rows down without a call, which counts in a long file of unknown keys.
        if (length == 0 || (row.key[0] == key[0] && std::strncmp(row.key, key, length) == 0)) return &row;
    }
    return nullptr;
}

void StoreValue(const ConfigEntry &row, const char *value) {
    if (!(row.type & kConfigText)) {
        row.Number() = ParseNumber(value);
        return;
    }
    SettingText &text = *static_cast<SettingText *>(row.variable);
    std::memset(text, 0, kTextSize);
    std::memcpy(text, value, std::min(std::strlen(value), kTextSize - 1));
    if (row.type & kConfigHexCoded) HexCodeText(text, false);
}

/// Cuts a text where its line would not be read back as one: anything more would be taken for further settings.
void WriteText(LineWriter &out, const ConfigEntry &row) {
    SettingText text;
    std::memcpy(text, row.variable, kTextSize);
    text[kTextSize - 1] = '\0';
    if (row.type & kConfigHexCoded) HexCodeText(text, true);
    const size_t room = kLineSize - 1 - std::strlen(" = ") - std::strlen(kLineEnd) - std::strlen(row.key);
    const size_t length = std::min(PrintableLength(text), room);
    out.Add("%s = %.*s", row.key, static_cast<int>(length), text);
}

} // namespace

void ReadConfigLines(std::string_view text, std::span<const ConfigEntry> table) {
    LineReader lines{text};
    Line line;
    while (lines.Next(line, kLineSize)) {
        if (line[0] == ';') continue;
        line[PrintableLength(line)] = '\0';
        const size_t keyLength = std::strcspn(line, " =");
        const ConfigEntry *row = FindRow(table, line, keyLength);
        if (row == nullptr) continue;
        const char *value = SkipBlanks(line + keyLength);
        if (*value == '=') value = SkipBlanks(value + std::strspn(value, "="));
        StoreValue(*row, value);
    }
}

void WriteConfigLines(LineWriter &out, std::span<const ConfigEntry> table) {
    for (const ConfigEntry &row : table) {
        if (row.type & kConfigText)
            WriteText(out, row);
        else
            out.Add("%s = %u", row.key, static_cast<uint32_t>(row.Number()));
    }
}

} // namespace lmf
