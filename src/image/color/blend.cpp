#include "image/color/blend.h"

#include <cstdlib>

namespace lmf {

static int32_t Overlay(int32_t a, int32_t b, bool dark) {
    return dark ? 2 * a * b / 255 : 255 - 2 * (255 - a) * (255 - b) / 255;
}

static int32_t VividLight(int32_t a, int32_t b) {
    if (b >= 128) return std::min(a * 256 / (511 - 2 * b), 255);
    return b == 0 ? 0 : std::max(255 + (a - 255) * 256 / (2 * b), 0);
}

static int32_t SoftLight(int32_t a, int32_t b) {
    const auto half = static_cast<float>(a >> 1), top = static_cast<float>(b);
    const float mixed =
        b < 128 ? (2.0f * half + 128.0f) * (top / 255.0f) : 255.0f - 2.0f * (191.0f - half) * (255.0f - top) / 255.0f;
    return static_cast<int32_t>(mixed) & 255;
}

static int32_t LiquidLight(int32_t a, int32_t b) {
    return b < 128 ? std::max(a + 2 * b - 255, 0) : std::min(a + 2 * b - 256, 255);
}

/// One channel: a of the base, b of the top.
static int32_t BlendChannel(uint32_t mode, int32_t a, int32_t b) {
    switch (mode) {
    case 1:
        return std::max(a, b);
    case 2:
        return std::min(a, b);
    case 3:
        return a * b / 255;
    case 4:
        return (a + b) >> 1;
    case 5:
    case 21:
        return std::min(a + b, 255);
    case 6:
    case 22:
        return std::max(a + b - 255, 0);
    case 7:
        return std::abs(a - b);
    case 8:
        return 255 - std::abs(255 - a - b);
    case 9:
        return 255 - (((255 - a) * (255 - b)) >> 8);
    case 10:
        return a + b - 2 * a * b / 255;
    case 11:
        return Overlay(a, b, b < 128);
    case 12:
        return SoftLight(a, b);
    case 13:
        return Overlay(a, b, a < 128);
    case 14:
        return LiquidLight(a, b);
    case 15:
        return VividLight(a, b);
    case 16:
        return b < 128 ? std::min(a, 2 * b) : std::max(a, 2 * b - 256);
    case 17:
        return VividLight(a, b) < 128 ? 0 : 255;
    case 18:
        return b == 255 ? 255 : std::min(a * a / (255 - b), 255);
    case 19:
        return b == 255 ? 255 : std::min(a * 256 / (255 - b), 255);
    case 20:
        return b == 0 ? 0 : std::max(255 + (a - 255) * 256 / b, 0);
    default:
        return a;
    }
}

// Divisions make most modes slow: all pairs are blended once.
BlendTable::BlendTable(uint32_t mode) : blended(65536) {
    for (int32_t i = 0; blended && i < 65536; i++)
        blended[i] = static_cast<uint8_t>(BlendChannel(mode, i & 255, i >> 8));
}

DibHandle DibBlend(const ReadView &base, const ReadView &top, uint32_t mode) {
    const BlendTable table(mode);
    if (!table) return nullptr;
    const uint8_t *blended = table.blended.data;

    const int32_t width = base.width;
    LockedDib result(DibCreate(width, base.height, nullptr, 24));
    const WriteView &to = result.View();
    if (!result) return nullptr;
    for (int32_t y = 0; y < base.height; y++) {
        uint8_t *row = to.Row(y);
        int32_t done = 0;
        if (base.bits == 24 && top.bits == 24 && y < top.height) {
            const uint8_t *a = base.Row(y), *b = top.Row(y);
            done = std::min(width, top.width);
            for (ptrdiff_t i = 0; i < static_cast<ptrdiff_t>(done) * 3; i++) row[i] = blended[b[i] << 8 | a[i]];
        }
        for (int32_t x = done; x < width; x++) {
            const uint32_t a = DibGetPixel(base, x, y), b = DibGetPixel(top, x, y);
            row[x * 3] = blended[BlueOf(b) << 8 | BlueOf(a)];
            row[x * 3 + 1] = blended[GreenOf(b) << 8 | GreenOf(a)];
            row[x * 3 + 2] = blended[RedOf(b) << 8 | RedOf(a)];
        }
    }
    return result.Release();
}

} // namespace lmf
