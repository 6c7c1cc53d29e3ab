#include "engine/settings_paths.h"

#include <algorithm>
#include <cstring>

#include "lmf16filter.h"
#include "platform/system.h"

namespace lmf {

namespace {

constexpr const char *kMakerFolder = "Quillon Works";

struct FilePath {
    char text[kPathSize] = "";
    bool whole = true; ///< nothing was cut: the path can be trusted to name the file that is meant
};

void Append(FilePath *path, const char *text) {
    const size_t length = std::strlen(path->text);
    const size_t room = kPathSize - 1 - length;
    const size_t count = std::strlen(text);
    std::memcpy(path->text + length, text, std::min(count, room));
    path->text[length + std::min(count, room)] = '\0';
    if (count > room) path->whole = false;
}

void AppendFolder(FilePath *path, const char *folder) {
    Append(path, folder);
    const size_t length = std::strlen(path->text);
    const char separator[] = {kPathSeparator, '\0'};
    if (length == 0 || path->text[length - 1] != kPathSeparator) Append(path, separator);
}

bool AppendSettingsFolder(FilePath *path) {
    char folder[kFolderSize];
    if (!ApplicationDataFolder(folder)) return false;
    AppendFolder(path, folder);
    AppendFolder(path, kMakerFolder);
    return true;
}

/// Adds the file's name to that of its folder. @return false where something was cut
bool Finish(FilePath &path, const char *name, char (&out)[kPathSize]) {
    Append(&path, name);
    std::memcpy(out, path.text, kPathSize);
    return path.whole;
}

} // namespace

bool SettingsFolder(char (&out)[kPathSize]) {
    FilePath path;
    const bool found = AppendSettingsFolder(&path);
    std::memcpy(out, path.text, kPathSize);
    return found;
}

bool FindSettingsFile(const char *name, char (&out)[kPathSize]) {
    FilePath path;
    return AppendSettingsFolder(&path) && Finish(path, name, out);
}

bool FindMakerFile(const char *folder, const char *name, char (&out)[kPathSize]) {
    FilePath path;
    if (!AppendSettingsFolder(&path)) return false;
    AppendFolder(&path, folder);
    return Finish(path, name, out);
}

bool FindProductFile(const char *name, char (&out)[kPathSize]) {
    return FindMakerFile(kProductFolder, name, out);
}

bool FindDocumentsFile(std::initializer_list<const char *> folders, const char *name, char (&out)[kPathSize]) {
    FilePath path;
    char documents[kFolderSize];
    if (!UserDocumentsFolder(documents)) return false;
    AppendFolder(&path, documents);
    for (const char *folder : folders) AppendFolder(&path, folder);
    return Finish(path, name, out);
}

bool FindModuleFile(const char *name, char (&out)[kPathSize]) {
    FilePath path;
    if (*ModuleFolder() == '\0') return false;
    AppendFolder(&path, ModuleFolder());
    return Finish(path, name, out);
}

const char *SettingsFile(const char *name) {
    static char path[kPathSize];
    path[0] = '\0';
    (void)FindSettingsFile(name, path);
    return path;
}

const char *ProductFile(const char *name) {
    static char path[kPathSize];
    path[0] = '\0';
    (void)FindProductFile(name, path);
    return path;
}

const char *DocumentsFile(const char *name) {
    static FilePath path;
    path = {};
    char folder[kFolderSize];
    if (UserDocumentsFolder(folder)) {
        AppendFolder(&path, folder);
        Append(&path, name);
    }
    return path.text;
}

const char *ModuleFile(const char *name) {
    static char path[kPathSize];
    path[0] = '\0';
    (void)FindModuleFile(name, path);
    return path;
}

const SettingsFileSet &SettingsFilesFor(uint32_t runFlags) {
    static constexpr struct {
        uint32_t runFlags;
        SettingsFileSet files;
    } kHosts[] = {
        {LMF_RUN_DAUBERY, {"DauberyFiltr.ini", "DauberyFiltrEnable.ini", "DauberyFiltrList.txt"}},
        {LMF_RUN_REELSMITH | LMF_RUN_FRAMELOOM,
         {"AnimationFilter.ini", "AnimationFilterEnable.ini", "AnimationFilterList.txt"}},
        {LMF_RUN_BATCH, {"LmfFiltrBatch.ini", "LmfFiltrEnableBatch.ini", "LmfFiltrListBatch.txt"}},
    };
    static constexpr SettingsFileSet kStandard = {"LmfFiltr.ini", "LmfFiltrEnable.ini", "LmfFiltrList.txt"};
    for (const auto &host : kHosts) {
        if (runFlags & host.runFlags) return host.files;
    }
    return kStandard;
}

} // namespace lmf
