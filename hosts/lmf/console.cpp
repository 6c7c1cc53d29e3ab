#include "console.h"

#include <algorithm>
#include <cstdio>

#include "files.h"

namespace lmf::host {

namespace {

bool gOutputFailed = false;

void OutputFailed() {
    if (!gOutputFailed) Complain("standard output: " + SystemError());
    gOutputFailed = true;
}

} // namespace

void Print(const std::string &text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()) OutputFailed();
}

void PrintLine(const std::string &line) {
    Print(line + "\n");
    if (std::fflush(stdout) != 0) OutputFailed();
}

int FinishOutput(int exitCode) {
    if (std::fflush(stdout) != 0) OutputFailed();
    return gOutputFailed && exitCode == kDone ? int(kUnwritable) : exitCode;
}

void Complain(const std::string &message) {
    std::fprintf(stderr, "lmf: %s\n", message.c_str());
}

std::string Padded(std::string text, size_t width) {
    text.resize(std::max(text.size() + 1, width), ' ');
    return text;
}

} // namespace lmf::host
