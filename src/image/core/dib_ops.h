// Operations that make pictures from pictures, and operations that change a locked one in place.
//
// Functions that return a DibHandle give the caller a new picture or null, and leave their arguments alive.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// The part left <= x < right, top <= y < bottom, at the same depth and with the same palette. What lies outside the
/// picture takes the value that DibGetPixel gives there.
[[nodiscard]] DibHandle DibCropRect(const ReadView &source, int32_t left, int32_t top, int32_t right, int32_t bottom);
/// 8-bit grey: WeightedGrey of true colour, but the table entry's red byte of indexed pictures.
[[nodiscard]] DibHandle DibToGrey(const ReadView &source);
/// 24-bit: a 1-bit picture becomes black and white whatever its table holds; alpha is dropped.
[[nodiscard]] DibHandle DibToRgb(const ReadView &source);
/// The same, but 1-bit pictures too go through their table.
[[nodiscard]] DibHandle ExpandToRgb(const ReadView &source);
/// 8-bit grey picture of the alpha bytes.
[[nodiscard]] DibHandle DibAlphaToGrey(const ReadView &source);
/// 32-bit: a picture of 24 or 32 bits with the mask's pixels (their low byte) as alpha; null for other depths. What
/// lies outside the mask is opaque.
[[nodiscard]] DibHandle DibWithAlpha(const ReadView &source, const ReadView &mask);
/// 24-bit: a 32-bit picture laid over a colour by its alpha.
[[nodiscard]] DibHandle DibFlattenOnColor(const ReadView &source, Color background);
/// 24-bit: the colour laid over the picture where the mask (low byte of its pixels) is high; null unless 24-bit.
[[nodiscard]] DibHandle DibTintByMask(const ReadView &source, const ReadView &mask, Color color);
/// 24-bit: the pixels' low byte as a mix of two colours, 0 the first and 255 the second.
[[nodiscard]] DibHandle DibColorize(const ReadView &source, Color level0, Color level255);
/// Rows reversed.
[[nodiscard]] DibHandle DibFlipVertical(const ReadView &source);
/// Columns reversed.
[[nodiscard]] DibHandle DibFlipHorizontal(const ReadView &source);
/// Hue moved by degrees, saturation and value scaled; 32-bit pictures keep their alpha.
[[nodiscard]] DibHandle DibAdjustHsv(const ReadView &source, float hueOffset, float saturationScale, float valueScale);

/// Sets every pixel of the rectangle to a raw value.
void DibFillRect(const WriteView &image, int32_t x, int32_t y, int32_t width, int32_t height, uint32_t value);
/// Sets every pixel outside the rectangle to a raw value.
void DibFillAround(const WriteView &image, int32_t x, int32_t y, int32_t width, int32_t height, uint32_t value);
/// Sets `thickness` pixels inside each edge of the rectangle to a raw value.
void DibFrameRect(const WriteView &image, int32_t x, int32_t y, int32_t width, int32_t height, uint32_t value,
                  int32_t thickness);
/// Copies raw values where both coordinates lie inside their pictures.
void DibCopyRect(const WriteView &to, int32_t toX, int32_t toY, const ReadView &from, int32_t fromX, int32_t fromY,
                 int32_t width, int32_t height);

} // namespace lmf
