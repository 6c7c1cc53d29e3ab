// The Gaussian blur that filters share, and the kernels under it.
#pragma once

#include <optional>

#include "image/core/dib.h"

namespace lmf {

/// The weights of a blur, empty until one of the builders below has filled it.
using BlurKernel = std::optional<BlockArray<double>>;

/// Makes a Gaussian of `width` weights with the sum 1, each the sum of three samples. A width below 1 counts as 3; an
/// even one loses its last sample. `sigma` is in pixels.
/// @return the width used, or 0 when memory is short or no sum can be formed.
[[nodiscard]] int32_t BuildGaussianKernel(int32_t width, double sigma, BlurKernel *kernel);
/// The falling half of the same curve: the largest weight comes first.
[[nodiscard]] int32_t BuildHalfGaussianKernel(int32_t width, double sigma, BlurKernel *kernel);

/// Blurs a line of `count` three-byte pixels, `width` <= `count`. Near the ends the weights that fall on the line are
/// scaled up to a sum of 1. The two lines must not overlap. A width of 0 gives zeros.
void BlurLineRgb(const double *kernel, int32_t width, const uint8_t *source, uint8_t *destination, int32_t count);
/// The same for single bytes.
void BlurLineGrey(const double *kernel, int32_t width, const uint8_t *source, uint8_t *destination, int32_t count);

/// Gaussian blur of radius and depth in tenths of a pixel. Mode 0 blurs three bytes a pixel, mode 1 one byte; in other
/// modes the result is a copy.
/// @return a new picture, or null.
[[nodiscard]] DibHandle GaussianBlurKernelRun(const ReadView &source, int32_t mode, int32_t radiusTenths,
                                              int32_t sigmaTenths);
/// The same by the picture's depth: up to 8 bits blur one byte a pixel.
[[nodiscard]] DibHandle GaussianBlurDirect(const ReadView &source, int32_t radiusTenths, int32_t sigmaTenths);

} // namespace lmf
