#include "files.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <climits>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>

namespace lmf::host {

namespace {

constexpr size_t kStartBytes = 64;
constexpr size_t kLargestFile = size_t{4} << 30;

// What a signal handler has to remove. A plain array, since nothing else may be touched there.
char gOpenOutput[PATH_MAX];

void Remember(char (&slot)[PATH_MAX], const std::string &path) {
    if (path.size() < sizeof slot) std::memcpy(slot, path.c_str(), path.size() + 1);
}

void OnSignal(int signal) {
    if (gOpenOutput[0]) unlink(gOpenOutput);
    std::signal(signal, SIG_DFL);
    raise(signal);
}

struct FileCloser {
    std::FILE *file;
    ~FileCloser() { std::fclose(file); }
};

std::FILE *OpenInput(const std::string &path) {
    return path == kStandardStream ? fdopen(dup(STDIN_FILENO), "rb") : std::fopen(path.c_str(), "rbe");
}

// Replaces a name by that of the file that its links lead to, which need not be there yet. Fails for a loop.
bool FollowLinks(std::string &path) {
    constexpr int kMostLinks = 40;
    for (int i = 0; i < kMostLinks; ++i) {
        char next[PATH_MAX];
        const ssize_t length = readlink(path.c_str(), next, sizeof next);
        if (length < 0) return errno == EINVAL || errno == ENOENT; // no link, or nothing yet
        const std::string to(next, size_t(length));
        const size_t slash = path.rfind('/');
        path = to.starts_with('/') || slash == std::string::npos ? to : path.substr(0, slash + 1) + to;
    }
    errno = ELOOP;
    return false;
}

// Hands what a file holds to standard output.
bool CopyToStandardOutput(std::FILE *file) {
    char buffer[1 << 16];
    std::rewind(file);
    size_t got = 0;
    while ((got = std::fread(buffer, 1, sizeof buffer, file)) > 0)
        if (std::fwrite(buffer, 1, got, stdout) != got) return false;
    return !std::ferror(file) && std::fflush(stdout) == 0;
}

} // namespace

std::string SystemError() {
    return std::strerror(errno);
}

bool ReadFile(const std::string &path, const std::function<bool(ByteView)> &recognise, Bytes &bytes, Report &report,
              bool regularOnly) {
    struct stat state;
    // Before it is opened: a pipe that nobody writes to would never open.
    if (regularOnly && path != kStandardStream && stat(path.c_str(), &state) == 0 && !S_ISREG(state.st_mode))
        return report.Fail(S_ISDIR(state.st_mode) ? "this is a folder" : "this is no regular file");
    std::FILE *file = OpenInput(path);
    if (!file) return report.Fail(SystemError());
    const FileCloser closer{file};
    if (fstat(fileno(file), &state) == 0 && S_ISDIR(state.st_mode)) return report.Fail("this is a folder");
    bytes.resize(kStartBytes);
    size_t filled = std::fread(bytes.data(), 1, kStartBytes, file);
    if (std::ferror(file)) return report.Fail(SystemError());
    if (!recognise(ByteView(bytes.data(), filled)))
        return report.Fail(filled == 0 ? "the file is empty" : "this is not a PNG, JPEG, TIFF, WebP or BMP picture");
    // One byte more than a regular file holds, so that its end shows in the first read.
    if (S_ISREG(state.st_mode) && size_t(state.st_size) >= filled && size_t(state.st_size) < kLargestFile)
        bytes.resize(size_t(state.st_size) + 1);
    while (true) {
        if (filled == bytes.size()) bytes.resize(filled * 2);
        const size_t got = std::fread(bytes.data() + filled, 1, bytes.size() - filled, file);
        filled += got;
        if (std::ferror(file)) return report.Fail(SystemError());
        if (got == 0) break;
        if (filled > kLargestFile) return report.Fail("the file is larger than 4 GiB");
    }
    bytes.resize(filled);
    return true;
}

OutputFile::~OutputFile() {
    if (file) std::fclose(file);
    if (!temporary.empty()) unlink(temporary.c_str());
    gOpenOutput[0] = 0;
}

bool OutputFile::Open(const std::string &path, Report &report) {
    target = path;
    if (path == kStandardStream) {
        const int descriptor = memfd_create("lmf", MFD_CLOEXEC);
        file = descriptor < 0 ? nullptr : fdopen(descriptor, "w+b");
        return file || report.Fail(SystemError());
    }
    if (!FollowLinks(target)) return report.Fail(SystemError());
    struct stat state;
    mode_t mode = 0;
    const bool there = stat(target.c_str(), &state) == 0;
    if (there) {
        if (!S_ISREG(state.st_mode)) return report.Fail("something that is not a file has this name");
        if (access(target.c_str(), W_OK) != 0) return report.Fail(SystemError());
        if (state.st_nlink > 1) report.Warn("the file's other names keep the old picture");
        mode = state.st_mode & 0777;
    } else {
        const mode_t mask = umask(0);
        umask(mask);
        mode = 0666 & ~mask;
    }
    const size_t slash = target.rfind('/');
    temporary = (slash == std::string::npos ? "" : target.substr(0, slash + 1)) + ".lmf-XXXXXX";
    const int descriptor = mkostemp(temporary.data(), O_CLOEXEC);
    if (descriptor < 0) {
        temporary.clear();
        return report.Fail(SystemError());
    }
    Remember(gOpenOutput, temporary);
    // The file stays its owner's and its group's, as far as this user may give it away.
    if (there && fchown(descriptor, state.st_uid, state.st_gid) != 0 &&
        fchown(descriptor, uid_t(-1), state.st_gid) != 0)
        report.Warn("the file belongs to another user and group than before");
    (void)fchmod(descriptor, mode);
    file = fdopen(descriptor, "w+b");
    if (!file) {
        close(descriptor);
        return report.Fail(SystemError());
    }
    return true;
}

bool OutputFile::Commit(Report &report) {
    const bool written = std::fflush(file) == 0 && !std::ferror(file);
    if (target == kStandardStream) return (written && CopyToStandardOutput(file)) || report.Fail(SystemError());
    const bool closed = std::fclose(file) == 0;
    file = nullptr;
    if (!written || !closed) return report.Fail(SystemError());
    if (std::rename(temporary.c_str(), target.c_str()) != 0) return report.Fail(SystemError());
    temporary.clear();
    return true;
}

void CleanUpOnSignals() {
    // A limit on the size of files shows as a write that fails.
    std::signal(SIGXFSZ, SIG_IGN);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP}) {
        // A program that was started to ignore the signal (nohup) goes on ignoring it.
        if (std::signal(signal, OnSignal) == SIG_IGN) std::signal(signal, SIG_IGN);
    }
}

bool FileExists(const std::string &path) {
    struct stat state;
    return lstat(path.c_str(), &state) == 0;
}

bool MakeFolders(const std::string &path, Report &report) {
    std::error_code error;
    std::filesystem::create_directories(path, error);
    if (error) return report.Fail(error.message());
    if (!std::filesystem::is_directory(path, error)) return report.Fail("this is not a folder");
    return true;
}

std::string BaseName(const std::string &path) {
    return path.substr(path.rfind('/') + 1);
}

std::string ProgramLibraryFolder() {
    char path[PATH_MAX];
    const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
    const std::string program(path, size_t(std::max<ssize_t>(length, 0)));
    const std::string folder = program.substr(0, program.rfind('/') + 1);
    for (const char *place : {LMF_LIBRARY_FOLDER, "../lib"})
        if (FileExists(folder + place + "/liblmf16filter.so.1")) return folder + place + "/";
    return folder + "../lib/";
}

} // namespace lmf::host
