// Changes where each new pixel depends on the old pixel at its place alone.
#pragma once

#include "image/core/pixel_pass.h"

namespace lmf {

/// What replaces each value of a channel.
struct ToneTable {
    uint8_t at[256];
};

/// A tone table for each channel.
struct ChannelTables {
    ToneTable red, green, blue;
};

/// to[i] = table[from[i]].
void LookUpBytes(uint8_t *__restrict to, const uint8_t *__restrict from, size_t count, const ToneTable &table);
/// The same for 24-bit pixels with a table for each channel.
void LookUpPixels(uint8_t *__restrict to, const uint8_t *__restrict from, size_t pixels, const ChannelTables &tables);

/// Each value of the result is `pixel(value)`, in the terms of DibGetPixel and DibSetPixel. `row24(to, from, width)`
/// does the same for a row of 24-bit pixels, where speed counts. Rows are taken as they lie in memory.
template <typename PixelFunction, typename RowFunction>
void MapPixels(const PixelPass &pass, PixelFunction pixel, RowFunction row24) {
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    const auto width = static_cast<size_t>(from.width);
    if (from.bits == 24) {
        for (int32_t y = 0; y < from.height; y++) row24(to.MemoryRow(y), from.MemoryRow(y), width);
    } else if (from.bits == 8) {
        ToneTable table;
        for (uint32_t i = 0; i < 256; i++) table.at[i] = static_cast<uint8_t>(pixel(i));
        for (int32_t y = 0; y < from.height; y++) LookUpBytes(to.MemoryRow(y), from.MemoryRow(y), width, table);
    } else {
        for (int32_t y = 0; y < from.height; y++) {
            for (int32_t x = 0; x < from.width; x++) DibSetPixel(pass.to, x, y, pixel(DibGetPixel(pass.from, x, y)));
        }
    }
}

/// The same without a way of its own for 24 bits.
template <typename PixelFunction>
void MapPixels(const PixelPass &pass, PixelFunction pixel) {
    MapPixels(pass, pixel, [&pixel](uint8_t *__restrict to, const uint8_t *__restrict from, size_t width) {
        for (size_t i = 0; i < width * 3; i += 3) StoreBgr(to + i, pixel(PackColor(from[i + 2], from[i + 1], from[i])));
    });
}

/// Each pixel as three channels: `row24(to, from, width)` maps a row of 24-bit pixels, and pixels of other depths go
/// through it one by one. Alpha becomes 0; an index counts as the red of a pixel without green and blue.
template <typename RowFunction>
void MapColors(const PixelPass &pass, RowFunction row24) {
    const auto pixel = [&row24](Color color) {
        const uint8_t from[3] = {BlueOf(color), GreenOf(color), RedOf(color)};
        uint8_t to[3];
        row24(to, from, 1);
        return PackColor(to[2], to[1], to[0]);
    };
    MapPixels(pass, pixel, row24);
}

/// Sends red, green and blue through their tables; the rest is as with MapColors.
void MapChannels(const PixelPass &pass, const ChannelTables &tables);
/// The same with one table for all.
void MapChannels(const PixelPass &pass, const ToneTable &table);
/// A copy of the picture whose colour table went through the tables while the pixels stay; null on failure.
[[nodiscard]] DibHandle MapPaletteChannels(const ReadView &source, const ChannelTables &tables);

} // namespace lmf
