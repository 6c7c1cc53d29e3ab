#include "image/blur/convolve5x5.h"

#include "support/pictures.h"

namespace lmf::testing {

namespace {

/// One byte of a result; y counts the rows in memory.
uint8_t SlowByte(const ReadView &view, const Window5x5 &window, ByteOffsets offsets, int32_t x, int32_t y, int32_t c) {
    const int bytes = static_cast<int>(view.bits / 8);
    int sum = 0, weightSum = 0;
    for (int tap = 0; tap < 25; tap++) {
        const int row = y + tap / 5 - 2, column = x + tap % 5 - 2;
        if (row < 0 || row >= view.height || column < 0 || column >= view.width) continue;
        const ptrdiff_t rowOffset = (tap / 5 - 2) * view.stride;
        int64_t offset = column * bytes + rowOffset;
        const bool wraps = offsets == ByteOffsets::Of16Bits;
        if (wraps && bytes == 1) offset = column + static_cast<int16_t>(rowOffset);
        if (wraps && bytes == 3) offset = static_cast<int16_t>(offset);
        const int64_t place = y * view.stride + offset;
        if (place < 0 || place + bytes > view.stride * view.height) continue;
        sum += window.weights[tap] * view.bottom[place + c];
        weightSum += window.weights[tap];
    }
    const int divisor = weightSum != 0 ? weightSum : window.divisor;
    return static_cast<uint8_t>(std::clamp(window.bias + std::max(sum, 0) / divisor, 0, 255));
}

constexpr Window5x5 kWindows[] = {
    {{1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}, 25, 0},
    {{0, 0, 0, 0, 0, 0, -1, -1, -1, 0, 0, -1, 9, -1, 0, 0, -1, -1, -1, 0, 0, 0, 0, 0, 0}, 5, 0},
    {{0, 0, 2, 0, 0, 0, 0, 0, 0, 0, -3, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0, -3, 0}, 7, 20},
    {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, -2, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0}, 3, 130}};

} // namespace

TEST(Convolve5x5, AgreesWithTheSlowForm) {
    // At 24 bits offsets of 16 bits wrap from 3640 pixels of width on, from 5462 on those of a row alone; grey ones
    // from 16384 on.
    static constexpr int32_t kSizes[][2] = {{1, 1},     {1, 9},     {4, 4},    {5, 5},     {9, 2},
                                            {64, 40},   {200, 3},   {700, 11}, {3641, 13}, {4000, 16},
                                            {5500, 12}, {11000, 9}, {17000, 7}};
    uint32_t seed = 1;
    for (uint32_t bits : {24u, 8u, 32u}) {
        for (const auto &[width, height] : kSizes) {
            const LockedDib picture = RandomDepth(width, height, bits, seed++);
            const ReadView from = picture;
            for (int32_t i = 0; i < 8; i++) {
                const Window5x5 &window = kWindows[i / 2];
                const ByteOffsets offsets = i % 2 == 0 ? ByteOffsets::Of16Bits : ByteOffsets::Whole;
                const LockedDib result(Convolve5x5(picture, window, offsets));
                ExpectPixels(result, [&](int32_t x, int32_t y) {
                    const auto byte = [&](int32_t c) {
                        return SlowByte(from, window, offsets, x, from.height - 1 - y, c);
                    };
                    return bits == 8 ? byte(0) : PackColor(byte(2), byte(1), byte(0));
                });
                ASSERT_FALSE(::testing::Test::HasFailure()) << width << 'x' << height << " bits " << bits;
            }
        }
    }
}

TEST(Average, DividesByThePixelsUnderTheWindow) {
    const LockedDib picture = MakePicture(3, 3, 8, {10, 20, 30, 40, 50, 60, 70, 80, 99});
    EXPECT_EQ(PixelsOf(RunKernel("Average", picture)), (Pixels{30, 35, 40, 45, 51, 56, 60, 66, 72}));
    EXPECT_EQ(PixelsOf(RunKernel("Average", picture, {{&P::FilterAverageWide, 1}})), Pixels(9, 51));
}

} // namespace lmf::testing
