// The files that keep settings from one call to the next: plain text in one folder of the user's, a set of three for
// each kind of host. No folder is made here, and a file that cannot be opened counts as absent: nothing is reported.
// A file is written whole beside the old one and then takes its name, so that a full disk or a crash leaves the old.
#pragma once

#include <cstdint>
#include <cstdio>
#include <span>

#include "engine/settings.h"

namespace lmf {

/// Room of a path: 260 characters and a terminator. What is longer is cut.
inline constexpr size_t kPathSize = 261;

/// The folder of the settings files with a closing separator.
/// @return false where the user has no folder for settings
[[nodiscard]] bool SettingsFolder(char (&out)[kPathSize]);
/// Paths of files, in a buffer that the next call of the same function overwrites; an empty text where the user has no
/// such folder. In turn: beside the settings files, in the product's folder there, among the user's documents, beside
/// the library's own file.
[[nodiscard]] const char *SettingsFile(const char *name);
[[nodiscard]] const char *ProductFile(const char *name);
[[nodiscard]] const char *DocumentsFile(const char *name);
[[nodiscard]] const char *ModuleFile(const char *name);

/// Names of the files of one kind of host.
struct SettingsFileSet {
    const char *ini;
    const char *enable;
    const char *list;
};

/// The file set of a call with these RunFlags.
[[nodiscard]] const SettingsFileSet &SettingsFilesFor(uint32_t runFlags);

/// Reads the ini file into `Settings`. What the file does not name keeps its value.
void ReadSettings(uint32_t runFlags);
/// Moves the present ini file to the first backup and that to the second, then writes `Settings`.
void WriteSettings(uint32_t runFlags);
/// Reads the enable file into the FilterEnabled bits of the catalogue. Rows that it does not name keep theirs.
void ReadEnableFile(uint32_t runFlags);
/// Writes the FilterEnabled bits of all rows.
void WriteEnableFile(uint32_t runFlags);

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

/// The same readers and writers on an open file. `table` is ConfigTable but in tests.
void ReadIniLines(std::FILE *file, std::span<const ConfigEntry> table);
void WriteIniLines(std::FILE *file, std::span<const ConfigEntry> table);
void ReadEnableLines(std::FILE *file);
void ReadListLines(std::FILE *file, RecentFilterSink sink, void *target);

/// Puts a text into the hex-coded form of the file or takes it out: a random byte, then the text, two digits a byte.
/// Encoding keeps the first 129 bytes, which is what the form has room for. Decoding ends at the first pair that is not
/// hexadecimal. A text of less than two characters stays as it is.
void HexCodeText(SettingText &text, bool encode);

} // namespace lmf
