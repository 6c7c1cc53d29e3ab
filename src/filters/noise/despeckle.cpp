// Despeckle: flattens specks of a pixel or so. In eight directions, first lifting and then lowering, a value moves by
// one level towards its neighbours where it stands out from them (complementary hulling: T. R. Crimmins, 1985). What
// lies outside the picture counts as 0. There are no settings.
#include <array>
#include <cstring>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/byte_pass.h"

namespace lmf {

namespace {

/// One sweep over the picture. Each hull is two of them: values are moved in the first and checked against both
/// neighbours in the second.
struct Sweep {
    int32_t dx, dy; ///< to the neighbour, dy in rows as they lie in memory
    bool lifts;
    bool checks; ///< the second sweep of its hull
    int32_t lag; ///< rows that it stays behind the row that is being read
};

constexpr int32_t kSweeps = 32;

constexpr std::array<Sweep, kSweeps> kSequence = [] {
    constexpr int32_t kDirections[4][2] = {{0, 1}, {1, 0}, {1, 1}, {-1, 1}};
    constexpr int32_t kSigns[4] = {1, -1, -1, 1};
    std::array<Sweep, kSweeps> sequence{};
    size_t count = 0;
    int32_t lag = 0;
    for (const auto &direction : kDirections) {
        for (int32_t hull = 0; hull < 4; hull++) {
            const int32_t dx = kSigns[hull] * direction[0], dy = kSigns[hull] * direction[1];
            for (bool checks : {false, true}) {
                if (dy != 0) lag++;
                sequence[count++] = {dx, dy, hull < 2, checks, lag};
            }
        }
    }
    return sequence;
}();

using SweepFunction = void (*)(uint8_t *__restrict to, const uint8_t *__restrict from, const uint8_t *ahead,
                               const uint8_t *behind, size_t count);

// In all four `ahead` and `behind` are the neighbours of `from` in the direction and against it. Sums wrap: one more
// than 255 is 0.

LMF_MULTIVERSION
void Lift(uint8_t *__restrict to, const uint8_t *__restrict from, const uint8_t *ahead, const uint8_t *, size_t count) {
    for (size_t i = 0; i < count; i++) to[i] = static_cast<uint8_t>(from[i] + (ahead[i] > from[i] ? 1 : 0));
}

LMF_MULTIVERSION
void Lower(uint8_t *__restrict to, const uint8_t *__restrict from, const uint8_t *ahead, const uint8_t *,
           size_t count) {
    for (size_t i = 0; i < count; i++) {
        const auto limit = static_cast<uint8_t>(ahead[i] + 1);
        to[i] = static_cast<uint8_t>(from[i] - (from[i] > limit ? 1 : 0));
    }
}

LMF_MULTIVERSION
void LiftChecked(uint8_t *__restrict to, const uint8_t *__restrict from, const uint8_t *ahead, const uint8_t *behind,
                 size_t count) {
    for (size_t i = 0; i < count; i++) {
        const auto limit = static_cast<uint8_t>(behind[i] + 1);
        to[i] = static_cast<uint8_t>(from[i] + ((from[i] < limit) & (ahead[i] > from[i]) ? 1 : 0));
    }
}

LMF_MULTIVERSION
void LowerChecked(uint8_t *__restrict to, const uint8_t *__restrict from, const uint8_t *ahead, const uint8_t *behind,
                  size_t count) {
    for (size_t i = 0; i < count; i++) {
        const auto limit = static_cast<uint8_t>(behind[i] + 1);
        to[i] = static_cast<uint8_t>(from[i] - ((limit < from[i]) & (ahead[i] < from[i]) ? 1 : 0));
    }
}

constexpr SweepFunction kSweep[2][2] = {{Lower, LowerChecked}, {Lift, LiftChecked}};

/// The last three rows of the picture and of what each sweep has made of it, with a frame of zeros, so that all sweeps
/// run side by side over the picture, each a row behind the one before where it looks at rows, without ever
/// holding more than these rows.
struct SweepRows {
    BlockArray<uint8_t> bytes;
    size_t stride;
    int32_t height;

    SweepRows(size_t rowBytes, int32_t pictureHeight)
        : bytes((rowBytes + 6) * (3 * (kSweeps + 1) + 1)), stride(rowBytes + 6), height(pictureHeight) {}

    /// First pixel of memory row y after `stage` sweeps; a row of zeros outside the picture.
    uint8_t *Row(int32_t stage, int32_t y) const {
        const bool inside = y >= 0 && y < height;
        return bytes.data + stride * static_cast<size_t>(inside ? stage * 3 + y % 3 : (kSweeps + 1) * 3) + 3;
    }
};

DibHandle DespeckleKernel(const ReadView &source, FilterContext &) {
    BytePass pass(source);
    if (!pass.IsColor()) return nullptr;
    const int32_t height = source.height;
    const size_t rowBytes = static_cast<size_t>(source.width) * 3;
    const SweepRows rows(rowBytes, height);
    if (!rows.bytes) return nullptr;
    for (int64_t newest = 0; newest < static_cast<int64_t>(height) + kSequence.back().lag; newest++) {
        if (newest < height)
            std::memcpy(rows.Row(0, static_cast<int32_t>(newest)), pass.From().MemoryRow(static_cast<int32_t>(newest)),
                        rowBytes);
        for (int32_t i = 0; i < kSweeps; i++) {
            const Sweep &sweep = kSequence[static_cast<size_t>(i)];
            const auto y = static_cast<int32_t>(newest - sweep.lag);
            if (y < 0 || y >= height) continue;
            kSweep[sweep.lifts][sweep.checks](rows.Row(i + 1, y), rows.Row(i, y),
                                              rows.Row(i, y + sweep.dy) + sweep.dx * 3,
                                              rows.Row(i, y - sweep.dy) - sweep.dx * 3, rowBytes);
        }
        const auto done = static_cast<int32_t>(newest - kSequence.back().lag);
        if (done >= 0) std::memcpy(pass.To().MemoryRow(done), rows.Row(kSweeps, done), rowBytes);
    }
    return pass.Finish();
}

} // namespace

extern constexpr Filter kDespeckle = MakeFilter(DespeckleKernel);

} // namespace lmf
