#include "image/core/byte_pass.h"

#include "image/core/rows.h"

namespace lmf {

namespace {

/// Reads a picture of any depth into one of bytes; all that DibGetPixel says of other depths holds.
void WidenRows(const WriteView &to, const ReadView &from) {
    for (int32_t y = 0; y < from.height; y++) {
        if (from.bits == 32) {
            DropAlphaRow(to.Row(y), from.Row(y), from.width);
            continue;
        }
        for (int32_t x = 0; x < from.width; x++) DibSetPixel(to, x, y, DibGetPixel(from, x, y));
    }
}

/// Makes room for an alpha of 0 behind each pixel, in place.
void SpreadRow(uint8_t *row, ptrdiff_t width) {
    for (ptrdiff_t x = width - 1; x >= 0; x--) {
        const uint8_t blue = row[x * 3], green = row[x * 3 + 1], red = row[x * 3 + 2];
        row[x * 4] = blue;
        row[x * 4 + 1] = green;
        row[x * 4 + 2] = red;
        row[x * 4 + 3] = 0;
    }
}

} // namespace

BytePass::BytePass(const ReadView &source, Alpha alpha) : BytePass(source, source.width, source.height, alpha) {}

BytePass::BytePass(const ReadView &source, int32_t width, int32_t height, Alpha alpha)
    : from(source), result(DibCreateLike(source, width, height)) {
    if (!result) return;
    to = result.View();
    const uint32_t wideBits = to.bits <= 8 ? 8 : alpha == Alpha::Carried ? to.bits : 24;
    if (source.bits != wideBits) {
        wideSource = LockedDib(DibCreate(source.width, source.height, nullptr, wideBits));
        if (!wideSource) return;
        WidenRows(wideSource.View(), source);
        from = wideSource;
    }
    if (to.bits > wideBits) {
        to.bits = wideBits; // in rows that are longer than they need to be
    } else if (to.bits < wideBits) {
        wideResult = LockedDib(DibCreate(width, height, nullptr, wideBits));
        if (!wideResult) return;
        to = wideResult.View();
    }
    made = true;
}

DibHandle BytePass::Finish() {
    const WriteView &narrow = result.View();
    if (narrow.bits > to.bits) {
        for (int32_t y = 0; y < narrow.height; y++) SpreadRow(narrow.Row(y), narrow.width);
    } else if (wideResult) {
        for (int32_t y = 0; y < narrow.height; y++)
            for (int32_t x = 0; x < narrow.width; x++) DibSetPixel(narrow, x, y, to.Row(y)[x]);
    }
    return result.Release();
}

} // namespace lmf
