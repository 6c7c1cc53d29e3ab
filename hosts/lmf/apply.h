// A chain of filters over one picture or many.
#pragma once

#include <string>
#include <vector>

#include "console.h"
#include "filter_run.h"
#include "library.h"
#include "picture.h"
#include "settings.h"

namespace lmf::host {

struct ApplyRequest {
    SettingsRequest settings;
    std::vector<std::string> inputs;
    std::string output;          // of the one input, or empty
    std::string folder;          // for the outputs of all inputs, or empty
    std::string extension;       // --format: that of the outputs, whatever their names; empty: by name
    std::string library;         // path of the filter library; empty: the one beside the program
    std::string clipboard;       // a picture file that plays the part of the clipboard; empty: nothing does
    std::optional<int64_t> seed; // of all random numbers
    Limits limits;
    Encoding encoding;
    Treatment treatment;
    bool skipExisting = false;
    bool json = false;
    bool quiet = false;
};

/// What is the same for all pictures of a run.
struct Job {
    std::vector<Step> steps;
    Library library;
    Bitmap clipboard;
    const Codec *codec = nullptr; // of the outputs; null: by their names
    std::string destinations;     // file of the list that one of the steps needs, or empty
    Limits limits;
    Encoding encoding;
    Treatment treatment;
    bool skipExisting = false;
};

/// One picture of a run.
struct Task {
    std::string input;
    std::string output;
    Grain grain;
};

struct TaskOutcome {
    ExitCode code = kDone;
    bool skipped = false;
    std::string error;
    std::vector<std::string> warnings;
    int width = 0;
    int height = 0;
    int bits = 0;
    double filterSeconds = 0;
};

/// Does all of the work on one picture: reads it, runs the steps over it, writes it. It touches nothing but its
/// arguments, the two files and the library, so that a process of its own can run it. Memory that runs out is a failure
/// of this picture.
[[nodiscard]] TaskOutcome RunTask(const Job &job, const Task &task);

/// Runs the request, with messages on standard error and, if asked for, a line of JSON a picture on standard output.
/// Gives the exit code: that of the first picture that failed, or kDone.
int Apply(const ApplyRequest &request);

} // namespace lmf::host
