#include "image/color/nearest_color.h"

namespace lmf {

namespace {

constexpr int32_t kCellWidth = 8;
constexpr int32_t kCells = 32 * 32 * 32;
/// Room for candidates; cells that come after it is used up search the whole palette.
constexpr uint32_t kRoom = 256 + kCells * 16;

} // namespace

NearestFinder::NearestFinder(const Palette768 &colors, int32_t colorCount)
    : palette(colors), count(colorCount), cells(kCells), candidates(kRoom), used(0) {
    if (!candidates) return;
    for (int32_t i = 0; i < count; i++) {
        const uint8_t *rgb = palette.rgb + i * 3;
        candidates[used++] = {rgb[0], rgb[1], rgb[2], static_cast<uint8_t>(i)};
    }
}

namespace {

/// The smallest and the largest distance of an entry from the colours of a cell.
void DistanceRange(const uint8_t *rgb, const int32_t *low, int32_t *nearest, int32_t *farthest) {
    *nearest = *farthest = 0;
    for (int32_t c = 0; c < 3; c++) {
        const int32_t below = low[c] - rgb[c], above = rgb[c] - (low[c] + kCellWidth - 1);
        const int32_t near = std::max({below, above, 0});
        const int32_t far = std::max(below + kCellWidth - 1, above + kCellWidth - 1);
        *nearest += kDistanceWeights[c] * near * near;
        *farthest += kDistanceWeights[c] * far * far;
    }
}

/// Is entry i at least as near as entry j at every colour of the cell? The difference of the two squared distances is
/// linear in each channel, so that it is largest at one of the cell's corners.
bool AlwaysWins(const uint8_t *rgbI, const uint8_t *rgbJ, bool winsTies, const int32_t *low) {
    int32_t largest = 0;
    for (int32_t c = 0; c < 3; c++) {
        const int32_t slope = rgbJ[c] - rgbI[c], middle = rgbJ[c] + rgbI[c];
        const int32_t corner = slope > 0 ? low[c] + kCellWidth - 1 : low[c];
        largest += kDistanceWeights[c] * slope * (2 * corner - middle);
    }
    return largest < 0 || (largest == 0 && winsTies);
}

} // namespace

uint32_t NearestFinder::MakeList(int32_t cell) {
    const int32_t low[3] = {(cell >> 10) * kCellWidth, (cell >> 5 & 31) * kCellWidth, (cell & 31) * kCellWidth};
    int32_t nearest[256];
    int32_t bound = INT32_MAX;
    for (int32_t i = 0; i < count; i++) {
        int32_t farthest;
        DistanceRange(palette.rgb + i * 3, low, &nearest[i], &farthest);
        bound = std::min(bound, farthest);
    }
    int32_t kept[256];
    int32_t keptCount = 0;
    for (int32_t i = 0; i < count; i++) {
        if (nearest[i] <= bound) kept[keptCount++] = i;
    }

    const uint32_t first = used;
    for (int32_t j = 0; j < keptCount; j++) {
        const uint8_t *rgb = palette.rgb + kept[j] * 3;
        bool beaten = false;
        for (int32_t i = 0; i < keptCount && !beaten; i++)
            beaten = i != j && AlwaysWins(palette.rgb + kept[i] * 3, rgb, i < j, low);
        if (beaten) continue;
        if (used == kRoom) {
            used = first;
            return cells[cell] = static_cast<uint32_t>(count);
        }
        candidates[used++] = {rgb[0], rgb[1], rgb[2], static_cast<uint8_t>(kept[j])};
    }
    return cells[cell] = first << 9 | (used - first);
}

} // namespace lmf
