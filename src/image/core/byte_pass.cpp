#include "image/core/byte_pass.h"

#include "image/core/rows.h"

namespace lmf {

BytePass::BytePass(const ReadView &source, Color outside)
    : from(source), result(DibCreateLike(source, source.width, source.height)) {
    if (!result) return;
    to = result.View();
    if (source.bits != 8 && source.bits != 24) {
        wideSource = LockedDib(DibCreate(source.width, source.height, nullptr, to.bits <= 8 ? 8 : 24));
        if (!wideSource) return;
        for (int32_t y = 0; y < source.height; y++) ReadByteRow(wideSource.View().Row(y), source, y, outside);
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
    if (narrow.bits != to.bits)
        for (int32_t y = 0; y < narrow.height; y++) WriteByteRow(narrow, y, to.Row(y));
    return result.Release();
}

} // namespace lmf
