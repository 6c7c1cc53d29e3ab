// The options that say how picture files are read and written, and how pictures meet filters.
#pragma once

#include <CLI/CLI.hpp>

#include "filter_run.h"
#include "picture.h"

namespace lmf::host {

/// Adds the options for reading: the limits, and what counts as damage.
void AddReadingOptions(CLI::App &app, Limits &limits);

/// Adds the options of `lmf apply` for writing and for what is done to a picture beside the filter.
void AddWritingOptions(CLI::App &app, Encoding &encoding, Treatment &treatment);

/// Takes "transparent" out of what --paper was given: `paper` is then empty, or a color.
void TakePaper(std::string &paper, Treatment &treatment);

} // namespace lmf::host
