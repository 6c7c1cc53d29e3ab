// The loader's notice, which other systems give through DllMain of their own accord.
#include "lmf16filter.h"

__attribute__((constructor)) static void Attach() {
    DllMain(nullptr, 1, nullptr);
}
__attribute__((destructor)) static void Detach() {
    DllMain(nullptr, 0, nullptr);
}
