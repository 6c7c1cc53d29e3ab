// Raise: turns the picture's edge into a bevel that seems raised or sunken.
// Size is the width of the bevel, in percent of the picture's smaller side. Raise on lights the top and left, off the
// bottom and right.
#include <cstring>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/div255.h"
#include "image/core/pixel_pass.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(710, "Size:", &P::FilterRaiseSize, {1, 49})
        .In(Unit::Percent)
        .Help("Width of the bevel, of the picture's smaller side."),
    CheckBox(711, "Raise", &P::FilterRaiseRaise).Help("Lights the top and the left side; off lights the others."),
};

/// (weight * channel + light) / 255, rounded.
struct Shading {
    uint16_t weight, light;

    uint8_t Of(uint32_t channel) const {
        return static_cast<uint8_t>(RoundedDiv255(static_cast<uint16_t>(weight * channel + light)));
    }
};

LMF_MULTIVERSION
void ShadeBytes(uint8_t *__restrict to, const uint8_t *__restrict from, size_t count, Shading shading) {
    for (size_t i = 0; i < count; i++) to[i] = shading.Of(from[i]);
}

/// The shadings of the four faces; the left and the right one have the stronger contrast.
struct Faces {
    Shading left, top, right, bottom;

    explicit Faces(bool raised) {
        const uint16_t lit = raised ? 255 : 0, dark = raised ? 0 : 255;
        left = {190, static_cast<uint16_t>(65 * lit)};
        top = {135, static_cast<uint16_t>(120 * lit)};
        right = {190, static_cast<uint16_t>(65 * dark)};
        bottom = {135, static_cast<uint16_t>(120 * dark)};
    }
};

/// Writes first <= x < last of row y; without shading the pixels stay.
void ShadeSpan(const PixelPass &pass, int32_t y, int32_t first, int32_t last, const Shading *shading) {
    const ReadView &from = pass.from;
    if (from.bits == 8 || from.bits == 24) {
        const auto bytes = static_cast<ptrdiff_t>(from.bits / 8);
        uint8_t *to = pass.to.Row(y) + first * bytes;
        const uint8_t *span = from.Row(y) + first * bytes;
        const auto count = static_cast<size_t>((last - first) * bytes);
        if (shading != nullptr)
            ShadeBytes(to, span, count, *shading);
        else
            std::memcpy(to, span, count);
        return;
    }
    for (int32_t x = first; x < last; x++) {
        const uint32_t pixel = DibGetPixel(from, x, y);
        const auto shaded = [&] {
            return PackColor(shading->Of(RedOf(pixel)), shading->Of(GreenOf(pixel)), shading->Of(BlueOf(pixel)));
        };
        DibSetPixel(pass.to, x, y, shading != nullptr ? shaded() : pixel);
    }
}

DibHandle RaiseKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const int32_t width = source.width, height = source.height;
    const auto size = static_cast<int32_t>(int64_t{std::min(width, height)} * context.FilterRaiseSize / 100);
    const Faces faces(context.FilterRaiseRaise != 0);
    for (int32_t y = 0; y < height; y++) {
        const bool above = y < size, below = y >= height - size;
        const int32_t mitre = above ? y : below ? height - y : size;
        ShadeSpan(pass, y, 0, mitre, &faces.left);
        ShadeSpan(pass, y, mitre, width - mitre, above ? &faces.top : below ? &faces.bottom : nullptr);
        ShadeSpan(pass, y, width - mitre, width, &faces.right);
    }
    return pass.Finish();
}

} // namespace

extern constexpr Filter kRaise = MakeFilter<kPage>(RaiseKernel);

} // namespace lmf
