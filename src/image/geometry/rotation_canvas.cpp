#include "image/geometry/rotation_canvas.h"

#include <cmath>
#include <cstring>

namespace lmf {

Range Common(Range a, Range b) {
    const int32_t first = std::max(a.first, b.first);
    return {first, std::max(first, std::min(a.last, b.last))};
}

namespace {

/// Smallest i with start + i * step >= bound, limited to 0 .. count; step above 0.
int32_t FirstStepTo(int64_t bound, int64_t start, int64_t step, int32_t count) {
    if (start >= bound) return 0;
    return static_cast<int32_t>(std::min<int64_t>((bound - start - 1) / step + 1, count));
}

/// The i of 0 .. count - 1 with low <= start + i * step < high.
Range StepsWithin(int64_t low, int64_t high, int64_t start, int64_t step, int32_t count) {
    if (step == 0) return {0, start >= low && start < high ? count : 0};
    if (step < 0) return StepsWithin(1 - high, 1 - low, -start, -step, count);
    return {FirstStepTo(low, start, step, count), FirstStepTo(high, start, step, count)};
}

/// How much of a unit around `position` lies inside 0 .. side, as 0.0 to 1.0.
double Overlap(int64_t position, int32_t side) {
    const int64_t depth = std::min(position, side * kOne - position) + kHalf;
    return static_cast<double>(std::clamp<int64_t>(depth, 0, kOne)) / static_cast<double>(kOne);
}

} // namespace

SourceMap::SourceMap(const RotationPlan &rotation, const ReadView &from)
    : plan(rotation), width(from.width), height(from.height), stepX(std::llround(rotation.cosine * kOne)),
      stepY(std::llround(rotation.sine * kOne)) {}

SourceRow SourceMap::Row(int32_t y) const {
    const double across = 0.5 - plan.width / 2.0, down = y + 0.5 - plan.height / 2.0;
    return {std::llround((plan.cosine * across - plan.sine * down + width / 2.0) * kOne),
            std::llround((plan.sine * across + plan.cosine * down + height / 2.0) * kOne)};
}

Range SourceMap::PartInside(const SourceRow &row, int64_t inset) const {
    return Common(StepsWithin(inset, width * kOne - inset, row.x, stepX, plan.width),
                  StepsWithin(inset, height * kOne - inset, row.y, stepY, plan.width));
}

RowParts SourceMap::PartsOf(int32_t y) const {
    const SourceRow row = Row(y);
    const Range covered = PartInside(row, 1 - kHalf);
    const Range whole = Common(PartInside(row, kHalf), covered);
    return {covered, whole.first < whole.last ? whole : Range{covered.last, covered.last}};
}

RotationCanvas::RotationCanvas(const ReadView &from, const RotationPlan &plan)
    : picture(DibCreateLike(from, plan.width, plan.height)), mask(DibCreateGrey(plan.width, plan.height)),
      to(picture.View()), coverage(mask.View()), fillRow(static_cast<uint64_t>(to.stride)) {
    if (!*this) return;
    // Pixels know how the fill value lies in memory: set a row of the picture through them and take it from there.
    for (int32_t x = 0; x < plan.width; x++) DibSetPixel(to, x, plan.height - 1, plan.fill);
    std::memcpy(fillRow.data, to.bottom, static_cast<size_t>(to.stride));
    if (to.bits >= 8) std::memcpy(fill, fillRow.data, to.bits / 8);
}

RotatedPicture RotationCanvas::Finish() {
    return {DibOwner(picture.Release()), DibOwner(mask.Release())};
}

void FinishRow(const RotationCanvas &canvas, const SourceMap &map, int32_t y, const RowParts &parts) {
    const size_t channels = canvas.to.bits / 8;
    uint8_t *row = canvas.to.Row(y), *coverage = canvas.coverage.Row(y);
    const auto fill = [&](int32_t first, int32_t last) {
        const size_t start = static_cast<size_t>(first) * channels;
        std::memcpy(row + start, canvas.fillRow.data + start, static_cast<size_t>(last - first) * channels);
    };
    const SourceRow start = map.Row(y);
    const auto blend = [&](int32_t first, int32_t last) {
        for (int32_t x = first; x < last; x++) {
            const double inside =
                Overlap(start.x + x * map.stepX, map.width) * Overlap(start.y + x * map.stepY, map.height);
            const auto share = static_cast<int32_t>(inside * 255.0 + 0.5);
            uint8_t *pixel = row + static_cast<size_t>(x) * channels;
            for (size_t c = 0; c < channels; c++)
                pixel[c] = static_cast<uint8_t>((pixel[c] * share + canvas.fill[c] * (255 - share) + 127) / 255);
            coverage[x] = static_cast<uint8_t>(share);
        }
    };
    const auto &[covered, whole] = parts;
    fill(0, covered.first);
    blend(covered.first, whole.first);
    std::memset(coverage + whole.first, 255, static_cast<size_t>(whole.last - whole.first));
    blend(whole.last, covered.last);
    fill(covered.last, map.plan.width);
}

} // namespace lmf
