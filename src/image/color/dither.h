// Pictures with fewer colours: error diffusion (R. Floyd and L. Steinberg, 1976), ordered dithering (B. Bayer, 1973),
// and the plain nearest colour.
//
// All return a new picture, or null when a picture cannot be locked or memory is short. Where a picture of 32 bits is
// given, its alpha is dropped.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// How the diffusion to black and white stretches the greys before they are compared with the middle.
struct MonoTone {
    int32_t brightness; ///< added to every grey
    int32_t contrast;   ///< taken off both ends of the range, which is then stretched back
};

/// Picture of `bits` 1 to 8 with this palette, of which 2^bits entries are searched, dithered by error diffusion in
/// memory order, from the bottom row up. At 1 bit the palette is not searched: what is brighter than the middle of
/// the picture's greys, once `tone` has stretched it, gets index 1. Null for a 1-bit source too.
[[nodiscard]] DibHandle ErrorDiffuse(const ReadView &picture, const Palette768 &palette, uint32_t bits,
                                     const MonoTone &tone);

/// Picture of `bits` 1 to 8 with this palette, each pixel the nearest of its first 2^bits entries. At 1 bit index 1
/// stands for a WeightedGrey of 129 and more; a 1-bit source keeps its bits, or takes the entries nearest to black and
/// white.
[[nodiscard]] DibHandle RemapNearest(const ReadView &picture, const Palette768 &palette, uint32_t bits);

/// 1-bit black and white picture: white where the picture's grey is above the threshold, 0 to 255. Null for a 1-bit
/// source.
[[nodiscard]] DibHandle ThresholdToMono(const ReadView &picture, int32_t threshold);

/// 1-bit black and white picture.
[[nodiscard]] DibHandle BayerMono(const ReadView &picture);
/// 4-bit picture in the eight corners of the colour cube.
[[nodiscard]] DibHandle BayerEight(const ReadView &picture);
/// 8-bit picture with 8 levels of red and green and 4 of blue.
[[nodiscard]] DibHandle BayerRgb332(const ReadView &picture);

} // namespace lmf
