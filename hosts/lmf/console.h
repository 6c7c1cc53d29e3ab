// What the program says on standard output and standard error.
#pragma once

#include <string>

namespace lmf::host {

/// What the program ends with.
enum ExitCode { kDone = 0, kUsage = 1, kUnreadable = 2, kFilterFailed = 3, kUnwritable = 4 };

/// Writes a text to standard output. A failure is told once, and FinishOutput knows of it.
void Print(const std::string &text);

/// Writes a line to standard output and brings it there at once.
void PrintLine(const std::string &line);

/// Brings what was printed to its end. Gives kUnwritable where that failed and `exitCode` is kDone, else `exitCode`.
[[nodiscard]] int FinishOutput(int exitCode);

/// Prints "lmf: " and a message on standard error.
void Complain(const std::string &message);

/// Gives the text with blanks up to this width, and with one at least.
std::string Padded(std::string text, size_t width);

} // namespace lmf::host
