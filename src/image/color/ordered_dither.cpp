#include "common/multiversion.h"
#include "image/color/dither.h"
#include "image/core/pixel_pass.h"
#include "image/core/rows.h"

namespace lmf {

namespace {

/// Thresholds in 64 steps, at [row][column].
constexpr uint8_t kMatrix[8][8] = {
    {0, 32, 8, 40, 2, 34, 10, 42},    {48, 16, 56, 24, 50, 18, 58, 26}, {12, 44, 4, 36, 14, 46, 6, 38},
    {60, 28, 52, 20, 62, 30, 54, 22}, {3, 35, 11, 43, 1, 33, 9, 41},    {51, 19, 59, 27, 49, 17, 57, 25},
    {15, 47, 7, 39, 13, 45, 5, 37},   {63, 31, 55, 23, 61, 29, 53, 21},
};

/// The eight rows of thresholds, 0 to 252, repeated over a width rounded up to 8.
struct ThresholdRows {
    int64_t width;
    BlockArray<uint8_t> thresholds;

    ThresholdRows(int32_t pictureWidth, bool transposed)
        : width((static_cast<int64_t>(pictureWidth) + 7) / 8 * 8), thresholds(static_cast<uint64_t>(width) * 8) {
        if (!thresholds) return;
        for (int64_t i = 0; i < width * 8; i++) {
            const int64_t row = i / width, column = i % width & 7;
            thresholds[i] = static_cast<uint8_t>(4 * (transposed ? kMatrix[column][row] : kMatrix[row][column]));
        }
    }
    /// For row y counted from the top.
    const uint8_t *Row(int32_t y) const { return thresholds.data + (y & 7) * width; }
};

/// Turns greys into flags.
LMF_MULTIVERSION
void FlagAboveThresholds(uint8_t *__restrict grey, const uint8_t *__restrict thresholds, int32_t width) {
    for (int32_t x = 0; x < width; x++) grey[x] = grey[x] > thresholds[x];
}

LMF_MULTIVERSION
void EightRow(uint8_t *__restrict indexes, const uint8_t *__restrict bgr, const uint8_t *__restrict thresholds,
              int32_t width) {
    for (int32_t x = 0; x < width; x++) {
        const uint8_t threshold = thresholds[x];
        const uint8_t red = bgr[x * 3 + 2] > threshold, green = bgr[x * 3 + 1] > threshold;
        const uint8_t blue = bgr[x * 3] > threshold;
        indexes[x] = static_cast<uint8_t>(red | green << 1 | blue << 2);
    }
}

/// Moves a channel a quarter of the way to the threshold, which never leaves the byte.
int16_t TowardsThreshold(uint8_t channel, uint8_t threshold) {
    return static_cast<int16_t>(channel - ((channel - threshold) >> 2));
}

LMF_MULTIVERSION
void Rgb332Row(uint8_t *__restrict indexes, const uint8_t *__restrict bgr, const uint8_t *__restrict thresholds,
               int32_t width) {
    for (int32_t x = 0; x < width; x++) {
        const int16_t red = TowardsThreshold(bgr[x * 3 + 2], thresholds[x]);
        const int16_t green = TowardsThreshold(bgr[x * 3 + 1], thresholds[x]);
        const int16_t blue = TowardsThreshold(bgr[x * 3], thresholds[x]);
        indexes[x] = static_cast<uint8_t>((red & 224) | (green >> 3 & 28) | blue >> 6);
    }
}

/// New picture of `bits` with this palette. makeRow(to, bgr, thresholds, scratch, width) writes a row of it; the
/// scratch holds a byte a pixel and zeros behind.
template <typename MakeRow>
DibHandle DitherRows(const ReadView &picture, const Palette768 &palette, uint32_t bits, bool transposed,
                     MakeRow makeRow) {
    PixelPass pass(picture, bits, &palette);
    if (!pass) return nullptr;
    const int32_t width = pass.from.width, height = pass.from.height;
    RgbRows rows(pass.from);
    const ThresholdRows thresholds(width, transposed);
    BlockArray<uint8_t> scratch(static_cast<uint64_t>(width) + 7);
    if (!rows || !thresholds.thresholds || !scratch) return nullptr;
    for (int32_t y = 0; y < height; y++)
        makeRow(pass.to.MemoryRow(y), rows.MemoryRow(y), thresholds.Row(height - 1 - y), scratch.data, width);
    return pass.Finish();
}

} // namespace

DibHandle BayerMono(const ReadView &picture) {
    return DitherRows(picture, kBlackAndWhite, 1, false,
                      [](uint8_t *to, const uint8_t *bgr, const uint8_t *thresholds, uint8_t *flags, int32_t width) {
                          GreyRow(flags, bgr, width);
                          FlagAboveThresholds(flags, thresholds, width);
                          PackMonoRow(to, flags, width);
                      });
}

DibHandle BayerEight(const ReadView &picture) {
    static constexpr Palette768 kCorners = {
        {0, 0, 0, 255, 0, 0, 0, 255, 0, 255, 255, 0, 0, 0, 255, 255, 0, 255, 0, 255, 255, 255, 255, 255}};
    return DitherRows(picture, kCorners, 4, false,
                      [](uint8_t *to, const uint8_t *bgr, const uint8_t *thresholds, uint8_t *indexes, int32_t width) {
                          EightRow(indexes, bgr, thresholds, width);
                          PackNibbleRow(to, indexes, width);
                      });
}

namespace {

/// Entry 32 r + 4 g + b has level r of red, g of green and b of blue.
constexpr Palette768 Rgb332Palette() {
    constexpr uint8_t kEighths[] = {0, 36, 72, 108, 144, 180, 216, 255};
    constexpr uint8_t kQuarters[] = {0, 85, 170, 255};
    Palette768 palette{};
    for (int32_t i = 0; i < 256; i++) {
        palette.rgb[i * 3] = kEighths[i >> 5];
        palette.rgb[i * 3 + 1] = kEighths[i >> 2 & 7];
        palette.rgb[i * 3 + 2] = kQuarters[i & 3];
    }
    return palette;
}

} // namespace

DibHandle BayerRgb332(const ReadView &picture) {
    static constexpr Palette768 kPalette = Rgb332Palette();
    return DitherRows(picture, kPalette, 8, true,
                      [](uint8_t *to, const uint8_t *bgr, const uint8_t *thresholds, uint8_t *, int32_t width) {
                          Rgb332Row(to, bgr, thresholds, width);
                      });
}

} // namespace lmf
