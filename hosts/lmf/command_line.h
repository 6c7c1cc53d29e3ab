// What all commands do with what was typed.
#pragma once

#include <CLI/CLI.hpp>

#include <string>
#include <vector>

#include "catalogue.h"

namespace lmf::host {

using Arguments = std::vector<std::string>;

/// Reads the options of a command. What is no option is left in `rest` byte for byte: names of files pass no parser.
/// Gives true to go on; otherwise the program ends with `exitCode`.
[[nodiscard]] bool ParseOptions(CLI::App &app, Arguments arguments, Arguments &rest, int &exitCode);

/// Finds the filter of a command, or says which names are near and gives null.
const Json *RequireFilter(const std::string &name);

/// Finds the category of a command in `category` and gives it its own spelling, or says which there are.
[[nodiscard]] bool RequireCategory(std::string &category);

} // namespace lmf::host
