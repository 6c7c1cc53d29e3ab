// A run of one filter as a host's direct call does it.
#pragma once

#include "engine/apply.h"
#include "support/pictures.h"

namespace lmf::testing {

/// Runs a row on a picture with the settings of a context, and owns what it makes.
struct DirectRun {
    FilterContext context;
    bool good;

    DirectRun(int32_t row, DibHandle source, DibHandle second = nullptr, const FilterContext &start = MakeContext())
        : context(start) {
        context.filterIndex = row;
        context.source = source;
        context.second = second;
        context.mode = DibClassify(source);
        DibInfo(source, &context.width, &context.height, nullptr, nullptr);
        good = ApplyFilterDirect(&context) != 0;
    }
    DirectRun(int32_t row, const LockedDib &source, const LockedDib &second = LockedDib(),
              const FilterContext &start = MakeContext())
        : DirectRun(row, source.owner.handle, second.owner.handle, start) {}
    ~DirectRun() { FreePictures(context); }

    DibReadLock Result() const { return DibReadLock(context.result); }
    DibReadLock Second() const { return DibReadLock(context.secondResult); }
};

} // namespace lmf::testing
