// Equalize: pushes shadows down and highlights up, without a histogram. Tones below the Shadow level sink by half of
// their distance to it, tones above the Highlight level rise by half of theirs; the largest channel counts, and all
// three channels move together. A Highlight level below the Shadow level is taken as one below it.
#include <algorithm>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/pixel_map.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(420, "Shadow:", &P::FilterEqualizeShadow, {0, 255})
        .In(Unit::Levels)
        .Help("Makes tones below this level darker, by half of their distance to it."),
    Slider(421, "Highlight:", &P::FilterEqualizeHightlight, {0, 255})
        .In(Unit::Levels)
        .Help("Makes tones above this level lighter, by half of their distance to it."),
};

/// How far a pixel moves whose largest channel is `tone`.
int32_t ShiftOf(int32_t tone, int32_t shadow, int32_t highlight) {
    if (tone < shadow) return -((shadow - tone) >> 1);
    return tone > highlight ? (tone - highlight) >> 1 : 0;
}

LMF_MULTIVERSION
void ShiftRow(uint8_t *__restrict to, const uint8_t *__restrict from, size_t width, const int16_t *__restrict shifts) {
    for (size_t i = 0; i < width * 3; i += 3) {
        const int32_t shift = shifts[std::max({from[i], from[i + 1], from[i + 2]})];
        to[i] = ClampByte(from[i] + shift);
        to[i + 1] = ClampByte(from[i + 1] + shift);
        to[i + 2] = ClampByte(from[i + 2] + shift);
    }
}

DibHandle EqualizeKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const int32_t shadow = context.FilterEqualizeShadow;
    const int32_t highlight = std::max(context.FilterEqualizeHightlight, shadow - 1);
    int16_t shifts[256];
    for (int32_t tone = 0; tone < 256; tone++) shifts[tone] = static_cast<int16_t>(ShiftOf(tone, shadow, highlight));
    MapColors(pass, [&](uint8_t *to, const uint8_t *from, size_t width) { ShiftRow(to, from, width, shifts); });
    return pass.Finish();
}

} // namespace

extern constexpr Filter kEqualize = MakeFilter<kPage>(EqualizeKernel);

} // namespace lmf
