#include "filters/neighbourhood/convolve5x5.h"

namespace lmf {

/// Weighted sums of one pixel. Like all sums here they are 16 bits wide and may wrap.
struct TapSums {
    int16_t channels[3] = {};
    int16_t weight = 0;

    void Add(int16_t tapWeight, int32_t a, int32_t b, int32_t c) {
        channels[0] = static_cast<int16_t>(channels[0] + tapWeight * a);
        channels[1] = static_cast<int16_t>(channels[1] + tapWeight * b);
        channels[2] = static_cast<int16_t>(channels[2] + tapWeight * c);
        weight = static_cast<int16_t>(weight + tapWeight);
    }

    uint8_t Result(const Window5x5 &window, int32_t channel) const {
        const int32_t divisor = weight != 0 ? weight : window.divisor;
        const int32_t sum = std::max<int32_t>(channels[channel], 0);
        return static_cast<uint8_t>(std::clamp(window.bias + sum / divisor, 0, 255));
    }
};

/// Where the tap at column x lies, in bytes from the start of the row that holds the window's centre. 24-bit pictures
/// form the sum in 16 bits as well.
static int32_t TapOffset(const DibView &view, int32_t windowRow, int32_t x) {
    const auto rowOffset = static_cast<int16_t>((windowRow - 2) * view.stride);
    return view.bits == 24 ? static_cast<int16_t>(x * 3 + rowOffset) : x + rowOffset;
}

/// Sums of the window around (x, y), y a row in memory, for 24 and 8 bits.
static TapSums SumTaps(const DibView &view, const Window5x5 &window, int32_t x, int32_t y) {
    const int32_t bytes = static_cast<int32_t>(view.bits) / 8;
    const int64_t end = static_cast<int64_t>(view.stride) * view.height;
    TapSums sums;
    for (int32_t j = 0; j < 5; j++) {
        if (y + j < 2 || y + j - 2 >= view.height) continue;
        for (int32_t i = 0; i < 5; i++) {
            const int32_t column = x + i - 2;
            const int16_t weight = window.weights[j * 5 + i];
            if (weight == 0 || column < 0 || column >= view.width) continue;
            const int64_t place = y * static_cast<int64_t>(view.stride) + TapOffset(view, j, column);
            if (place < 0 || place + bytes > end) continue;
            const uint8_t *tap = view.bottom + place;
            sums.Add(weight, tap[0], bytes == 3 ? tap[1] : 0, bytes == 3 ? tap[2] : 0);
        }
    }
    return sums;
}

static void ConvolveBytes(const DibView &to, const DibView &from, const Window5x5 &window) {
    const int32_t bytes = static_cast<int32_t>(from.bits) / 8;
    for (int32_t y = 0; y < from.height; y++) {
        for (int32_t x = 0; x < from.width; x++) {
            const TapSums sums = SumTaps(from, window, x, y);
            for (int32_t c = 0; c < bytes; c++) to.MemoryRow(y)[x * bytes + c] = sums.Result(window, c);
        }
    }
}

/// Any depth; the offsets of such pictures are no byte offsets and do not wrap.
static void ConvolveThroughPixels(void *to, const DibLock &from, const Window5x5 &window) {
    const DibView &view = from.view;
    for (int32_t y = 0; y < view.height; y++) {
        for (int32_t x = 0; x < view.width; x++) {
            TapSums sums;
            for (int32_t tap = 0; tap < 25; tap++) {
                const int32_t column = x + tap % 5 - 2;
                const int32_t row = y - tap / 5 + 2;
                const int16_t weight = window.weights[tap];
                if (weight == 0 || column < 0 || column >= view.width || row < 0 || row >= view.height) continue;
                const uint32_t pixel = DibGetPixel(from.image, column, row);
                sums.Add(weight, RedOf(pixel), GreenOf(pixel), BlueOf(pixel));
            }
            const bool indexed = view.bits <= 8;
            DibSetPixel(to, x, y,
                        indexed ? sums.Result(window, 0)
                                : PackColor(sums.Result(window, 0), sums.Result(window, 1), sums.Result(window, 2)));
        }
    }
}

DibHandle Convolve5x5(DibHandle source, const Window5x5 &window) {
    DibLock from(source);
    if (!from) return nullptr;
    Palette768 palette;
    DibReadPalette(from.image, &palette);
    DibOwner result(DibCreate(from.view.width, from.view.height, &palette, from.view.bits));
    DibLock to(result.handle);
    if (!to) return nullptr;
    if (from.view.bits == 24 || from.view.bits == 8)
        ConvolveBytes(to.view, from.view, window);
    else
        ConvolveThroughPixels(to.image, from, window);
    to.Unlock();
    return result.Release();
}

} // namespace lmf
