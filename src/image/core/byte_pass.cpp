#include "image/core/byte_pass.h"

#include "image/core/rows.h"

namespace lmf {

namespace {

/// Reads a picture of any depth into one of bytes; all that DibGetPixel says of other depths holds.
void WidenRows(const WriteView &to, const ReadView &from) {
    for (int32_t y = 0; y < from.height; y++) {
        uint8_t *row = to.Row(y);
        if (from.bits == 32) {
            DropAlphaRow(row, from.Row(y), from.width);
            continue;
        }
        for (ptrdiff_t x = 0; x < from.width; x++) {
            const uint32_t pixel = DibGetPixel(from, static_cast<int32_t>(x), y);
            if (to.bits == 24)
                StoreBgr(row + x * 3, pixel);
            else
                row[x] = static_cast<uint8_t>(pixel);
        }
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

BytePass::BytePass(const ReadView &source) : from(source), result(DibCreateLike(source, source.width, source.height)) {
    if (!result) return;
    to = result.View();
    if (source.bits != 8 && source.bits != 24) {
        wideSource = LockedDib(DibCreate(source.width, source.height, nullptr, to.bits <= 8 ? 8 : 24));
        if (!wideSource) return;
        WidenRows(wideSource.View(), source);
        from = wideSource;
    }
    if (to.bits == 32) {
        to.bits = 24; // in rows that are longer than they need to be
    } else if (to.bits < 8) {
        wideResult = LockedDib(DibCreate(source.width, source.height, nullptr, 8));
        if (!wideResult) return;
        to = wideResult.View();
    }
    made = true;
}

DibHandle BytePass::Finish() {
    const WriteView &narrow = result.View();
    if (narrow.bits == 32) {
        for (int32_t y = 0; y < narrow.height; y++) SpreadRow(narrow.Row(y), narrow.width);
    } else if (wideResult) {
        for (int32_t y = 0; y < narrow.height; y++)
            for (int32_t x = 0; x < narrow.width; x++) DibSetPixel(narrow, x, y, to.Row(y)[x]);
    }
    return result.Release();
}

} // namespace lmf
