// Filter documents: the settings of one filter in a file, as its page keeps them.
#pragma once

#include <string>

#include "catalogue.h"
#include "settings.h"

namespace lmf::host {

/// Reads a document of the filter. What it says goes into `values`, numbers brought to what may be typed; what it
/// leaves out stays. Fails for a file that cannot be read, that is no document, or that is another filter's.
[[nodiscard]] bool ReadDocument(const std::string &path, const Json &filter, StoredValues &values, Report &report);

/// Writes a document with the values of the step, and the defaults of what it does not set. Settings that begin with
/// the picture are left out unless they are set. "-" is standard output.
[[nodiscard]] bool WriteDocument(const std::string &path, const Step &step, Report &report);

} // namespace lmf::host
