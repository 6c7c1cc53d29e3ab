#include "filters/neighbourhood/convolve5x5.h"

#include <gtest/gtest.h>

#include "support/pictures.h"

namespace lmf::testing {

/// Pixel by pixel, byte by byte; y counts the rows in memory.
static std::vector<uint8_t> SlowConvolve(const DibView &view, const Window5x5 &window) {
    const int bytes = static_cast<int>(view.bits / 8);
    const int64_t end = view.stride * view.height;
    std::vector<uint8_t> result;
    for (int y = 0; y < view.height; y++) {
        for (int x = 0; x < view.width; x++) {
            for (int c = 0; c < bytes; c++) {
                int sum = 0, weightSum = 0;
                for (int tap = 0; tap < 25; tap++) {
                    const int row = y + tap / 5 - 2, column = x + tap % 5 - 2;
                    if (row < 0 || row >= view.height || column < 0 || column >= view.width) continue;
                    const auto rowOffset = static_cast<int16_t>((tap / 5 - 2) * view.stride);
                    const int offset = bytes == 3 ? static_cast<int16_t>(column * 3 + rowOffset) : column + rowOffset;
                    const int64_t place = y * view.stride + offset;
                    if (place < 0 || place + bytes > end) continue;
                    sum += window.weights[tap] * view.bottom[place + c];
                    weightSum += window.weights[tap];
                }
                const int divisor = weightSum != 0 ? weightSum : window.divisor;
                result.push_back(static_cast<uint8_t>(std::clamp(window.bias + std::max(sum, 0) / divisor, 0, 255)));
            }
        }
    }
    return result;
}

static std::vector<uint8_t> BytesOf(const DibView &view) {
    std::vector<uint8_t> bytes;
    for (int32_t y = 0; y < view.height; y++)
        bytes.insert(bytes.end(), view.MemoryRow(y), view.MemoryRow(y) + view.width * static_cast<int>(view.bits / 8));
    return bytes;
}

static constexpr Window5x5 kWindows[] = {
    {{1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1}, 25, 0},
    {{0, 0, 0, 0, 0, 0, -1, -1, -1, 0, 0, -1, 9, -1, 0, 0, -1, -1, -1, 0, 0, 0, 0, 0, 0}, 5, 0},
    {{0, 0, 2, 0, 0, 0, 0, 0, 0, 0, -3, 0, 0, 0, 4, 0, 0, 0, 0, 0, 0, 0, 0, -3, 0}, 7, 20},
    {{0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, -2, 0, 0, 0, 0, 0, 1, 0, 0, 0, 0, 0, 0}, 3, 130}};

TEST(Convolve5x5, AgreesWithTheSlowForm) {
    // From 3640 pixels of width on, 16-bit offsets wrap; from 5462 those of a row alone do.
    static constexpr int32_t kSizes[][2] = {{1, 1},   {1, 9},    {4, 4},     {5, 5},     {9, 2},     {64, 40},
                                            {200, 3}, {700, 11}, {3641, 13}, {4000, 16}, {5500, 12}, {11000, 9}};
    uint32_t seed = 1;
    for (ImageMode mode : {kModeTrueColor, kModeGrey}) {
        for (const auto &size : kSizes) {
            DibOwner picture = RandomPicture(size[0], size[1], mode, seed++);
            DibLock from(picture.handle);
            for (const Window5x5 &window : kWindows) {
                DibOwner result(Convolve5x5(picture.handle, window));
                DibLock to(result.handle);
                ASSERT_TRUE(to);
                EXPECT_EQ(BytesOf(to.view), SlowConvolve(from.view, window))
                    << size[0] << 'x' << size[1] << " mode " << mode << " window " << &window - kWindows;
            }
        }
    }
}

TEST(Convolve5x5, WideGreyRowsWrapTheirOffsets) {
    DibOwner picture = RandomPicture(17000, 12, kModeGrey, 5);
    DibLock from(picture.handle);
    DibOwner result(Convolve5x5(picture.handle, kWindows[0]));
    EXPECT_EQ(BytesOf(DibLock(result.handle).view), SlowConvolve(from.view, kWindows[0]));
}

TEST(Average, DividesByThePixelsUnderTheWindow) {
    DibOwner picture = MakePicture(3, 3, 8, {10, 20, 30, 40, 50, 60, 70, 80, 99});
    EXPECT_EQ(PixelsOf(RunKernel("Average", picture.handle).handle),
              (std::vector<uint32_t>{30, 35, 40, 45, 51, 56, 60, 66, 72}));
    FilterContext context = MakeContext(kModeGrey);
    context.FilterAverageWide = 1;
    EXPECT_EQ(PixelsOf(RunKernel("Average", picture.handle, &context).handle), std::vector<uint32_t>(9, 51));
}

} // namespace lmf::testing
