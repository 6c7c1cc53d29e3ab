#include "image/core/dib_ops.h"

#include <cstring>

#include "common/multiversion.h"
#include "image/color/hsv.h"
#include "image/core/alpha_mask.h"
#include "image/core/div255.h"
#include "image/core/pixel_map.h"
#include "image/core/rows.h"
#include "image/geometry/reverse.h"

namespace lmf {

namespace {

/// Indexes first <= i < last of a span.
struct Span {
    int64_t first;
    int64_t last;

    int64_t Length() const { return last - first; }
};

/// The part of 0 <= i < length for which start + i lies inside 0 .. limit - 1; empty spans have no length.
Span Inside(Span span, int64_t start, int64_t limit) {
    span.first = std::max(span.first, -start);
    span.last = std::max(std::min(span.last, limit - start), span.first);
    return span;
}

} // namespace

DibHandle DibCropRect(const ReadView &source, int32_t left, int32_t top, int32_t right, int32_t bottom) {
    const ReadView &from = source;
    const int64_t width = static_cast<int64_t>(right) - left, height = static_cast<int64_t>(bottom) - top;
    if (width < 1 || height < 1 || width > INT32_MAX || height > INT32_MAX) return nullptr;
    LockedDib result(DibCreateLike(from, static_cast<int32_t>(width), static_cast<int32_t>(height)));
    const WriteView &to = result.View();
    if (!result) return nullptr;

    if (!HasBytePixels(from.bits)) {
        for (int32_t y = 0; y < to.height; y++) {
            for (int32_t x = 0; x < to.width; x++) DibSetPixel(to, x, y, DibGetPixel(from, left + x, top + y));
        }
    } else {
        const int64_t pixelBytes = from.bits / 8;
        const Span columns = Inside({0, width}, left, from.width);
        for (int32_t y = 0; y < to.height; y++) {
            uint8_t *row = to.Row(y);
            const int64_t fromY = static_cast<int64_t>(top) + y;
            const bool rowInside = fromY >= 0 && fromY < from.height && columns.Length() > 0;
            if (!rowInside || columns.Length() < width) std::memset(row, 0xFF, static_cast<size_t>(width * pixelBytes));
            if (!rowInside) continue;
            std::memcpy(row + columns.first * pixelBytes,
                        from.Row(static_cast<int32_t>(fromY)) + (left + columns.first) * pixelBytes,
                        static_cast<size_t>(columns.Length() * pixelBytes));
        }
    }
    return result.Release();
}

DibHandle DibFlipVertical(const ReadView &source) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    // Odd depths change on the way: their rows differ in length.
    const auto rowBytes = static_cast<size_t>(std::min(from.stride, to.stride));
    for (int32_t y = 0; y < from.height; y++) std::memcpy(to.MemoryRow(y), from.Row(y), rowBytes);
    return pass.Finish();
}

DibHandle DibFlipHorizontal(const ReadView &source) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    for (int32_t y = 0; y < from.height; y++) {
        if (HasBytePixels(from.bits)) {
            ReversePixels(to.Row(y), from.Row(y), static_cast<size_t>(from.width), from.bits / 8);
            continue;
        }
        for (int32_t x = 0; x < from.width; x++)
            DibSetPixel(pass.to, x, y, DibGetPixel(pass.from, from.width - 1 - x, y));
    }
    return pass.Finish();
}

namespace {

/// Fills a rectangle that lies inside the picture, in whole-byte pixels or one by one.
void FillInside(const WriteView &view, Span columns, Span rows, uint32_t value) {
    const int64_t pixelBytes = view.bits / 8;
    const auto first = static_cast<int32_t>(columns.first), last = static_cast<int32_t>(columns.last);
    const auto top = static_cast<int32_t>(rows.first);
    for (int32_t x = first; x < last; x++) DibSetPixel(view, x, top, value);
    for (int32_t y = top + 1; y < rows.last; y++) {
        if (HasBytePixels(view.bits)) {
            std::memcpy(view.Row(y) + first * pixelBytes, view.Row(top) + first * pixelBytes,
                        static_cast<size_t>(columns.Length() * pixelBytes));
            continue;
        }
        for (int32_t x = first; x < last; x++) DibSetPixel(view, x, y, value);
    }
}

/// DibFillRect in 64 bits, for rectangles that grew past the range of a coordinate.
void FillClipped(const WriteView &image, int64_t x, int64_t y, int64_t width, int64_t height, uint32_t value) {
    const Span columns = Inside({x, x + width}, 0, image.width), rows = Inside({y, y + height}, 0, image.height);
    if (columns.Length() > 0 && rows.Length() > 0) FillInside(image, columns, rows, value);
}

} // namespace

void DibFillRect(const WriteView &image, int32_t x, int32_t y, int32_t width, int32_t height, uint32_t value) {
    FillClipped(image, x, y, width, height, value);
}

