#include "common/colour_database.h"

#include <cstdio>
#include <cstring>

#include "common/text.h"
#include "engine/config_text.h"
#include "engine/text_file.h"

namespace lmf {

namespace {

constexpr const char *kGlobalName = "colors.ccl";

/// Moves `text` behind the next comma and those that follow it.
/// @return false where there is none, or nothing behind it
bool NextNumber(const char **text) {
    const char *comma = std::strchr(*text, ',');
    if (comma == nullptr) return false;
    *text = comma + std::strspn(comma, ",");
    return **text != '\0';
}

bool ParseColour(char *line, NamedColour *colour) {
    CutLineEnd(line);
    char *equals = std::strchr(line, '=');
    if (equals == nullptr || equals == line) return false;
    *equals = '\0';
    // These codes are all that is skipped: a tab is not among them, though a number may have one before it.
    const char *text = equals + 1;
    text += std::strspn(text, "\b =");
    uint32_t channels[3];
    for (int i = 0; i < 3; i++) {
        if (i > 0 && !NextNumber(&text)) return false;
        channels[i] = static_cast<uint32_t>(ParseNumber(text)) & 0xFF;
    }
    std::strcpy(colour->name, line);
    colour->color = PackColor(channels[0], channels[1], channels[2]);
    return true;
}

} // namespace

bool HasGlobalColours() {
    char path[kPathSize];
    return FindSettingsFile(kGlobalName, path) && InputFile(path).state != FileState::kAbsent;
}

bool ColourDatabasePath(char (&out)[kPathSize]) {
    return HasGlobalColours() ? FindSettingsFile(kGlobalName, out) : FindProductFile(Settings.ColourTableFile, out);
}

bool ReadColours(std::string_view text, ColourTable *table) {
    char line[kColourLineSize];
    for (LineReader lines{text}; lines.Next(line, sizeof line);) {
        NamedColour colour;
        if (ParseColour(line, &colour) && !table->Add(colour)) return false;
    }
    return true;
}

bool ColourDatabaseRead(ColourTable *table) {
    table->Clear();
    char path[kPathSize];
    if (!ColourDatabasePath(path)) return false;
    const TextFile file(path);
    if (file.state != FileState::kAbsent) return ReadColours(file.Text(), table) && file.Exists();
    const bool hasFactory = FindModuleFile(Settings.ColourTableFile, path);
    return ReadColours(TextFile(hasFactory ? path : nullptr).Text(), table);
}

void ColourDatabaseWrite(const ColourTable &table, const char *path) {
    char backup[kPathSize + 4];
    std::snprintf(backup, sizeof backup, "%s.bak", path);
    RemoveFile(backup);
    constexpr size_t kNumbers = 16; // "=255,255,255" and more
    LineWriter out(table.Elements().size(), kColourLineSize + kNumbers);
    for (const NamedColour &colour : table.Elements())
        out.Add("%s=%d,%d,%d", colour.name, RedOf(colour.color), GreenOf(colour.color), BlueOf(colour.color));
    if (out.Whole()) ReplaceTextFile(path, out.Text());
}

} // namespace lmf
