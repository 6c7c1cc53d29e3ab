#include "image/core/bgr_rows.h"

#include <cstring>

namespace lmf {

void ReadBgrRow(const ReadView &from, int32_t y, uint8_t *bytes) {
    if (from.bits == 24) {
        std::memcpy(bytes, from.Row(y), static_cast<size_t>(from.width) * 3);
        return;
    }
    for (int32_t x = 0; x < from.width; x++, bytes += 3) StoreBgr(bytes, DibGetPixel(from, x, y));
}

void WriteBgrRow(const WriteView &to, int32_t y, const uint8_t *bytes) {
    if (to.bits == 24) {
        std::memcpy(to.Row(y), bytes, static_cast<size_t>(to.width) * 3);
        return;
    }
    for (int32_t x = 0; x < to.width; x++, bytes += 3) DibSetPixel(to, x, y, PackColor(bytes[2], bytes[1], bytes[0]));
}

} // namespace lmf
