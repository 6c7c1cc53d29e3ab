#include "apply.h"

#include <chrono>
#include <csignal>
#include <cstdlib>
#include <ctime>
#include <set>

#include "destinations.h"
#include "files.h"
#include "progress.h"
#include "workers.h"

namespace lmf::host {

namespace {

// The clock as the library reads it.
int64_t StartTime() {
    const char *epoch = std::getenv("SOURCE_DATE_EPOCH");
    return epoch && *epoch ? std::strtoll(epoch, nullptr, 10) : int64_t{std::time(nullptr)};
}

// Says which random numbers each picture gets.
void GiveGrain(const ApplyRequest &request, std::vector<Task> &tasks) {
    const int64_t start = StartTime();
    for (size_t i = 0; i < tasks.size(); ++i) tasks[i].grain = {request.seed, tasks.size() > 1, start, int64_t(i)};
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
    if (!task.fault.empty()) {
        report.Fail(task.fault);
        return kUnreadable;
    }
    if (job.conflict != Conflict::kOverwrite && task.output != kStandardStream && FileExists(task.output)) {
        outcome.skipped = job.conflict == Conflict::kSkip;
        if (outcome.skipped) return kDone;
        report.Fail(Printable(task.output) + " is there already");
        return kUnwritable;
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

// Says how far an interrupted run came.
void TellInterruption(const ApplyRequest &request, size_t total, size_t written) {
    std::string text = "interrupted: ";
    if (total == 1)
        text += written ? "the picture was written" : "nothing was written";
    else
        text += std::to_string(written) + " of " + std::to_string(total) + " pictures written";
    const bool named = !request.files.inPlace && request.files.conflict != Conflict::kRename;
    if (total > 1 && named) text += "; --on-conflict skip goes on with the rest";
    Complain(text);
}

// Runs all tasks, whatever becomes of each.
int RunTasks(const ApplyRequest &request, const Job &job, const std::vector<Task> &tasks) {
    int exitCode = kDone;
    size_t told = 0, failed = 0, skipped = 0;
    std::string current;
    Progress progress(request.quiet ? 0 : tasks.size());
    WorkPlan plan;
    plan.tasks = tasks.size();
    plan.workers = request.jobs > 0 ? request.jobs : Processors();
    plan.work = [&](size_t i) { return RunTask(job, tasks[i]); };
    plan.begun = [&](size_t i) { current = BaseName(tasks[i].input); };
    if (progress.Shown()) plan.tick = [&] { progress.Show(told, current); };
    plan.done = [&](size_t i, const TaskOutcome &outcome) {
        Tell(tasks[i], outcome, request.quiet, progress);
        if (exitCode == kDone) exitCode = outcome.code;
        ++told;
        failed += outcome.code != kDone;
        skipped += outcome.skipped;
        // At once, so that a program that reads the lines knows how far the run is, and an interrupted one has told.
        if (request.json)
            PrintLine(Describe(job, tasks[i], outcome).dump(-1, ' ', false, Json::error_handler_t::replace));
    };
    const int signal = DoWork(plan);
    progress.Clear();
    if (signal) {
        // Who reads no further wants no word either.
        const bool unread = signal == SIGPIPE && tasks.size() == 1;
        if (!request.quiet && !unread) TellInterruption(request, tasks.size(), told - failed - skipped);
        EndBy(signal);
    }
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
    if (request.json && request.files.output == kStandardStream)
        return report.Fail("--json and the picture would both go to standard output");
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

// Makes the folders that the outputs go to.
bool MakeOutputFolders(const FilesRequest &files, const std::vector<Task> &tasks) {
    if (files.folder.empty()) return true;
    std::set<std::string> folders = {files.folder};
    for (const Task &task : tasks)
        if (!task.output.empty()) folders.insert(task.output.substr(0, task.output.rfind('/')));
    for (const std::string &folder : folders) {
        Report report;
        if (MakeFolders(folder, report)) continue;
        Complain(Printable(folder) + ": " + report.error);
        return false;
    }
    return true;
}

} // namespace

TaskOutcome RunTask(const Job &job, const Task &task) {
    TaskOutcome outcome;
    Report report;
    outcome.code = RunTask(job, task, outcome, report);
    outcome.error = std::move(report.error);
    outcome.warnings = std::move(report.warnings);
    return outcome;
}

int Apply(const ApplyRequest &request) {
    Report report;
    std::vector<Task> tasks;
    Job job;
    job.limits = request.limits;
    job.limits.regularOnly = request.files.output.empty();
    job.encoding = request.encoding;
    job.treatment = request.treatment;
    job.conflict = request.files.conflict;
    if (!request.files.extension.empty()) job.codec = CodecForName("x." + request.files.extension);
    if (!CanRun(request, report)) {
        Complain(report.error);
        return kUsage;
    }
    if (const ExitCode code = PlanTasks(request.files, tasks, report); code != kDone) {
        Complain(report.error);
        return code;
    }
    GiveGrain(request, tasks);
    if (const int code = MakeSteps(request.settings, job.steps, report); code != kDone) return code;
    if (!request.quiet)
        for (const std::string &warning : report.warnings) Complain(Printable("warning: " + warning));
    if (!ReadClipboard(request, job.clipboard)) return kUnreadable;
    if (!MakeOutputFolders(request.files, tasks)) return kUnwritable;
    for (const Step &step : job.steps) {
        if (FindDestinations(*step.filter, job.destinations, report)) continue;
        Complain(report.error);
        return kFilterFailed;
    }
    if (!job.library.Load(request.library, report)) {
        Complain(report.error);
        return kFilterFailed;
    }
    return RunTasks(request, job, tasks);
}

} // namespace lmf::host
