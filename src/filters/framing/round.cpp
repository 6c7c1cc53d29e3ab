// Round: a soft bevel along the picture's edge, made of rings whose tone fades inwards.
// Bevel size is its width in pixels. Raised on lightens the left and top and darkens the right and bottom; off is the
// reverse.
#include "engine/filter.h"
#include "image/core/dib_ops.h"
#include "image/core/pixel_pass.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(810, "Bevel size:", &P::FilterRoundBevelsize, {2, 50})
        .In(Unit::Pixels)
        .Help("Width of the bevel along the picture's edge."),
    CheckBox(811, "Raised", &P::FilterRoundRaised)
        .Help("Lightens the left and top and darkens the right and bottom; off is the reverse."),
};

/// Each channel as channel * tone / 255 + light, with the quotient truncated.
struct RingTone {
    uint32_t tone, light;

    uint32_t Of(uint32_t pixel) const {
        const auto toned = [&](uint32_t channel) { return channel * tone / 255 + light; };
        return PackColor(toned(RedOf(pixel)), toned(GreenOf(pixel)), toned(BlueOf(pixel)));
    }
};

/// Tone of ring k of `rings`: from 128 at the edge towards 128 + `range`.
uint32_t ToneOf(int32_t k, double range, int32_t rings) {
    return static_cast<uint32_t>(128.0 + k * range / rings);
}

/// Tones the pixels first <= i < last of row or column `line`.
void ToneRow(const WriteView &picture, int32_t line, int32_t first, int32_t last, const RingTone &tone) {
    for (int32_t i = first; i < last; i++) DibSetPixel(picture, i, line, tone.Of(DibGetPixel(picture, i, line)));
}
void ToneColumn(const WriteView &picture, int32_t line, int32_t first, int32_t last, const RingTone &tone) {
    for (int32_t i = first; i < last; i++) DibSetPixel(picture, line, i, tone.Of(DibGetPixel(picture, line, i)));
}

/// The left and top side of ring k, or the right and bottom side. The upper right corner belongs to neither, the lower
/// left one to both.
void ToneSides(const WriteView &picture, int32_t k, bool leftAndTop, const RingTone &tone) {
    const int32_t right = picture.width - k - 1, bottom = picture.height - k - 1;
    ToneColumn(picture, leftAndTop ? k : right, k + 1, bottom + 1, tone);
    ToneRow(picture, leftAndTop ? k : bottom, k, right, tone);
}

DibHandle RoundKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    DibCopyRect(pass.to, 0, 0, source, 0, 0, source.width, source.height);
    const int32_t rings = std::min(context.FilterRoundBevelsize, std::min(source.width, source.height) / 2) + 1;
    const bool raised = context.FilterRoundRaised != 0;
    for (int32_t k = 0; k < rings; k++) {
        const uint32_t tone = ToneOf(k, 126.0, rings);
        ToneSides(pass.to, k, raised, {tone, 255 - tone});
    }
    for (int32_t k = 0; k < rings; k++) ToneSides(pass.to, k, !raised, {ToneOf(k, 127.0, rings), 0});
    return pass.Finish();
}

} // namespace

extern constexpr Filter kRound = MakeFilter<kPage>(RoundKernel);

} // namespace lmf
