// The main entry: one call of a host, from its picture to the result.
#pragma once

#include <cstdint>

#include "engine/filter_context.h"
#include "lmf16filter.h"

namespace lmf {

/// What a host passed for the length of its call.
struct HostCall {
    const HostHooks *hooks;
    uint32_t runFlags;
    int32_t buttonStyle;
    int32_t gradientSliders;
    uint32_t browserMask;
    char browserPath[261];
};

/// The host call in progress, or the last one.
extern HostCall CurrentCall;

/// See LMF16FILTERDoImageFilter, whose arguments these are.
/// @return 1, or 0 with nothing written through `picture` and `second`.
uint64_t DoImageFilter(void *owner, LmfHandle *picture, LmfValidation callback, LmfHandle *second, int32_t buttonStyle,
                       int32_t gradientSliders, uint32_t runFlags, void *hostRecord, const char *browserPath,
                       uint32_t browserMask, int32_t hostReserved, const HostHooks *hooks);

} // namespace lmf
