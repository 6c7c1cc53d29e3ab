// Settings as text in memory: lines of `Key = value`, read into the variables that a table's rows name and written from
// them. Where such a text lies is not known here.
#pragma once

#include <cstddef>
#include <span>
#include <string_view>

#include "common/text.h"
#include "engine/settings.h"
#include "platform/memory.h"

namespace lmf {

/// Buffer of one line. A longer line goes on as a further line, so writers keep below it.
inline constexpr size_t kLineSize = 260;
using Line = char[kLineSize];

/// Collects lines in memory.
struct LineWriter {
    /// Makes room for so many lines of less than `lineSize` characters.
    explicit LineWriter(size_t lines, size_t lineSize = kLineSize);

    /// Adds a line and its end, printed as by `printf`.
    __attribute__((format(printf, 2, 3))) void Add(const char *format, ...);
    /// Nothing is missing from the text: there was memory and room for every line.
    [[nodiscard]] bool Whole() const { return whole; }
    [[nodiscard]] std::string_view Text() const { return {bytes.data, length}; }

private:
    size_t room;
    BlockArray<char> bytes;
    size_t length = 0;
    bool whole;
};

/// Reads the lines of a text into the variables of the table. Those that no line names keep their values, lines that
/// name none are skipped, and of several for one the last counts. A key may be cut short: it stands for the first row,
/// write-only ones aside, whose key begins with it, and so a line without a key stands for the first row of all.
void ReadConfigLines(std::string_view text, std::span<const ConfigEntry> table);
/// Writes one line for each row of the table. A text is cut where ReadConfigLines would not give it back: before its
/// first control character, and where its line is full.
void WriteConfigLines(LineWriter &out, std::span<const ConfigEntry> table);

/// Puts a text into the hex-coded form of the file or takes it out: a random byte, then the text, two digits a byte.
/// Encoding keeps the first 129 bytes, which is what the form has room for; its first use seeds the random stream with
/// the time. Decoding ends at the first pair that is not hexadecimal. A text of less than two characters stays.
void HexCodeText(SettingText &text, bool encode);

} // namespace lmf
