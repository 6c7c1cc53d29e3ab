// The entry nearest to a colour, for whole pictures: exactly what PaletteNearest finds, without looking at all entries.
#pragma once

#include "image/color/palette.h"

namespace lmf {

/// The colour cube is cut into 32 x 32 x 32 cells. A cell that is asked for the first time gets the list of those
/// entries that are nearest to some colour in it; most lists are a few entries long.
struct NearestFinder {
    struct Candidate {
        uint8_t red, green, blue, index;
    };

    Palette768 palette;
    int32_t count;
    BlockArray<uint32_t> cells;       ///< first candidate << 9 | how many; 0 for a cell without a list
    BlockArray<Candidate> candidates; ///< lists one after another, the first of them the whole palette
    uint32_t used;                    ///< candidates in use

    /// `count` is 1 to 256.
    NearestFinder(const Palette768 &palette, int32_t count);
    /// False when there was no memory.
    explicit operator bool() const { return cells && candidates; }

    /// Index of the entry nearest to a colour; channels 0 to 255.
    uint32_t Find(int32_t red, int32_t green, int32_t blue) {
        const int32_t cell = red >> 3 << 10 | green >> 3 << 5 | blue >> 3;
        uint32_t list = cells[cell];
        if (list == 0) list = MakeList(cell);
        const Candidate *candidate = candidates.data + (list >> 9);
        uint32_t best = candidate->index;
        const uint32_t length = list & 511;
        if (length == 1) return best;
        int32_t bestDistance = Distance(*candidate, red, green, blue);
        // In ascending order of index, so that the lowest of equals stays.
        for (uint32_t i = 1; i < length; i++) {
            const int32_t distance = Distance(candidate[i], red, green, blue);
            best = distance < bestDistance ? candidate[i].index : best;
            bestDistance = std::min(distance, bestDistance);
        }
        return best;
    }

private:
    static int32_t Distance(const Candidate &candidate, int32_t red, int32_t green, int32_t blue) {
        return ColorDistance(red - candidate.red, green - candidate.green, blue - candidate.blue);
    }
    uint32_t MakeList(int32_t cell);
};

} // namespace lmf
