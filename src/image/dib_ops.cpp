#include "image/dib_ops.h"

#include <cstring>

namespace lmf {

/// Are pixels of this depth whole bytes, so that rows can be copied as bytes?
static bool HasByteRows(uint32_t bits) {
    return bits == 8 || bits == 24 || bits == 32;
}

/// Indexes first <= i < last of a span.
struct Span {
    int64_t first;
    int64_t last;

    int64_t Length() const { return last - first; }
};

/// The part of 0 <= i < length for which start + i lies inside 0 .. limit - 1; empty spans have no length.
static Span Inside(Span span, int64_t start, int64_t limit) {
    span.first = std::max(span.first, -start);
    span.last = std::max(std::min(span.last, limit - start), span.first);
    return span;
}

/// Blank picture of the source's size, depth request and palette.
static DibHandle CreateLike(const DibLock &source, int32_t width, int32_t height) {
    Palette768 palette;
    DibReadPalette(source.image, &palette);
    return DibCreate(width, height, &palette, source.view.bits);
}

DibHandle DibCropRect(DibHandle source, int32_t left, int32_t top, int32_t right, int32_t bottom) {
    DibLock from(source);
    if (!from) return nullptr;
    const int64_t width = static_cast<int64_t>(right) - left, height = static_cast<int64_t>(bottom) - top;
    if (width < 1 || height < 1 || width > INT32_MAX || height > INT32_MAX) return nullptr;
    DibOwner result(CreateLike(from, static_cast<int32_t>(width), static_cast<int32_t>(height)));
    DibLock to(result.handle);
    if (!to) return nullptr;

    if (!HasByteRows(from.view.bits)) {
        for (int32_t y = 0; y < to.view.height; y++) {
            for (int32_t x = 0; x < to.view.width; x++)
                DibSetPixel(to.image, x, y, DibGetPixel(from.image, left + x, top + y));
        }
    } else {
        const int64_t pixelBytes = from.view.bits / 8;
        const Span columns = Inside({0, width}, left, from.view.width);
        for (int32_t y = 0; y < to.view.height; y++) {
            uint8_t *row = to.view.Row(y);
            const int64_t fromY = static_cast<int64_t>(top) + y;
            const bool rowInside = fromY >= 0 && fromY < from.view.height && columns.Length() > 0;
            if (!rowInside || columns.Length() < width) std::memset(row, 0xFF, static_cast<size_t>(width * pixelBytes));
            if (!rowInside) continue;
            std::memcpy(row + columns.first * pixelBytes,
                        from.view.Row(static_cast<int32_t>(fromY)) + (left + columns.first) * pixelBytes,
                        static_cast<size_t>(columns.Length() * pixelBytes));
        }
    }
    to.Unlock();
    return result.Release();
}

DibHandle DibFlipVertical(DibHandle source) {
    DibLock from(source);
    if (!from) return nullptr;
    DibOwner result(CreateLike(from, from.view.width, from.view.height));
    DibLock to(result.handle);
    if (!to) return nullptr;
    // Odd depths change on the way: their rows differ in length.
    const auto rowBytes = static_cast<size_t>(std::min(from.view.stride, to.view.stride));
    for (int32_t y = 0; y < from.view.height; y++) std::memcpy(to.view.MemoryRow(y), from.view.Row(y), rowBytes);
    to.Unlock();
    return result.Release();
}

template <int kBytes>
static void ReverseRow(uint8_t *__restrict to, const uint8_t *__restrict from, int32_t width) {
    const uint8_t *last = from + static_cast<ptrdiff_t>(width - 1) * kBytes;
    for (int32_t x = 0; x < width; x++, to += kBytes, last -= kBytes) std::memcpy(to, last, kBytes);
}

DibHandle DibFlipHorizontal(DibHandle source) {
    DibLock from(source);
    if (!from) return nullptr;
    DibOwner result(CreateLike(from, from.view.width, from.view.height));
    DibLock to(result.handle);
    if (!to) return nullptr;
    const int32_t width = from.view.width;
    for (int32_t y = 0; y < from.view.height; y++) {
        switch (from.view.bits) {
        case 8:
            ReverseRow<1>(to.view.Row(y), from.view.Row(y), width);
            break;
        case 24:
            ReverseRow<3>(to.view.Row(y), from.view.Row(y), width);
            break;
        case 32:
            ReverseRow<4>(to.view.Row(y), from.view.Row(y), width);
            break;
        default:
            for (int32_t x = 0; x < width; x++) DibSetPixel(to.image, x, y, DibGetPixel(from.image, width - 1 - x, y));
        }
    }
    to.Unlock();
    return result.Release();
}

/// Fills a rectangle that lies inside the picture, in whole-byte pixels or one by one.
static void FillInside(void *image, const DibView &view, Span columns, Span rows, uint32_t value) {
    const int64_t pixelBytes = view.bits / 8;
    const auto first = static_cast<int32_t>(columns.first), last = static_cast<int32_t>(columns.last);
    const auto top = static_cast<int32_t>(rows.first);
    for (int32_t x = first; x < last; x++) DibSetPixel(image, x, top, value);
    for (int32_t y = top + 1; y < rows.last; y++) {
        if (HasByteRows(view.bits)) {
            std::memcpy(view.Row(y) + first * pixelBytes, view.Row(top) + first * pixelBytes,
                        static_cast<size_t>(columns.Length() * pixelBytes));
            continue;
        }
        for (int32_t x = first; x < last; x++) DibSetPixel(image, x, y, value);
    }
}

/// DibFillRect in 64 bits, for rectangles that grew past the range of a coordinate.
static void FillClipped(void *image, int64_t x, int64_t y, int64_t width, int64_t height, uint32_t value) {
    const DibView view = ViewOf(image);
    const Span columns = Inside({x, x + width}, 0, view.width), rows = Inside({y, y + height}, 0, view.height);
    if (columns.Length() > 0 && rows.Length() > 0) FillInside(image, view, columns, rows, value);
}

int32_t DibFillRect(void *image, int32_t x, int32_t y, int32_t width, int32_t height, uint32_t value) {
    FillClipped(image, x, y, width, height, value);
    return 1;
}

int32_t DibFrameRect(void *image, int32_t x, int32_t y, int32_t width, int32_t height, uint32_t value,
                     int32_t thickness) {
    if (width < 1 || height < 1 || thickness < 1) return 1;
    // Each edge is a bar of its own; a frame thicker than the box passes the opposite edge.
    const int64_t far = thickness;
    FillClipped(image, x, y, far, height, value);
    FillClipped(image, x + int64_t{width} - far, y, far, height, value);
    FillClipped(image, x, y, width, far, value);
    FillClipped(image, x, y + int64_t{height} - far, width, far, value);
    return 1;
}

int32_t DibCopyRect(void *to, int32_t toX, int32_t toY, const void *from, int32_t fromX, int32_t fromY, int32_t width,
                    int32_t height) {
    const DibView toView = ViewOf(to), fromView = ViewOf(from);
    const Span columns = Inside(Inside({0, width}, toX, toView.width), fromX, fromView.width);
    const Span rows = Inside(Inside({0, height}, toY, toView.height), fromY, fromView.height);
    if (columns.Length() < 1) return 1;
    // Within one picture source and destination may overlap, where the order of the pixels counts.
    const bool copyBytes = to != from && toView.bits == fromView.bits && HasByteRows(toView.bits);
    const int64_t pixelBytes = toView.bits / 8;
    for (int64_t i = rows.first; i < rows.last; i++) {
        const auto toRow = static_cast<int32_t>(toY + i), fromRow = static_cast<int32_t>(fromY + i);
        if (copyBytes) {
            std::memcpy(toView.Row(toRow) + (toX + columns.first) * pixelBytes,
                        fromView.Row(fromRow) + (fromX + columns.first) * pixelBytes,
                        static_cast<size_t>(columns.Length() * pixelBytes));
            continue;
        }
        for (int64_t k = columns.first; k < columns.last; k++) {
            DibSetPixel(to, static_cast<int32_t>(toX + k), toRow,
                        DibGetPixel(from, static_cast<int32_t>(fromX + k), fromRow));
        }
    }
    return 1;
}

} // namespace lmf
