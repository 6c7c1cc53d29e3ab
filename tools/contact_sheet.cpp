// Draws a landscape, runs filters on it and lays the results out on one sheet: the picture of the README, and a quick
// look at many filters at once.
//   contact_sheet OUT.png FILTER...
#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <vector>

#include <png.h>

#include "common/random.h"
#include "engine/apply.h"

namespace {

using namespace lmf;

constexpr int32_t kWidth = 320, kHeight = 214, kColumns = 4, kGap = 8;

struct Paint {
    double red, green, blue;
};

Paint Mix(const Paint &a, const Paint &b, double t) {
    return {a.red + (b.red - a.red) * t, a.green + (b.green - a.green) * t, a.blue + (b.blue - a.blue) * t};
}

/// Sky with a low sun, two rows of hills, a lake that mirrors them, and a house.
Paint Landscape(double x, double y) {
    const auto ridge = [](double at, double base, double height, double phase) {
        return base - height * (std::sin(at * 5 + phase) + 0.4 * std::sin(at * 13 + phase * 2));
    };
    const bool water = y > 0.78;
    const double mirrored = water ? 1.56 - y + 0.004 * std::sin(y * 400) : y;
    Paint paint = Mix({60, 110, 190}, {250, 200, 150}, std::clamp(mirrored / 0.7, 0.0, 1.0));
    const double sun = std::hypot((x - 0.72) * 1.5, mirrored - 0.34);
    paint = Mix(paint, {255, 244, 200}, sun < 0.07 ? 1.0 : std::clamp(0.5 - sun, 0.0, 1.0));
    if (mirrored > ridge(x, 0.55, 0.07, 0.5)) paint = Mix({96, 110, 140}, {130, 140, 160}, x);
    if (mirrored > ridge(x, 0.68, 0.06, 2.6)) paint = Mix({52, 92, 48}, {96, 130, 60}, mirrored);
    const bool wall = x > 0.2 && x < 0.32 && mirrored > 0.6 && mirrored < 0.74;
    const bool roof = mirrored <= 0.6 && mirrored > 0.5 + std::fabs(x - 0.26) * 1.2;
    if (wall) paint = {214, 198, 170};
    if (wall && x > 0.245 && x < 0.275 && mirrored > 0.66) paint = {90, 60, 40};
    if (roof) paint = {170, 60, 44};
    return water ? Mix(paint, {30, 60, 90}, 0.35) : paint;
}

LockedDib DrawLandscape() {
    LockedDib scene(DibCreate(kWidth, kHeight, nullptr, 24));
    for (int32_t y = 0; y < kHeight; y++) {
        for (int32_t x = 0; x < kWidth; x++) {
            const Paint paint = Landscape((x + 0.5) / kWidth, (y + 0.5) / kHeight);
            const double grain = NextRandom() % 9 - 4;
            const auto byte = [&](double level) {
                return static_cast<uint32_t>(std::clamp(level + grain, 0.0, 255.0));
            };
            DibSetPixel(scene.View(), x, y, PackColor(byte(paint.red), byte(paint.green), byte(paint.blue)));
        }
    }
    return scene;
}

LockedDib RunOn(const ReadView &scene, const char *name) {
    FilterContext context{};
    context.width = kWidth;
    context.height = kHeight;
    context.paperColor = 0xFFFFFF;
    LoadAllSettings(context);
    for (int32_t row = 0; row < kFilterCount; row++) {
        if (std::strcmp(FilterCatalogue[row].name, name) != 0) continue;
        LockedDib result(RunFilter(row, scene, kModeTrueColor, context));
        FreePictures(context);
        return result;
    }
    return LockedDib();
}

/// Copies a picture of any depth into the cell at (left, top), as far as it fits.
void LayOut(std::vector<uint8_t> *sheet, int32_t sheetWidth, int32_t left, int32_t top, const ReadView &picture) {
    Palette768 palette;
    const uint32_t entries = DibReadPalette(picture, &palette);
    for (int32_t y = 0; y < std::min(kHeight, picture.height); y++) {
        for (int32_t x = 0; x < std::min(kWidth, picture.width); x++) {
            const uint32_t pixel = DibGetPixel(picture, x, y);
            const Color color = entries > 0 ? palette.At(pixel) : pixel;
            uint8_t *to =
                sheet->data() +
                (static_cast<size_t>(top + y) * static_cast<size_t>(sheetWidth) + static_cast<size_t>(left + x)) * 3;
            to[0] = RedOf(color);
            to[1] = GreenOf(color);
            to[2] = BlueOf(color);
        }
    }
}

} // namespace

int main(int argc, char **argv) {
    if (argc < 3) {
        std::fprintf(stderr, "usage: contact_sheet OUT.png FILTER...\n");
        return 1;
    }
    const int32_t cells = argc - 2, rows = (cells + kColumns - 1) / kColumns;
    const int32_t width = kColumns * (kWidth + kGap) + kGap, height = rows * (kHeight + kGap) + kGap;
    std::vector<uint8_t> sheet(static_cast<size_t>(width) * static_cast<size_t>(height) * 3, 255);
    const LockedDib scene = DrawLandscape();
    for (int32_t cell = 0; cell < cells; cell++) {
        const char *name = argv[cell + 2];
        const bool source = std::strcmp(name, "Source") == 0;
        const LockedDib result = source ? LockedDib(DibClone(scene)) : RunOn(scene, name);
        if (!result) {
            std::fprintf(stderr, "contact_sheet: %s: no result\n", name);
            return 1;
        }
        LayOut(&sheet, width, kGap + cell % kColumns * (kWidth + kGap), kGap + cell / kColumns * (kHeight + kGap),
               result);
    }
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    image.format = PNG_FORMAT_RGB;
    image.width = static_cast<png_uint_32>(width);
    image.height = static_cast<png_uint_32>(height);
    if (png_image_write_to_file(&image, argv[1], 0, sheet.data(), 0, nullptr) == 0) {
        std::fprintf(stderr, "contact_sheet: %s: %s\n", argv[1], image.message);
        return 1;
    }
    return 0;
}
