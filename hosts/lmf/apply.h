// One filter over one picture or many.
#pragma once

#include <string>
#include <vector>

#include "picture.h"
#include "settings.h"

namespace lmf::host {

/// What the program ends with.
enum ExitCode { kDone = 0, kUsage = 1, kUnreadable = 2, kFilterFailed = 3, kUnwritable = 4 };

struct ApplyRequest {
    SettingsRequest settings;
    std::vector<std::string> inputs;
    std::string output;    // of the one input, or empty
    std::string folder;    // for the outputs of all inputs, or empty
    std::string extension; // of the outputs in `folder`; empty: the inputs' own
    std::string library;   // path of the filter library; empty: the one beside the program
    std::string clipboard; // a picture file that plays the part of the clipboard; empty: nothing does
    Limits limits;
    Encoding encoding;
    bool skipExisting = false;
    bool json = false;
};

/// Runs the request, with messages on standard error and, if asked for, a report as JSON on standard output.
/// Gives the exit code: that of the first picture that failed, or kDone.
int Apply(const ApplyRequest &request);

/// Prints "lmf: " and a message on standard error.
void Complain(const std::string &message);

} // namespace lmf::host
