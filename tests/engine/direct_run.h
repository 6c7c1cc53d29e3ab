// A run of one filter as a host's direct call does it.
#pragma once

#include "engine/apply.h"
#include "support/pictures.h"

namespace lmf::testing {

/// Runs a row on a picture with the settings of a context, and owns what it makes.
struct DirectRun {
    FilterContext context;
    bool good;

    DirectRun(int32_t row, const ReadView &source, DibHandle second = nullptr,
              const FilterContext &start = MakeContext())
        : context(start) {
        context.filterIndex = row;
        context.source = source;
        context.second = second;
        context.mode = DibClassify(source);
        DibInfo(source, &context.width, &context.height, nullptr, nullptr);
        context.secondResult = DibClone(second);
        good = ApplyFilterDirect(&context) != 0;
    }
    ~DirectRun() {
        BlockFree(context.result);
        BlockFree(context.secondResult);
        BlockFree(context.auxImage);
    }
};

} // namespace lmf::testing
