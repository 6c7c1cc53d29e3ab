#include "platform/module.h"

#include <cstdio>

#include <dlfcn.h>

#include "platform/system.h"

namespace lmf {

void *LoadModule(const char *folder, const char *name) {
    char path[kFolderSize];
    std::snprintf(path, sizeof path, "%slib%s.so", folder, name);
    return dlopen(path, RTLD_NOW | RTLD_LOCAL);
}

void *FindSymbol(void *module, const char *name) {
    return module != nullptr ? dlsym(module, name) : nullptr;
}

void UnloadModule(void *module) {
    if (module != nullptr) dlclose(module);
}

const char *ModuleError() {
    const char *error = dlerror();
    return error != nullptr ? error : "";
}

} // namespace lmf
