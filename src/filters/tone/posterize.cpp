// Posterize: keeps the highest bits of every channel, as many as the setting says, and clears the others. Palette
// pictures have their colour table changed.
#include "engine/filter.h"
#include "image/color/tone_table.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(680, "Steps:", &P::FilterPosterizeSteps, {1, 8})
        .Help("Leaves each of red, green and blue 2 tones at 1 step and twice as many with every step more."),
};

DibHandle PosterizeKernel(const ReadView &source, FilterContext &context) {
    ToneTable table;
    const int32_t dropped = 8 - context.FilterPosterizeSteps;
    for (int32_t i = 0; i < 256; i++) table.at[i] = static_cast<uint8_t>(i >> dropped << dropped);
    return ApplyToneTable(source, table);
}

} // namespace

extern constexpr Filter kPosterize = MakeFilter<kPage>(PosterizeKernel);

} // namespace lmf
