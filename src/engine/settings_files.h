// The files that keep settings from one call to the next. Several hosts share them, so a call writes only what it
// changed itself into what the file holds by then, under a lock. A file is written whole beside the old one and then
// takes its name, so that a full disk or a crash leaves the old. One that can't be read is never replaced, and nothing
// is reported.
#pragma once

#include <bitset>
#include <cstdint>
#include <span>
#include <string_view>

#include "engine/catalogue.h"
#include "engine/settings.h"
#include "engine/settings_paths.h"

namespace lmf {

/// What a call knows of the ini file from its start: the values that its own changes are told by at its end.
struct FoundSettings {
    SettingsStore values;
    bool mayReplace; ///< the file was read, or there is none
};

/// The same of the enable file: the FilterEnabled bits by row.
struct FoundSwitches {
    std::bitset<kFilterCount> enabled;
    bool mayReplace;
};

/// Reads the ini file into `Settings`. What the file does not name keeps its value.
FoundSettings ReadSettings(uint32_t runFlags);
/// Takes into `Settings` what others saved since `found`, but for what this call changed, and writes it all. The
/// present ini file becomes the first backup and that the second.
void WriteSettings(uint32_t runFlags, const FoundSettings &found);

/// Reads the enable file into the FilterEnabled bits of the catalogue. Rows that it does not name keep theirs.
FoundSwitches ReadEnableFile(uint32_t runFlags);
/// Writes the FilterEnabled bits of all rows.
/// @param found  what the call read, to keep what others saved since; null where it read nothing: the bits are written
///               as they stand
void WriteEnableFile(uint32_t runFlags, const FoundSwitches *found);

/// A filter that was used, and when.
struct RecentFilter {
    char name[kTextSize];
    int32_t time; ///< seconds since 1970-01-01 UTC
};
/// Takes one line of the list file.
using RecentFilterSink = void (*)(void *target, const char *name, int32_t time);

/// Reads the list file line by line, skipping lines that are not a name, a comma and a number.
void ReadListFile(uint32_t runFlags, RecentFilterSink sink, void *target);
/// Writes the list file, unless there is nothing to write or the user wants none (RememberFilterSave).
void WriteListFile(uint32_t runFlags, std::span<const RecentFilter> recent);

/// The same readers on a text.
void ReadEnableLines(std::string_view text);
void ReadListLines(std::string_view text, RecentFilterSink sink, void *target);

} // namespace lmf
