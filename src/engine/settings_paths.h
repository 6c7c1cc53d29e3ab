// Where files lie: those of the settings in one folder of the user's, a set of three for each kind of host, and the
// product's, the user's and the library's own. No folder is made here.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>

namespace lmf {

/// The product's folder beside the settings files.
inline constexpr const char *kProductFolder = "Lumenfold Studio 16";

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

/// The path of a file that is to be opened, in the same places.
/// @return false where there is no such path, or it is too long: a cut one would name another file
[[nodiscard]] bool FindSettingsFile(const char *name, char (&out)[kPathSize]);
[[nodiscard]] bool FindProductFile(const char *name, char (&out)[kPathSize]);
[[nodiscard]] bool FindModuleFile(const char *name, char (&out)[kPathSize]);
/// The same of a file in another folder beside the settings files, and in a folder among the user's documents.
[[nodiscard]] bool FindMakerFile(const char *folder, const char *name, char (&out)[kPathSize]);
[[nodiscard]] bool FindDocumentsFile(std::initializer_list<const char *> folders, const char *name,
                                     char (&out)[kPathSize]);

/// Names of the files of one kind of host.
struct SettingsFileSet {
    const char *ini;
    const char *enable;
    const char *list;
};

/// The file set of a call with these RunFlags.
[[nodiscard]] const SettingsFileSet &SettingsFilesFor(uint32_t runFlags);

} // namespace lmf
