// The text files of the product: the user's own, or else those that lie beside the library.
#pragma once

#include <span>
#include <string>

#include "report.h"

namespace lmf::host {

/// Gives the path of the first of `names` that the user has, or of `factory` beside the library, be it there or not.
/// Found as the library finds it, as long as that is not loaded yet.
std::string FindProductFile(std::span<const char *const> names, const char *factory);

/// Reads a text of the size that the library takes, at most 1 MB.
[[nodiscard]] bool ReadProductFile(const std::string &path, std::string &text, Report &report);

} // namespace lmf::host