void DibFillAround(const WriteView &image, int32_t x, int32_t y, int32_t width, int32_t height, uint32_t value) {
    const Span columns = Inside({x, int64_t{x} + width}, 0, image.width);
    const Span rows = Inside({y, int64_t{y} + height}, 0, image.height);
    FillClipped(image, 0, 0, image.width, rows.first, value);
    FillClipped(image, 0, rows.first, columns.first, rows.Length(), value);
    FillClipped(image, columns.last, rows.first, image.width - columns.last, rows.Length(), value);
    FillClipped(image, 0, rows.last, image.width, image.height - rows.last, value);
}

void DibFrameRect(const WriteView &image, int32_t x, int32_t y, int32_t width, int32_t height, uint32_t value,
                  int32_t thickness) {
    // Each edge is a bar of its own; a frame thicker than the box passes the opposite edge.
    const int64_t bar = thickness;
    FillClipped(image, x, y, bar, height, value);
    FillClipped(image, x + int64_t{width} - bar, y, bar, height, value);
    FillClipped(image, x, y, width, bar, value);
    FillClipped(image, x, y + int64_t{height} - bar, width, bar, value);
}

void DibCopyRect(const WriteView &to, int32_t toX, int32_t toY, const ReadView &from, int32_t fromX, int32_t fromY,
                 int32_t width, int32_t height) {
    const Span columns = Inside(Inside({0, width}, toX, to.width), fromX, from.width);
    const Span rows = Inside(Inside({0, height}, toY, to.height), fromY, from.height);
    if (columns.Length() < 1) return;
    // Within one picture source and destination may overlap, where the order of the pixels counts.
    const bool copyBytes = to.bottom != from.bottom && to.bits == from.bits && HasBytePixels(to.bits);
    const int64_t pixelBytes = to.bits / 8;
    for (int64_t i = rows.first; i < rows.last; i++) {
        const auto toRow = static_cast<int32_t>(toY + i), fromRow = static_cast<int32_t>(fromY + i);
        if (copyBytes) {
            std::memcpy(to.Row(toRow) + (toX + columns.first) * pixelBytes,
                        from.Row(fromRow) + (fromX + columns.first) * pixelBytes,
                        static_cast<size_t>(columns.Length() * pixelBytes));
            continue;
        }
        for (int64_t k = columns.first; k < columns.last; k++) {
            DibSetPixel(to, static_cast<int32_t>(toX + k), toRow,
                        DibGetPixel(from, static_cast<int32_t>(fromX + k), fromRow));
        }
    }
}

namespace {

LMF_MULTIVERSION
void GreyRow32(uint8_t *__restrict grey, const uint8_t *__restrict bgra, int32_t width) {
    for (int32_t x = 0; x < width; x++) grey[x] = ByteGrey(bgra[x * 4 + 2], bgra[x * 4 + 1], bgra[x * 4]);
}

/// Lays a 32-bit row over a colour.
LMF_MULTIVERSION
void FlattenRow(uint8_t *__restrict bgr, const uint8_t *__restrict bgra, int32_t width, Color background) {
    const uint8_t red = RedOf(background), green = GreenOf(background), blue = BlueOf(background);
    for (int32_t x = 0; x < width; x++) {
        const auto clear = static_cast<uint8_t>(255 - bgra[x * 4 + 3]);
        bgr[x * 3] = MixBytes(bgra[x * 4], blue, clear);
        bgr[x * 3 + 1] = MixBytes(bgra[x * 4 + 1], green, clear);
        bgr[x * 3 + 2] = MixBytes(bgra[x * 4 + 2], red, clear);
    }
}

Color MixColorBytes(Color color, Color other, uint8_t otherWeight) {
    return PackColor(MixBytes(RedOf(color), RedOf(other), otherWeight),
                     MixBytes(GreenOf(color), GreenOf(other), otherWeight),
                     MixBytes(BlueOf(color), BlueOf(other), otherWeight));
}

} // namespace

DibHandle DibToGrey(const ReadView &source) {
    PixelPass pass(source, 8, &GreyRamp());
    if (!pass) return nullptr;
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    const int32_t width = from.width;
    Palette768 palette;
    DibReadPalette(from, &palette);
    for (int32_t y = 0; y < from.height; y++) {
        const uint8_t *fromRow = from.Row(y);
        uint8_t *row = to.Row(y);
        switch (from.bits) {
        case 24:
            GreyRow(row, fromRow, width);
            break;
        case 32:
            GreyRow32(row, fromRow, width);
            break;
        case 8:
            for (int32_t x = 0; x < width; x++) row[x] = palette.rgb[fromRow[x] * 3];
            break;
        default:
            for (int32_t x = 0; x < width; x++) {
                const uint32_t value = DibGetPixel(from, x, y);
                row[x] = from.bits > 8 ? static_cast<uint8_t>(WeightedGrey(value)) : palette.rgb[(value & 255) * 3];
            }
        }
    }
    return pass.Finish();
}

namespace {

DibHandle ToRgb(const ReadView &source, bool plainMono) {
    PixelPass pass(source, 24, nullptr);
    if (!pass) return nullptr;
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    Palette768 palette;
    DibReadPalette(from, &palette);
    if (plainMono && from.bits == 1) palette = kBlackAndWhite;
    for (int32_t y = 0; y < from.height; y++) ReadRgbRow(to.MemoryRow(y), from, palette, y);
    return pass.Finish();
}

} // namespace

