#include "image/steps.h"

#include "image/multiversion.h"

namespace lmf {

// Divisions by a small count n of values up to 255 n are multiplications by 2^shift / n, rounded up, and a shift: exact
// as long as 255 n^2 is below 2^shift.
static constexpr uint32_t kMeanShift = 24;
static constexpr uint32_t kRunShift = 40;
static constexpr int32_t kLargestRun = 60000;

/// The samples of the source that become one sample of the result.
struct Bin {
    int32_t first;
    int32_t count;       ///< at most 100
    uint32_t reciprocal; ///< 2^kMeanShift / count, rounded up
};

/// The two samples of the source that an enlarged sample mixes, each with its truncated share.
struct Mix {
    int32_t first, second;
    uint64_t firstShare, secondShare; ///< in units of 2^-kRunShift
};

static int32_t ScaledSize(int32_t size, int32_t percent) {
    const int64_t scaled = static_cast<int64_t>(size) * percent / 100;
    return scaled >= 1 && scaled <= INT32_MAX ? static_cast<int32_t>(scaled) : 0;
}

static void FillBins(BlockArray<Bin> &bins, int32_t newSize, int32_t size, int32_t percent) {
    int32_t first = 0;
    for (int32_t i = 0; i < newSize; i++) {
        const int64_t wanted = int64_t{100} * (i + int64_t{1}) / percent;
        const auto end = static_cast<int32_t>(std::min<int64_t>(wanted, size));
        const int32_t count = end - first;
        bins[i] = {first, count, count > 0 ? ((1u << kMeanShift) - 1) / static_cast<uint32_t>(count) + 1 : 0};
        first = end;
    }
}

static uint64_t Share(int64_t weight, int64_t run) {
    return static_cast<uint64_t>(weight * (((int64_t{1} << kRunShift) - 1) / run + 1));
}

static void FillMixes(BlockArray<Mix> &mixes, int32_t newSize, int32_t size, int32_t percent) {
    const int64_t step = percent + percent / 100 + (percent % 100 != 0 ? 1 : 0);
    mixes[0] = {0, 0, 0, Share(1, 1)};
    int64_t previous = 0;
    for (int32_t s = 1; s < size && previous < newSize; s++) {
        const int64_t end = s * step / 100;
        const int64_t run = end - previous;
        for (int64_t k = 0; k < run && previous + k < newSize; k++)
            mixes[previous + k] = {s - 1, s, Share(run - 1 - k, run), Share(k + 1, run)};
        if (end < newSize) mixes[end] = {s, s, 0, Share(1, 1)};
        previous = end;
    }
    mixes[newSize - 1] = {size - 1, size - 1, 0, Share(1, 1)};
}

template <int32_t kChannels>
static void ShrinkRow(uint8_t *to, const uint8_t *from, const Bin *bins, int32_t newSize) {
    for (int32_t x = 0; x < newSize; x++) {
        uint32_t sums[kChannels] = {};
        const uint8_t *sample = from + static_cast<ptrdiff_t>(bins[x].first) * kChannels;
        for (int32_t i = 0; i < bins[x].count; i++) {
            for (int32_t c = 0; c < kChannels; c++) sums[c] += *sample++;
        }
        for (int32_t c = 0; c < kChannels; c++)
            *to++ = static_cast<uint8_t>(static_cast<uint64_t>(sums[c]) * bins[x].reciprocal >> kMeanShift);
    }
}

/// ShrinkRow for shares that are all alike.
template <int32_t kChannels, int32_t kShare>
[[gnu::always_inline]] static inline void ShrinkEvenRow(uint8_t *__restrict to, const uint8_t *__restrict from,
                                                        int32_t newSize) {
    for (int32_t x = 0; x < newSize; x++) {
        for (int32_t c = 0; c < kChannels; c++) {
            uint32_t sum = 0;
            for (int32_t i = 0; i < kShare; i++) sum += from[(x * kShare + i) * kChannels + c];
            to[x * kChannels + c] = static_cast<uint8_t>(sum / kShare);
        }
    }
}

LMF_MULTIVERSION
static void HalveRow(uint8_t *to, const uint8_t *from, int32_t channels, int32_t newSize) {
    channels == 3 ? ShrinkEvenRow<3, 2>(to, from, newSize) : ShrinkEvenRow<1, 2>(to, from, newSize);
}

LMF_MULTIVERSION
static void QuarterRow(uint8_t *to, const uint8_t *from, int32_t channels, int32_t newSize) {
    channels == 3 ? ShrinkEvenRow<3, 4>(to, from, newSize) : ShrinkEvenRow<1, 4>(to, from, newSize);
}

/// How the samples of a row become those of a narrower one.
struct RowShares {
    int32_t newSize;
    int32_t share; ///< samples that go into each new one, 0 if that differs
    BlockArray<Bin> bins;

