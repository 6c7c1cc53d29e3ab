// One picture of a run, and what became of it.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "console.h"
#include "settings.h"

namespace lmf::host {

/// What happens to an output whose name is taken.
enum class Conflict { kOverwrite, kSkip, kFail, kRename };

struct Task {
    std::string input;
    std::string output;
    std::string fault; // what keeps the input from being read, known beforehand
    Grain grain;
};

struct TaskOutcome {
    ExitCode code = kDone;
    bool skipped = false;
    int width = 0;
    int height = 0;
    int bits = 0;
    double filterSeconds = 0;
    std::string error;
    std::vector<std::string> warnings;
};

} // namespace lmf::host
