// The eleven functions that hosts call. lmf16filter.h documents them; this file only leads each one inside.
#include "lmf16filter.h"

#include "engine/catalogue.h"
#include "engine/do_image_filter.h"
#include "engine/host_menu.h"
#include "platform/system.h"

extern "C" {

uint64_t LMF16FILTERDoImageFilter(void *owner, LmfHandle *picture, LmfValidation callback, LmfHandle *second,
                                  int32_t buttonStyle, int32_t gradientSliders, uint32_t runFlags, void *hostRecord,
                                  const char *browserPath, uint32_t browserMask, int32_t hostReserved,
                                  const HostHooks *hooks) {
    return lmf::DoImageFilter({owner, picture, callback, second, buttonStyle, gradientSliders, runFlags, hostRecord,
                               browserPath, browserMask, hostReserved, hooks});
}

uint64_t LMF16FILTERDoPhotographDarkroom(DarkroomRequest *) {
    return 0;
}

uint64_t LMF16FILTERDoAdjust(AdjustRequest *) {
    return 0;
}

void *LMF16FILTERGetMenu(uint32_t firstId, uint32_t grouped) {
    return lmf::MakeHostMenu(firstId, grouped != 0);
}

int32_t LMF16FILTEREnableMenu(void *menu, uint32_t firstId, const HostRestrictions *restrictions) {
    return lmf::EnableHostMenu(menu, firstId, restrictions);
}

int32_t LMF16FILTERGetCount() {
    return lmf::kFilterCount;
}

int32_t LMF16FILTERGetVersion() {
    return 0x101;
}

const char *LMF16FILTERGetCopyright() {
    return "Copyright (c) 2026 the Lumenfold Filters authors";
}

const char *LMF16FILTERGetValidationString() {
    return "";
}

int32_t LMF16FILTERSetValidation(const char *) {
    return 1;
}

int32_t DllMain(void *module, uint32_t reason, void *) {
    constexpr uint32_t kProcessAttach = 1;
    if (reason == kProcessAttach) lmf::KeepModuleFolder(module);
    return 1;
}

} // extern "C"
