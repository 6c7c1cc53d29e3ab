#include "plan.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <map>
#include <set>

#include "files.h"
#include "progress.h"

namespace lmf::host {

namespace {

namespace fs = std::filesystem;

constexpr size_t kLargestList = size_t{64} << 20;

// What a file is, under whatever name.
using FileId = std::pair<dev_t, ino_t>;

bool Identify(const std::string &path, FileId &id) {
    struct stat state;
    if (stat(path.c_str(), &state) != 0) return false;
    id = {state.st_dev, state.st_ino};
    return true;
}

bool IsFolder(const std::string &path) {
    struct stat state;
    return stat(path.c_str(), &state) == 0 && S_ISDIR(state.st_mode);
}

std::string Quoted(const std::string &name) {
    const std::string text = Printable(name);
    return '"' + text + '"';
}

// Adds the pictures in a folder and those below it, by name. Hidden files are none, and links to folders are not
// followed, since they may lead round in circles.
void AddFolder(const fs::path &folder, const std::string &outputs, std::vector<Task> &tasks) {
    std::error_code error;
    std::vector<fs::directory_entry> entries;
    for (fs::directory_iterator i(folder, error), end; !error && i != end; i.increment(error)) entries.push_back(*i);
    if (error) return tasks.push_back({folder.string(), {}, error.message(), {}});
    std::sort(entries.begin(), entries.end());
    for (const fs::directory_entry &entry : entries) {
        const std::string path = entry.path().string();
        std::error_code ignored; // of links that lead nowhere; reading them tells
        if (BaseName(path).starts_with('.')) continue;
        if (!entry.is_directory(ignored)) {
            if (CodecForName(path)) tasks.push_back({path, {}, {}, {}});
        } else if (!entry.is_symlink(ignored) && (outputs.empty() || !fs::equivalent(path, outputs, ignored))) {
            AddFolder(entry.path(), outputs, tasks);
        }
    }
}

bool ReadList(const FilesRequest &request, std::vector<std::string> &names, Report &report) {
    std::string text;
    if (!ReadText(request.listFile, kLargestList, text, report)) {
        const bool stream = request.listFile == kStandardStream;
        return report.Fail((stream ? "standard input" : Printable(request.listFile)) + ": " + report.error);
    }
    const char separator = request.nulList ? '\0' : '\n';
    for (size_t start = 0; start < text.size();) {
        const size_t end = std::min(text.find(separator, start), text.size());
        if (end > start) names.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return true;
}

std::string WithSuffix(const std::string &path, const std::string &suffix, const std::string &extension) {
    const size_t name = path.rfind('/') + 1;
    size_t dot = path.rfind('.');
    if (dot == std::string::npos || dot <= name) dot = path.size();
    return path.substr(0, dot) + suffix + (extension.empty() ? path.substr(dot) : "." + extension);
}

std::string Normal(const std::string &path) {
    return fs::path(path).lexically_normal().string();
}

// Gives the path of an output before suffix and extension.
bool PlaceOf(const FilesRequest &request, const std::string &input, std::string &place, Report &report) {
    place = input;
    if (request.folder.empty()) return true;
    const std::string folder = request.folder + (request.folder.ends_with('/') ? "" : "/");
    if (!request.keepTree) {
        place = folder + BaseName(input);
        return true;
    }
    const std::string path = fs::path(Normal(input)).relative_path().string();
    if (path == ".." || path.starts_with("../"))
        return report.Fail("--keep-tree has no place below --out-dir for " + Quoted(input) +
                           "; run lmf from a folder above it");
    place = folder + path;
    return true;
}

// Gives the first name of the series "name", "name-2", "name-3" that is free.
std::string FreeName(const std::string &path, const std::map<std::string, std::string> &taken) {
    std::string name = path;
    for (int i = 2; taken.contains(Normal(name)) || FileExists(name); ++i) {
        const std::string number = std::to_string(i);
        name = WithSuffix(path, "-" + number, "");
    }
    return name;
}

// Names the outputs. None may be that of two inputs.
bool NameOutputs(const FilesRequest &request, std::vector<Task> &tasks, Report &report) {
    std::map<std::string, std::string> writers;
    for (Task &task : tasks) {
        if (task.input == kStandardStream)
            return report.Fail("standard input has no name for --out-dir; give IN and OUT");
        if (!task.fault.empty()) continue;
        if (!PlaceOf(request, task.input, task.output, report)) return false;
        task.output = WithSuffix(task.output, request.suffix, request.extension);
        if (request.conflict == Conflict::kRename) task.output = FreeName(task.output, writers);
        const auto [writer, fresh] = writers.emplace(Normal(task.output), task.input);
        if (!fresh)
            return report.Fail(Printable(writer->second) + " and " + Printable(task.input) +
                               " would both be written to " + Printable(task.output) +
                               "; --keep-tree or --on-conflict rename tells them apart");
    }
    return true;
}

// Refuses outputs that take the place of an input, by name or through a link: of its own without --in-place, and of
// another one always, which may not have been read by then.
bool SpareInputs(const FilesRequest &request, const std::vector<Task> &tasks, Report &report) {
    std::set<FileId> inputs;
    FileId id;
    for (const Task &task : tasks)
        if (Identify(task.input, id)) inputs.insert(id);
    for (const Task &task : tasks) {
        if (task.output.empty() || !Identify(task.output, id) || !inputs.contains(id)) continue;
        FileId own;
        if (!Identify(task.input, own) || own != id)
            return report.Fail("the result of " + Quoted(task.input) + " would take the place of another input, " +
                               Quoted(task.output));
        if (!request.inPlace)
            return report.Fail("the result would take the place of the input " + Quoted(task.input) +
                               "; --in-place allows that, --suffix gives it another name");
    }
    return true;
}

// Many inputs, each with an output of its own.
ExitCode PlanMany(const FilesRequest &request, std::vector<Task> &tasks, Report &report) {
    std::vector<std::string> names = request.inputs;
    if (!request.listFile.empty() && !ReadList(request, names, report)) return kUnreadable;
    for (const std::string &name : names) {
        if (request.recurse && IsFolder(name))
            AddFolder(name, request.folder, tasks);
        else
            tasks.push_back({name, {}, {}, {}});
    }
    if (tasks.empty()) {
        report.Fail("there are no pictures to work on");
        return kUsage;
    }
    const bool sound = NameOutputs(request, tasks, report) &&
                       (request.conflict != Conflict::kOverwrite || SpareInputs(request, tasks, report));
    return sound ? kDone : kUsage;
}

// One input and one output, each a file or a standard stream.
ExitCode PlanOne(const FilesRequest &request, std::vector<Task> &tasks, Report &report) {
    const bool toStream = request.output == kStandardStream;
    std::string output = request.output;
    if (!toStream && request.extension.empty() && !CodecForName(output)) {
        report.Fail("the name " + Quoted(output) +
                    " does not end in .png, .jpg, .tif, .webp or .bmp; --format names another format");
        return kUsage;
    }
    if (toStream && isatty(STDOUT_FILENO)) {
        report.Fail("a picture is nothing to show on a terminal: send standard output to a file or a program");
        return kUsage;
    }
    if (!toStream && request.conflict == Conflict::kRename) output = FreeName(output, {});
    tasks.push_back({request.inputs[0], output, {}, {}});
    return kDone;
}

} // namespace

ExitCode PlanTasks(const FilesRequest &request, std::vector<Task> &tasks, Report &report) {
    return request.output.empty() ? PlanMany(request, tasks, report) : PlanOne(request, tasks, report);
}

} // namespace lmf::host
