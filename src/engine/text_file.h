// Small text files, read whole.
#pragma once

#include <optional>
#include <string_view>

#include "platform/files.h"
#include "platform/memory.h"

namespace lmf {

/// A text file in memory. One that is too long fails, and so does any where memory is short.
struct TextFile {
    static constexpr uint64_t kLargest = uint64_t{1} << 20;
    FileState state = FileState::kFailed;

    /// Reads the file; null fails.
    explicit TextFile(const char *path);
    bool Failed() const { return state == FileState::kFailed; }
    bool Exists() const { return state == FileState::kOpen; }
    std::string_view Bytes() const { return size == 0 ? std::string_view() : std::string_view(bytes->data, size); }
    /// The bytes without the mark of their encoding that some editors put before them.
    std::string_view Text() const;

private:
    std::optional<BlockArray<char>> bytes;
    size_t size = 0;
};

} // namespace lmf
