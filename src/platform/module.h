// Libraries that are loaded while the process runs, by name: what not every host has installed, or not every call
// needs.
#pragma once

namespace lmf {

/// Loads the library `name` (libNAME.so, NAME.dll) of a folder.
/// @param folder  with a closing separator
/// @return the system's handle; null, with the reason in ModuleError, where it or what it needs is missing
[[nodiscard]] void *LoadModule(const char *folder, const char *name);
/// @return the address of a function that the library exports; null where it does not, or for a null library
[[nodiscard]] void *FindSymbol(void *module, const char *name);
/// Undoes one LoadModule; null is ignored.
void UnloadModule(void *module);
/// Why the last LoadModule or FindSymbol failed, as the system says it.
[[nodiscard]] const char *ModuleError();

} // namespace lmf
