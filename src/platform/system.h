// What the library asks of the system beside memory and windows: the clock, folders, files, the library's own place.
#pragma once

#include <cstddef>
#include <cstdint>
#include <ctime>

namespace lmf {

/// Seconds since 1970-01-01 UTC; SOURCE_DATE_EPOCH where that is set, so that runs can be repeated.
[[nodiscard]] int64_t SystemTime();
/// Breaks a time of SystemTime down into local time.
/// @return false for a time that the system's calendar cannot hold
[[nodiscard]] bool LocalTime(int64_t seconds, std::tm *out);

/// What separates the folders of a path.
extern const char kPathSeparator;
/// Room that is enough for any folder that the functions below give.
inline constexpr size_t kFolderSize = 4096;
/// The folder of the user's settings of all programs, without a promise about a closing separator.
/// @param out  kFolderSize bytes
/// @return false where there is none
[[nodiscard]] bool ApplicationDataFolder(char *out);
/// The folder of the user's documents, in the same way.
[[nodiscard]] bool UserDocumentsFolder(char *out);

/// Keeps the folder of the library's own file. Called once, when the library is loaded.
/// @param module  the system's handle of the library; ignored where the system needs none
void KeepModuleFolder(void *module);
/// The folder of the library's own file with a closing separator, or an empty text while it is not known.
[[nodiscard]] const char *ModuleFolder();

} // namespace lmf
