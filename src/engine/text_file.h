// Text files of the user's: read whole, replaced in one step, backed up. One that can't be read is never replaced by
// its readers, and nothing is reported.
#pragma once

#include <optional>
#include <string_view>

#include "engine/settings_paths.h"
#include "platform/files.h"
#include "platform/memory.h"

namespace lmf {

/// A text file, read whole. One that is too long fails, and so does any where memory is short.
struct TextFile {
    static constexpr uint64_t kLargest = uint64_t{1} << 20;

    FileState state = FileState::kFailed;

    /// Reads the file under a path; null for a path that can't be told, which fails.
    explicit TextFile(const char *path, uint64_t largest = kLargest);

    [[nodiscard]] bool Failed() const { return state == FileState::kFailed; }
    [[nodiscard]] bool Exists() const { return state == FileState::kOpen; }
    [[nodiscard]] std::string_view Bytes() const {
        return size == 0 ? std::string_view() : std::string_view(bytes->data, size);
    }
    /// The bytes without the mark of their encoding that some editors put before them.
    [[nodiscard]] std::string_view Text() const;

private:
    std::optional<BlockArray<char>> bytes;
    size_t size = 0;
};

/// Makes ready a backup of a file: another name for it, since no writer touches a file that stands, or else a copy.
[[nodiscard]] bool BackUpFile(const char *path, const TextFile &file, const char *backup, PendingFile *pending);

/// Writes a text in the place of a file, unless what stands there can't be read.
/// @return false where it could not be written; the old file then stays
bool ReplaceTextFile(const char *path, std::string_view text);

/// Keeps other hosts from changing the settings files while this one reads, changes and writes them. A holder that
/// doesn't let go within the time (a process that was stopped, a file server that is away) must not stop its fellows:
/// they then write without the lock, as where it can't be made. The files stay whole even so, but what another saves
/// in the same moment can be lost. Each wait in vain halves the next, so that a batch of calls doesn't wait for long.
struct SettingsLock {
    static constexpr int kLongestWait = 5000;
    static inline int wait = kLongestWait;
    char path[kPathSize] = "";
    FileLock lock;

    SettingsLock() : lock(FindSettingsFile("LmfFiltr.lock", path) ? path : "", wait) {
        wait = lock.busy ? wait / 2 : kLongestWait;
    }
};

} // namespace lmf
