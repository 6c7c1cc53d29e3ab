// Processes that share the work. One that crashes or is short of memory costs the picture in hand, and no other.
#pragma once

#include <functional>

#include "task.h"

namespace lmf::host {

struct WorkPlan {
    size_t tasks = 0;
    size_t workers = 1;                                    // at most so many processes at a time
    std::function<TaskOutcome(size_t)> work;               // does one task, in a worker
    std::function<void(size_t)> begun;                     // told of a task that is given to a worker
    std::function<void(size_t, const TaskOutcome &)> done; // told of each result, in the order of the tasks
    std::function<void()> tick; // called several times a second while there is work; may be empty
};

/// Does all tasks. Each worker is forked from this process as it is, so that it has all that is loaded already. Gives
/// 0, or the ending signal that came: then no worker is left, nothing half written either, and `done` was told of all
/// that was done. The caller ends the program by EndBy.
[[nodiscard]] int DoWork(const WorkPlan &plan);

/// Ends this process as a signal does.
[[noreturn]] void EndBy(int signal);

/// Gives the number of processors that this process may use.
size_t Processors();

} // namespace lmf::host
