#include "platform/system.h"

#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <cwctype>

#include <dlfcn.h>
#include <fcntl.h>
#include <locale.h>
#include <pwd.h>
#include <unistd.h>

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

bool UserName(char *out) {
    char record[4096];
    passwd user;
    passwd *found = nullptr;
    if (getpwuid_r(getuid(), &user, record, sizeof record, &found) != 0 || found == nullptr) return false;
    // The field that holds the full name goes on with office and telephone after a comma.
    size_t length = found->pw_gecos != nullptr ? std::strcspn(found->pw_gecos, ",") : 0;
    const char *name = length > 0 ? found->pw_gecos : found->pw_name;
    if (length == 0) length = std::strlen(name);
    if (length == 0 || length >= kUserNameSize) return false;
    std::memcpy(out, name, length);
    out[length] = '\0';
    return true;
}

/// Where letters have the cases of all scripts, or of A to Z only on a system without it.
static locale_t LettersLocale() {
    static const locale_t unicode = newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr);
    static const locale_t plain = newlocale(LC_CTYPE_MASK, "C", nullptr);
    return unicode != nullptr ? unicode : plain;
}

char32_t LowerCase(char32_t character) {
    return towlower_l(character, LettersLocale());
}

char32_t UpperCase(char32_t character) {
    return towupper_l(character, LettersLocale());
}

const char kPathSeparator = '/';

namespace {

/// The folder that the variable names, or else one below the home folder. A relative path counts as unset: it would
/// mean another place with every working folder.
bool FolderOf(const char *variable, const char *belowHome, char *out) {
    const char *folder = std::getenv(variable);
    if (folder != nullptr && folder[0] == kPathSeparator)
        belowHome = "";
    else
        folder = std::getenv("HOME");
    if (folder == nullptr || folder[0] != kPathSeparator) return false;
    const int length = std::snprintf(out, kFolderSize, "%s%s", folder, belowHome);
    return length > 0 && static_cast<size_t>(length) < kFolderSize;
}

} // namespace

bool ApplicationDataFolder(char *out) {
    return FolderOf("XDG_CONFIG_HOME", "/.config", out);
}

bool UserDocumentsFolder(char *out) {
    return FolderOf("XDG_DOCUMENTS_DIR", "/Documents", out);
}

// An open folder leads back even after it was renamed.
CurrentFolder::CurrentFolder(const char *folder) : before(open(".", O_PATH | O_DIRECTORY | O_CLOEXEC)) {
    if (before < 0 || chdir(folder) == 0) return;
    close(static_cast<int>(before));
    before = -1;
}

CurrentFolder::~CurrentFolder() {
    if (before < 0) return;
    [[maybe_unused]] const int back = fchdir(static_cast<int>(before));
    close(static_cast<int>(before));
}

namespace {

char moduleFolder[PATH_MAX];

} // namespace

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
