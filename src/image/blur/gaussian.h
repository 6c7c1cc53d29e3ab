// The Gaussian blur that filters share, and the kernels under it.
#pragma once

#include <optional>

#include "image/core/dib.h"

namespace lmf {

/// The weights of a blur, empty until one of the builders below has filled it.
using BlurKernel = std::optional<BlockArray<double>>;

/// Makes a Gaussian of `width` weights with the sum 1, each the sum of three samples; an even width, all from 1 up,
/// loses its last sample. `sigma` is in pixels, above 0.
/// @return the width, or 0 when memory is short
[[nodiscard]] int32_t BuildGaussianKernel(int32_t width, double sigma, BlurKernel *kernel);
/// The falling half of the same curve: the largest weight comes first.
[[nodiscard]] int32_t BuildHalfGaussianKernel(int32_t width, double sigma, BlurKernel *kernel);

/// Blurs a line of `count` three-byte pixels, `width` <= `count`. Near the ends the weights that fall on the line are
/// scaled up to a sum of 1. The two lines must not overlap.
void BlurLineRgb(const double *kernel, int32_t width, const uint8_t *source, uint8_t *destination, int32_t count);
/// The same for single bytes.
void BlurLineGrey(const double *kernel, int32_t width, const uint8_t *source, uint8_t *destination, int32_t count);

/// Gaussian blur of radius and depth in tenths of a pixel, both above 0. 8-bit pictures blur one byte a pixel and
/// deeper ones three, with an alpha of 0; 32-bit rows are walked three bytes a pixel as well. Below 8 bits it is a
/// copy. Where there is no memory for the weights alone the result is blank.
/// @return a new picture, or null
[[nodiscard]] DibHandle GaussianBlurDirect(const ReadView &source, int32_t radiusTenths, int32_t sigmaTenths);
/// The same for pictures of true colour and grey; a copy in other modes.
[[nodiscard]] DibHandle GaussianBlurKernelRun(const ReadView &source, int32_t mode, int32_t radiusTenths,
                                              int32_t sigmaTenths);

} // namespace lmf
