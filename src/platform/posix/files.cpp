#include "platform/files.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <dirent.h>
#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace lmf {

const char kLineEnd[] = "\n";

namespace {

/// Lets a write beyond the limit of file sizes fail instead of ending the host's process.
struct NoFileSizeSignal {
    sigset_t signals, kept;
    bool pendingBefore;

    NoFileSizeSignal() {
        sigpending(&kept);
        pendingBefore = sigismember(&kept, SIGXFSZ) == 1;
        sigemptyset(&signals);
        sigaddset(&signals, SIGXFSZ);
        pthread_sigmask(SIG_BLOCK, &signals, &kept);
    }
    NoFileSizeSignal(const NoFileSizeSignal &) = delete;
    NoFileSizeSignal &operator=(const NoFileSizeSignal &) = delete;
    ~NoFileSizeSignal() {
        const timespec atOnce = {};
        if (!pendingBefore) sigtimedwait(&signals, nullptr, &atOnce);
        pthread_sigmask(SIG_SETMASK, &kept, nullptr);
    }
};

bool WriteAll(int file, std::string_view bytes) {
    const NoFileSizeSignal noSignal;
    while (!bytes.empty()) {
        const ssize_t count = write(file, bytes.data(), bytes.size());
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0) return false;
        bytes.remove_prefix(static_cast<size_t>(count));
    }
    return true;
}

/// Brings to the disk what was written to a file or a folder.
bool Sync(int file) {
    while (fsync(file) != 0) {
        if (errno != EINTR) return false;
    }
    return true;
}

/// The bytes of the path before its last name.
size_t FolderLength(const char *path) {
    const char *separator = std::strrchr(path, kPathSeparator);
    return separator == nullptr ? 0 : static_cast<size_t>(separator - path) + 1;
}

/// The folder of a path; the working folder for a plain name.
void FolderOfPath(const char *path, char (&folder)[kFolderSize]) {
    const size_t length = FolderLength(path);
    std::memcpy(folder, path, length);
    std::strcpy(folder + length, length == 0 ? "." : "");
}

/// The path of the file that is meant where a path leads through links, whether that file exists or not.
bool FollowLinks(const char *path, char (&target)[kFolderSize]) {
    constexpr int kMostLinks = 40;
    if (std::strlen(path) >= kFolderSize) return false;
    std::strcpy(target, path);
    for (int i = 0; i < kMostLinks; i++) {
        char link[kFolderSize];
        const ssize_t count = readlink(target, link, sizeof link);
        if (count < 0) return errno == EINVAL || errno == ENOENT;
        const auto length = static_cast<size_t>(count);
        const size_t folder = link[0] == kPathSeparator ? 0 : FolderLength(target);
        if (folder + length >= kFolderSize) return false;
        std::memcpy(target + folder, link, length);
        target[folder + length] = '\0';
    }
    return false;
}

// Names of files in the making: that of the file to be replaced, eight digits, and an ending.
constexpr size_t kNewDigits = 8;
constexpr char kNewEnding[] = ".new";
constexpr size_t kNewLength = 1 + kNewDigits + sizeof kNewEnding - 1;

/// Removes what writers that were ended long ago left beside the file.
void RemoveLeftovers(const char *target) {
    constexpr time_t kLongAgo = 600;
    char folder[kFolderSize];
    FolderOfPath(target, folder);
    const char *base = target + FolderLength(target);
    const size_t length = std::strlen(base);
    DIR *entries = opendir(folder);
    if (entries == nullptr) return;
    while (const dirent *entry = readdir(entries)) {
        const char *name = entry->d_name;
        const bool ours = std::strncmp(name, base, length) == 0 && name[length] == '.' &&
                          std::strspn(name + length + 1, "0123456789abcdef") == kNewDigits &&
                          std::strcmp(name + length + 1 + kNewDigits, kNewEnding) == 0;
        struct stat status;
        if (!ours || fstatat(dirfd(entries), name, &status, AT_SYMLINK_NOFOLLOW) != 0 || !S_ISREG(status.st_mode))
            continue;
        // Another name for an old file is as old as its last change of names.
        const time_t made = status.st_nlink == 1 ? status.st_mtime : status.st_ctime;
        if (made < std::time(nullptr) - kLongAgo) unlinkat(dirfd(entries), name, 0);
    }
    closedir(entries);
}

/// Makes a file beside the target under a name that is free.
/// @param make  takes a name and gives a negative number and EEXIST where it is taken
/// @return what `make` gave at last
template <typename Make>
int MakeBeside(const char *target, char (&path)[kFolderSize], Make make) {
    constexpr int kMostTries = 100;
    const size_t length = std::strlen(target);
    if (length + kNewLength >= kFolderSize) return -1;
    char name[kFolderSize];
    std::memcpy(name, target, length);
    for (int i = 0; i < kMostTries; i++) {
        timespec now;
        clock_gettime(CLOCK_REALTIME, &now);
        const auto digits = static_cast<unsigned>(now.tv_nsec) ^ static_cast<unsigned>(getpid()) << 10;
        std::snprintf(name + length, kNewLength + 1, ".%08x%s", digits, kNewEnding);
        const int made = make(name);
        if (made >= 0) std::strcpy(path, name);
        if (made >= 0 || errno != EEXIST) return made;
    }
    return -1;
}

