// Unsharp Mask: drives each value away from the blurred picture where the two differ enough. "Amount:" says how far and
// "Threshold:" from which difference on. The blur is that of the Gaussian Blur page; the page's own "Depth:" and
// "Radius:" are kept but do not reach the picture.
#include <cmath>

#include "engine/filter.h"
#include "image/blur/gaussian.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    HundredthsSlider(1000, "Amount:", &P::FilterUnsharpAmount, {0, 50}),
    HundredthsSlider(1001, "Threshold:", &P::FilterUnsharpThreshold, {1, 15}),
    HundredthsSlider(1002, "Depth:", &P::FilterUnsharpSigma, {10, 100}),
    HundredthsSlider(1003, "Radius:", &P::FilterUnsharpRadius, {10, 990}),
};

static uint8_t SharpenByte(int32_t byte, int32_t blurred, double amount, double threshold) {
    const double difference = byte - blurred;
    const double value = std::fabs(2.0 * difference) >= threshold ? byte + difference * amount : byte;
    return value < 0.0 ? 0 : value > 255.0 ? 255 : static_cast<uint8_t>(value + 0.5);
}

/// The result for every byte (times 256) and every blurred byte: no more than a few rows' worth of arithmetic.
static void FillTable(uint8_t *table, double amount, double threshold) {
    for (int32_t byte = 0; byte < 256; byte++)
        for (int32_t blurred = 0; blurred < 256; blurred++)
            table[byte * 256 + blurred] = SharpenByte(byte, blurred, amount, threshold);
}

static void SharpenRow(uint8_t *__restrict row, const uint8_t *__restrict source, size_t count, const uint8_t *table) {
    for (size_t i = 0; i < count; i++) row[i] = table[source[i] * 256 + row[i]];
}

static void SharpenThroughPixels(const WriteView &to, const ReadView &from, const uint8_t *table) {
    const auto sharpen = [&](uint8_t byte, uint8_t blurred) -> uint32_t { return table[byte * 256 + blurred]; };
    for (int32_t y = 0; y < from.height; y++) {
        for (int32_t x = 0; x < from.width; x++) {
            const uint32_t pixel = DibGetPixel(from, x, y), blurred = DibGetPixel(to, x, y);
            DibSetPixel(to, x, y,
                        PackColor(sharpen(RedOf(pixel), RedOf(blurred)), sharpen(GreenOf(pixel), GreenOf(blurred)),
                                  sharpen(BlueOf(pixel), BlueOf(blurred))));
        }
    }
}

static DibHandle UnsharpMaskKernel(const ReadView &source, FilterContext &context) {
    LockedDib result(
        GaussianBlurKernelRun(source, context.mode, context.FilterGaussianRadius, context.FilterGaussianSigma));
    BlockArray<uint8_t> table(256 * 256);
    if (!result || !table) return nullptr;
    const ReadView &from = source;
    const WriteView &to = result.View();
    FillTable(table.data, context.FilterUnsharpAmount / 10.0, context.FilterUnsharpThreshold / 10.0 * 255.0);
    const uint32_t bits = from.bits;
    if (context.mode == kModeTrueColor || context.mode == kModeGrey) {
        if (bits == to.bits && bits == (context.mode == kModeTrueColor ? 24 : 8)) {
            for (int32_t y = 0; y < from.height; y++)
                SharpenRow(to.Row(y), from.Row(y), static_cast<size_t>(from.width) * bits / 8, table.data);
        } else {
            SharpenThroughPixels(to, from, table.data);
        }
    }
    return result.Release();
}

extern constexpr Filter kUnsharpMask = MakeFilter<kPage>(UnsharpMaskKernel);

} // namespace lmf