    /// For rows of `size` samples that become `newSize`, at least 1.
    RowShares(int32_t size, int32_t newSize, int32_t percent)
        : newSize(newSize), share(100 % percent == 0 && size / (100 / percent) >= newSize ? 100 / percent : 0),
          bins(static_cast<uint64_t>(newSize)) {
        if (bins) FillBins(bins, newSize, size, percent);
    }

    explicit operator bool() const { return static_cast<bool>(bins); }
    /// @param channels bytes of a sample, 1 or 3.
    void Shrink(uint8_t *to, const uint8_t *from, int32_t channels) const {
        if (share == 2) return HalveRow(to, from, channels, newSize);
        if (share == 4) return QuarterRow(to, from, channels, newSize);
        (channels == 3 ? ShrinkRow<3> : ShrinkRow<1>)(to, from, bins.data, newSize);
    }
};

LMF_MULTIVERSION
static void AddRow(uint32_t *__restrict sums, const uint8_t *__restrict row, size_t count) {
    for (size_t i = 0; i < count; i++) sums[i] += row[i];
}

LMF_MULTIVERSION
static void StoreMeans(uint8_t *__restrict to, uint32_t *__restrict sums, size_t count, uint32_t reciprocal) {
    for (size_t i = 0; i < count; i++) {
        to[i] = static_cast<uint8_t>(sums[i] * reciprocal >> kMeanShift);
        sums[i] = 0;
    }
}

template <int32_t kChannels>
static void EnlargeRow(uint8_t *to, const uint8_t *from, const Mix *mixes, int32_t newSize) {
    for (int32_t x = 0; x < newSize; x++) {
        const Mix mix = mixes[x];
        const uint8_t *first = from + static_cast<ptrdiff_t>(mix.first) * kChannels;
        const uint8_t *second = from + static_cast<ptrdiff_t>(mix.second) * kChannels;
        for (int32_t c = 0; c < kChannels; c++)
            *to++ = static_cast<uint8_t>((first[c] * mix.firstShare >> kRunShift) +
                                         (second[c] * mix.secondShare >> kRunShift));
    }
}

LMF_MULTIVERSION
static void MixRows(uint8_t *__restrict to, const uint8_t *__restrict first, const uint8_t *__restrict second,
                    uint64_t firstShare, uint64_t secondShare, size_t count) {
    for (size_t i = 0; i < count; i++)
        to[i] = static_cast<uint8_t>((first[i] * firstShare >> kRunShift) + (second[i] * secondShare >> kRunShift));
}

static uint32_t MeanPixel(const void *image, const Bin &bin, int32_t line, bool vertical) {
    uint32_t sums[3] = {};
    for (int32_t i = bin.first; i < bin.first + bin.count; i++) {
        const uint32_t pixel = vertical ? DibGetPixel(image, line, i) : DibGetPixel(image, i, line);
        for (int32_t c = 0; c < 3; c++) sums[c] += pixel >> (8 * c) & 0xFF;
    }
    const auto count = static_cast<uint32_t>(std::max(bin.count, 1));
    return PackColor(sums[0] / count, sums[1] / count, sums[2] / count);
}

static uint32_t MixPixel(uint32_t first, uint32_t second, const Mix &mix) {
    uint32_t channels[3];
    for (int32_t c = 0; c < 3; c++)
        channels[c] = static_cast<uint32_t>(((first >> (8 * c) & 0xFF) * mix.firstShare >> kRunShift) +
                                            ((second >> (8 * c) & 0xFF) * mix.secondShare >> kRunShift));
    return PackColor(channels[0], channels[1], channels[2]);
}

static void ShrinkPixels(const DibLock &from, const DibLock &to, const BlockArray<Bin> &bins, bool vertical) {
    for (int32_t y = 0; y < to.view.height; y++) {
        for (int32_t x = 0; x < to.view.width; x++)
            DibSetPixel(to.image, x, y, MeanPixel(from.image, bins[vertical ? y : x], vertical ? x : y, vertical));
    }
}

static void EnlargePixels(const DibLock &from, const DibLock &to, const BlockArray<Mix> &mixes, bool vertical) {
    for (int32_t y = 0; y < to.view.height; y++) {
        for (int32_t x = 0; x < to.view.width; x++) {
            const Mix &mix = mixes[vertical ? y : x];
            const uint32_t first = DibGetPixel(from.image, vertical ? x : mix.first, vertical ? mix.first : y);
            const uint32_t second = DibGetPixel(from.image, vertical ? x : mix.second, vertical ? mix.second : y);
            DibSetPixel(to.image, x, y, MixPixel(first, second, mix));
        }
    }
}

/// Is there a fast form for the depth?
static bool HasRowForm(const DibLock &from) {
    return from.view.bits == 8 || from.view.bits == 24;
}

DibHandle DibShrinkHorz(DibHandle source, int32_t percent) {
    DibLock from(source);
    if (!from) return nullptr;
    DibOwner result(DibCreateLike(from, ScaledSize(from.view.width, percent), from.view.height));
    DibLock to(result.handle);
    if (!to) return nullptr;
    const uint32_t bits = from.view.bits;
    const bool byTriples = bits == 1 || bits > 8;
    // Rows at depths below 24 hold fewer triples than pixels.
    const auto triples = [](const DibView &view) {
        return static_cast<int32_t>(std::min<int64_t>(view.width, view.stride / 3));
    };
    const RowShares shares(byTriples ? triples(from.view) : from.view.width,
                           byTriples ? triples(to.view) : to.view.width, percent);
    if (!shares) return nullptr;
    if (!byTriples && bits != 8) {
        ShrinkPixels(from, to, shares.bins, false);
    } else {
        for (int32_t y = 0; y < to.view.height; y++) shares.Shrink(to.view.Row(y), from.view.Row(y), byTriples ? 3 : 1);
    }
    to.Unlock();
    return result.Release();
}

DibHandle DibShrinkVert(DibHandle source, int32_t percent) {
    DibLock from(source);
    if (!from) return nullptr;
    DibOwner result(DibCreateLike(from, from.view.width, ScaledSize(from.view.height, percent)));
    DibLock to(result.handle);
    if (!to) return nullptr;
    const size_t rowBytes = static_cast<size_t>(from.view.width) * (from.view.bits / 8);
    BlockArray<Bin> bins(static_cast<uint64_t>(to.view.height));
    BlockArray<uint32_t> sums(rowBytes + 1);
    if (!bins || !sums) return nullptr;
    FillBins(bins, to.view.height, from.view.height, percent);
    if (HasRowForm(from)) {
        for (int32_t y = 0; y < to.view.height; y++) {
            for (int32_t i = 0; i < bins[y].count; i++) AddRow(sums.data, from.view.Row(bins[y].first + i), rowBytes);
            StoreMeans(to.view.Row(y), sums.data, rowBytes, bins[y].reciprocal);
        }
    } else {
        ShrinkPixels(from, to, bins, true);
    }
    to.Unlock();
    return result.Release();
}

DibHandle DibEnlargeHorz(DibHandle source, int32_t percent) {
    DibLock from(source);
    if (!from || percent / 100 >= kLargestRun) return nullptr;
    DibOwner result(DibCreateLike(from, ScaledSize(from.view.width, percent), from.view.height));
    DibLock to(result.handle);
    if (!to) return nullptr;
    BlockArray<Mix> mixes(static_cast<uint64_t>(to.view.width));
    if (!mixes) return nullptr;
    FillMixes(mixes, to.view.width, from.view.width, percent);
    if (HasRowForm(from)) {
        for (int32_t y = 0; y < to.view.height; y++)
            (from.view.bits == 24 ? EnlargeRow<3> : EnlargeRow<1>)(to.view.Row(y), from.view.Row(y), mixes.data,
                                                                   to.view.width);
    } else {
        EnlargePixels(from, to, mixes, false);
    }
    to.Unlock();
    return result.Release();
}

DibHandle DibEnlargeVert(DibHandle source, int32_t percent) {
    DibLock from(source);
    if (!from || percent / 100 >= kLargestRun) return nullptr;
    DibOwner result(DibCreateLike(from, from.view.width, ScaledSize(from.view.height, percent)));
    DibLock to(result.handle);
    if (!to) return nullptr;
    BlockArray<Mix> mixes(static_cast<uint64_t>(to.view.height));
    if (!mixes) return nullptr;
    FillMixes(mixes, to.view.height, from.view.height, percent);
    const size_t rowBytes = static_cast<size_t>(from.view.width) * (from.view.bits / 8);
    if (HasRowForm(from)) {
        for (int32_t y = 0; y < to.view.height; y++)
            MixRows(to.view.Row(y), from.view.Row(mixes[y].first), from.view.Row(mixes[y].second), mixes[y].firstShare,
                    mixes[y].secondShare, rowBytes);
    } else {
        EnlargePixels(from, to, mixes, true);
    }
    to.Unlock();
    return result.Release();
}

DibHandle DibScaleSteps(DibHandle source, int32_t percentX, int32_t percentY) {
    DibOwner wide(percentX > 100   ? DibEnlargeHorz(source, percentX)
                  : percentX < 100 ? DibShrinkHorz(source, percentX)
                                   : DibClone(source));
    if (!wide) return nullptr;
    if (percentY > 100) return DibEnlargeVert(wide.handle, percentY);
    return percentY < 100 ? DibShrinkVert(wide.handle, percentY) : DibClone(wide.handle);
}

bool ShrinkRows(const RowFormat &from, RowCall fill, int32_t percentX, int32_t percentY, RowCall take) {
    const int32_t newWidth = ScaledSize(from.width, percentX), newHeight = ScaledSize(from.height, percentY);
    if (newWidth < 1 || newHeight < 1 || std::max(percentX, percentY) > 100) return false;
    const auto channels = static_cast<int32_t>(from.bits / 8);
    const auto newBytes = static_cast<size_t>(newWidth) * static_cast<size_t>(channels);
    const RowShares columns(from.width, newWidth, percentX);
    BlockArray<Bin> rows(static_cast<uint64_t>(newHeight));
    BlockArray<uint8_t> wide(static_cast<uint64_t>(from.width) * static_cast<uint64_t>(channels)), narrow(newBytes);
    BlockArray<uint32_t> sums(newBytes);
    if (!columns || !rows || !wide || !narrow || !sums) return false;
    FillBins(rows, newHeight, from.height, percentY);
    for (int32_t y = 0; y < newHeight; y++) {
        for (int32_t i = 0; i < rows[y].count; i++) {
            fill(rows[y].first + i, wide.data);
            columns.Shrink(narrow.data, wide.data, channels);
            AddRow(sums.data, narrow.data, newBytes);
        }
        StoreMeans(narrow.data, sums.data, newBytes, rows[y].reciprocal);
        take(y, narrow.data);
    }
    return true;
}

} // namespace lmf
