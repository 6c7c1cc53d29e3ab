// What the library asks of the system beside memory and windows: the clock and the library's own place.
#pragma once

#include <cstdint>

namespace lmf {

/// Seconds since 1970-01-01 UTC; SOURCE_DATE_EPOCH where that is set, so that runs can be repeated.
[[nodiscard]] int64_t SystemTime();

/// Keeps the folder of the library's own file. Called once, when the library is loaded.
/// @param module  the system's handle of the library; ignored where the system needs none
void KeepModuleFolder(void *module);
/// The folder of the library's own file with a closing separator, or an empty text while it is not known.
[[nodiscard]] const char *ModuleFolder();

} // namespace lmf
