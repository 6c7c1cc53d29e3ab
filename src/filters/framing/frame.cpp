// Frame: puts a picture frame in the paper colour around the picture, which grows by the frame on every side: a bevel
// that is lit from the top left, a flat band, and a bevel that falls towards the picture. Bevel and Matte are the
// widths of a bevel and of the band in pixels.
#include "engine/filter.h"
#include "image/core/dib_ops.h"
#include "image/core/div255.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(470, "Bevel:", &P::FilterFrameBevel, {2, 48})
        .In(Unit::Pixels)
        .Help("Width of each of the two bevels, outside and inside the flat band."),
    Slider(471, "Matte:", &P::FilterFrameMatte, {2, 128})
        .In(Unit::Pixels)
        .Help("Width of the flat band in the paper colour."),
};

/// (weight * channel + light) / 255 for each channel, rounded.
Color Tone(Color paper, uint32_t weight, uint32_t light) {
    const auto mixed = [&](uint32_t channel) { return RoundedDiv255(static_cast<uint16_t>(weight * channel + light)); };
    return PackColor(mixed(RedOf(paper)), mixed(GreenOf(paper)), mixed(BlueOf(paper)));
}

constexpr int32_t kMostLines = 2 * 48 + 128;

/// Colours of the lines of one side, from the outer edge inwards.
struct SideColors {
    Color lines[kMostLines];

    SideColors(Color outerBevel, Color lastOfOuter, Color band, Color firstOfInner, Color innerBevel, int32_t bevel,
               int32_t matte) {
        const int32_t inner = bevel + matte;
        std::fill_n(lines, bevel - 1, outerBevel);
        lines[bevel - 1] = lastOfOuter;
        std::fill_n(lines + bevel, matte, band);
        lines[inner] = firstOfInner;
        std::fill_n(lines + inner + 1, bevel - 1, innerBevel);
    }
};

/// Draws the sides one over the other. A line ends one pixel beyond the mitre, so that those drawn later stand out.
void DrawSides(const WriteView &to, Color paper, int32_t bevel, int32_t matte) {
    const Color light = Tone(paper, 175, 20400), lightest = Tone(paper, 130, 31875);
    const Color dark = Tone(paper, 135, 0), darkest = Tone(paper, 110, 0);
    const SideColors lit(lightest, light, paper, darkest, dark, bevel, matte);
    const SideColors shaded(dark, darkest, paper, light, lightest, bevel, matte);
    const int32_t border = matte + 2 * bevel, right = to.width - 1, bottom = to.height - 1;
    for (int32_t k = 0; k < border; k++) DibFillRect(to, k, k, to.width - 2 * k + 1, 1, lit.lines[k]);
    for (int32_t k = 0; k < border; k++) DibFillRect(to, k, bottom - k, to.width - 2 * k + 1, 1, shaded.lines[k]);
    for (int32_t y = 0; y < to.height; y++) {
        const int32_t columns = std::min({border, y + 1, to.height - y + 1});
        for (int32_t k = 0; k < columns; k++) DibSetPixel(to, k, y, lit.lines[k]);
        for (int32_t k = 0; k < columns; k++) DibSetPixel(to, right - k, y, shaded.lines[k]);
    }
}

DibHandle FrameKernel(const ReadView &source, FilterContext &context) {
    const int32_t bevel = context.FilterFrameBevel, matte = context.FilterFrameMatte, border = matte + 2 * bevel;
    LockedDib result(DibCreateLike(source, source.width + 2 * border, source.height + 2 * border));
    if (!result) return nullptr;
    DibCopyRect(result.View(), border, border, source, 0, 0, source.width, source.height);
    DrawSides(result.View(), context.paperColor, bevel, matte);
    return result.Release();
}

} // namespace

extern constexpr Filter kFrame = MakeFilter<kPage>(FrameKernel);

} // namespace lmf
