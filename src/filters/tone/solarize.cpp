// Solarize: inverts every channel value below the threshold, as if the film had seen light while it was developed
// (A. Sabattier, 1862).
#include <algorithm>

#include "engine/filter.h"
#include "image/core/pixel_map.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(900, "Threshold:", &P::FilterSolarizeThreshold, {1, 255})
        .In(Unit::Levels)
        .Help("Turns all values of red, green and blue below this level into their negative."),
};

DibHandle SolarizeKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    ToneTable table;
    for (int32_t i = 0; i < 256; i++)
        table.at[i] = static_cast<uint8_t>(i < context.FilterSolarizeThreshold ? 255 - i : i);
    // Rows are taken as bytes, three a pixel or one; palette and mono pictures become blank.
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    const int32_t channels = context.mode == kModeTrueColor ? 3 : context.mode == kModeGrey ? 1 : 0;
    const ptrdiff_t bytes = std::min({ptrdiff_t{channels} * from.width, from.stride, to.stride});
    for (int32_t y = 0; y < from.height; y++)
        LookUpBytes(to.MemoryRow(y), from.MemoryRow(y), static_cast<size_t>(bytes), table);
    return pass.Finish();
}

} // namespace

extern constexpr Filter kSolarize = MakeFilter<kPage>(SolarizeKernel);

} // namespace lmf
