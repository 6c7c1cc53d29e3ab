#include "engine/text_file.h"

namespace lmf {

TextFile::TextFile(const char *path, uint64_t largest) {
    if (path == nullptr) return;
    const InputFile file(path);
    state = file.state;
    if (state != FileState::kOpen) return;
    state = FileState::kFailed;
    if (file.size > largest) return;
    bytes.emplace(file.size + 1); // an empty file needs a block too
    if (!*bytes || !file.Read(bytes->data)) return;
    state = FileState::kOpen;
    size = file.size;
}

std::string_view TextFile::Text() const {
    constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
    return Bytes().substr(Bytes().starts_with(kByteOrderMark) ? kByteOrderMark.size() : 0);
}

bool BackUpFile(const char *path, const TextFile &file, const char *backup, PendingFile *pending) {
    return pending->Link(backup, path) || pending->Write(backup, file.Bytes(), path);
}

bool ReplaceTextFile(const char *path, std::string_view text) {
    PendingFile file;
    if (!file.Write(path, text, path) || !file.TakePlace()) return false;
    file.SyncFolder();
    return true;
}

} // namespace lmf
