// Median, Reduce noise and Despeckle against slow references that read pixels one by one.
#include <algorithm>
#include <cmath>
#include <map>

#include "support/reference.h"

namespace lmf::testing {

namespace {

/// Refuses pictures that are smaller than the window; else what `rule` makes of each channel.
template <typename Rule>
Definition WithWindow(int32_t P::*radius, double unit, Rule rule) {
    return [=](const ReadView &source, const FilterContext &context) {
        const auto n = static_cast<int32_t>(2 * std::ceil(context.*radius / unit) + 1.0);
        if (std::min(context.width, context.height) < n) return LockedDib();
        return ByChannel([=](auto read, const FilterContext &, int32_t x, int32_t y) { return rule(read, n, x, y); })(
            source, context);
    };
}

/// The window hangs below and to the right of the pixel, over white outside.
constexpr auto kSlowMedian = [](auto read, int32_t n, int32_t x, int32_t y) {
    std::vector<int32_t> values;
    for (int32_t i = 0; i < n * n; i++) values.push_back(read(x + i % n, y + i / n));
    std::nth_element(values.begin(), values.begin() + n * n / 2, values.end());
    return values[values.size() / 2];
};

constexpr auto kSlowReduceNoise = [](auto read, int32_t n, int32_t x, int32_t y) {
    std::map<int32_t, int32_t> counts;
    for (int32_t i = 0; i < n; i++) counts[read(x + i, y)] += n;
    auto middle = counts.begin();
    for (int32_t sum = middle->second; sum <= n * n / 2; sum += middle->second) ++middle;
    const bool lowest = middle == counts.begin(), highest = std::next(middle) == counts.end();
    if (lowest && !highest) ++middle;
    if (highest && !lowest) --middle;
    return middle->first;
};

/// A channel with a frame of zeros, rows as they lie in memory, moved as the method was published: a whole picture a
/// pass.
struct SlowHull {
    int32_t width, height;
    std::vector<uint8_t> f, g;

    void Run(int32_t o, int32_t polarity) {
        const auto eachInner = [this](auto work) {
            for (int32_t i = 0; i < width * height; i++) work((i / width + 1) * (width + 2) + i % width + 1);
        };
        const auto at = [](std::vector<uint8_t> &plane, int32_t p) -> uint8_t & { return plane[size_t(p)]; };
        const auto up = [](uint8_t level) { return static_cast<uint8_t>(level + 1); };
        eachInner([&](int32_t p) {
            const uint8_t v = at(f, p), ahead = at(f, p + o);
            at(g, p) = v;
            if (polarity > 0 && ahead > v) at(g, p)++;
            if (polarity < 0 && v > up(ahead)) at(g, p)--;
        });
        eachInner([&](int32_t p) {
            const uint8_t v = at(g, p), ahead = at(g, p + o), behind = at(g, p - o);
            at(f, p) = v;
            if (polarity > 0 && v < up(behind) && ahead > v) at(f, p)++;
            if (polarity < 0 && up(behind) < v && ahead < v) at(f, p)--;
        });
    }
};

LockedDib SlowDespeckle(const ReadView &from, const FilterContext &context) {
    const int32_t width = context.width, height = context.height;
    const auto cell = [&](int32_t x, int32_t y) { return static_cast<size_t>((height - y) * (width + 2) + x + 1); };
    std::vector<SlowHull> hulls;
    for (int32_t channel = 0; channel < 3; channel++) {
        const std::vector<uint8_t> zeros(static_cast<size_t>(width + 2) * static_cast<size_t>(height + 2));
        SlowHull hull{width, height, zeros, zeros};
        ForEachPixel(from, [&](int32_t x, int32_t y) {
            hull.f[cell(x, y)] = static_cast<uint8_t>(DibGetPixel(from, x, y) >> 8 * channel);
        });
        for (int32_t o : {width + 2, 1, width + 3, width + 1}) {
            hull.Run(o, 1);
            hull.Run(-o, 1);
            hull.Run(-o, -1);
            hull.Run(o, -1);
        }
        hulls.push_back(hull);
    }
    return PictureLike(from, [&](int32_t x, int32_t y) {
        return PackColor(hulls[0].f[cell(x, y)], hulls[1].f[cell(x, y)], hulls[2].f[cell(x, y)]);
    });
}

const std::vector<Kind> kKinds = {Kind::Color, Kind::Alpha};

} // namespace

TEST(Denoise, AgreesWithTheSlowReferences) {
    const Definition median = WithWindow(&P::FilterMedianRadius, 100.0, kSlowMedian);
    for (int32_t radius : {100, 101, 200, 201, 300})
        ExpectDefinition("Median", {.kinds = kKinds, .fixed = {{&P::FilterMedianRadius, radius}}, .rounds = 2}, median);
    const Definition reduced = WithWindow(&P::Filter_ReduceNoiseRadius, 10.0, kSlowReduceNoise);
    for (int32_t radius : {2, 10, 11, 30, 31, 50})
        ExpectDefinition("Reduce noise", {.kinds = kKinds, .fixed = {{&P::Filter_ReduceNoiseRadius, radius}}}, reduced);
    ExpectDefinition("Despeckle", {kKinds}, SlowDespeckle);
}

} // namespace lmf::testing
