#include "workers.h"

#include <poll.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <new>
#include <optional>

#include "files.h"

namespace lmf::host {

namespace {

// The ending signal that came last, or 0.
volatile std::sig_atomic_t gSignal = 0;

void Note(int signal) {
    gSignal = signal;
}

// An outcome as it goes from a worker to its parent; the error and the warnings follow, each with a NUL at its end.
// Nothing here needs memory: the worker may have none left.
struct Answer {
    int32_t code;
    int32_t skipped;
    int32_t width, height, bits;
    int32_t outOfMemory;
    double filterSeconds;
    uint64_t textBytes;
};

bool SendAll(int socket, const void *bytes, size_t count) {
    const char *at = static_cast<const char *>(bytes);
    while (count > 0) {
        const ssize_t sent = send(socket, at, count, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) continue;
        if (sent <= 0) return false;
        at += sent;
        count -= size_t(sent);
    }
    return true;
}

bool ReceiveAll(int socket, void *bytes, size_t count) {
    char *at = static_cast<char *>(bytes);
    while (count > 0) {
        const ssize_t got = recv(socket, at, count, 0);
        if (got < 0 && errno == EINTR) continue;
        if (got <= 0) return false;
        at += got;
        count -= size_t(got);
    }
    return true;
}

bool SendOutcome(int socket, const TaskOutcome &outcome) {
    Answer answer = {outcome.code,          outcome.skipped,         outcome.width, outcome.height, outcome.bits, 0,
                     outcome.filterSeconds, outcome.error.size() + 1};
    for (const std::string &warning : outcome.warnings) answer.textBytes += warning.size() + 1;
    if (!SendAll(socket, &answer, sizeof answer)) return false;
    if (!SendAll(socket, outcome.error.c_str(), outcome.error.size() + 1)) return false;
    return std::all_of(outcome.warnings.begin(), outcome.warnings.end(), [&](const std::string &warning) {
        return SendAll(socket, warning.c_str(), warning.size() + 1);
    });
}

TaskOutcome Failure(ExitCode code, std::string error) {
    TaskOutcome outcome;
    outcome.code = code;
    outcome.error = std::move(error);
    return outcome;
}

bool ReceiveOutcome(int socket, TaskOutcome &outcome) {
    Answer answer;
    if (!ReceiveAll(socket, &answer, sizeof answer)) return false;
    std::string texts(answer.textBytes, '\0');
    if (!ReceiveAll(socket, texts.data(), texts.size())) return false;
    outcome.code = ExitCode(answer.code);
    outcome.skipped = answer.skipped != 0;
    outcome.width = answer.width;
    outcome.height = answer.height;
    outcome.bits = answer.bits;
    outcome.filterSeconds = answer.filterSeconds;
    if (answer.outOfMemory) {
        outcome.error = "memory is too short for the picture";
        return true;
    }
    outcome.error = texts.c_str();
    for (size_t at = outcome.error.size() + 1; at < texts.size();) {
        outcome.warnings.emplace_back(texts.c_str() + at);
        at += outcome.warnings.back().size() + 1;
    }
    return true;
}

// The signals by which a user ends a program: a worker that one of them reached alone was not meant alone.
bool EndsTheRun(int signal) {
    return signal == SIGINT || signal == SIGTERM || signal == SIGHUP || signal == SIGQUIT || signal == SIGPIPE;
}

struct Worker {
    pid_t process = 0;
    int socket = -1;
    char *openOutput = nullptr; // in memory that both see
    std::optional<size_t> task;
};

class Workers {
public:
    explicit Workers(const WorkPlan &given) : plan(given), outcomes(given.tasks) {
        sigset_t ending;
        sigemptyset(&ending);
        for (const int signal : kEndingSignals) sigaddset(&ending, signal);
        // They come while this process waits, and at no other time.
        sigprocmask(SIG_BLOCK, &ending, &before);
        for (const int signal : kEndingSignals)
            if (std::signal(signal, Note) == SIG_IGN) std::signal(signal, SIG_IGN);
    }
    Workers(const Workers &) = delete;
    Workers &operator=(const Workers &) = delete;
    ~Workers() {
        for (Worker &worker : workers) End(worker);
        sigprocmask(SIG_SETMASK, &before, nullptr);
        CleanUpOnSignals();
    }

    int Run() {
        while (told < plan.tasks && !gSignal) {
            HandOut();
            Tell();
            if (told < plan.tasks) Wait();
        }
        if (gSignal) {
            for (Worker &worker : workers) {
                kill(worker.process, SIGKILL);
                Collect(worker);
            }
            TellAll();
        }
        return gSignal;
    }

private:
    // Gives the tasks to workers without one, and starts as many workers as there is work for.
    void HandOut() {
        while (next < plan.tasks) {
            auto idle = std::find_if(workers.begin(), workers.end(), [](const Worker &w) { return !w.task; });
            if (idle == workers.end()) {
                if (workers.size() == std::max<size_t>(plan.workers, 1)) return;
                if (!Start()) {
                    if (!workers.empty()) return;
                    outcomes[next++] = Failure(kFilterFailed, "a process for it cannot be started: " + SystemError());
                    continue;
                }
                idle = workers.end() - 1;
            }
            plan.begun(next);
            idle->task = next;
            const uint64_t index = next++;
            // Where this fails the worker is gone, which the wait for its answer shows.
            (void)SendAll(idle->socket, &index, sizeof index);
        }
    }

