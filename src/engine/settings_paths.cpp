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

bool Give(const FilePath &path, char (&out)[kPathSize]) {
    std::memcpy(out, path.text, kPathSize);
    return path.whole;
}

bool AppendSettingsFolder(FilePath *path) {
    char folder[kFolderSize];
    if (!ApplicationDataFolder(folder)) return false;
    AppendFolder(path, folder);
    AppendFolder(path, kMakerFolder);
    return true;
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
    if (!AppendSettingsFolder(&path)) return false;
    Append(&path, name);
    return Give(path, out);
}

bool FindMakerFile(const char *folder, const char *name, char (&out)[kPathSize]) {
    FilePath path;
    if (!AppendSettingsFolder(&path)) return false;
    AppendFolder(&path, folder);
    Append(&path, name);
    return Give(path, out);
}

bool FindDocumentsFile(std::initializer_list<const char *> folders, const char *name, char (&out)[kPathSize]) {
    FilePath path;
    char documents[kFolderSize];
    if (!UserDocumentsFolder(documents)) return false;
    AppendFolder(&path, documents);
    for (const char *folder : folders) AppendFolder(&path, folder);
    Append(&path, name);
    return Give(path, out);
}

bool FindModuleFile(const char *name, char (&out)[kPathSize]) {
    FilePath path;
    if (*ModuleFolder() == '\0') return false;
    AppendFolder(&path, ModuleFolder());
    Append(&path, name);
    return Give(path, out);
}

const char *SettingsFile(const char *name) {
    static FilePath path;
    path = {};
    if (AppendSettingsFolder(&path)) Append(&path, name);
    return path.text;
}

const char *ProductFile(const char *name) {
    static FilePath path;
    path = {};
    if (AppendSettingsFolder(&path)) {
        AppendFolder(&path, kProductFolder);
        Append(&path, name);
    }
    return path.text;
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
    static FilePath path;
    path = {};
    if (*ModuleFolder() != '\0') {
        AppendFolder(&path, ModuleFolder());
        Append(&path, name);
    }
    return path.text;
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
