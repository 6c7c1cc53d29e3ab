// Shade: takes the picture's brightness for a height and lights that relief from one side. "Azimuth:" is the direction
// of the light and "Elevation:" its height over the picture, in degrees; "Colored shade" lights the picture's own
// colours, otherwise the relief is grey. Rows count as they lie in memory.
#include <cmath>
#include <numbers>

#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/pixel_pass.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(840, "Azimuth:", &P::FilterShadeAzimuth, {0, 359}),
    Slider(841, "Elevation:", &P::FilterShadeElevation, {1, 90}),
    CheckBox(842, "Colored shade", &P::FilterShadeLevel),
};

struct LightVector {
    double x, y, z;
};

/// Brightness of a row with a column more on each side: column x stands at x + 1. Pixels are read as the three bytes at
/// their place in memory, so that the extra columns see padding and neighbouring rows; what lies outside the pixel
/// rows counts as 0.
static void HeightRow(const ReadView &picture, int32_t memoryRow, int32_t *heights) {
    const ReadView &view = picture;
    const auto height = [](int32_t red, int32_t green, int32_t blue) {
        return (red * 9798 + green * 19235 + blue * 3735) >> 15;
    };
    if (view.bits != 24) {
        heights[0] = heights[view.width + 1] = 0;
        for (int32_t x = 0; x < view.width; x++) {
            const uint32_t pixel = DibGetPixel(picture, x, view.height - 1 - memoryRow);
            heights[x + 1] = height(RedOf(pixel), GreenOf(pixel), BlueOf(pixel));
        }
        return;
    }
    const uint8_t *row = view.MemoryRow(memoryRow), *end = view.bottom + view.stride * view.height;
    const auto outside = [&](const uint8_t *pixel) {
        uint8_t bytes[3];
        for (int32_t c = 0; c < 3; c++) bytes[c] = pixel + c >= view.bottom && pixel + c < end ? pixel[c] : 0;
        return height(bytes[2], bytes[1], bytes[0]);
    };
    heights[0] = memoryRow == 0 ? 0 : outside(row - 3);
    heights[view.width + 1] = outside(row + static_cast<ptrdiff_t>(view.width) * 3);
    for (ptrdiff_t x = 0; x < view.width; x++) heights[x + 1] = height(row[x * 3 + 2], row[x * 3 + 1], row[x * 3]);
}

[[gnu::always_inline]] static inline double ShadeOf(int32_t nx, int32_t ny, const LightVector &light) {
    const double dist = light.y * ny + light.x * nx + light.z * 510;
    const double shade = dist / std::sqrt(static_cast<double>(ny * ny + nx * nx + 260100));
    return nx == 0 && ny == 0 ? light.z : dist > 0 ? shade : 0.0;
}

/// Shade of the columns first <= x < last, all with neighbours on both sides. a, b and c are three rows of heights.
LMF_MULTIVERSION
static void ShadeColumns(double *__restrict shades, const int32_t *__restrict a, const int32_t *__restrict b,
                         const int32_t *__restrict c, int32_t first, int32_t last, const LightVector &light) {
    for (int32_t x = first; x < last; x++) {
        const int32_t nx = a[x] + b[x] + c[x] - a[x + 2] - b[x + 2] - c[x + 2];
        const int32_t ny = c[x + 2] + c[x + 1] + c[x] - a[x + 2] - a[x + 1] - a[x];
        shades[x] = ShadeOf(nx, ny, light);
    }
}

/// The first and the last column take their neighbours from the other side, and one from beyond the row.
static double ShadeAtEdge(const int32_t *a, const int32_t *b, const int32_t *c, int32_t x, int32_t width,
                          const LightVector &light) {
    const int32_t here = x + 1;
    const int32_t left = x > 0 ? here - 1 : here + 1, beyond = x > 0 ? here + 1 : here - 1;
    const int32_t right = x < width - 1 ? here + 1 : here - 1;
    const int32_t nx = a[left] + b[left] + c[left] - a[beyond] - b[beyond] - c[beyond];
    const int32_t ny = c[right] + c[here] + c[left] - a[right] - a[here] - a[left];
    return ShadeOf(nx, ny, light);
}

LMF_MULTIVERSION
static void LightRow(uint8_t *__restrict to, const uint8_t *__restrict from, const double *__restrict shades,
                     int32_t width) {
    for (ptrdiff_t x = 0; x < width; x++)
        for (ptrdiff_t c = 0; c < 3; c++)
            to[x * 3 + c] = static_cast<uint8_t>(static_cast<int32_t>(from[x * 3 + c] * shades[x]) / 255);
}

static void LightPixels(const WriteView &to, const ReadView &from, int32_t memoryRow, int32_t centreRow,
                        const double *shades, bool colored) {
    const int32_t top = from.height - 1;
    for (int32_t x = 0; x < from.width; x++) {
        const uint32_t pixel = colored ? DibGetPixel(from, x, top - centreRow) : 0xFFFFFF;
        const auto light = [&](uint8_t channel) {
            const auto lit = static_cast<int32_t>(channel * shades[x]);
            return static_cast<uint32_t>(colored ? lit / 255 : static_cast<int32_t>(shades[x])) & 255;
        };
        DibSetPixel(to, x, top - memoryRow,
                    PackColor(light(RedOf(pixel)), light(GreenOf(pixel)), light(BlueOf(pixel))));
    }
}

static bool ShadePicture(const WriteView &to, const ReadView &from, const LightVector &light, bool colored) {
    const ReadView &view = from;
    const auto line = static_cast<uint64_t>(view.width) + 2;
    BlockArray<int32_t> ring(line * 3);
    BlockArray<double> shades(line);
    if (!ring || !shades) return false;
    const auto heightsOf = [&](int32_t row) { return ring.data + row % 3 * static_cast<int64_t>(line); };
    int32_t ready = 0;
    for (int32_t y = 0; y < view.height; y++) {
        const int32_t first = std::min(std::max(y - 1, 0), view.height - 3);
        for (; ready <= first + 2; ready++) HeightRow(from, ready, heightsOf(ready));
        const int32_t *a = heightsOf(first), *b = heightsOf(first + 1), *c = heightsOf(first + 2);
        ShadeColumns(shades.data, a, b, c, 1, view.width - 1, light);
        shades[0] = ShadeAtEdge(a, b, c, 0, view.width, light);
        shades[view.width - 1] = ShadeAtEdge(a, b, c, view.width - 1, view.width, light);
        if (view.bits == 24 && colored)
            LightRow(to.MemoryRow(y), view.MemoryRow(first + 1), shades.data, view.width);
        else
            LightPixels(to, from, y, first + 1, shades.data, colored);
    }
    return true;
}

static DibHandle ShadeKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;
    // A relief takes three rows.
    if (pass.from.height < 3) return DibClone(source);
    const double azimuth = context.FilterShadeAzimuth * std::numbers::pi / 180;
    const double elevation = context.FilterShadeElevation * std::numbers::pi / 180;
    const LightVector light{255 * std::cos(azimuth) * std::cos(elevation),
                            255 * std::sin(azimuth) * std::cos(elevation), 255 * std::sin(elevation)};
    if (!ShadePicture(pass.to, pass.from, light, context.FilterShadeLevel != 0)) return nullptr;
    return pass.Finish();
}

extern constexpr Filter kShade = MakeFilter<kPage>(ShadeKernel);

} // namespace lmf
