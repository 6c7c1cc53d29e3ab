// Small files that several programs read and write at the same time: read whole without waiting, replaced in one step,
// and changed under a lock. Paths are the system's own, bytes are taken and given as they are.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "platform/system.h"

namespace lmf {

/// What ends a line of a text file.
extern const char kLineEnd[];

/// What came of opening a file. Only `kAbsent` says that there is none; whatever else goes wrong is `kFailed`.
enum class FileState { kOpen, kAbsent, kFailed };

/// A regular file that is open for reading, and closed at the end of the scope. Anything else that stands under the
/// path fails, and is never waited for.
struct InputFile {
    FileState state = FileState::kFailed;
    uint64_t size = 0; ///< in bytes

    explicit InputFile(const char *path);
    InputFile(const InputFile &) = delete;
    InputFile &operator=(const InputFile &) = delete;
    ~InputFile();

    /// Reads the `size` bytes of an open file. Called once.
    /// @return false where that fails, or where the file has another size by now: someone is writing it in place
    [[nodiscard]] bool Read(char *bytes) const;

private:
    intptr_t handle = -1;
};

/// A file that was made whole beside another one and waits to take its place. It goes away at the end of the scope
/// unless it did. It stands under a name that no other writer has, and no link is followed in making it; but a path
/// that is a link stays one: the file behind it is replaced.
struct PendingFile {
    PendingFile() = default;
    PendingFile(const PendingFile &) = delete;
    PendingFile &operator=(const PendingFile &) = delete;
    ~PendingFile();

    /// Writes bytes, and brings them to the disk. This or the next is called once.
    /// @param rightsOf  path of the file whose owner and access rights it gets; where there is none, they are those of
    ///                  any new file
    /// @return false, with nothing left behind, where that failed, or where something stands under `path` that is no
    /// regular file or that may not be read
    [[nodiscard]] bool Write(const char *path, std::string_view bytes, const char *rightsOf);
    /// Makes another name for a file that is never written in place, which takes no room on the disk.
    /// @return false as above, and where the file system has no such names
    [[nodiscard]] bool Link(const char *path, const char *file);

    /// Takes the place of the file under the path, in one step. The old file stays where that fails.
    [[nodiscard]] bool TakePlace();
    /// Brings to the disk what took place in the file's folder. Not every file system can.
    void SyncFolder() const;

private:
    [[nodiscard]] bool Choose(const char *path);

    char target[kFolderSize] = "";
    char temporary[kFolderSize] = "";
};

/// Removes a file, or the link that leads to it; one that is not there is no matter.
void RemoveFile(const char *path);

/// Holds a lock that programs agree upon while it lives: whoever has the file's lock may change the files that it
/// stands for. The file is made where it is missing, stays empty and stays behind.
struct FileLock {
    /// Takes the lock, waiting at most so many milliseconds for one holder, and ten times that where it goes from hand
    /// to hand meanwhile.
    FileLock(const char *path, int milliseconds);
    FileLock(const FileLock &) = delete;
    FileLock &operator=(const FileLock &) = delete;
    ~FileLock();

    bool held = false; ///< the lock is this one's
    bool busy = false; ///< others kept it to the end; neither: the file can't be made or locked

private:
    intptr_t handle = -1;
};

} // namespace lmf
