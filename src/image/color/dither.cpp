#include "image/color/dither.h"

#include <cstring>

#include "common/multiversion.h"
#include "image/color/nearest_color.h"
#include "image/color/palette.h"
#include "image/core/dib_ops.h"
#include "image/core/pixel_pass.h"
#include "image/core/rows.h"

namespace lmf {

namespace {

/// The share of a pixel's error that the next pixel of the row gets is at most this far from 0, in black and white.
constexpr int32_t kReach = 112;

/// What becomes of a grey plus the share from its left neighbour, at [kReach + sum]: the sums of 0 to 255 and, like
/// the nearest of those, the ones outside.
struct MonoTables {
    int32_t right[kReach + 256 + kReach]; ///< 7 units of the error, for the pixel to the right
    int8_t unit[kReach + 256 + kReach];   ///< a sixteenth of the error
    uint8_t bit[kReach + 256 + kReach];

    /// `darkest` and `brightest` are the picture's extreme greys, 0 to 255.
    MonoTables(const MonoTone &tone, int32_t darkest, int32_t brightest) {
        const int32_t middle = (brightest + darkest) / 2;
        const double step = 256.0 / (256.0 - 2.0 * tone.contrast);
        double stretched = static_cast<double>(tone.brightness) - tone.contrast;
        uint8_t tones[256];
        for (uint8_t &entry : tones) {
            entry = stretched > 254 ? 254 : stretched < 1 ? 1 : static_cast<uint8_t>(stretched);
            stretched = stretched + step;
        }
        for (int32_t i = 0; i < kReach + 256 + kReach; i++) {
            const int32_t grey = tones[ClampByte(i - kReach)];
            bit[i] = grey > middle;
            unit[i] = static_cast<int8_t>((grey - (grey > middle ? brightest : darkest)) >> 4);
            right[i] = 7 * unit[i];
        }
    }
};

/// The darkest and the brightest grey.
struct GreyRange {
    uint8_t darkest = 255, brightest = 0;
};

LMF_MULTIVERSION
void ExtendRange(const uint8_t *grey, int32_t width, GreyRange *range) {
    uint8_t darkest = range->darkest, brightest = range->brightest;
    for (int32_t x = 0; x < width; x++) {
        darkest = std::min(darkest, grey[x]);
        brightest = std::max(brightest, grey[x]);
    }
    *range = {darkest, brightest};
}

/// Turns a row of greys into bits and error units. Only the share to the right is handed on here.
void DiffuseMonoRow(const uint8_t *grey, int32_t width, const MonoTables &tables, uint8_t *flags, int8_t *units) {
    int32_t share = kReach;
    for (int32_t x = 0; x < width; x++) {
        const int32_t place = grey[x] + share;
        flags[x] = tables.bit[place];
        units[x] = tables.unit[place];
        share = kReach + tables.right[place];
    }
}

/// Adds what the row before sends into a row, with a limit after each share: 1 unit from the left, 5 from below, 3 from
/// the right. `units` is readable one element before and after the row.
LMF_MULTIVERSION
void SpreadMonoRow(uint8_t *__restrict grey, const int8_t *__restrict units, int32_t width) {
    for (int32_t x = 0; x < width; x++) {
        int16_t sum = static_cast<int16_t>(grey[x] + units[x - 1]);
        sum = std::clamp<int16_t>(sum, 0, 255);
        sum = static_cast<int16_t>(sum + 5 * units[x]);
        sum = std::clamp<int16_t>(sum, 0, 255);
        sum = static_cast<int16_t>(sum + 3 * units[x + 1]);
        grey[x] = static_cast<uint8_t>(std::clamp<int16_t>(sum, 0, 255));
    }
}

DibHandle DiffuseToMono(const ReadView &from, const Palette768 &palette, const MonoTone &tone) {
    const int32_t width = from.width, height = from.height;
    const auto rowLength = static_cast<int64_t>(width);
    LockedDib result(DibCreate(width, height, &palette, 1));
    const WriteView &to = result.View();
    RgbRows rows(from);
    BlockArray<uint8_t> greys(static_cast<uint64_t>(rowLength * height)), flags(static_cast<uint64_t>(rowLength) + 7);
    BlockArray<int8_t> padded(static_cast<uint64_t>(rowLength) + 2);
    if (!result || !rows || !greys || !flags || !padded) return nullptr;

    GreyRange range;
    for (int32_t y = 0; y < height; y++) {
        GreyRow(greys.data + y * rowLength, rows.MemoryRow(y), width);
        ExtendRange(greys.data + y * rowLength, width, &range);
    }
    const MonoTables tables(tone, range.darkest, range.brightest);
    int8_t *units = padded.data + 1;
    for (int32_t y = 0; y < height; y++) {
        uint8_t *grey = greys.data + y * rowLength;
        const bool last = y == height - 1;
        if (!last && width % 4 == 0) {
            // The first pixel's share to the lower left lands one byte before the next row: without padding between
            // the rows that is the last pixel of its own.
            grey[width - 1] = ClampByte(grey[width - 1] + 3 * tables.unit[kReach + grey[0]]);
        }
        DiffuseMonoRow(grey, width, tables, flags.data, units);
        PackMonoRow(to.MemoryRow(y), flags.data, width);
        if (last) break;
        // The second pixel sends nothing to the lower left.
        uint8_t *next = grey + rowLength;
        const uint8_t first = ClampByte(next[0] + 5 * units[0]);
        SpreadMonoRow(next, units, width);
        next[0] = first;
    }
    return result.Release();
}

/// A row's channels plus what the row before sends: 1 sixteenth of the error from the left, 5 from below, 3 from the
/// right, each rounded down on its own. `errors` is readable one pixel before and after the row.
LMF_MULTIVERSION
void CollectColorRow(int16_t *__restrict sums, const uint8_t *__restrict bgr, const int16_t *__restrict errors,
                     int64_t channels) {
    for (int64_t i = 0; i < channels; i++) {
        sums[i] =
            static_cast<int16_t>(bgr[i] + (errors[i - 3] >> 4) + ((errors[i] * 5) >> 4) + ((errors[i + 3] * 3) >> 4));
    }
}

/// Chooses the entries of a row from left to right, handing 7 sixteenths of each error on.
void DiffuseColorRow(const int16_t *sums, int32_t width, NearestFinder *finder, uint8_t *indexes, int16_t *errors) {
    int32_t blueShare = 0, greenShare = 0, redShare = 0;
    for (int32_t x = 0; x < width; x++, sums += 3, errors += 3) {
        const int32_t blue = ClampByte(sums[0] + blueShare);
        const int32_t green = ClampByte(sums[1] + greenShare);
        const int32_t red = ClampByte(sums[2] + redShare);
        const uint32_t index = finder->Find(red, green, blue);
        const uint8_t *entry = finder->palette.rgb + static_cast<ptrdiff_t>(index) * 3;
        indexes[x] = static_cast<uint8_t>(index);
        errors[0] = static_cast<int16_t>(blue - entry[2]);
        errors[1] = static_cast<int16_t>(green - entry[1]);
        errors[2] = static_cast<int16_t>(red - entry[0]);
        blueShare = (errors[0] * 7) >> 4;
        greenShare = (errors[1] * 7) >> 4;
        redShare = (errors[2] * 7) >> 4;
    }
}

/// Writes a row of indexes at the depth of the result, 1, 4 or 8.
void StoreIndexes(const WriteView &to, int32_t memoryRow, const uint8_t *indexes) {
    uint8_t *row = to.MemoryRow(memoryRow);
    if (to.bits == 8)
        std::memcpy(row, indexes, static_cast<size_t>(to.width));
    else if (to.bits == 4)
        PackNibbleRow(row, indexes, to.width);
    else
        PackMonoRow(row, indexes, to.width);
}

DibHandle DiffuseToColors(const ReadView &from, const Palette768 &palette, uint32_t bits) {
    const int32_t width = from.width, height = from.height;
    const int64_t channels = static_cast<int64_t>(width) * 3;
    LockedDib result(DibCreate(width, height, &palette, bits));
    const WriteView &to = result.View();
    RgbRows rows(from);
    NearestFinder finder(palette, 1 << bits);
    BlockArray<uint8_t> indexes(static_cast<uint64_t>(width) + 7);
    BlockArray<int16_t> sums(static_cast<uint64_t>(channels)), padded(static_cast<uint64_t>(channels) + 6);
    if (!result || !rows || !finder || !indexes || !sums || !padded) return nullptr;

    int16_t *errors = padded.data + 3;
    for (int32_t y = 0; y < height; y++) {
        const uint8_t *bgr = rows.MemoryRow(y);
        CollectColorRow(sums.data, bgr, errors, channels);
        // The first two pixels send nothing to the lower left.
        for (int64_t i = 0; i < 3; i++) sums[i] = static_cast<int16_t>(bgr[i] + ((errors[i] * 5) >> 4));
        DiffuseColorRow(sums.data, width, &finder, indexes.data, errors);
        StoreIndexes(to, y, indexes.data);
    }
    return result.Release();
}

} // namespace

DibHandle ErrorDiffuse(const ReadView &picture, const Palette768 &palette, uint32_t bits, const MonoTone &tone) {
    if (picture.bits == 1) return nullptr;
    return bits == 1 ? DiffuseToMono(picture, palette, tone) : DiffuseToColors(picture, palette, bits);
}

namespace {

/// The last grey that counts as dark where a picture of two colours is made without dithering.
constexpr int16_t kLastDark = 128;

/// What becomes of each pixel value of an indexed picture.
void MapIndexes(const ReadView &from, const Palette768 &palette, uint32_t bits, uint8_t *map) {
    const int32_t count = 1 << bits;
    if (from.bits == 1) {
        map[0] = bits == 1 ? 0 : static_cast<uint8_t>(PaletteNearest(0, 0, 0, palette, count));
        map[1] = bits == 1 ? 1 : static_cast<uint8_t>(PaletteNearest(255, 255, 255, palette, count));
        return;
    }
    Palette768 own;
    const uint32_t entries = DibReadPalette(from, &own);
    for (uint32_t i = 0; i < entries; i++) {
        const uint8_t *rgb = own.rgb + static_cast<ptrdiff_t>(i) * 3;
        map[i] = static_cast<uint8_t>(bits == 1 ? WeightedGrey(own.At(i)) > kLastDark
                                                : PaletteNearest(rgb[0], rgb[1], rgb[2], palette, count));
    }
}

/// flags[x] = grey[x] > threshold.
LMF_MULTIVERSION
void FlagAbove(uint8_t *__restrict flags, const uint8_t *__restrict grey, int32_t width, int16_t threshold) {
    for (int32_t x = 0; x < width; x++) flags[x] = grey[x] > threshold;
}

void RemapIndexedRow(const ReadView &from, int32_t memoryRow, const uint8_t *map, uint8_t *indexes) {
    const uint8_t *row = from.MemoryRow(memoryRow);
    for (int32_t x = 0; x < from.width; x++) {
        const uint32_t value = from.bits == 8 ? row[x] : DibGetPixel(from, x, from.height - 1 - memoryRow) & 255;
        indexes[x] = map[value];
    }
}

void RemapColorRow(const uint8_t *bgr, int32_t width, NearestFinder *finder, uint8_t *indexes) {
    for (int32_t x = 0; x < width; x++, bgr += 3)
        indexes[x] = static_cast<uint8_t>(finder->Find(bgr[2], bgr[1], bgr[0]));
}

} // namespace

DibHandle RemapNearest(const ReadView &picture, const Palette768 &palette, uint32_t bits) {
    PixelPass pass(picture, bits, &palette);
    if (!pass) return nullptr;
    const ReadView &from = pass.from;
    const int32_t width = from.width;
    RgbRows rows(from);
    NearestFinder finder(palette, 1 << bits);
    BlockArray<uint8_t> grey(static_cast<uint64_t>(width)), indexes(static_cast<uint64_t>(width) + 7);
    if (!rows || !finder || !grey || !indexes) return nullptr;
    uint8_t map[256] = {};
    if (from.bits <= 8) MapIndexes(from, palette, bits, map);
    for (int32_t y = 0; y < from.height; y++) {
        if (from.bits <= 8) {
            RemapIndexedRow(from, y, map, indexes.data);
        } else if (bits == 1) {
            GreyRow(grey.data, rows.MemoryRow(y), width);
            FlagAbove(indexes.data, grey.data, width, kLastDark);
        } else {
            RemapColorRow(rows.MemoryRow(y), width, &finder, indexes.data);
        }
        StoreIndexes(pass.to, y, indexes.data);
    }
    return pass.Finish();
}

DibHandle ThresholdToMono(const ReadView &picture, int32_t threshold) {
    if (picture.bits == 1) return nullptr;
    const LockedDib greyPicture(DibToGrey(picture));
    if (!greyPicture) return nullptr;
    PixelPass pass(greyPicture, 1, &kBlackAndWhite);
    if (!pass) return nullptr;
    const ReadView &grey = pass.from;
    const int32_t width = grey.width;
    BlockArray<uint8_t> flags(static_cast<uint64_t>(width) + 7);
    if (!flags) return nullptr;
    for (int32_t y = 0; y < grey.height; y++) {
        FlagAbove(flags.data, grey.MemoryRow(y), width, static_cast<int16_t>(threshold));
        PackMonoRow(pass.to.MemoryRow(y), flags.data, width);
    }
    return pass.Finish();
}

} // namespace lmf
