// What the library asks of the system beside memory and windows: the clock, the user, folders, files, the library's own
// place.
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

/// Room that is enough for the name of UserName.
inline constexpr size_t kUserNameSize = 256;
/// The user's full name as the system has it, else the name of the login.
/// @param out  kUserNameSize bytes
/// @return false where there is none, or none that fits
[[nodiscard]] bool UserName(char *out);
/// A letter in lower or upper case, in every script and the same in every locale; any other character as it is.
[[nodiscard]] char32_t LowerCase(char32_t character);
[[nodiscard]] char32_t UpperCase(char32_t character);

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

/// Makes a folder the process's current one until the end of the scope. Where it cannot be entered, nothing changes.
class CurrentFolder {
public:
    explicit CurrentFolder(const char *folder);
    CurrentFolder(const CurrentFolder &) = delete;
    CurrentFolder &operator=(const CurrentFolder &) = delete;
    ~CurrentFolder();

private:
    intptr_t before; ///< what leads back
};

/// Keeps the folder of the library's own file. Called once, when the library is loaded.
/// @param module  the system's handle of the library; ignored where the system needs none
void KeepModuleFolder(void *module);
/// The folder of the library's own file with a closing separator, or an empty text while it is not known.
[[nodiscard]] const char *ModuleFolder();

} // namespace lmf