    bool Start() {
        workers.reserve(workers.size() + 1);
        descriptors.reserve(workers.size() + 1);
        void *slot = mmap(nullptr, sizeof(OutputSlot), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0);
        if (slot == MAP_FAILED) return false;
        int sockets[2] = {-1, -1};
        const pid_t parent = getpid();
        const bool paired = socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) == 0;
        const pid_t process = paired ? fork() : -1;
        if (process == 0) {
            close(sockets[0]);
            for (const Worker &other : workers) close(other.socket);
            Work(parent, sockets[1], *static_cast<OutputSlot *>(slot));
        }
        if (process < 0) {
            const int error = errno;
            munmap(slot, sizeof(OutputSlot));
            for (const int socket : sockets)
                if (socket >= 0) close(socket);
            errno = error;
            return false;
        }
        close(sockets[1]);
        workers.push_back({process, sockets[0], static_cast<char *>(slot), std::nullopt});
        return true;
    }

    // What a worker does all its life. It ends with its parent, whatever ends that.
    [[noreturn]] void Work(pid_t parent, int socket, OutputSlot &slot) const {
        std::set_terminate(std::abort); // the parent knows which picture it was
        KeepOutputIn(slot);
        CleanUpOnSignals();
        sigprocmask(SIG_SETMASK, &before, nullptr);
        prctl(PR_SET_PDEATHSIG, SIGTERM);
        if (getppid() != parent) _exit(kFilterFailed);
        uint64_t index = 0;
        bool going = true;
        while (going && ReceiveAll(socket, &index, sizeof index)) {
            try {
                going = SendOutcome(socket, plan.work(index));
            } catch (const std::bad_alloc &) {
                const Answer shortMemory = {kUnreadable, 0, 0, 0, 0, 1, 0, 0};
                going = SendAll(socket, &shortMemory, sizeof shortMemory);
            } catch (const std::exception &error) {
                going = SendOutcome(socket, Failure(kFilterFailed, error.what()));
            }
        }
        std::exit(kDone);
    }

    // Waits for an answer, a signal or the next tick.
    void Wait() {
        descriptors.clear();
        for (const Worker &worker : workers) descriptors.push_back({worker.socket, POLLIN, 0});
        constexpr timespec kTick = {0, 200'000'000};
        const int ready = ppoll(descriptors.data(), descriptors.size(), plan.tick ? &kTick : nullptr, &before);
        for (size_t i = descriptors.size(); ready > 0 && i-- > 0;) {
            if (!descriptors[i].revents || Collect(workers[i])) continue;
            workers.erase(workers.begin() + std::ptrdiff_t(i));
        }
        if (plan.tick) plan.tick();
    }

    // Takes a worker's answer. Gives false for a worker that has come to its end; its task has failed then.
    bool Collect(Worker &worker) {
        TaskOutcome outcome;
        const bool answered = ReceiveOutcome(worker.socket, outcome);
        if (!answered) {
            const int status = End(worker);
            const int signal = WIFSIGNALED(status) ? WTERMSIG(status) : 0;
            if (EndsTheRun(signal)) gSignal = signal;
            if (gSignal) return false;
            outcome = Failure(kFilterFailed,
                              signal == SIGKILL ? "the work on it was killed, perhaps since memory ran out"
                              : signal          ? "the work on it crashed (" + std::string(strsignal(signal)) + ")"
                                       : "the work on it ended with code " + std::to_string(WEXITSTATUS(status)));
        }
        if (worker.task) outcomes[*worker.task] = std::move(outcome);
        worker.task.reset();
        return answered;
    }

    // Waits for the end of a worker, which comes by itself where it has no task or is dead, and removes what it left.
    // Gives its status.
    static int End(Worker &worker) {
        int status = 0;
        if (worker.process == 0) return status;
        if (worker.task) kill(worker.process, SIGKILL);
        close(worker.socket);
        while (waitpid(worker.process, &status, 0) < 0 && errno == EINTR) {
        }
        RemoveOutput(worker.openOutput);
        munmap(worker.openOutput, sizeof(OutputSlot));
        worker.process = 0;
        return status;
    }

    // Tells of what is done, in order, as far as there is no gap.
    void Tell() {
        for (; told < plan.tasks && outcomes[told]; ++told) TellOf(told);
    }

    void TellAll() {
        for (size_t i = told; i < plan.tasks; ++i)
            if (outcomes[i]) TellOf(i);
    }

    void TellOf(size_t index) {
        plan.done(index, *outcomes[index]);
        outcomes[index].reset();
    }

    const WorkPlan &plan;
    sigset_t before;
    std::vector<Worker> workers;
    // These have their memory beforehand: when a picture is written, nothing may fail that tells of it.
    std::vector<pollfd> descriptors;
    std::vector<std::optional<TaskOutcome>> outcomes; // done and not yet told
    size_t next = 0;                                  // task to be handed out
    size_t told = 0;                                  // tasks before it are told
};

} // namespace

int DoWork(const WorkPlan &plan) {
    std::fflush(nullptr); // or each worker would print what waits there
    Workers workers(plan);
    return workers.Run();
}

void EndBy(int signal) {
    std::signal(signal, SIG_DFL);
    raise(signal);
    std::_Exit(128 + signal);
}

size_t Processors() {
    cpu_set_t set;
    return sched_getaffinity(0, sizeof set, &set) == 0 ? size_t(CPU_COUNT(&set)) : 1;
}

} // namespace lmf::host
