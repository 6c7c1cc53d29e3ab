// Pictures for tests: built from lists of pixels or at random, compared pixel by pixel.
#pragma once

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/catalogue.h"
#include "image/core/dib.h"

namespace lmf::testing {

using Pixels = std::vector<uint32_t>;

/// Picture of a depth with pixels given row by row from the top, as DibSetPixel takes them. 8 bits get the grey ramp.
LockedDib MakePicture(int32_t width, int32_t height, uint32_t bits, const Pixels &pixels = {});

/// Picture with a given palette.
LockedDib MakePalettePicture(int32_t width, int32_t height, uint32_t bits, const Palette768 &palette,
                             const Pixels &pixels = {});

/// Random pixels from a stream of the tests' own. Mode 0 gives 24 bits, 1 grey, 2 an 8-bit random palette, 3 a 1-bit
/// picture.
LockedDib RandomPicture(int32_t width, int32_t height, ImageMode mode, uint32_t seed);

/// Random bits everywhere, at any depth, the alpha of 32 bits among them.
LockedDib RandomDepth(int32_t width, int32_t height, uint32_t bits, uint32_t seed);

/// Next number of the tests' own stream.
uint32_t TestRandom(uint32_t *state);

/// All pixels row by row from the top, as DibGetPixel gives them.
Pixels PixelsOf(const ReadView &picture);

Palette768 PaletteOf(const ReadView &picture);

/// Are size, depth, palette and pixels the same? Padding is not compared.
bool SamePicture(const ReadView &a, const ReadView &b);

/// Calls work(x, y) row by row from the top.
template <typename Work>
void ForEachPixel(const ReadView &view, Work work) {
    for (int32_t y = 0; y < view.height; y++) {
        for (int32_t x = 0; x < view.width; x++) work(x, y);
    }
}

/// A picture like another whose pixels are pixel(x, y).
template <typename Pixel>
LockedDib PictureLike(const ReadView &like, Pixel pixel) {
    LockedDib picture(DibClone(like));
    ForEachPixel(like, [&](int32_t x, int32_t y) { DibSetPixel(picture.View(), x, y, pixel(x, y)); });
    return picture;
}

/// Expects pixel(x, y) of every pixel.
template <typename Pixel>
void ExpectPixels(const LockedDib &picture, Pixel pixel) {
    ASSERT_TRUE(picture);
    const ReadView view = picture;
    for (int32_t y = 0; y < view.height; y++) {
        for (int32_t x = 0; x < view.width; x++) ASSERT_EQ(DibGetPixel(view, x, y), pixel(x, y)) << x << ',' << y;
    }
}

/// Two colours mixed, each channel with two truncating divisions: `weight` of 255 parts of `to`.
Color MixBytes(Color from, Color to, uint32_t weight);

/// A context with every filter's factory values, for pictures of `mode`; white paper and a
/// destination of 31 x 17.
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

/// Runs the filter of this name in the context; the mode is the picture's unless `keepMode`.
LockedDib RunKernel(const std::string &filter, const ReadView &source, FilterContext &context, bool keepMode = false);
/// The same with factory values but for some settings.
LockedDib RunKernel(const std::string &filter, const ReadView &source, const std::vector<Setting> &settings = {});

} // namespace lmf::testing
