// Jigsaw: adds the relief of a cut jigsaw puzzle to the picture, which is brighter or darker where the relief is.
// Size is that of the puzzle's pieces and Depth the strength of the relief, both in percent.
#include "engine/filter.h"
#include "filters/artistic/resized_part.h"
#include "image/texture/textures.h"
#include "image/texture/tile.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(540, "Size:", &P::FilterJigsawSize, {10, 100})
        .In(Unit::Percent)
        .Help("Makes the pieces of the puzzle larger."),
    Slider(541, "Depth:", &P::FilterJigsawDepth, {10, 100})
        .In(Unit::Percent)
        .Help("Makes the cuts between the pieces stand out more."),
};

constexpr int32_t kFlatTone = 127; ///< of the relief, where the picture stays

DibHandle JigsawKernel(const ReadView &source, FilterContext &context) {
    const LockedDib relief(JigsawRelief());
    if (!relief) return nullptr;
    const LockedDib scaled(ResizePart(relief, context.FilterJigsawSize, context));
    if (!scaled) return nullptr;
    ToneOffsets offsets;
    for (int32_t i = 0; i < 256; i++)
        offsets.at[i] = static_cast<int16_t>((i - kFlatTone) * context.FilterJigsawDepth / 100);
    return AddTile(source, scaled, offsets);
}

} // namespace

extern constexpr Filter kJigsaw = MakeFilter<kPage>(JigsawKernel);

} // namespace lmf
