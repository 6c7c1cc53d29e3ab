#include "filters/noise/bgr_rows.h"

#include <cstring>

namespace lmf {

void ReadBgrRow(const DibLock &from, int32_t y, uint8_t *bytes) {
    if (from.view.bits == 24) {
        std::memcpy(bytes, from.view.Row(y), static_cast<size_t>(from.view.width) * 3);
        return;
    }
    for (int32_t x = 0; x < from.view.width; x++, bytes += 3) StoreBgr(bytes, DibGetPixel(from.image, x, y));
}

void WriteBgrRow(const DibLock &to, int32_t y, const uint8_t *bytes) {
    if (to.view.bits == 24) {
        std::memcpy(to.view.Row(y), bytes, static_cast<size_t>(to.view.width) * 3);
        return;
    }
    for (int32_t x = 0; x < to.view.width; x++, bytes += 3)
        DibSetPixel(to.image, x, y, PackColor(bytes[2], bytes[1], bytes[0]));
}

} // namespace lmf
