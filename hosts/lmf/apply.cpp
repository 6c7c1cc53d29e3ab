#include "apply.h"

#include <chrono>
#include <cstdio>
#include <map>
#include <new>

#include "destinations.h"
#include "library.h"
#include "progress.h"

namespace lmf::host {

namespace {

struct Task {
    std::string input;
    std::string output;
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

std::string OutputName(const std::string &input, const std::string &extension) {
    std::string name = BaseName(input);
    if (extension.empty()) return name;
    const size_t dot = name.rfind('.');
    if (dot != std::string::npos && dot > 0) name.resize(dot);
    return name + "." + extension;
}

// Pairs inputs with outputs, and finds fault with what cannot be meant.
bool PlanTasks(const ApplyRequest &request, std::vector<Task> &tasks, Report &report) {
    if (request.folder.empty()) {
        if (!CodecForName(request.output))
            return report.Fail("the name \"" + Printable(request.output) +
                               "\" does not end in .png, .jpg, .tif, .webp or .bmp");
        tasks.push_back({request.inputs[0], request.output});
        return true;
    }
    std::map<std::string, std::string> writers;
    const std::string folder = request.folder + (request.folder.ends_with('/') ? "" : "/");
    for (const std::string &input : request.inputs) {
        const Task task = {input, folder + OutputName(input, request.extension)};
        const auto [place, fresh] = writers.emplace(task.output, input);
        if (!fresh)
            return report.Fail(Printable(place->second) + " and " + Printable(input) + " would both be written to " +
                               Printable(task.output));
        tasks.push_back(task);
    }
    return true;
}

std::string DescribeFailure(const Json &filter, const FilterOutcome &outcome, const Picture &picture) {
    const std::string name = filter["name"];
    const std::string text = name + ": " + ErrorText(outcome.errorCode);
    const char *mode = ModeName(picture.image);
    if (!Accepts(filter, mode)) return text + " (it takes " + AcceptedModes(filter) + "; this picture is " + mode + ")";
    if (!filter["available"]) return text + " (this version cannot run it)";
    if (filter["needsAlpha"] && !picture.alpha) return text + " (it takes pictures with alpha)";
    return text + DestinationAdvice(filter, outcome.errorCode);
}

TaskOutcome RunTask(const ApplyRequest &request, const Library &library, const Bitmap &clipboard, const Task &task) {
    TaskOutcome outcome;
    Report report;
    Picture picture;
    const auto finish = [&](ExitCode code, const std::string &error) {
        outcome.code = code;
        outcome.error = error;
        outcome.warnings = report.warnings;
        return outcome;
    };
    if (request.skipExisting && FileExists(task.output)) {
        outcome.skipped = true;
        return outcome;
    }
    if (!ReadPicture(task.input, request.limits, picture, report)) return finish(kUnreadable, report.error);
    const auto start = std::chrono::steady_clock::now();
    const FilterOutcome filtered = ApplyFilter(library, picture, clipboard, request.limits, report);
    outcome.filterSeconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
    if (!filtered.done) return finish(kFilterFailed, DescribeFailure(*request.settings.filter, filtered, picture));
    outcome.width = picture.image.width;
    outcome.height = picture.image.height;
    outcome.bits = picture.image.bits;
    if (!WritePicture(task.output, picture, request.encoding, report))
        return finish(kUnwritable, Printable(task.output) + ": " + report.error);
    return finish(kDone, "");
}

// Memory may also end in a codec or a container; then one picture has failed, and not the program.
TaskOutcome RunTaskSafely(const ApplyRequest &request, const Library &library, const Bitmap &clipboard,
                          const Task &task) {
    try {
        return RunTask(request, library, clipboard, task);
    } catch (const std::bad_alloc &) {
        TaskOutcome outcome;
        outcome.code = kUnreadable;
        outcome.error = "memory is too short for the picture";
        return outcome;
    }
}

Json Describe(const Task &task, const TaskOutcome &outcome) {
    Json entry;
    entry["input"] = task.input;
    entry["output"] = task.output;
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

void Tell(const Task &task, const TaskOutcome &outcome, const Progress &progress) {
    if (outcome.error.empty() && outcome.warnings.empty()) return;
    progress.Clear();
    const std::string input = Printable(task.input) + ": ";
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
int RunTasks(const ApplyRequest &request, const Library &library, const Bitmap &clipboard,
             const std::vector<Task> &tasks) {
    Json document;
    document["filter"] = (*request.settings.filter)["name"];
    document["pictures"] = Json::array();
    int exitCode = kDone;
    size_t failed = 0;
    size_t skipped = 0;
    const Progress progress(tasks.size());
    for (size_t i = 0; i < tasks.size(); ++i) {
        progress.Show(i, BaseName(tasks[i].input));
        const TaskOutcome outcome = RunTaskSafely(request, library, clipboard, tasks[i]);
        Tell(tasks[i], outcome, progress);
        if (exitCode == kDone) exitCode = outcome.code;
        failed += outcome.code != kDone;
        skipped += outcome.skipped;
        document["pictures"].push_back(Describe(tasks[i], outcome));
    }
    progress.Clear();
    if (tasks.size() > 1) SumUp(tasks.size(), failed, skipped);
    if (request.json) std::printf("%s\n", document.dump(1, ' ', false, Json::error_handler_t::replace).c_str());
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
    for (const std::string &warning : report.warnings) Complain(name + "warning: " + warning);
    clipboard = std::move(picture.image);
    return true;
}

} // namespace

void Complain(const std::string &message) {
    std::fprintf(stderr, "lmf: %s\n", message.c_str());
}

int Apply(const ApplyRequest &request) {
    Report report;
    std::vector<Task> tasks;
    std::string ini;
    bool unreadable = false;
    if (!PlanTasks(request, tasks, report)) {
        Complain(report.error);
        return kUsage;
    }
    if (!MakeIni(request.settings, ini, unreadable, report)) {
        Complain((unreadable ? Printable(request.settings.fromFile) + ": " : "") + report.error);
        return unreadable ? kUnreadable : kUsage;
    }
    if (request.clipboard.empty() && (*request.settings.filter)["needsClipboard"]) {
        Complain((*request.settings.filter)["name"].get<std::string>() +
                 " needs a second picture: give it with --clipboard PICTURE");
        return kUsage;
    }
    Bitmap clipboard;
    if (!ReadClipboard(request, clipboard)) return kUnreadable;
    if (!request.folder.empty() && !MakeFolders(request.folder, report)) {
        Complain(Printable(request.folder) + ": " + report.error);
        return kUnwritable;
    }
    CleanUpOnSignals();
    PrivateFolder privateFolder;
    Library library;
    if (!privateFolder.Make(report) || !InstallIni(privateFolder, ini, report) ||
        !InstallDestinations(*request.settings.filter, privateFolder, report) || !library.Load(request.library, report)) {
        Complain(report.error);
        return kFilterFailed;
    }
    return RunTasks(request, library, clipboard, tasks);
}

} // namespace lmf::host
