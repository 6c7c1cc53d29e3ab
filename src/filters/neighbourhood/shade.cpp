// Shade: takes the picture's brightness for a height and lights that relief from one side. "Azimuth:" is the direction
// of the light and "Elevation:" its height over the picture, in degrees; "Colored shade" lights the picture's own
// colours, otherwise the relief is grey. Rows count as they lie in memory.
#include <cmath>
#include <numbers>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/byte_pass.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(840, "Azimuth:", &P::FilterShadeAzimuth, {0, 359})
        .In(Unit::Degrees)
        .Help("Where the light comes from: 0 is from the right, 90 from below."),
    Slider(841, "Elevation:", &P::FilterShadeElevation, {1, 90})
        .In(Unit::Degrees)
        .Help("How high the light stands over the picture; 90 is straight above."),
    CheckBox(842, "Colored shade", &P::FilterShadeLevel)
        .Help("Lights the picture's own colors; off, the relief is grey."),
};

struct LightVector {
    double x, y, z;
};

/// Brightness of a row with a column more on each side: column x stands at x + 1. Where `seesMemory` is set, the extra
/// columns are the three bytes at their place in memory, so that they see padding and neighbouring rows; what lies
/// outside the pixel rows counts as 0, as do the extra columns otherwise.
void HeightRow(const ReadView &view, int32_t memoryRow, bool seesMemory, int32_t *heights) {
    const auto height = [](int32_t red, int32_t green, int32_t blue) {
        return (red * 9798 + green * 19235 + blue * 3735) >> 15;
    };
    const uint8_t *row = view.MemoryRow(memoryRow), *end = view.bottom + view.stride * view.height;
    const auto beside = [&](const uint8_t *pixel) {
        const auto byte = [&](int32_t c) {
            return seesMemory && pixel + c >= view.bottom && pixel + c < end ? pixel[c] : 0;
        };
        return height(byte(2), byte(1), byte(0));
    };
    heights[0] = beside(row - 3);
    heights[view.width + 1] = beside(row + static_cast<ptrdiff_t>(view.width) * 3);
    for (ptrdiff_t x = 0; x < view.width; x++) heights[x + 1] = height(row[x * 3 + 2], row[x * 3 + 1], row[x * 3]);
}

[[gnu::always_inline]] inline double ShadeOf(int32_t nx, int32_t ny, const LightVector &light) {
    const double dist = light.y * ny + light.x * nx + light.z * 510;
    const double shade = dist / std::sqrt(static_cast<double>(ny * ny + nx * nx + 260100));
    return nx == 0 && ny == 0 ? light.z : dist > 0 ? shade : 0.0;
}

/// Shade of the columns first <= x < last, all with neighbours on both sides. a, b and c are three rows of heights.
LMF_MULTIVERSION
void ShadeColumns(double *__restrict shades, const int32_t *__restrict a, const int32_t *__restrict b,
                  const int32_t *__restrict c, int32_t first, int32_t last, const LightVector &light) {
    for (int32_t x = first; x < last; x++) {
        const int32_t nx = a[x] + b[x] + c[x] - a[x + 2] - b[x + 2] - c[x + 2];
        const int32_t ny = c[x + 2] + c[x + 1] + c[x] - a[x + 2] - a[x + 1] - a[x];
        shades[x] = ShadeOf(nx, ny, light);
    }
}

/// The first and the last column take their neighbours from the other side, and one from beyond the row.
double ShadeAtEdge(const int32_t *a, const int32_t *b, const int32_t *c, int32_t x, int32_t width,
                   const LightVector &light) {
    const int32_t here = x + 1;
    const int32_t left = x > 0 ? here - 1 : here + 1, beyond = x > 0 ? here + 1 : here - 1;
    const int32_t right = x < width - 1 ? here + 1 : here - 1;
    const int32_t nx = a[left] + b[left] + c[left] - a[beyond] - b[beyond] - c[beyond];
    const int32_t ny = c[right] + c[here] + c[left] - a[right] - a[here] - a[left];
    return ShadeOf(nx, ny, light);
}

LMF_MULTIVERSION
void LightRow(uint8_t *__restrict to, const uint8_t *__restrict from, const double *__restrict shades, int32_t width,
              bool colored) {
    for (ptrdiff_t x = 0; x < width; x++)
        for (ptrdiff_t c = 0; c < 3; c++)
            to[x * 3 + c] = static_cast<uint8_t>(colored ? static_cast<int32_t>(from[x * 3 + c] * shades[x]) / 255
                                                         : static_cast<int32_t>(shades[x]));
}

bool ShadePicture(const BytePass &pass, bool seesMemory, const LightVector &light, bool colored) {
    const ReadView &from = pass.From();
    const auto line = static_cast<uint64_t>(from.width) + 2;
    BlockArray<int32_t> ring(line * 3);
    BlockArray<double> shades(line);
    if (!ring || !shades) return false;
    const auto heightsOf = [&](int32_t row) { return ring.data + row % 3 * static_cast<int64_t>(line); };
    int32_t ready = 0;
    for (int32_t y = 0; y < from.height; y++) {
        const int32_t first = std::min(std::max(y - 1, 0), from.height - 3);
        for (; ready <= first + 2; ready++) HeightRow(from, ready, seesMemory, heightsOf(ready));
        const int32_t *a = heightsOf(first), *b = heightsOf(first + 1), *c = heightsOf(first + 2);
        ShadeColumns(shades.data, a, b, c, 1, from.width - 1, light);
        shades[0] = ShadeAtEdge(a, b, c, 0, from.width, light);
        shades[from.width - 1] = ShadeAtEdge(a, b, c, from.width - 1, from.width, light);
        LightRow(pass.To().MemoryRow(y), from.MemoryRow(first + 1), shades.data, from.width, colored);
    }
    return true;
}

DibHandle ShadeKernel(const ReadView &source, FilterContext &context) {
    // A relief takes three rows.
    if (source.height < 3) return DibClone(source);
    BytePass pass(source);
    if (!pass.IsColor()) return nullptr;
    const double azimuth = context.FilterShadeAzimuth * std::numbers::pi / 180;
    const double elevation = context.FilterShadeElevation * std::numbers::pi / 180;
    const LightVector light{255 * std::cos(azimuth) * std::cos(elevation),
                            255 * std::sin(azimuth) * std::cos(elevation), 255 * std::sin(elevation)};
    return ShadePicture(pass, source.bits == 24, light, context.FilterShadeLevel != 0) ? pass.Finish() : nullptr;
}

} // namespace

extern constexpr Filter kShade = MakeFilter<kPage>(ShadeKernel);

} // namespace lmf