DibHandle DibToRgb(const ReadView &source) {
    return ToRgb(source, true);
}

DibHandle ExpandToRgb(const ReadView &source) {
    return ToRgb(source, false);
}

DibHandle DibWithAlpha(const ReadView &source, const ReadView &mask) {
    if (source.bits != 24 && source.bits != 32) return nullptr;
    PixelPass pass(source, 32, nullptr);
    if (!pass) return nullptr;
    const ReadView &from = pass.from;
    const ptrdiff_t step = from.bits / 8;
    for (int32_t y = 0; y < from.height; y++) {
        const uint8_t *fromRow = from.Row(y);
        uint8_t *row = pass.to.Row(y);
        for (int32_t x = 0; x < from.width; x++, fromRow += step, row += 4) {
            std::memcpy(row, fromRow, 3);
            row[3] = static_cast<uint8_t>(DibGetPixel(mask, x, y));
        }
    }
    return pass.Finish();
}

DibHandle DibAlphaToGrey(const ReadView &source) {
    PixelPass pass(source, 8, &GreyRamp());
    if (!pass) return nullptr;
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    const int32_t width = from.width;
    for (int32_t y = 0; y < from.height; y++) {
        const uint8_t *fromRow = from.Row(y);
        uint8_t *row = to.Row(y);
        if (from.bits == 32) {
            for (int32_t x = 0; x < width; x++) row[x] = fromRow[x * 4 + 3];
        } else {
            for (int32_t x = 0; x < width; x++) row[x] = AlphaOf(DibGetPixel(from, x, y));
        }
    }
    return pass.Finish();
}

DibHandle DibFlattenOnColor(const ReadView &source, Color background) {
    PixelPass pass(source, 24, nullptr);
    if (!pass) return nullptr;
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    const int32_t width = from.width;
    for (int32_t y = 0; y < from.height; y++) {
        uint8_t *row = to.Row(y);
        if (from.bits == 32) {
            FlattenRow(row, from.Row(y), width, background);
            continue;
        }
        for (int32_t x = 0; x < width; x++) {
            const uint32_t value = DibGetPixel(from, x, y);
            StoreBgr(row + static_cast<ptrdiff_t>(x) * 3, MixColorBytes(background, value, AlphaOf(value)));
        }
    }
    return pass.Finish();
}

DibHandle DibTintByMask(const ReadView &source, const ReadView &mask, Color color) {
    PixelPass pass(source, 24, nullptr);
    if (!pass || pass.from.bits != 24) return nullptr;
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    const int32_t width = from.width;
    BlockArray<uint8_t> weights(static_cast<uint64_t>(width));
    if (!weights) return nullptr;
    for (int32_t y = 0; y < from.height; y++) {
        const uint8_t *maskRow = weights.data;
        if (mask.bits == 8 && mask.width >= width && y < mask.height) {
            maskRow = mask.Row(y);
        } else {
            for (int32_t x = 0; x < width; x++) weights[x] = static_cast<uint8_t>(DibGetPixel(mask, x, y));
        }
        std::memcpy(to.Row(y), from.Row(y), static_cast<size_t>(width) * 3);
        TintRow(to.Row(y), maskRow, width, color);
    }
    return pass.Finish();
}

DibHandle DibColorize(const ReadView &source, Color level0, Color level255) {
    PixelPass pass(source, 24, nullptr);
    if (!pass) return nullptr;
    const ReadView &from = pass.from;
    const WriteView &to = pass.to;
    const int32_t width = from.width;
    Color ramp[256];
    for (uint32_t i = 0; i < 256; i++) ramp[i] = MixColorBytes(level0, level255, static_cast<uint8_t>(i));
    for (int32_t y = 0; y < from.height; y++) {
        const uint8_t *fromRow = from.Row(y);
        uint8_t *row = to.Row(y);
        if (from.bits == 8) {
            for (int32_t x = 0; x < width; x++) StoreBgr(row + static_cast<ptrdiff_t>(x) * 3, ramp[fromRow[x]]);
        } else {
            for (int32_t x = 0; x < width; x++)
                StoreBgr(row + static_cast<ptrdiff_t>(x) * 3, ramp[DibGetPixel(from, x, y) & 255]);
        }
    }
    return pass.Finish();
}

DibHandle DibAdjustHsv(const ReadView &source, float hueOffset, float saturationScale, float valueScale) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const HsvChange change = {hueOffset, saturationScale, valueScale};
    const uint32_t alphaMask = pass.from.bits == 32 ? 0xFF000000 : 0;
    const auto row = [&](uint8_t *to, const uint8_t *from, size_t width) { AdjustHsvRow(to, from, width, change); };
    const auto pixel = [&](uint32_t value) {
        const uint8_t from[3] = {BlueOf(value), GreenOf(value), RedOf(value)};
        uint8_t to[3];
        row(to, from, 1);
        return PackColor(to[2], to[1], to[0]) | (value & alphaMask);
    };
    MapPixels(pass, pixel, row);
    return pass.Finish();
}

} // namespace lmf
