// The main entry: one call of a host, from its picture to the result.
#pragma once

#include <cstdint>

#include "engine/filter_context.h"
#include "lmf16filter.h"

namespace lmf {

/// The arguments of LMF16FILTERDoImageFilter, which documents them, in their order.
struct HostCall {
    void *owner;
    LmfHandle *picture;
    LmfValidation callback;
    LmfHandle *second;
    int32_t buttonStyle;
    int32_t gradientSliders;
    uint32_t runFlags;
    void *hostRecord;
    const char *browserPath;
    uint32_t browserMask;
    int32_t hostReserved;
    const HostHooks *hooks;
};

/// Runs the host's call.
/// @return 1, or 0 with nothing written through `picture` and `second`.
uint64_t DoImageFilter(const HostCall &call);

} // namespace lmf
