#include "image/blur/soft_shadow.h"

#include <cstring>

#include "image/blur/gaussian.h"
#include "image/core/dib_ops.h"

namespace lmf {

namespace {

constexpr int32_t kRadius = 10;
constexpr int32_t kWindow = 2 * kRadius + 1; ///< pixels that weigh in on one

constexpr int32_t SigmaTenths(int32_t softness) {
    return softness + 2;
}

constexpr int32_t kTile = 256;

struct Box {
    int32_t left, top, right, bottom;

    /// The box and what weighs in on it; not smaller than the window, unless the picture is.
    Box Neighbourhood(const ReadView &picture) const {
        Box box = {std::max(left - kRadius, 0), std::max(top - kRadius, 0), std::min(right + kRadius, picture.width),
                   std::min(bottom + kRadius, picture.height)};
        box.left = std::clamp(box.right - kWindow, 0, box.left);
        box.top = std::clamp(box.bottom - kWindow, 0, box.top);
        return box;
    }
};

/// Has the box one level alone?
bool IsFlat(const ReadView &picture, const Box &box) {
    const auto width = static_cast<size_t>(box.right - box.left);
    const uint8_t *first = picture.Row(box.top) + box.left;
    for (int32_t y = box.top; y < box.bottom; y++) {
        const uint8_t *row = picture.Row(y) + box.left;
        // A row is flat when it is its own neighbour.
        if (row[0] != first[0] || std::memcmp(row, row + 1, width - 1) != 0) return false;
    }
    return true;
}

/// @return false without memory
bool BlurTile(const WriteView &to, const ReadView &from, const Box &tile, int32_t softness) {
    const Box cut = tile.Neighbourhood(from);
    ReadView part = from; // of the same rows, so that nothing is copied
    part.width = cut.right - cut.left;
    part.height = cut.bottom - cut.top;
    part.bottom = from.Row(cut.bottom - 1) + cut.left;
    const LockedDib blurred(GaussianBlurDirect(part, kRadius * 10, SigmaTenths(softness)));
    if (!blurred) return false;
    DibCopyRect(to, tile.left, tile.top, blurred, tile.left - cut.left, tile.top - cut.top, tile.right - tile.left,
                tile.bottom - tile.top);
    return true;
}

} // namespace

int32_t ShadowReach(int32_t softness) {
    return std::min((3 * SigmaTenths(softness) + 9) / 10, kRadius);
}

DibHandle SoftShadow(const ReadView &coverage, int32_t softness) {
    LockedDib shadow(DibCreateLike(coverage, coverage.width, coverage.height));
    if (!shadow) return nullptr;
    for (int64_t top = 0; top < coverage.height; top += kTile) {
        for (int64_t left = 0; left < coverage.width; left += kTile) {
            const Box tile = {static_cast<int32_t>(left), static_cast<int32_t>(top),
                              static_cast<int32_t>(std::min<int64_t>(left + kTile, coverage.width)),
                              static_cast<int32_t>(std::min<int64_t>(top + kTile, coverage.height))};
            if (IsFlat(coverage, tile.Neighbourhood(coverage)))
                DibCopyRect(shadow.View(), tile.left, tile.top, coverage, tile.left, tile.top, tile.right - tile.left,
                            tile.bottom - tile.top);
            else if (!BlurTile(shadow.View(), coverage, tile, softness))
                return nullptr;
        }
    }
    return shadow.Release();
}

DibHandle ThrownShadow(const ReadView &coverage, int32_t right, int32_t down, int32_t softness) {
    const LockedDib moved(DibCreateGrey(coverage.width, coverage.height));
    if (!moved) return nullptr;
    DibCopyRect(moved.View(), right, down, coverage, 0, 0, coverage.width, coverage.height);
    return SoftShadow(moved, softness);
}

bool ShadowProfile(uint8_t *to, int32_t count, int32_t start, int32_t end, int32_t softness) {
    // With a margin on both sides, so that the outside counts as empty.
    const int32_t padded = count + 2 * kRadius;
    BlockArray<uint8_t> line(static_cast<uint64_t>(padded)), blurred(static_cast<uint64_t>(padded));
    BlurKernel kernel;
    if (!line || !blurred || BuildGaussianKernel(kWindow, SigmaTenths(softness) / 10.0, &kernel) == 0) return false;
    std::fill(line.data + kRadius + start, line.data + kRadius + end, uint8_t{255});
    BlurLineGrey(kernel->data, kWindow, line.data, blurred.data, padded);
    std::copy_n(blurred.data + kRadius, count, to);
    return true;
}

} // namespace lmf
