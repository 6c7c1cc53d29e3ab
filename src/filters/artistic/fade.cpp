// Fade: lets the picture fade into the paper colour along one edge.
// Edge chooses the edge, Area how far the fading reaches, in percent of the picture's width or height.
#include <cstring>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/div255.h"
#include "image/core/pixel_pass.h"
#include "image/draw/row_painter.h"

namespace lmf {

namespace {

enum Edge : int32_t { kNorth, kEast, kSouth, kWest };

constexpr PageControl kPage[] = {
    Combo(451, "Edge:", &P::FilterFadeEdge, "North;East;South;West")
        .Help("Chooses the edge at which the picture turns into the paper color."),
    Slider(450, "Area:", &P::FilterFadeArea, {1, 100})
        .In(Unit::Percent)
        .Help("Lets the fading reach this far into the picture, in percent of its height or width."),
};

/// The rows or columns that fade.
struct Band {
    int32_t first = 0, count = 0;
    bool paperFirst; ///< is the paper at its beginning, not at its end?

    Band(int32_t length, int32_t percent, bool startsWithPaper)
        : count(static_cast<int32_t>(int64_t{percent} * length / 100)), paperFirst(startsWithPaper) {
        if (!paperFirst) first = length - count;
    }

    bool Holds(int32_t position) const { return position >= first && position < first + count; }
    /// What the paper has of a pixel, 0 to 255; all of the first one where it begins, but not all of the last one
    /// where it ends.
    uint8_t PaperShare(int32_t position) const {
        if (!Holds(position)) return 0;
        const auto ramp = static_cast<uint8_t>(int64_t{255} * (position - first) / count);
        return paperFirst ? 255 - ramp : ramp;
    }
};

/// Takes a share of each byte, of 255, and adds a byte to it.
LMF_MULTIVERSION
void MixRow(uint8_t *__restrict to, const uint8_t *__restrict from, const uint8_t *__restrict shares,
            const uint8_t *__restrict added, size_t bytes) {
    for (size_t i = 0; i < bytes; i++)
        to[i] = static_cast<uint8_t>(Div255(static_cast<uint16_t>(from[i] * shares[i])) + added[i]);
}

/// The paper at a share of 255.
Color ShareOf(Color paper, uint8_t share) {
    return PackColor(MixBytes(0, RedOf(paper), share), MixBytes(0, GreenOf(paper), share),
                     MixBytes(0, BlueOf(paper), share));
}

/// The fading picture in 24-bit rows. Where rows fade all their pixels are mixed alike; where columns fade all rows.
bool FadeRows(const WriteView &to, const ReadView &from, const Band &band, bool rowsFade, Color paper) {
    const size_t bytes = static_cast<size_t>(from.width) * 3;
    BlockArray<uint8_t> shares(bytes), added(bytes);
    if (!shares || !added) return false;
    const auto setPixels = [&](int32_t left, int32_t right, uint8_t paperShare) {
        std::memset(shares.data + ptrdiff_t{left} * 3, 255 - paperShare, static_cast<size_t>(right - left) * 3);
        FillPixels(added.data, 24, left, right, ShareOf(paper, paperShare));
    };
    for (int32_t x = 0; x < from.width && !rowsFade; x++) setPixels(x, x + 1, band.PaperShare(x));
    for (int32_t y = 0; y < from.height; y++) {
        if (rowsFade) setPixels(0, from.width, band.PaperShare(y));
        MixRow(to.Row(y), from.Row(y), shares.data, added.data, bytes);
    }
    return true;
}

/// The same at any depth. Pixels that fade lose their alpha, as all that are packed from channels do.
void FadePixels(const WriteView &to, const ReadView &from, const Band &band, bool rowsFade, Color paper) {
    for (int32_t y = 0; y < from.height; y++) {
        for (int32_t x = 0; x < from.width; x++) {
            Color color = DibGetPixel(from, x, y);
            const uint8_t share = band.PaperShare(rowsFade ? y : x);
            if (band.Holds(rowsFade ? y : x))
                color = PackColor(MixBytes(RedOf(color), RedOf(paper), share),
                                  MixBytes(GreenOf(color), GreenOf(paper), share),
                                  MixBytes(BlueOf(color), BlueOf(paper), share));
            DibSetPixel(to, x, y, color);
        }
    }
}

DibHandle FadeKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    const int32_t edge = context.FilterFadeEdge;
    const bool rowsFade = edge == kNorth || edge == kSouth;
    const Band band(rowsFade ? source.height : source.width, context.FilterFadeArea, edge == kNorth || edge == kWest);
    if (source.bits != 24)
        FadePixels(pass.to, source, band, rowsFade, context.paperColor);
    else if (!FadeRows(pass.to, source, band, rowsFade, context.paperColor))
        return nullptr;
    return pass.Finish();
}

} // namespace

extern constexpr Filter kFade = MakeFilter<kPage>(FadeKernel);

} // namespace lmf
