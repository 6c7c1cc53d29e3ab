// Hexagon: honeycomb of six-sided tiles, each in the average colour of what it covers.
// Tile size is the width of a tile in pixels. Show lines draws the joints in the paper colour, Line size pixels wide,
// but at most half as wide as a tile.
//
// The tiles stand on a corner. Edges are smooth: each pixel is taken as 4 x 4 samples, and each sample belongs to one
// tile and shows either that or a joint.
#include <cstring>
#include <numbers>

#include "engine/filter.h"
#include "image/core/byte_pass.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(1150, "Tile size:", &P::FilterHexagonSize, {8, 100})
        .In(Unit::Pixels)
        .Help("Makes each tile of the honeycomb this wide."),
    Slider(1152, "Line size:", &P::FilterHexagonLineSize, {1, 25})
        .In(Unit::Pixels)
        .Help("Makes the joints this wide, but at most half as wide as a tile."),
    CheckBox(1151, "Show lines", &P::FilterHexagonLineEnable)
        .Help("Draws joints between the tiles in the paper color."),
};
constexpr EnableRule kRules[] = {EnabledWhileOn(1152, &P::FilterHexagonLineEnable)};

constexpr int32_t kSamples = 4; ///< of a pixel in each direction
constexpr int32_t kWhole = kSamples * kSamples;

/// Lengths in 65536ths of a sample.
constexpr int64_t kUnit = 65536;
constexpr auto kRootOfThree = static_cast<int64_t>(std::numbers::sqrt3 * kUnit);

/// The tiles that reach into one of the columns that repeat every tile's width: two of a row of tiles with an even
/// number, centred on the column's sides, and one of a row with an odd number, centred in its middle.
enum Tile : int32_t { kEvenLeft, kEvenRight, kOdd, kTiles };

/// What a pixel is made of, in samples.
struct Shares {
    uint8_t covered[kTiles]; ///< belong to the tile
    uint8_t shown[kTiles];   ///< of these, what joints leave
    uint8_t joints;
    int8_t soleTile; ///< the one tile that covers and shows the whole pixel, or -1
};

/// A regular honeycomb with a tile's centre on the picture's top left corner. Tile rows are numbered from 0.
struct Honeycomb {
    int32_t size;         ///< a tile's width in pixels
    int64_t apothem;      ///< from a tile's centre to its edges
    int64_t shownApothem; ///< the same up to the joints
    int64_t rowDistance;  ///< of the centres of tile rows

    Honeycomb(int32_t tileSize, int32_t lineSize)
        : size(tileSize), apothem(size * kSamples * kUnit / 2),
          shownApothem(apothem - std::min(lineSize, size / 2) * kSamples * kUnit / 2),
          rowDistance(apothem * kRootOfThree / kUnit) {}

    /// The centre of a row of samples.
    static int64_t HeightOf(int64_t sampleRow) { return sampleRow * kUnit + kUnit / 2; }
    /// The upper one of the two tile rows, n and n + 1, that reach into row y of the picture.
    int64_t UpperRow(int64_t y) const { return HeightOf(y * kSamples) / rowDistance; }

    /// Half the width of a tile, this far above or below its centre; below 0 where it has ended.
    static int64_t HalfWidth(int64_t ofApothem, int64_t away) {
        return std::min(ofApothem, 2 * ofApothem - away * kRootOfThree / kUnit);
    }

    /// The shares of the `size` pixels of a column in row y.
    void SharesOf(int64_t y, Shares *shares) const {
        std::memset(shares, 0, sizeof *shares * static_cast<size_t>(size));
        const int64_t width = 2 * apothem;
        for (int64_t row = y * kSamples; row < (y + 1) * kSamples; row++) {
            const int64_t upper = HeightOf(row) / rowDistance, below = HeightOf(row) - upper * rowDistance;
            const int64_t evenAway = upper % 2 == 0 ? below : rowDistance - below;
            const int64_t oddAway = rowDistance - evenAway;
            const int64_t upperHalf = std::max<int64_t>(HalfWidth(apothem, below), 0);
            const int64_t evenHalf = upper % 2 == 0 ? upperHalf : apothem - upperHalf;
            const int64_t shownEven = HalfWidth(shownApothem, evenAway), shownOdd = HalfWidth(shownApothem, oddAway);
            for (int32_t i = 0; i < size * kSamples; i++) {
                const int64_t x = HeightOf(i);
                const bool isLeft = x < apothem;
                const int64_t fromEven = isLeft ? x : width - x, fromOdd = apothem - fromEven;
                const bool isEven = fromEven < evenHalf;
                const Tile tile = !isEven ? kOdd : isLeft ? kEvenLeft : kEvenRight;
                Shares &pixel = shares[i / kSamples];
                pixel.covered[tile]++;
                const bool isShown = isEven ? fromEven < shownEven : fromOdd < shownOdd;
                if (isShown || shownApothem == apothem) pixel.shown[tile]++;
            }
        }
        for (int32_t i = 0; i < size; i++) {
            shares[i].joints = kWhole;
            shares[i].soleTile = -1;
            for (int32_t tile = 0; tile < kTiles; tile++) {
                shares[i].joints = static_cast<uint8_t>(shares[i].joints - shares[i].shown[tile]);
                if (shares[i].shown[tile] == kWhole) shares[i].soleTile = static_cast<int8_t>(tile);
            }
        }
    }
};

/// The sums of what a tile covers: three channels and the number of samples.
struct TileSums {
    uint32_t channels[3], samples;
};

/// The sums and, later, the colours of the tiles of three rows: those that two neighbouring bands of the picture reach.
struct TileRows {
    int64_t tiles; ///< in a row
    BlockArray<TileSums> sums;

