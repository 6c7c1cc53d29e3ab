#include "support/pictures.h"

#include <cstring>

#include "engine/apply.h"

namespace lmf::testing {

LockedDib MakePalettePicture(int32_t width, int32_t height, uint32_t bits, const Palette768 &palette,
                             const Pixels &pixels) {
    LockedDib picture(DibCreate(width, height, &palette, bits));
    for (size_t i = 0; i < pixels.size(); i++)
        DibSetPixel(picture.View(), static_cast<int32_t>(i) % width, static_cast<int32_t>(i) / width, pixels[i]);
    return picture;
}

LockedDib MakePicture(int32_t width, int32_t height, uint32_t bits, const Pixels &pixels) {
    Palette768 palette = GreyRamp();
    if (bits == 1) std::memset(palette.rgb + 3, 255, 3);
    return MakePalettePicture(width, height, bits, palette, pixels);
}

uint32_t TestRandom(uint32_t *state) {
    *state ^= *state << 13;
    *state ^= *state >> 17;
    *state ^= *state << 5;
    return *state;
}

LockedDib RandomPicture(int32_t width, int32_t height, ImageMode mode, uint32_t seed) {
    static constexpr uint32_t kDepths[] = {24, 8, 8, 1};
    uint32_t state = seed * 2654435761u + 1;
    if (state == 0) state = 1;
    Pixels pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (uint32_t &pixel : pixels) pixel = TestRandom(&state) >> 4;
    if (mode != kModePalette) return MakePicture(width, height, kDepths[mode], pixels);
    Palette768 palette;
    for (uint8_t &channel : palette.rgb) channel = static_cast<uint8_t>(TestRandom(&state) >> 9);
    return MakePalettePicture(width, height, 8, palette, pixels);
}

LockedDib RandomDepth(int32_t width, int32_t height, uint32_t bits, uint32_t seed) {
    uint32_t state = seed * 2654435761u + 1;
    Pixels pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (uint32_t &pixel : pixels) pixel = TestRandom(&state) * 0x10001 ^ TestRandom(&state);
    return MakePicture(width, height, bits, pixels);
}

Pixels PixelsOf(const ReadView &picture) {
    Pixels pixels;
    ForEachPixel(picture, [&](int32_t x, int32_t y) { pixels.push_back(DibGetPixel(picture, x, y)); });
    return pixels;
}

Palette768 PaletteOf(const ReadView &picture) {
    Palette768 palette;
    DibReadPalette(picture, &palette);
    return palette;
}

bool SamePicture(const ReadView &a, const ReadView &b) {
    if (a.width < 1 || a.width != b.width || a.height != b.height || a.bits != b.bits) return false;
    const size_t table = PixelOffset(a.bits) - sizeof(DibHeader);
    return std::memcmp(a.colorTable, b.colorTable, table) == 0 && PixelsOf(a) == PixelsOf(b);
}

Color MixBytes(Color from, Color to, uint32_t weight) {
    Color mixed = 0;
    for (uint32_t shift : {0, 8, 16}) {
        const uint32_t share = (from >> shift & 255) * (255 - weight) / 255;
        mixed |= (share + (to >> shift & 255) * weight / 255) << shift;
    }
    return mixed;
}

FilterContext MakeContext(ImageMode mode) {
    FilterContext context{};
    context.mode = mode;
    context.destinationWidth = 31;
    context.destinationDepth = 17;
    context.paperColor = 0xFFFFFF;
    context.ditherBrightness = kFactorySettings.DitherBrightness;
    context.ditherContrast = kFactorySettings.DitherContrast;
    ResetAllDefaults(context);
    return context;
}

FilterContext ContextWith(const std::vector<Setting> &settings) {
    FilterContext context = MakeContext();
    for (const Setting &setting : settings) context.*setting.field = setting.value;
    return context;
}

int32_t RowOf(const std::string &filter) {
    for (int32_t row = 0; row < kFilterCount; row++)
        if (filter == FilterCatalogue[row].name) return row;
    ADD_FAILURE() << "no filter " << filter;
    return 0;
}

const FilterEntry &EntryOf(const std::string &filter) {
    return FilterCatalogue[RowOf(filter)];
}

LockedDib RunKernel(const std::string &filter, const ReadView &source, FilterContext &context, bool keepMode) {
    if (!keepMode) context.mode = DibClassify(source);
    context.width = source.width;
    context.height = source.height;
    return LockedDib(RunFilter(RowOf(filter), source, context.mode, context));
}

LockedDib RunKernel(const std::string &filter, const ReadView &source, const std::vector<Setting> &settings) {
    FilterContext context = ContextWith(settings);
    return RunKernel(filter, source, context);
}

} // namespace lmf::testing
