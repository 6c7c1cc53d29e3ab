// Vignette: fades the picture into the paper colour outside an ellipse, as in old portraits.
// Fade is the width of the soft edge, in percent of half the larger side, and Offset how far the ellipse stays from the
// picture's edges, in percent of the smaller side. The soft edge is made of filled ellipses one inside the other; in a
// long picture their narrow side runs out first, and then they grow again on that side.
#include <cmath>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/byte_pass.h"
#include "image/core/div255.h"
#include "image/draw/row_painter.h"
#include "image/geometry/reverse.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(1010, "Fade:", &P::FilterVignetteLevel, {1, 50})
        .In(Unit::Percent)
        .Help("Width of the soft edge, of half the picture's larger side."),
    Slider(1011, "Offset:", &P::FilterVignetteOffsetLevel, {0, 25})
        .In(Unit::Percent)
        .Help("Distance of the soft edge from the picture's edges, of the smaller side."),
};

constexpr int32_t kMostSteps = 256;

/// Where the soft edge lies, in pixels from the picture's edges.
struct SoftEdge {
    int32_t start, width;

    int32_t Steps() const { return std::min(width, kMostSteps); }
    /// Distance of the ellipse of a step. More than kMostSteps pixels are divided evenly.
    int32_t InsetAt(int32_t step) const {
        return start + static_cast<int32_t>(width <= kMostSteps ? step : step * (width * (1.0 / kMostSteps)));
    }
    /// How much of the paper shows in a step: 255 at first, towards 0.
    uint32_t PaperAt(int32_t step) const {
        // The factor is a little less than pi / 180.
        const double angle = step * (90.0 / Steps()) * 0.017453277777777776;
        return static_cast<uint32_t>(255.0 - std::sin(angle) * 255.0);
    }
};

SoftEdge EdgeFor(const ReadView &picture, const FilterParameters &settings) {
    const int64_t smaller = std::min(picture.width, picture.height), larger = std::max(picture.width, picture.height);
    const int64_t start = smaller * settings.FilterVignetteOffsetLevel / 100;
    return {static_cast<int32_t>(start),
            static_cast<int32_t>((larger / 2 - start) * settings.FilterVignetteLevel / 100)};
}

/// What a pixel is made of where so much of the paper shows, as values of DibSetPixel.
struct Shares {
    uint32_t picture; ///< the picture's weight in 255ths, in each channel
    uint32_t paper;   ///< what the paper adds to it
};

/// In grey pictures the whole packed colour is a factor, modulo 2^32, and of the quotient the low byte counts.
Shares SharesAt(uint32_t shows, Color paper, int32_t mode) {
    const auto share = [&](uint32_t factor) { return shows * factor / 255; };
    const Color added = mode == kModeGrey ? share(paper) & 255
                                          : PackColor(share(RedOf(paper)), share(GreenOf(paper)), share(BlueOf(paper)));
    return {(255 - shows) * 0x010101, added};
}

/// The steps of the soft edge, from the outermost to the innermost.
struct Steps {
    int32_t count;
    BlockArray<EllipseShape> ellipses;
    Shares shares[kMostSteps];
    Shares outside;

    Steps(const ReadView &picture, const SoftEdge &edge, Color paper, int32_t mode)
        : count(edge.Steps()), ellipses(static_cast<uint64_t>(count) + 1), outside(SharesAt(255, paper, mode)) {
        if (!ellipses) return;
        for (int32_t i = 0; i < count; i++) {
            const int32_t inset = edge.InsetAt(i);
            ellipses[i] = EllipseShape({inset, inset, picture.width - inset, picture.height - inset});
            shares[i] = SharesAt(edge.PaperAt(i), paper, mode);
        }
    }
};

LMF_MULTIVERSION
void BlendRow(uint8_t *__restrict to, const uint8_t *__restrict from, const uint8_t *__restrict pictureShares,
              const uint8_t *__restrict paperShares, size_t count) {
    for (size_t i = 0; i < count; i++)
        to[i] = static_cast<uint8_t>(Div255(static_cast<uint16_t>(from[i] * pictureShares[i])) + paperShares[i]);
}

/// A row of bytes for each of the two shares. Both sides of a row are alike.
struct ShareRows {
    int32_t width;
    uint32_t bits;
    BlockArray<uint8_t> picture, paper;

    explicit ShareRows(const ReadView &view) : width(view.width), bits(view.bits), picture(Bytes()), paper(Bytes()) {}

    size_t Bytes() const { return static_cast<size_t>(width) * (bits / 8); }
    /// Columns that are to be filled; the others mirror them.
    int32_t Half() const { return width - width / 2; }
    void Fill(int32_t left, int32_t right, const Shares &shares) {
        FillPixels(picture.data, bits, left, right, shares.picture);
        FillPixels(paper.data, bits, left, right, shares.paper);
    }
    void Mirror() {
        const auto right = static_cast<size_t>(Half()) * (bits / 8), count = static_cast<size_t>(width / 2);
        ReversePixels(picture.data + right, picture.data, count, bits / 8);
        ReversePixels(paper.data + right, paper.data, count, bits / 8);
    }
};

/// @return false without memory.
bool Blend(const WriteView &to, const ReadView &from, const Steps &steps) {
    ShareRows shares(from);
    const int32_t half = shares.Half();
    RowGaps gaps(half);
    if (!steps.ellipses || !shares.picture || !shares.paper || !gaps) return false;
    // The lower half of the mask mirrors the upper one.
    for (int32_t y = 0, mirror = from.height - 1; y <= mirror; y++, mirror--) {
        gaps.Reset(0, half);
        PaintLastFirst(gaps, y, steps.ellipses.data, steps.count,
                       [&](int32_t left, int32_t right, int64_t i) { shares.Fill(left, right, steps.shares[i]); });
        gaps.Take({0, half}, [&](int32_t left, int32_t right) { shares.Fill(left, right, steps.outside); });
        shares.Mirror();
        for (int32_t row : {y, mirror})
            BlendRow(to.Row(row), from.Row(row), shares.picture.data, shares.paper.data, shares.Bytes());
    }
    return true;
}

DibHandle VignetteKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source);
    if (!pass) return nullptr;
    const int32_t mode = context.mode;
    if (mode != kModeTrueColor && mode != kModeGrey) return pass.Finish();
    const Steps steps(source, EdgeFor(source, context), context.paperColor, mode);
    return Blend(pass.To(), pass.From(), steps) ? pass.Finish() : nullptr;
}

} // namespace

extern constexpr Filter kVignette = MakeFilter<kPage>(VignetteKernel);

} // namespace lmf
