#include "image/core/pixel_map.h"

#include "common/multiversion.h"

#if LMF_HAS_MULTIVERSION
#include <immintrin.h>
#endif

namespace lmf {

namespace {

void LookUpInOrder(uint8_t *__restrict to, const uint8_t *__restrict from, size_t count, const ToneTable &table) {
    for (size_t i = 0; i < count; i++) to[i] = table.at[from[i]];
}

void LookUpPixelsInOrder(uint8_t *__restrict to, const uint8_t *__restrict from, size_t pixels,
                         const ChannelTables &tables) {
    for (size_t i = 0; i < pixels; i++) {
        to[i * 3] = tables.blue.at[from[i * 3]];
        to[i * 3 + 1] = tables.green.at[from[i * 3 + 1]];
        to[i * 3 + 2] = tables.red.at[from[i * 3 + 2]];
    }
}

} // namespace

#if LMF_HAS_MULTIVERSION

// Processors with the byte permutation of AVX-512 VBMI hold a whole table in four registers and look up 64 bytes at a
// time, as fast as memory delivers them.
#define LMF_VBMI __attribute__((target("arch=x86-64-v4,avx512vbmi")))

namespace {

bool HasVbmi() {
    return __builtin_cpu_supports("avx512vbmi") && __builtin_cpu_supports("avx512bw");
}

struct TableRegisters {
    __m512i quarter[4];
};

LMF_VBMI inline TableRegisters LoadTable(const ToneTable &table) {
    TableRegisters registers;
    for (int i = 0; i < 4; i++) registers.quarter[i] = _mm512_loadu_si512(table.at + 64 * i);
    return registers;
}

LMF_VBMI inline __m512i LookUp64(__m512i index, const TableRegisters &table) {
    const __m512i low = _mm512_permutex2var_epi8(table.quarter[0], index, table.quarter[1]);
    const __m512i high = _mm512_permutex2var_epi8(table.quarter[2], index, table.quarter[3]);
    return _mm512_mask_blend_epi8(_mm512_movepi8_mask(index), low, high);
}

/// As many whole steps of 64 bytes as there are. @return the bytes done.
LMF_VBMI size_t LookUpSteps(uint8_t *__restrict to, const uint8_t *__restrict from, size_t count,
                            const ToneTable &table) {
    const TableRegisters registers = LoadTable(table);
    size_t i = 0;
    for (; i + 64 <= count; i += 64) _mm512_storeu_si512(to + i, LookUp64(_mm512_loadu_si512(from + i), registers));
    return i;
}

/// As many whole steps of 64 pixels as there are. @return the pixels done.
LMF_VBMI size_t LookUpPixelSteps(uint8_t *__restrict to, const uint8_t *__restrict from, size_t pixels,
                                 const ChannelTables &tables) {
    const TableRegisters blue = LoadTable(tables.blue), green = LoadTable(tables.green), red = LoadTable(tables.red);
    // Bit i is set where byte 64 * part + i of a step is green or red.
    uint64_t isGreen[3] = {}, isRed[3] = {};
    for (int i = 0; i < 192; i++) {
        if (i % 3 == 1) isGreen[i / 64] |= uint64_t{1} << i % 64;
        if (i % 3 == 2) isRed[i / 64] |= uint64_t{1} << i % 64;
    }
    size_t i = 0;
    for (; i + 64 <= pixels; i += 64) {
        for (int part = 0; part < 3; part++) {
            const __m512i index = _mm512_loadu_si512(from + i * 3 + part * 64);
            __m512i value = LookUp64(index, blue);
            value = _mm512_mask_blend_epi8(isGreen[part], value, LookUp64(index, green));
            value = _mm512_mask_blend_epi8(isRed[part], value, LookUp64(index, red));
            _mm512_storeu_si512(to + i * 3 + part * 64, value);
        }
    }
    return i;
}

} // namespace

#else

namespace {

bool HasVbmi() {
    return false;
}

size_t LookUpSteps(uint8_t *, const uint8_t *, size_t, const ToneTable &) {
    return 0;
}
size_t LookUpPixelSteps(uint8_t *, const uint8_t *, size_t, const ChannelTables &) {
    return 0;
}

} // namespace

#endif

void LookUpBytes(uint8_t *__restrict to, const uint8_t *__restrict from, size_t count, const ToneTable &table) {
    const size_t done = HasVbmi() ? LookUpSteps(to, from, count, table) : 0;
    LookUpInOrder(to + done, from + done, count - done, table);
}

void LookUpPixels(uint8_t *__restrict to, const uint8_t *__restrict from, size_t pixels, const ChannelTables &tables) {
    const size_t done = HasVbmi() ? LookUpPixelSteps(to, from, pixels, tables) : 0;
    LookUpPixelsInOrder(to + done * 3, from + done * 3, pixels - done, tables);
}

void MapChannels(const PixelPass &pass, const ChannelTables &tables) {
    MapColors(pass, [&](uint8_t *to, const uint8_t *from, size_t width) { LookUpPixels(to, from, width, tables); });
}

void MapChannels(const PixelPass &pass, const ToneTable &table) {
    MapColors(pass, [&](uint8_t *to, const uint8_t *from, size_t width) { LookUpBytes(to, from, width * 3, table); });
}

DibHandle MapPaletteChannels(const ReadView &source, const ChannelTables &tables) {
    LockedDib copy(DibClone(source));
    const WriteView &lock = copy.View();
    if (!copy || !CanReadPixels(lock.bits)) return nullptr;
    Palette768 palette;
    const uint32_t entries = DibReadPalette(lock, &palette);
    for (uint32_t i = 0; i < entries; i++) {
        palette.rgb[i * 3] = tables.red.at[palette.rgb[i * 3]];
        palette.rgb[i * 3 + 1] = tables.green.at[palette.rgb[i * 3 + 1]];
        palette.rgb[i * 3 + 2] = tables.blue.at[palette.rgb[i * 3 + 2]];
    }
    DibWritePalette(lock, palette);
    return copy.Release();
}

} // namespace lmf
