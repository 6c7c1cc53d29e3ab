#include "image/core/byte_pass.h"

#include <cstring>

#include "image/core/rows.h"

namespace lmf {

BytePass::BytePass(const ReadView &source, int32_t width, int32_t height, Alpha alpha, Color outside)
    : from(source), result(DibCreateLike(source, width, height)) {
    if (!result) return;
    to = result.View();
    const uint32_t wideBits = to.bits <= 8 ? 8 : alpha == Alpha::Carried ? to.bits : 24;
    if (source.bits != wideBits) {
        wideSource = LockedDib(DibCreate(source.width, source.height, nullptr, wideBits));
        if (!wideSource) return;
        for (int32_t y = 0; y < source.height; y++) {
            uint8_t *row = wideSource.View().Row(y);
            if (wideBits == 32) // of a depth that cannot be read
                std::memset(row, 0xFF, static_cast<size_t>(source.width) * 4);
            else
                ReadByteRow(row, source, y, outside);
        }
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
    if (narrow.bits != to.bits)
        for (int32_t y = 0; y < narrow.height; y++) WriteByteRow(narrow, y, to.Row(y));
    return result.Release();
}

} // namespace lmf
