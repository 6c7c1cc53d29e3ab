// Pictures for tests: built from lists of pixels or at random, compared pixel by pixel.
#pragma once

#include <initializer_list>
#include <string>
#include <vector>

#include "engine/filter_context.h"
#include "image/dib.h"

namespace lmf::testing {

/// Picture of a depth with pixels given row by row from the top, as DibSetPixel takes them. 8 bits get the grey ramp.
DibOwner MakePicture(int32_t width, int32_t height, uint32_t bits, const std::vector<uint32_t> &pixels = {});

/// Picture with a given palette.
DibOwner MakePalettePicture(int32_t width, int32_t height, uint32_t bits, const Palette768 &palette,
                            const std::vector<uint32_t> &pixels = {});

/// Random pixels from a stream of the tests' own. Mode 0 gives 24 bits, 1 grey, 2 an 8-bit random palette, 3 a 1-bit
/// picture.
DibOwner RandomPicture(int32_t width, int32_t height, ImageMode mode, uint32_t seed);

/// Next number of the tests' own stream.
uint32_t TestRandom(uint32_t *state);

/// All pixels row by row from the top, as DibGetPixel gives them.
std::vector<uint32_t> PixelsOf(DibHandle picture);

/// Are size, depth, palette and pixels the same? Padding is not compared.
bool SamePicture(DibHandle a, DibHandle b);

/// A context with every filter's factory values, for pictures of `mode`; white paper.
FilterContext MakeContext(ImageMode mode = kModeTrueColor);

/// Row of the filter of this name in the catalogue.
int32_t RowOf(const std::string &filter);

/// Runs the kernel of the filter of this name in the context; the mode is the picture's unless `keepMode`.
DibOwner RunKernel(const std::string &filter, DibHandle source, FilterContext *context, bool keepMode = false);
/// The same with factory values.
DibOwner RunKernel(const std::string &filter, DibHandle source);

} // namespace lmf::testing
