// Which pictures a run reads, and under which names it writes the results.
#pragma once

#include <string>
#include <vector>

#include "picture.h"
#include "task.h"

namespace lmf::host {

struct FilesRequest {
    std::vector<std::string> inputs;
    std::string listFile;  // has further inputs, or is "-" for standard input; empty: none
    bool nulList = false;  // the names there end in NUL bytes and not in lines
    bool recurse = false;  // folders among the inputs stand for the pictures in them
    std::string output;    // of the one input; where it is empty, the others say where the outputs go
    std::string folder;    // for the outputs, or empty: each goes beside its input
    std::string suffix;    // of their names, before the extension
    std::string extension; // of their names, and their format; empty: that of the input
    bool keepTree = false; // in the folder, under the path of the input
    bool inPlace = false;  // an output may take the place of its input
    Conflict conflict = Conflict::kOverwrite;
};

/// Finds the inputs of a request, in order, and gives each its output. Refuses what cannot be meant or would lose an
/// input; nothing is made or changed. Gives kDone, kUsage or, where the list of names cannot be read, kUnreadable.
[[nodiscard]] ExitCode PlanTasks(const FilesRequest &request, std::vector<Task> &tasks, Report &report);

} // namespace lmf::host
