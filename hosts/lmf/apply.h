// A chain of filters over one picture or many.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "console.h"
#include "filter_run.h"
#include "library.h"
#include "picture.h"
#include "plan.h"
#include "settings.h"
#include "task.h"

namespace lmf::host {

struct ApplyRequest {
    SettingsRequest settings;
    FilesRequest files;
    std::string library;         // path of the filter library; empty: the one beside the program
    std::string clipboard;       // a picture file that plays the part of the clipboard; empty: nothing does
    std::optional<int64_t> seed; // of all random numbers
    Limits limits;
    Encoding encoding;
    Treatment treatment;
    size_t jobs = 0; // processes that share the pictures; 0: as many as there are processors
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
    Conflict conflict = Conflict::kOverwrite;
};

/// Does all of the work on one picture: reads it, runs the steps over it, writes it. It touches nothing but its
/// arguments, the two files and the library, so that a process of its own can run it. Throws std::bad_alloc where
/// memory runs out; then nothing was written.
[[nodiscard]] TaskOutcome RunTask(const Job &job, const Task &task);

/// Runs the request, with messages on standard error and, if asked for, a line of JSON a picture on standard output.
/// Gives the exit code: that of the first picture that failed, or kDone.
int Apply(const ApplyRequest &request);

} // namespace lmf::host
