// Unsharp Mask: drives each value away from the blurred picture where the two differ enough. "Amount:" says how far and
// "Threshold:" from which difference on. The blur is that of the Gaussian Blur page; the page's own "Depth:" and
// "Radius:" are kept but do not reach the picture.
#include <cmath>

#include "engine/filter.h"
#include "image/blur/gaussian.h"
#include "image/core/rows.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    HundredthsSlider(1000, "Amount:", &P::FilterUnsharpAmount, {0, 50})
        .In(Unit::Times, 10)
        .Help("How far each value is driven away from the blurred picture, in multiples of their difference."),
    HundredthsSlider(1001, "Threshold:", &P::FilterUnsharpThreshold, {1, 15})
        .In(Unit::None, 10)
        .Help("How much a value must differ from the blurred picture to change; higher leaves more as it is."),
    HundredthsSlider(1002, "Depth:", &P::FilterUnsharpSigma, {10, 100})
        .In(Unit::Pixels, 10)
        .Help("Is kept but changes nothing: the blur has the depth of Gaussian Blur."),
    HundredthsSlider(1003, "Radius:", &P::FilterUnsharpRadius, {10, 990})
        .In(Unit::Pixels, 10)
        .Help("Is kept but changes nothing: the blur has the radius of Gaussian Blur."),
};

uint8_t SharpenByte(int32_t byte, int32_t blurred, double amount, double threshold) {
    const double difference = byte - blurred;
    const double value = std::fabs(2.0 * difference) >= threshold ? byte + difference * amount : byte;
    return value < 0.0 ? 0 : value > 255.0 ? 255 : static_cast<uint8_t>(value + 0.5);
}

/// The result for every byte (times 256) and every blurred byte: no more than a few rows' worth of arithmetic.
void FillTable(uint8_t *table, double amount, double threshold) {
    for (int32_t byte = 0; byte < 256; byte++)
        for (int32_t blurred = 0; blurred < 256; blurred++)
            table[byte * 256 + blurred] = SharpenByte(byte, blurred, amount, threshold);
}

void SharpenRow(uint8_t *__restrict row, const uint8_t *__restrict source, size_t count, const uint8_t *table) {
    for (size_t i = 0; i < count; i++) row[i] = table[source[i] * 256 + row[i]];
}

DibHandle UnsharpMaskKernel(const ReadView &source, FilterContext &context) {
    LockedDib result(
        GaussianBlurKernelRun(source, context.mode, context.FilterGaussianRadius, context.FilterGaussianSigma));
    const auto rowBytes = static_cast<size_t>(source.width) * static_cast<size_t>(ByteChannels(source.bits));
    BlockArray<uint8_t> table(256 * 256), buffer(2 * rowBytes);
    if (!result || !table || !buffer) return nullptr;
    FillTable(table.data, context.FilterUnsharpAmount / 10.0, context.FilterUnsharpThreshold / 10.0 * 255.0);
    uint8_t *const sharp = buffer.data, *const values = buffer.data + rowBytes;
    for (int32_t y = 0; y < source.height; y++) {
        ReadByteRow(values, source, y);
        ReadByteRow(sharp, result.View(), y);
        SharpenRow(sharp, values, rowBytes, table.data);
        WriteByteRow(result.View(), y, sharp);
    }
    return result.Release();
}

} // namespace

extern constexpr Filter kUnsharpMask = MakeFilter<kPage>(UnsharpMaskKernel);

} // namespace lmf
