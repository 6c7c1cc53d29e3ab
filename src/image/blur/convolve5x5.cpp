#include "image/blur/convolve5x5.h"

#include <cstring>

#include "common/multiversion.h"
#include "image/core/byte_pass.h"

namespace lmf {

namespace {

/// Weighted sums of one pixel. Like all sums here they are 16 bits wide.
struct TapSums {
    int16_t channels[3] = {};
    int16_t weight = 0;

    /// Adds a tap of `bytes` channels, 1 or 3; of one all three sums are alike.
    void Add(int16_t tapWeight, const uint8_t *tap, int32_t bytes) {
        for (int32_t c = 0; c < 3; c++)
            channels[c] = static_cast<int16_t>(channels[c] + tapWeight * tap[bytes == 3 ? c : 0]);
        weight = static_cast<int16_t>(weight + tapWeight);
    }
};

/// A window on its way over the rows of a picture.
struct Walk {
    const ReadView &from;
    const Window5x5 &window;
    bool wraps; ///< are byte offsets numbers of 16 bits?

    int32_t Bytes() const { return static_cast<int32_t>(from.bits / 8); }
    int64_t End() const { return static_cast<int64_t>(from.stride) * from.height; }

    /// Where the tap at column x of a row of the window lies, in bytes from the start of the row that holds the
    /// window's centre. 24-bit pictures form the sum in 16 bits as well.
    int64_t TapOffset(int32_t windowRow, int32_t x) const {
        const int64_t rowOffset = (windowRow - 2) * from.stride, place = static_cast<int64_t>(x) * Bytes();
        if (!wraps) return place + rowOffset;
        const auto wrapped = static_cast<int16_t>(rowOffset);
        return from.bits == 24 ? static_cast<int16_t>(place + wrapped) : place + wrapped;
    }
};

/// The slow form, for the pixels first <= x < last of row y in memory.
void ConvolvePixels(const WriteView &to, const Walk &walk, int32_t y, int32_t first, int32_t last) {
    const ReadView &from = walk.from;
    const int32_t bytes = walk.Bytes();
    const int64_t base = y * static_cast<int64_t>(from.stride);
    for (int32_t x = first; x < last; x++) {
        TapSums sums;
        for (int32_t j = 0; j < 5; j++) {
            if (y + j < 2 || y + j - 2 >= from.height) continue;
            for (int32_t i = 0; i < 5; i++) {
                const int32_t column = x + i - 2;
                const int16_t weight = walk.window.weights[j * 5 + i];
                if (weight == 0 || column < 0 || column >= from.width) continue;
                const int64_t place = base + walk.TapOffset(j, column);
                if (place >= 0 && place + bytes <= walk.End()) sums.Add(weight, from.bottom + place, bytes);
            }
        }
        const int32_t divisor = sums.weight != 0 ? sums.weight : walk.window.divisor;
        for (int32_t c = 0; c < bytes; c++)
            to.MemoryRow(y)[static_cast<int64_t>(x) * bytes + c] =
                ClampByte(walk.window.bias + std::max<int32_t>(sums.channels[c], 0) / divisor);
    }
}

/// The bytes that row `windowRow` of the window meets while its centre moves along memory row y: a row of the picture,
/// or a line put together in `line` where offsets wrap. Null if some place lies outside the pixel rows.
const uint8_t *TapLine(const Walk &walk, int32_t windowRow, int32_t y, uint8_t *line) {
    const ReadView &from = walk.from;
    const int32_t bytes = walk.Bytes();
    const int64_t base = y * static_cast<int64_t>(from.stride);
    for (int32_t x = 0; x < from.width;) {
        const int64_t offset = walk.TapOffset(windowRow, x);
        // As far as the offset does not wrap.
        const int64_t run =
            walk.wraps && bytes == 3 ? std::min<int64_t>(from.width - x, (INT16_MAX - offset) / 3 + 1) : from.width;
        const int64_t place = base + offset, length = run * bytes;
        if (place < 0 || place + length > walk.End()) return nullptr;
        if (run == from.width) return from.bottom + place;
        std::memcpy(line + static_cast<int64_t>(x) * bytes, from.bottom + place, static_cast<size_t>(length));
        x += static_cast<int32_t>(run);
    }
    return line;
}

LMF_MULTIVERSION
void AddTap(int16_t *__restrict sums, const uint8_t *__restrict tap, int16_t weight, int32_t count) {
    for (int32_t i = 0; i < count; i++) sums[i] = static_cast<int16_t>(sums[i] + weight * tap[i]);
}

/// The quotients of two integers below 2^15 truncate alike in single precision.
LMF_MULTIVERSION
void DivideSums(uint8_t *__restrict to, const int16_t *__restrict sums, float divisor, int32_t bias, int32_t count) {
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
int32_t CollectTaps(const Walk &walk, int32_t y, uint8_t *lines, WindowTap *taps) {
    const int64_t lineBytes = static_cast<int64_t>(walk.from.width) * walk.Bytes();
    int32_t count = 0;
    for (int32_t j = 0; j < 5; j++) {
        const uint8_t *line = nullptr;
        for (int32_t i = 0; i < 5; i++) {
            const int16_t weight = walk.window.weights[j * 5 + i];
            if (weight == 0) continue;
            if (y + j < 2 || y + j - 2 >= walk.from.height) return 0;
            if (line == nullptr) line = TapLine(walk, j, y, lines + lineBytes * j);
            if (line == nullptr) return 0;
            taps[count++] = {line, i, weight};
        }
    }
    return count;
}

/// Away from the edges all pixels share their weight sum, and whole rows are summed at once.
bool ConvolveRows(const WriteView &to, const Walk &walk) {
    static constexpr int32_t kPart = 2048;
    const int32_t bytes = walk.Bytes(), width = walk.from.width;
    const int64_t lineBytes = static_cast<int64_t>(width) * bytes;
    BlockArray<uint8_t> lines(static_cast<uint64_t>(lineBytes) * 5);
    if (!lines) return false;
    int32_t weightSum = 0;
    for (int16_t weight : walk.window.weights) weightSum += weight;
    const auto divisor = static_cast<float>(weightSum != 0 ? weightSum : walk.window.divisor);

    alignas(64) int16_t sums[kPart];
    WindowTap taps[25];
    for (int32_t y = 0; y < walk.from.height; y++) {
        const int32_t tapCount = width > 4 ? CollectTaps(walk, y, lines.data, taps) : 0;
        if (tapCount == 0) {
            ConvolvePixels(to, walk, y, 0, width);
            continue;
        }
        ConvolvePixels(to, walk, y, 0, 2);
        for (int64_t begin = 2 * bytes; begin < lineBytes - 2 * bytes; begin += kPart) {
            const auto size = static_cast<int32_t>(std::min<int64_t>(lineBytes - 2 * bytes - begin, kPart));
            std::fill(sums, sums + size, int16_t{0});
            for (int32_t i = 0; i < tapCount; i++)
                AddTap(sums, taps[i].line + begin + (taps[i].column - 2) * bytes, taps[i].weight, size);
            DivideSums(to.MemoryRow(y) + begin, sums, divisor, walk.window.bias, size);
        }
        ConvolvePixels(to, walk, y, width - 2, width);
    }
    return true;
}

} // namespace

DibHandle Convolve5x5(const ReadView &source, const Window5x5 &window, ByteOffsets offsets) {
    BytePass pass(source);
    if (!pass) return nullptr;
    const bool wraps = offsets == ByteOffsets::Of16Bits && (source.bits == 24 || source.bits == 8);
    return ConvolveRows(pass.To(), {pass.From(), window, wraps}) ? pass.Finish() : nullptr;
}

} // namespace lmf
