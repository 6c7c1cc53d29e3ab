#include "platform/system.h"

#include <climits>
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
