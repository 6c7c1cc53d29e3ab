// Pictures for tests: built from lists of pixels or at random, compared pixel by pixel.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/catalogue.h"
#include "image/dib.h"

namespace lmf::testing {

using Pixels = std::vector<uint32_t>;
using P = FilterParameters;

/// Picture of a depth with pixels given row by row from the top, as DibSetPixel takes them. 8 bits get the grey ramp.
DibOwner MakePicture(int32_t width, int32_t height, uint32_t bits, const Pixels &pixels = {});

/// Picture with a given palette.
DibOwner MakePalettePicture(int32_t width, int32_t height, uint32_t bits, const Palette768 &palette,
                            const Pixels &pixels = {});

/// Random pixels from a stream of the tests' own. Mode 0 gives 24 bits, 1 grey, 2 an 8-bit random palette, 3 a 1-bit
/// picture.
DibOwner RandomPicture(int32_t width, int32_t height, ImageMode mode, uint32_t seed);

/// Random bits everywhere, at any depth, the alpha of 32 bits among them.
DibOwner RandomDepth(int32_t width, int32_t height, uint32_t bits, uint32_t seed);

/// Next number of the tests' own stream.
uint32_t TestRandom(uint32_t *state);

/// All pixels row by row from the top, as DibGetPixel gives them.
Pixels PixelsOf(DibHandle picture);
Pixels PixelsOf(const DibOwner &picture);

Palette768 PaletteOf(const DibOwner &picture);

/// Are size, depth, palette and pixels the same? Padding is not compared.
bool SamePicture(DibHandle a, DibHandle b);
bool SamePicture(const DibOwner &a, const DibOwner &b);

/// Calls work(x, y) row by row from the top.
template <typename Work>
void ForEachPixel(const DibView &view, Work work) {
    for (int32_t y = 0; y < view.height; y++) {
        for (int32_t x = 0; x < view.width; x++) work(x, y);
    }
}

/// A picture like another whose pixels are pixel(x, y).
template <typename Pixel>
DibOwner PictureLike(DibHandle like, Pixel pixel) {
    DibOwner picture(DibClone(like));
    DibLock lock(picture.handle);
    ForEachPixel(lock.view, [&](int32_t x, int32_t y) { DibSetPixel(lock.image, x, y, pixel(x, y)); });
    return picture;
}

/// Expects pixel(x, y) of every pixel.
template <typename Pixel>
void ExpectPixels(const DibOwner &picture, Pixel pixel) {
    DibLock lock(picture.handle);
    ASSERT_TRUE(lock);
    for (int32_t y = 0; y < lock.view.height; y++) {
        for (int32_t x = 0; x < lock.view.width; x++)
            ASSERT_EQ(DibGetPixel(lock.image, x, y), pixel(x, y)) << x << ',' << y;
    }
}

/// Two colours mixed, each channel with two truncating divisions: `weight` of 255 parts of `to`.
Color MixBytes(Color from, Color to, uint32_t weight);

/// A context with every filter's factory values, for pictures of `mode`; white paper.
FilterContext MakeContext(ImageMode mode = kModeTrueColor);

struct Setting {
    NumberField field;
    int32_t value;
};
/// The same with some settings changed.
FilterContext ContextWith(const std::vector<Setting> &settings);

/// Row of the filter of this name in the catalogue.
int32_t RowOf(const std::string &filter);
const FilterEntry &EntryOf(const std::string &filter);

/// Runs the kernel of the filter of this name in the context; the mode is the picture's unless `keepMode`.
DibOwner RunKernel(const std::string &filter, DibHandle source, FilterContext *context, bool keepMode = false);
/// The same with factory values but for some settings.
DibOwner RunKernel(const std::string &filter, DibHandle source, const std::vector<Setting> &settings = {});

} // namespace lmf::testing