/// Gives a new file the access rights of another, and its owner where that is allowed.
bool TakeRights(int file, const struct stat &rights) {
    const int done = fchown(file, rights.st_uid, rights.st_gid);
    (void)done; // only root may give files away
    return fchmod(file, rights.st_mode & 0777) == 0;
}

bool SameTime(const timespec &a, const timespec &b) {
    return a.tv_sec == b.tv_sec && a.tv_nsec == b.tv_nsec;
}

/// Milliseconds of a clock that nobody sets.
int64_t Milliseconds() {
    timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return int64_t{now.tv_sec} * 1000 + now.tv_nsec / 1000000;
}

} // namespace

InputFile::InputFile(const char *path) {
    // Without O_NONBLOCK a pipe would be opened only when someone writes to it.
    handle = open(path, O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
    struct stat status;
    if (handle < 0 && errno == ENOENT) state = FileState::kAbsent;
    if (handle < 0 || fstat(static_cast<int>(handle), &status) != 0 || !S_ISREG(status.st_mode)) return;
    state = FileState::kOpen;
    size = static_cast<uint64_t>(status.st_size);
}

InputFile::~InputFile() {
    if (handle >= 0) close(static_cast<int>(handle));
}

bool InputFile::Read(char *bytes) const {
    uint64_t filled = 0;
    char beyond;
    while (true) {
        const bool whole = filled == size;
        const ssize_t count =
            read(static_cast<int>(handle), whole ? &beyond : bytes + filled, whole ? 1 : size - filled);
        if (count < 0 && errno == EINTR) continue;
        if (count <= 0 || whole) return count == 0 && whole;
        filled += static_cast<uint64_t>(count);
    }
}

PendingFile::~PendingFile() {
    if (temporary[0] != '\0') unlink(temporary);
}

bool PendingFile::Choose(const char *path) {
    if (!FollowLinks(path, target) || InputFile(target).state == FileState::kFailed) return false;
    RemoveLeftovers(target);
    return true;
}

bool PendingFile::Write(const char *path, std::string_view bytes, const char *rightsOf) {
    if (!Choose(path)) return false;
    struct stat rights;
    const bool given = stat(rightsOf, &rights) == 0;
    const mode_t mode = given ? rights.st_mode & 0777 : 0666;
    const int file = MakeBeside(target, temporary, [mode](const char *name) {
        return open(name, O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, mode);
    });
    if (file < 0) return false;
    const bool written = (!given || TakeRights(file, rights)) && WriteAll(file, bytes) && Sync(file);
    const bool closed = close(file) == 0;
    if (written && closed) return true;
    unlink(temporary);
    temporary[0] = '\0';
    return false;
}

bool PendingFile::Link(const char *path, const char *file) {
    return Choose(path) && MakeBeside(target, temporary, [file](const char *name) {
                               return linkat(AT_FDCWD, file, AT_FDCWD, name, AT_SYMLINK_FOLLOW);
                           }) == 0;
}

bool PendingFile::TakePlace() {
    if (temporary[0] == '\0' || rename(temporary, target) != 0) return false;
    // Where both are names of one file, rename leaves them alone.
    unlink(temporary);
    temporary[0] = '\0';
    return true;
}

void PendingFile::SyncFolder() const {
    char path[kFolderSize];
    FolderOfPath(target, path);
    const int folder = open(path, O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (folder < 0) return;
    (void)Sync(folder);
    close(folder);
}

void RemoveFile(const char *path) {
    unlink(path);
}

FileLock::FileLock(const char *path, int milliseconds) {
    constexpr timespec kPause = {0, 500000};
    constexpr int kFlags = O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC;
    int file = open(path, O_RDWR | kFlags, 0666);
    if (file < 0) file = open(path, O_RDONLY | kFlags, 0666); // another user's, which can be locked all the same
    if (file < 0) return;
    handle = file;
    const int64_t start = Milliseconds();
    int64_t holderSince = start;
    timespec holder = {};
    while (!held && !busy) {
        held = flock(file, LOCK_EX | LOCK_NB) == 0;
        if (held || errno == EINTR) continue;
        if (errno != EWOULDBLOCK) return;
        // Each holder leaves its time on the file. On a crowded machine one that saves again and again can take the
        // lock many times before another gets to look, which is no reason to give up.
        struct stat status;
        const int64_t now = Milliseconds();
        if (fstat(file, &status) == 0 && !SameTime(status.st_mtim, holder)) {
            holder = status.st_mtim;
            holderSince = now;
        }
        busy = now - holderSince >= milliseconds || now - start >= int64_t{10} * milliseconds;
        if (!busy) nanosleep(&kPause, nullptr);
    }
    if (held) futimens(file, nullptr);
}

FileLock::~FileLock() {
    const int file = static_cast<int>(handle);
    // Said aloud, because a process that the host started meanwhile may have a copy of the descriptor.
    if (held) flock(file, LOCK_UN);
    if (file >= 0) close(file);
}

} // namespace lmf
