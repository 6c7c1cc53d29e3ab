#include "platform/system.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <dlfcn.h>

namespace lmf {

int64_t SystemTime() {
    const char *epoch = std::getenv("SOURCE_DATE_EPOCH");
    if (epoch != nullptr && *epoch != '\0') return std::strtoll(epoch, nullptr, 10);
    return std::time(nullptr);
}

bool LocalTime(int64_t seconds, std::tm *out) {
    const std::time_t time = seconds;
    return localtime_r(&time, out) != nullptr;
}

const char kPathSeparator = '/';

/// The folder that the variable names, or else one below the home folder. A relative path counts as unset: it would
/// mean another place with every working folder.
static bool FolderOf(const char *variable, const char *belowHome, char *out) {
    const char *folder = std::getenv(variable);
    if (folder != nullptr && folder[0] == kPathSeparator)
        belowHome = "";
    else
        folder = std::getenv("HOME");
    if (folder == nullptr || folder[0] != kPathSeparator) return false;
    const int length = std::snprintf(out, kFolderSize, "%s%s", folder, belowHome);
    return length > 0 && static_cast<size_t>(length) < kFolderSize;
}

bool ApplicationDataFolder(char *out) {
    return FolderOf("XDG_CONFIG_HOME", "/.config", out);
}

bool UserDocumentsFolder(char *out) {
    return FolderOf("XDG_DOCUMENTS_DIR", "/Documents", out);
}

static char moduleFolder[PATH_MAX];

void KeepModuleFolder(void *) {
    Dl_info info;
    if (dladdr(moduleFolder, &info) == 0 || info.dli_fname == nullptr) return;
    if (realpath(info.dli_fname, moduleFolder) == nullptr) moduleFolder[0] = '\0';
    if (char *separator = std::strrchr(moduleFolder, '/')) separator[1] = '\0';
}

const char *ModuleFolder() {
    return moduleFolder;
}

} // namespace lmf
