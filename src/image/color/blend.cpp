#include "image/color/blend.h"

#include <cstdlib>

#include "image/core/rows.h"

namespace lmf {

namespace {

int32_t Overlay(int32_t a, int32_t b, bool dark) {
    return dark ? 2 * a * b / 255 : 255 - 2 * (255 - a) * (255 - b) / 255;
}

int32_t VividLight(int32_t a, int32_t b) {
    if (b >= 128) return std::min(a * 256 / (511 - 2 * b), 255);
    return b == 0 ? 0 : std::max(255 + (a - 255) * 256 / (2 * b), 0);
}

int32_t SoftLight(int32_t a, int32_t b) {
    const auto half = static_cast<float>(a >> 1), top = static_cast<float>(b);
    const float mixed =
        b < 128 ? (2.0f * half + 128.0f) * (top / 255.0f) : 255.0f - 2.0f * (191.0f - half) * (255.0f - top) / 255.0f;
    return static_cast<int32_t>(mixed) & 255;
}

int32_t LiquidLight(int32_t a, int32_t b) {
    return b < 128 ? std::max(a + 2 * b - 255, 0) : std::min(a + 2 * b - 256, 255);
}

/// One channel: a of the base, b of the top.
int32_t BlendChannel(uint32_t mode, int32_t a, int32_t b) {
    switch (mode) {
    case kBlendLighten:
        return std::max(a, b);
    case kBlendDarken:
        return std::min(a, b);
    case kBlendMultiply:
        return a * b / 255;
    case kBlendAverage:
        return (a + b) >> 1;
    case kBlendAdd:
    case kBlendExtremeDodge:
        return std::min(a + b, 255);
    case kBlendSubtract:
    case kBlendExtremeBurn:
        return std::max(a + b - 255, 0);
    case kBlendDifference:
        return std::abs(a - b);
    case kBlendNegate:
        return 255 - std::abs(255 - a - b);
    case kBlendScreen:
        return 255 - (((255 - a) * (255 - b)) >> 8);
    case kBlendExclude:
        return a + b - 2 * a * b / 255;
    case kBlendOverlay:
        return Overlay(a, b, b < 128);
    case kBlendSoftLight:
        return SoftLight(a, b);
    case kBlendHardLight:
        return Overlay(a, b, a < 128);
    case kBlendLiquidLight:
        return LiquidLight(a, b);
    case kBlendVividLight:
        return VividLight(a, b);
    case kBlendPointLight:
        return b < 128 ? std::min(a, 2 * b) : std::max(a, 2 * b - 256);
    case kBlendExtremeMix:
        return VividLight(a, b) < 128 ? 0 : 255;
    case kBlendReflect:
        return b == 255 ? 255 : std::min(a * a / (255 - b), 255);
    case kBlendDodge:
        return b == 255 ? 255 : std::min(a * 256 / (255 - b), 255);
    case kBlendBurn:
        return b == 0 ? 0 : std::max(255 + (a - 255) * 256 / b, 0);
    default:
        return a;
    }
}

} // namespace

// Divisions make most modes slow: all pairs are blended once.
BlendTable::BlendTable(uint32_t mode) : blended(65536) {
    for (int32_t i = 0; blended && i < 65536; i++)
        blended[i] = static_cast<uint8_t>(BlendChannel(mode, i & 255, i >> 8));
}

DibHandle DibBlend(const ReadView &base, const ReadView &top, uint32_t mode) {
    const BlendTable table(mode);
    // The rows as bytes. Where the top ends, its pixels are all ones.
    const uint64_t topBytes = 3 * static_cast<uint64_t>(std::max(base.width, top.width));
    BlockArray<uint8_t> baseRow(3 * static_cast<uint64_t>(base.width)), topRow(topBytes);
    LockedDib result(DibCreate(base.width, base.height, nullptr, 24));
    if (!table || !baseRow || !topRow || !result) return nullptr;
    const uint8_t *blended = table.blended.data;
    std::fill(topRow.data, topRow.data + topBytes, uint8_t{255});
    for (int32_t y = 0; y < base.height; y++) {
        ReadBgrRow(baseRow.data, base, y);
        if (y < top.height) ReadBgrRow(topRow.data, top, y);
        if (y == top.height) std::fill(topRow.data, topRow.data + topBytes, uint8_t{255});
        const uint8_t *a = baseRow.data, *b = topRow.data;
        uint8_t *to = result.View().Row(y);
        for (ptrdiff_t i = 0; i < ptrdiff_t{base.width} * 3; i++) to[i] = blended[b[i] << 8 | a[i]];
    }
    return result.Release();
}

} // namespace lmf
