#include "image/scale/steps.h"

#include "common/multiversion.h"
#include "image/core/byte_pass.h"

namespace lmf {

namespace {

// Divisions by a small count n of values up to 255 n are multiplications by 2^shift / n, rounded up, and a shift: exact
// as long as 255 n^2 is below 2^shift: bins hold up to 100 samples, runs up to 60000 percentages.
constexpr uint32_t kMeanShift = 24;
constexpr uint32_t kRunShift = 40;

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

int32_t ScaledSize(int32_t size, int32_t percent) {
    const int64_t scaled = static_cast<int64_t>(size) * percent / 100;
    return scaled >= 1 && scaled <= INT32_MAX ? static_cast<int32_t>(scaled) : 0;
}

void FillBins(BlockArray<Bin> &bins, int32_t newSize, int32_t size, int32_t percent) {
    int32_t first = 0;
    for (int32_t i = 0; i < newSize; i++) {
        const int64_t wanted = int64_t{100} * (i + int64_t{1}) / percent;
        const auto end = static_cast<int32_t>(std::min<int64_t>(wanted, size));
        const int32_t count = end - first;
        bins[i] = {first, count, count > 0 ? ((1u << kMeanShift) - 1) / static_cast<uint32_t>(count) + 1 : 0};
        first = end;
    }
}

uint64_t Share(int64_t weight, int64_t run) {
    return static_cast<uint64_t>(weight * (((int64_t{1} << kRunShift) - 1) / run + 1));
}

void FillMixes(BlockArray<Mix> &mixes, int32_t newSize, int32_t size, int32_t percent) {
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
void ShrinkRow(uint8_t *to, const uint8_t *from, const Bin *bins, int32_t newSize) {
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
[[gnu::always_inline]] inline void ShrinkEvenRow(uint8_t *__restrict to, const uint8_t *__restrict from,
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
void HalveRow(uint8_t *to, const uint8_t *from, int32_t channels, int32_t newSize) {
    channels == 3 ? ShrinkEvenRow<3, 2>(to, from, newSize) : ShrinkEvenRow<1, 2>(to, from, newSize);
}

LMF_MULTIVERSION
void QuarterRow(uint8_t *to, const uint8_t *from, int32_t channels, int32_t newSize) {
    channels == 3 ? ShrinkEvenRow<3, 4>(to, from, newSize) : ShrinkEvenRow<1, 4>(to, from, newSize);
}

/// How the samples of a row become those of a narrower one.
struct RowShares {
    int32_t newSize;
    int32_t share; ///< samples that go into each new one, 0 if that differs
    BlockArray<Bin> bins;

    /// For rows of `size` samples that become `made`, at least 1.
    RowShares(int32_t size, int32_t made, int32_t percent)
        : newSize(made), share(100 % percent == 0 && size / (100 / percent) >= newSize ? 100 / percent : 0),
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
void AddRow(uint32_t *__restrict sums, const uint8_t *__restrict row, size_t count) {
    for (size_t i = 0; i < count; i++) sums[i] += row[i];
}

LMF_MULTIVERSION
void StoreMeans(uint8_t *__restrict to, uint32_t *__restrict sums, size_t count, uint32_t reciprocal) {
    for (size_t i = 0; i < count; i++) {
        to[i] = static_cast<uint8_t>(sums[i] * reciprocal >> kMeanShift);
        sums[i] = 0;
    }
}

template <int32_t kChannels>
void EnlargeRow(uint8_t *to, const uint8_t *from, const Mix *mixes, int32_t newSize) {
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
void MixRows(uint8_t *__restrict to, const uint8_t *__restrict first, const uint8_t *__restrict second,
             uint64_t firstShare, uint64_t secondShare, size_t count) {
    for (size_t i = 0; i < count; i++)
        to[i] = static_cast<uint8_t>((first[i] * firstShare >> kRunShift) + (second[i] * secondShare >> kRunShift));
}

/// @return false without memory.
bool ShrinkRows(const WriteView &to, const ReadView &from, int32_t channels, int32_t percent) {
    const RowShares shares(from.width, to.width, percent);
    if (!shares) return false;
    for (int32_t y = 0; y < to.height; y++) shares.Shrink(to.Row(y), from.Row(y), channels);
    return true;
}

/// Takes rows of any depth as if they had three bytes a pixel; at depths below 24 they hold fewer triples than pixels.
DibHandle ShrinkTriples(const ReadView &source, int32_t percent) {
    LockedDib result(DibCreateLike(source, ScaledSize(source.width, percent), source.height));
    if (!result) return nullptr;
    ReadView from = source;
    WriteView to = result.View();
    from.width = static_cast<int32_t>(std::min<int64_t>(from.width, from.stride / 3));
    to.width = static_cast<int32_t>(std::min<int64_t>(to.width, to.stride / 3));
    return ShrinkRows(to, from, 3, percent) ? result.Release() : nullptr;
}

} // namespace

DibHandle DibShrinkHorz(const ReadView &source, int32_t percent) {
    if (source.bits == 1 || source.bits > 8) return ShrinkTriples(source, percent);
    BytePass pass(source, ScaledSize(source.width, percent), source.height);
    if (!pass || !ShrinkRows(pass.To(), pass.From(), 1, percent)) return nullptr;
    return pass.Finish();
}

DibHandle DibShrinkVert(const ReadView &source, int32_t percent) {
    BytePass pass(source, source.width, ScaledSize(source.height, percent));
    if (!pass) return nullptr;
    const ReadView &from = pass.From();
    const WriteView &to = pass.To();
    const auto rowBytes = static_cast<size_t>(from.width) * static_cast<size_t>(pass.Channels());
    BlockArray<Bin> bins(static_cast<uint64_t>(to.height));
    BlockArray<uint32_t> sums(rowBytes);
    if (!bins || !sums) return nullptr;
    FillBins(bins, to.height, from.height, percent);
    for (int32_t y = 0; y < to.height; y++) {
        for (int32_t i = 0; i < bins[y].count; i++) AddRow(sums.data, from.Row(bins[y].first + i), rowBytes);
        StoreMeans(to.Row(y), sums.data, rowBytes, bins[y].reciprocal);
    }
    return pass.Finish();
}

DibHandle DibEnlargeHorz(const ReadView &source, int32_t percent) {
    BytePass pass(source, ScaledSize(source.width, percent), source.height);
    if (!pass) return nullptr;
    const WriteView &to = pass.To();
    BlockArray<Mix> mixes(static_cast<uint64_t>(to.width));
    if (!mixes) return nullptr;
    FillMixes(mixes, to.width, source.width, percent);
    const auto enlargeRow = pass.Channels() == 1 ? EnlargeRow<1> : EnlargeRow<3>;
    for (int32_t y = 0; y < to.height; y++) enlargeRow(to.Row(y), pass.From().Row(y), mixes.data, to.width);
    return pass.Finish();
}

DibHandle DibEnlargeVert(const ReadView &source, int32_t percent) {
    BytePass pass(source, source.width, ScaledSize(source.height, percent));
    if (!pass) return nullptr;
    const ReadView &from = pass.From();
    const WriteView &to = pass.To();
    BlockArray<Mix> mixes(static_cast<uint64_t>(to.height));
    if (!mixes) return nullptr;
    FillMixes(mixes, to.height, from.height, percent);
    const auto rowBytes = static_cast<size_t>(from.width) * static_cast<size_t>(pass.Channels());
    for (int32_t y = 0; y < to.height; y++) {
        const Mix &mix = mixes[y];
        MixRows(to.Row(y), from.Row(mix.first), from.Row(mix.second), mix.firstShare, mix.secondShare, rowBytes);
    }
    return pass.Finish();
}

DibHandle DibScaleSteps(const ReadView &source, int32_t percentX, int32_t percentY) {
    LockedDib wide(percentX > 100   ? DibEnlargeHorz(source, percentX)
                   : percentX < 100 ? DibShrinkHorz(source, percentX)
                                    : DibClone(source));
    if (!wide) return nullptr;
    if (percentY > 100) return DibEnlargeVert(wide, percentY);
    return percentY < 100 ? DibShrinkVert(wide, percentY) : wide.Release();
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
