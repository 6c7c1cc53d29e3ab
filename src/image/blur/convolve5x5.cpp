#include "image/blur/convolve5x5.h"

#include <cstring>

#include "common/multiversion.h"
#include "image/core/pixel_pass.h"

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
        return ClampByte(window.bias + sum / divisor);
    }
};

/// Where the tap at column x lies, in bytes from the start of the row that holds the window's centre. 24-bit pictures
/// form the sum in 16 bits as well.
static int32_t TapOffset(const ReadView &view, int32_t windowRow, int32_t x) {
    const auto rowOffset = static_cast<int16_t>((windowRow - 2) * view.stride);
    return view.bits == 24 ? static_cast<int16_t>(static_cast<uint32_t>(x) * 3 + static_cast<uint32_t>(rowOffset))
                           : x + rowOffset;
}

/// Sums of the window around (x, y), y a row in memory, for 24 and 8 bits.
static TapSums SumTaps(const ReadView &view, const Window5x5 &window, int32_t x, int32_t y) {
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

/// The slow form, for the pixels first <= x < last of a row in memory.
static void ConvolvePixels(const WriteView &to, const ReadView &from, const Window5x5 &window, int32_t y, int32_t first,
                           int32_t last) {
    const int32_t bytes = static_cast<int32_t>(from.bits) / 8;
    for (int32_t x = first; x < last; x++) {
        const TapSums sums = SumTaps(from, window, x, y);
        for (int32_t c = 0; c < bytes; c++)
            to.MemoryRow(y)[static_cast<int64_t>(x) * bytes + c] = sums.Result(window, c);
    }
}

/// The bytes that row `windowRow` of the window meets while its centre moves along memory row y: a row of the picture,
/// or a line put together in `line` where offsets wrap. Null if some place lies outside the pixel rows.
static const uint8_t *TapLine(const ReadView &view, int32_t windowRow, int32_t y, uint8_t *line) {
    const int32_t bytes = static_cast<int32_t>(view.bits) / 8;
    const int64_t base = y * static_cast<int64_t>(view.stride);
    const int64_t end = static_cast<int64_t>(view.stride) * view.height;
    for (int32_t x = 0; x < view.width;) {
        const int32_t offset = TapOffset(view, windowRow, x);
        const int32_t run = bytes == 1 ? view.width : std::min(view.width - x, (INT16_MAX - offset) / bytes + 1);
        const int64_t place = base + offset, length = static_cast<int64_t>(run) * bytes;
        if (place < 0 || place + length > end) return nullptr;
        if (run == view.width) return view.bottom + place;
        std::memcpy(line + static_cast<int64_t>(x) * bytes, view.bottom + place, static_cast<size_t>(length));
        x += run;
    }
    return line;
}

LMF_MULTIVERSION
static void AddTap(int16_t *__restrict sums, const uint8_t *__restrict tap, int16_t weight, int32_t count) {
    for (int32_t i = 0; i < count; i++) sums[i] = static_cast<int16_t>(sums[i] + weight * tap[i]);
}

/// The quotients of two integers below 2^15 truncate alike in single precision.
LMF_MULTIVERSION
static void DivideSums(uint8_t *__restrict to, const int16_t *__restrict sums, float divisor, int32_t bias,
                       int32_t count) {
    for (int32_t i = 0; i < count; i++) {
        const auto sum = static_cast<float>(std::max<int32_t>(sums[i], 0));
        to[i] = ClampByte(bias + static_cast<int32_t>(sum / divisor));
    }
}

/// A tap of the window with its line of bytes.
struct WindowTap {
    const uint8_t *line;
    int32_t column; ///< 0 to 4
    int16_t weight;
};

/// The lines of all taps with a weight, as the window's centre moves along memory row y.
/// @return their number; 0 where a tap leaves the picture, so that each pixel has a weight sum of its own.
static int32_t CollectTaps(const ReadView &view, const Window5x5 &window, int32_t y, BlockArray<uint8_t> *lines,
                           WindowTap *taps) {
    const int64_t lineBytes = static_cast<int64_t>(view.width) * view.bits / 8;
    int32_t count = 0;
    for (int32_t j = 0; j < 5; j++) {
        const uint8_t *line = nullptr;
        for (int32_t i = 0; i < 5; i++) {
            const int16_t weight = window.weights[j * 5 + i];
            if (weight == 0) continue;
            if (y + j < 2 || y + j - 2 >= view.height) return 0;
            if (line == nullptr) line = TapLine(view, j, y, lines->data + lineBytes * j);
            if (line == nullptr) return 0;
            taps[count++] = {line, i, weight};
        }
    }
    return count;
}

/// 24 and 8 bits. Away from the edges all pixels share their weight sum, and whole rows are summed at once.
static bool ConvolveBytes(const WriteView &to, const ReadView &from, const Window5x5 &window) {
    static constexpr int32_t kPart = 2048;
    const int32_t bytes = static_cast<int32_t>(from.bits) / 8;
    const int64_t lineBytes = static_cast<int64_t>(from.width) * bytes;
    BlockArray<uint8_t> lines(static_cast<uint64_t>(lineBytes) * 5);
    if (!lines) return false;
    TapSums all;
    for (int16_t weight : window.weights) all.Add(weight, 0, 0, 0);
    const auto divisor = static_cast<float>(all.weight != 0 ? all.weight : window.divisor);

    alignas(64) int16_t sums[kPart];
    WindowTap taps[25];
    for (int32_t y = 0; y < from.height; y++) {
        const int32_t tapCount = from.width > 4 ? CollectTaps(from, window, y, &lines, taps) : 0;
        if (tapCount == 0) {
            ConvolvePixels(to, from, window, y, 0, from.width);
            continue;
        }
        ConvolvePixels(to, from, window, y, 0, 2);
        for (int64_t begin = 2 * bytes; begin < lineBytes - 2 * bytes; begin += kPart) {
            const auto size = static_cast<int32_t>(std::min<int64_t>(lineBytes - 2 * bytes - begin, kPart));
            std::fill(sums, sums + size, int16_t{0});
            for (int32_t i = 0; i < tapCount; i++)
                AddTap(sums, taps[i].line + begin + (taps[i].column - 2) * bytes, taps[i].weight, size);
            DivideSums(to.MemoryRow(y) + begin, sums, divisor, window.bias, size);
        }
        ConvolvePixels(to, from, window, y, from.width - 2, from.width);
    }
    return true;
}

/// Any depth; the offsets of such pictures are no byte offsets and do not wrap.
static void ConvolveThroughPixels(const WriteView &to, const ReadView &from, const Window5x5 &window) {
    const ReadView &view = from;
    for (int32_t y = 0; y < view.height; y++) {
        for (int32_t x = 0; x < view.width; x++) {
            TapSums sums;
            for (int32_t tap = 0; tap < 25; tap++) {
                const int32_t column = x + tap % 5 - 2;
                const int32_t row = y - tap / 5 + 2;
                const int16_t weight = window.weights[tap];
                if (weight == 0 || column < 0 || column >= view.width || row < 0 || row >= view.height) continue;
                const uint32_t pixel = DibGetPixel(from, column, row);
                sums.Add(weight, RedOf(pixel), GreenOf(pixel), BlueOf(pixel));
            }
            const bool indexed = view.bits <= 8;
            DibSetPixel(to, x, y,
                        indexed ? sums.Result(window, 0)
                                : PackColor(sums.Result(window, 0), sums.Result(window, 1), sums.Result(window, 2)));
        }
    }
}

DibHandle Convolve5x5(const ReadView &source, const Window5x5 &window) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const uint32_t bits = pass.from.bits;
    if (bits != 24 && bits != 8)
        ConvolveThroughPixels(pass.to, pass.from, window);
    else if (!ConvolveBytes(pass.to, pass.from, window))
        return nullptr;
    return pass.Finish();
}

} // namespace lmf
