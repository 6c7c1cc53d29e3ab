#include "apply.h"

#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <ctime>
#include <map>
#include <new>

#include "destinations.h"
#include "files.h"
#include "progress.h"

namespace lmf::host {

namespace {

std::string OutputName(const std::string &input, const std::string &extension) {
    std::string name = BaseName(input);
    if (extension.empty()) return name;
    const size_t dot = name.rfind('.');
    if (dot != std::string::npos && dot > 0) name.resize(dot);
    return name + "." + extension;
}

// The clock as the library reads it.
int64_t StartTime() {
    const char *epoch = std::getenv("SOURCE_DATE_EPOCH");
    return epoch && *epoch ? std::strtoll(epoch, nullptr, 10) : int64_t{std::time(nullptr)};
}

// One input and one output, each a file or a standard stream.
bool PlanOne(const ApplyRequest &request, std::vector<Task> &tasks, Report &report) {
    const bool toStream = request.output == kStandardStream;
    if (!toStream && request.extension.empty() && !CodecForName(request.output))
        return report.Fail("the name \"" + Printable(request.output) +
                           "\" does not end in .png, .jpg, .tif, .webp or .bmp; --format names another format");
    if (toStream && request.json) return report.Fail("--json and the picture would both go to standard output");
    if (toStream && isatty(STDOUT_FILENO))
        return report.Fail("a picture is nothing to show on a terminal: send standard output to a file or a program");
    tasks.push_back({request.inputs[0], request.output, {}});
    return true;
}

// Many inputs into one folder. Finds fault with what cannot be meant.
bool PlanMany(const ApplyRequest &request, std::vector<Task> &tasks, Report &report) {
    std::map<std::string, std::string> writers;
    const std::string folder = request.folder + (request.folder.ends_with('/') ? "" : "/");
    for (const std::string &input : request.inputs) {
        if (input == kStandardStream) return report.Fail("standard input has no name for --out-dir; give IN and OUT");
        const Task task = {input, folder + OutputName(input, request.extension), {}};
        const auto [place, fresh] = writers.emplace(task.output, input);
        if (!fresh)
            return report.Fail(Printable(place->second) + " and " + Printable(input) + " would both be written to " +
                               Printable(task.output));
        tasks.push_back(task);
    }
    return true;
}

bool PlanTasks(const ApplyRequest &request, std::vector<Task> &tasks, Report &report) {
    if (!(request.folder.empty() ? PlanOne(request, tasks, report) : PlanMany(request, tasks, report))) return false;
    const Grain grain = {request.seed, tasks.size() > 1, StartTime(), 0};
    for (size_t i = 0; i < tasks.size(); ++i) {
        tasks[i].grain = grain;
        tasks[i].grain.index = int64_t(i);
    }
    return true;
}

std::string NameOf(const Json &filter) {
    return filter["name"];
}

std::string DescribeMode(const Json &filter, const char *mode, int errorCode) {
    return NameOf(filter) + ": " + ErrorText(errorCode) + " (it takes " + AcceptedModes(filter) + "; this picture is " +
           mode + ")";
}

std::string DescribeFailure(const Json &filter, const FilterOutcome &outcome, const Picture &picture,
                            const Library &library) {
    const char *mode = ModeName(picture.image);
    if (!Accepts(filter, mode)) return DescribeMode(filter, mode, outcome.errorCode);
    const std::string text = NameOf(filter) + ": " + ErrorText(outcome.errorCode);
    if (filter["needsFaceFinder"] && !FileExists(library.finderFolder + "libcv_x64.so"))
        return NameOf(filter) + ": the face finder is not installed; run scripts/setup --faces, then build again";
    if (filter["needsFaceFinder"])
        return text + " (or a face finder that cannot work: its cascades belong into " +
               Printable(library.finderFolder) + ")";
    return filter["needsAlpha"] && !picture.alpha ? text + " (it takes pictures with alpha)"
                                                  : text + DestinationAdvice(filter, outcome.errorCode);
}

// Whether the first filter may take a picture of so many bits. 8 bits are grey or a palette, which only their colors
// tell, and all that is no true color can become it.
bool MayTake(const Job &job, int bits, Report &report) {
    const Json &filter = *job.steps[0].filter;
    const char *mode = bits > 8 ? "true color" : bits == 1 ? "mono" : "palette";
    if (bits == 8 || Accepts(filter, mode)) return true;
    if (bits < 8 && !job.treatment.strictDepth && Accepts(filter, "true color")) return true;
    return report.Fail(DescribeMode(filter, mode, LMF_ERROR_UNSUPPORTED));
}

// Runs the steps over the picture, each over what the one before it made.
bool RunSteps(const Job &job, const Grain &grain, Picture &picture, Report &report) {
    for (const Step &step : job.steps) {
        const FilterCall call = {LinesFor(step, grain, picture.image, report), &job.clipboard, &job.limits,
                                 job.destinations, ClockFor(step, grain)};
        const FilterOutcome filtered = RunFilter(job.library, *step.filter, call, job.treatment, picture, report);
        if (!filtered.done) return report.Fail(DescribeFailure(*step.filter, filtered, picture, job.library));
    }
    return true;
}

ExitCode RunTask(const Job &job, const Task &task, TaskOutcome &outcome, Report &report) {
    Picture picture;
    if (job.skipExisting && FileExists(task.output)) {
        outcome.skipped = true;
        return kDone;
    }
    bool taken = true;
    picture.accepts = [&](int bits, Report &why) { return taken = MayTake(job, bits, why); };
    if (!ReadPicture(task.input, job.limits, picture, report)) return taken ? kUnreadable : kFilterFailed;
    if (job.treatment.upright && !TurnUpright(picture, report)) return kUnreadable;
    const auto start = std::chrono::steady_clock::now();
    const bool filtered = RunSteps(job, task.grain, picture, report);
    outcome.filterSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (!filtered) return kFilterFailed;
    outcome.width = picture.image.width;
    outcome.height = picture.image.height;
    outcome.bits = picture.image.bits;
    if (WritePicture(task.output, job.codec, picture, job.encoding, report)) return kDone;
    const bool toStream = task.output == kStandardStream;
    report.error = (toStream ? "standard output" : Printable(task.output)) + ": " + report.error;
    return kUnwritable;
}

Json Describe(const Job &job, const Task &task, const TaskOutcome &outcome) {
    Json entry;
    entry["input"] = task.input;
    entry["output"] = task.output;
    entry["filters"] = Json::array();
    for (const Step &step : job.steps) entry["filters"].push_back((*step.filter)["name"]);
    entry["status"] = outcome.skipped ? "skipped" : outcome.code == kDone ? "done" : "failed";
    if (outcome.width > 0) {
        entry["width"] = outcome.width;
        entry["height"] = outcome.height;
        entry["bits"] = outcome.bits;
        entry["filterSeconds"] = outcome.filterSeconds;
    }
    if (!outcome.error.empty()) entry["error"] = outcome.error;
    if (outcome.code != kDone) entry["exitCode"] = int(outcome.code);
    entry["warnings"] = outcome.warnings;
    return entry;
}

void Tell(const Task &task, const TaskOutcome &outcome, bool quiet, const Progress &progress) {
    if (outcome.error.empty() && (outcome.warnings.empty() || quiet)) return;
    progress.Clear();
    const std::string input = (task.input == kStandardStream ? "standard input" : Printable(task.input)) + ": ";
    if (!quiet)
        for (const std::string &warning : outcome.warnings) Complain(input + "warning: " + warning);
    if (!outcome.error.empty()) Complain(input + outcome.error);
}

void SumUp(size_t total, size_t failed, size_t skipped) {
    std::string sum = std::to_string(total - failed - skipped) + " of " + std::to_string(total) + " pictures written";
    if (skipped > 0) sum += ", " + std::to_string(skipped) + " skipped";
    if (failed > 0) sum += ", " + std::to_string(failed) + " failed";
    Complain(sum);
}

// Runs all tasks, whatever becomes of each.
int RunTasks(const ApplyRequest &request, const Job &job, const std::vector<Task> &tasks) {
    int exitCode = kDone;
    size_t failed = 0;
    size_t skipped = 0;
    const Progress progress(request.quiet ? 0 : tasks.size());
    for (size_t i = 0; i < tasks.size(); ++i) {
        progress.Show(i, BaseName(tasks[i].input));
        const TaskOutcome outcome = RunTask(job, tasks[i]);
        Tell(tasks[i], outcome, request.quiet, progress);
        if (exitCode == kDone) exitCode = outcome.code;
        failed += outcome.code != kDone;
        skipped += outcome.skipped;
        // At once, so that a program that reads the lines knows how far the run is, and an interrupted one has told.
        if (request.json)
            PrintLine(Describe(job, tasks[i], outcome).dump(-1, ' ', false, Json::error_handler_t::replace));
    }
    progress.Clear();
    if (tasks.size() > 1 && !request.quiet) SumUp(tasks.size(), failed, skipped);
    return exitCode;
}

// Reads the picture that plays the part of the clipboard, if one is named. Complains of what is wrong with it.
bool ReadClipboard(const ApplyRequest &request, Bitmap &clipboard) {
    if (request.clipboard.empty()) return true;
    const std::string name = Printable(request.clipboard) + ": ";
    Report report;
    Picture picture;
    if (!ReadPicture(request.clipboard, request.limits, picture, report)) {
        Complain(name + report.error);
        return false;
    }
    if (picture.alpha) report.Warn("the alpha is left out, since a clipboard holds none");
    if (!request.quiet)
        for (const std::string &warning : report.warnings) Complain(name + "warning: " + warning);
    clipboard = std::move(picture.image);
    return true;
}

// Whether all filters of the request can run at all. Tested before anything is read. What a library can do that is not
// the program's own shows only when it runs.
bool CanRun(const ApplyRequest &request, Report &report) {
    const bool ownLibrary = request.library.empty() && !std::getenv("LMF_LIBRARY");
    for (const StepRequest &step : request.settings.steps) {
        const Json &filter = *step.filter;
        if (ownLibrary && !filter["available"])
            return report.Fail(NameOf(filter) + " is not in this version, which cannot run it");
        if (filter["needsClipboard"] && request.clipboard.empty())
            return report.Fail(NameOf(filter) + " needs a second picture: give it with --clipboard PICTURE");
    }
    return true;
}

} // namespace

// Memory may also end in a codec or a container; then one picture has failed, and not the program.
TaskOutcome RunTask(const Job &job, const Task &task) {
    TaskOutcome outcome;
    Report report;
    try {
        outcome.code = RunTask(job, task, outcome, report);
        outcome.error = report.error;
        outcome.warnings = report.warnings;
    } catch (const std::bad_alloc &) {
        outcome = {};
        outcome.code = kUnreadable;
        outcome.error = "memory is too short for the picture";
    }
    return outcome;
}

int Apply(const ApplyRequest &request) {
    Report report;
    std::vector<Task> tasks;
    Job job;
    job.limits = request.limits;
    job.limits.regularOnly = !request.folder.empty();
    job.encoding = request.encoding;
    job.treatment = request.treatment;
    job.skipExisting = request.skipExisting;
    if (!request.extension.empty()) job.codec = CodecForName("x." + request.extension);
    if (!CanRun(request, report) || !PlanTasks(request, tasks, report)) {
        Complain(report.error);
        return kUsage;
    }
    if (const int code = MakeSteps(request.settings, job.steps, report); code != kDone) return code;
    if (!request.quiet)
        for (const std::string &warning : report.warnings) Complain(Printable("warning: " + warning));
    if (!ReadClipboard(request, job.clipboard)) return kUnreadable;
    if (!request.folder.empty() && !MakeFolders(request.folder, report)) {
        Complain(Printable(request.folder) + ": " + report.error);
        return kUnwritable;
    }
    for (const Step &step : job.steps) {
        if (FindDestinations(*step.filter, job.destinations, report)) continue;
        Complain(report.error);
        return kFilterFailed;
    }
    CleanUpOnSignals();
    if (!job.library.Load(request.library, report)) {
        Complain(report.error);
        return kFilterFailed;
    }
    return RunTasks(request, job, tasks);
}

} // namespace lmf::host
