#include "image/core/rows.h"

#include <cstring>

#include "common/multiversion.h"
#include "image/core/div255.h"

namespace lmf {

namespace {

/// Puts an alpha of 0 behind each pixel, in place or not.
void SpreadRow(uint8_t *bgra, const uint8_t *bgr, ptrdiff_t width) {
    for (ptrdiff_t x = width - 1; x >= 0; x--) {
        const uint8_t blue = bgr[x * 3], green = bgr[x * 3 + 1], red = bgr[x * 3 + 2];
        bgra[x * 4] = blue;
        bgra[x * 4 + 1] = green;
        bgra[x * 4 + 2] = red;
        bgra[x * 4 + 3] = 0;
    }
}

} // namespace

void ReadByteRow(uint8_t *bytes, const ReadView &picture, int32_t y, Color outside) {
    const uint8_t *row = picture.Row(y);
    const auto width = static_cast<size_t>(picture.width);
    if (picture.bits == 24 || picture.bits == 8) {
        std::memcpy(bytes, row, width * picture.bits / 8);
    } else if (picture.bits == 32 && outside == 0xFFFFFF) {
        DropAlphaRow(bytes, row, picture.width);
    } else {
        for (int32_t x = 0; x < picture.width; x++) {
            const uint32_t pixel = DibGetPixel(picture, x, y), value = pixel == kOutside ? outside : pixel;
            if (ByteChannels(picture.bits) == 1)
                *bytes++ = static_cast<uint8_t>(value);
            else
                StoreBgr(std::exchange(bytes, bytes + 3), value);
        }
    }
}

void ReadBgrRow(uint8_t *bgr, const ReadView &picture, int32_t y) {
    if (ByteChannels(picture.bits) == 3) return ReadByteRow(bgr, picture, y);
    for (ptrdiff_t x = 0; x < picture.width; x++)
        StoreBgr(bgr + x * 3, DibGetPixel(picture, static_cast<int32_t>(x), y));
}

void WriteByteRow(const WriteView &picture, int32_t y, const uint8_t *bytes) {
    const auto width = static_cast<size_t>(picture.width);
    if (picture.bits == 24 || picture.bits == 8) {
        std::memmove(picture.Row(y), bytes, width * picture.bits / 8);
    } else if (picture.bits == 32) {
        SpreadRow(picture.Row(y), bytes, picture.width);
    } else {
        for (int32_t x = 0; x < picture.width; x++) DibSetPixel(picture, x, y, bytes[x]);
    }
}

LMF_MULTIVERSION
void GreyRow(uint8_t *__restrict grey, const uint8_t *__restrict bgr, int32_t width) {
    for (int32_t x = 0; x < width; x++) grey[x] = ByteGrey(bgr[x * 3 + 2], bgr[x * 3 + 1], bgr[x * 3]);
}

LMF_MULTIVERSION
void TintRow(uint8_t *__restrict to, const uint8_t *__restrict from, const uint8_t *__restrict weights, int32_t width,
             Color color) {
    const uint8_t red = RedOf(color), green = GreenOf(color), blue = BlueOf(color);
    for (int32_t x = 0; x < width; x++) {
        to[x * 3] = MixBytes(from[x * 3], blue, weights[x]);
        to[x * 3 + 1] = MixBytes(from[x * 3 + 1], green, weights[x]);
        to[x * 3 + 2] = MixBytes(from[x * 3 + 2], red, weights[x]);
    }
}

void ReadGreyRow(uint8_t *grey, const ReadView &picture, int32_t y) {
    if (picture.bits == 24) return GreyRow(grey, picture.Row(y), picture.width);
    for (int32_t x = 0; x < picture.width; x++)
        grey[x] = static_cast<uint8_t>(WeightedGrey(DibGetPixel(picture, x, y)));
}

LMF_MULTIVERSION
void DropAlphaRow(uint8_t *__restrict bgr, const uint8_t *__restrict bgra, int32_t width) {
    for (int32_t x = 0; x < width; x++) {
        bgr[x * 3] = bgra[x * 4];
        bgr[x * 3 + 1] = bgra[x * 4 + 1];
        bgr[x * 3 + 2] = bgra[x * 4 + 2];
    }
}

void PackMonoRow(uint8_t *row, const uint8_t *flags, int32_t width) {
    for (int32_t x = 0; x < width; x += 8) {
        // Eight flags read as one number, the first in the low byte; the product gathers them in its top byte, the
        // first in the top bit.
        uint64_t eight = 0;
        for (int32_t i = 0; i < 8; i++) eight |= static_cast<uint64_t>(flags[x + i]) << (8 * i);
        row[x / 8] = static_cast<uint8_t>(eight * 0x8040201008040201u >> 56);
    }
}

void PackNibbleRow(uint8_t *row, const uint8_t *indexes, int32_t width) {
    for (int32_t x = 0; x < width; x += 2) row[x / 2] = static_cast<uint8_t>(indexes[x] << 4 | indexes[x + 1]);
}

void ReadRgbRow(uint8_t *bgr, const ReadView &picture, const Palette768 &palette, int32_t memoryRow) {
    const int32_t width = picture.width, y = picture.height - 1 - memoryRow;
    const uint8_t *from = picture.MemoryRow(memoryRow);
    switch (picture.bits) {
    case 24:
        std::memcpy(bgr, from, static_cast<size_t>(width) * 3);
        return;
    case 32:
        DropAlphaRow(bgr, from, width);
        return;
    case 8:
        for (int32_t x = 0; x < width; x++) StoreBgr(bgr + static_cast<ptrdiff_t>(x) * 3, palette.At(from[x]));
        return;
    default:
        for (int32_t x = 0; x < width; x++) {
            const uint32_t value = DibGetPixel(picture, x, y);
            StoreBgr(bgr + static_cast<ptrdiff_t>(x) * 3, picture.bits > 8 ? value : palette.At(value & 255));
        }
    }
}

RgbRows::RgbRows(const ReadView &locked)
    : picture(locked), buffer(locked.bits == 24 ? 0 : static_cast<uint64_t>(locked.width) * 3) {
    DibReadPalette(picture, &palette);
}

const uint8_t *RgbRows::MemoryRow(int32_t y) {
    if (picture.bits == 24) return picture.MemoryRow(y);
    ReadRgbRow(buffer.data, picture, palette, y);
    return buffer.data;
}

} // namespace lmf
