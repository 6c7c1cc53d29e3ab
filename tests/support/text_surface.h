// Pictures that tests draw texts on.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "platform/text.h"

namespace lmf::testing {

/// Rows of 24-bit pixels, one grey at first.
struct TextCanvas {
    int32_t width, height;
    std::vector<uint8_t> pixels;

    TextCanvas(int32_t columns, int32_t rows, uint8_t grey = 0)
        : width(columns), height(rows), pixels(static_cast<size_t>(columns) * rows * 3, grey) {}

    TextSurface Surface() { return {pixels.data(), width, height, int64_t{width} * 3}; }
    TextRect All() const { return {0, 0, width, height}; }
    const uint8_t *At(int32_t x, int32_t y) const { return &pixels[(static_cast<size_t>(y) * width + x) * 3]; }
    bool operator==(const TextCanvas &) const = default;
};

/// The smallest box that holds all pixels that are not black; without an area where all are.
inline TextRect InkBox(const TextCanvas &canvas) {
    TextRect box = {canvas.width, canvas.height, 0, 0};
    for (int32_t y = 0; y < canvas.height; y++) {
        for (int32_t x = 0; x < canvas.width; x++) {
            const uint8_t *pixel = canvas.At(x, y);
            if ((pixel[0] | pixel[1] | pixel[2]) == 0) continue;
            box = {std::min(box.left, x), std::min(box.top, y), std::max(box.right, x + 1),
                   std::max(box.bottom, y + 1)};
        }
    }
    return box;
}

} // namespace lmf::testing