    TileRows(int32_t width, int32_t size) : tiles(width / size + 2), sums(static_cast<uint64_t>(tiles) * 3) {}

    TileSums *Row(int64_t row) { return &sums[row % 3 * tiles]; }
    void Clear(int64_t row) { std::memset(Row(row), 0, sizeof(TileSums) * static_cast<size_t>(tiles)); }
    /// Turns the sums of a row into means, which stand in the same place.
    void TakeMeans(int64_t row) {
        for (int64_t i = 0; i < tiles; i++) {
            TileSums &tile = Row(row)[i];
            if (tile.samples == 0) continue;
            for (uint32_t &channel : tile.channels) channel = (channel + tile.samples / 2) / tile.samples;
        }
    }
};

/// A picture under the honeycomb.
struct Tiling {
    const Honeycomb comb;
    const ReadView &from;
    const WriteView &to;
    const uint8_t paper[3]; ///< blue, green, red
    TileRows rows;
    BlockArray<Shares> shares;

    Tiling(const Honeycomb &honeycomb, BytePass &pass, Color joints)
        : comb(honeycomb), from(pass.From()), to(pass.To()), paper{BlueOf(joints), GreenOf(joints), RedOf(joints)},
          rows(from.width, comb.size), shares(static_cast<uint64_t>(comb.size)) {}

    /// Calls work(x, pixels, tiles) for each column with as many of its pixels as lie in the picture.
    template <typename Work>
    void ForEachColumn(int64_t upper, Work work) {
        TileSums *even = rows.Row(upper + upper % 2), *odd = rows.Row(upper + 1 - upper % 2);
        for (int32_t x = 0, i = 0; x < from.width; x += comb.size, i++) {
            TileSums *const tiles[kTiles] = {even + i, even + i + 1, odd + i};
            work(x, std::min(comb.size, from.width - x), tiles);
        }
    }

    void AddRow(int32_t y) {
        comb.SharesOf(y, shares.data);
        const uint8_t *row = from.Row(y);
        ForEachColumn(comb.UpperRow(y), [&](int32_t x, int32_t pixels, TileSums *const *tiles) {
            const uint8_t *pixel = row + int64_t{x} * 3;
            for (int32_t i = 0; i < pixels;) {
                const int32_t sole = shares[i].soleTile;
                uint32_t blue = 0, green = 0, red = 0, run = 0;
                if (sole >= 0) {
                    for (; i < pixels && shares[i].soleTile == sole; i++, run++, pixel += 3) {
                        blue += pixel[0];
                        green += pixel[1];
                        red += pixel[2];
                    }
                    Add(*tiles[sole], blue, green, red, run * kWhole, kWhole);
                } else {
                    for (int32_t tile = 0; tile < kTiles; tile++)
                        Add(*tiles[tile], pixel[0], pixel[1], pixel[2], shares[i].covered[tile],
                            shares[i].covered[tile]);
                    i++;
                    pixel += 3;
                }
            }
        });
    }
    static void Add(TileSums &sums, uint32_t blue, uint32_t green, uint32_t red, uint32_t samples, uint32_t weight) {
        sums.channels[0] += blue * weight;
        sums.channels[1] += green * weight;
        sums.channels[2] += red * weight;
        sums.samples += samples;
    }

    void PaintRow(int32_t y) {
        comb.SharesOf(y, shares.data);
        uint8_t *row = to.Row(y);
        ForEachColumn(comb.UpperRow(y), [&](int32_t x, int32_t pixels, TileSums *const *tiles) {
            uint8_t *pixel = row + int64_t{x} * 3;
            for (int32_t i = 0; i < pixels; i++, pixel += 3) {
                const Shares &share = shares[i];
                if (share.soleTile >= 0) {
                    const uint32_t *color = tiles[share.soleTile]->channels;
                    for (int32_t c = 0; c < 3; c++) pixel[c] = static_cast<uint8_t>(color[c]);
                    continue;
                }
                for (int32_t c = 0; c < 3; c++) {
                    uint32_t sum = kWhole / 2 + share.joints * uint32_t{paper[c]};
                    for (int32_t tile = 0; tile < kTiles; tile++) sum += share.shown[tile] * tiles[tile]->channels[c];
                    pixel[c] = static_cast<uint8_t>(sum / kWhole);
                }
            }
        });
    }

    /// A band is what lies between the centres of two tile rows. It is painted when the next one has been summed.
    void Run() {
        rows.Clear(0);
        rows.Clear(1);
        int32_t summed = 0, painted = 0;
        for (int64_t band = 0; painted < from.height; band++) {
            rows.Clear(band + 1);
            for (; summed < from.height && comb.UpperRow(summed) == band; summed++) AddRow(summed);
            rows.TakeMeans(band);
            for (; band > 0 && painted < from.height && comb.UpperRow(painted) == band - 1; painted++)
                PaintRow(painted);
        }
    }
};

DibHandle HexagonKernel(const ReadView &source, FilterContext &context) {
    BytePass pass(source);
    if (!pass.IsColor()) return nullptr;
    const int32_t line = context.FilterHexagonLineEnable != 0 ? context.FilterHexagonLineSize : 0;
    Tiling tiling({context.FilterHexagonSize, line}, pass, context.paperColor);
    if (!tiling.rows.sums || !tiling.shares) return nullptr;
    tiling.Run();
    return pass.Finish();
}

} // namespace

extern constexpr Filter kHexagon = MakeFilter<kPage, kRules>(HexagonKernel);

} // namespace lmf
