// Operations that make pictures from pictures, and operations that change a locked one in place.
//
// Functions that return a DibHandle give the caller a new picture or null, and leave their arguments alive.
#pragma once

#include "image/dib.h"

namespace lmf {

/// The part left <= x < right, top <= y < bottom, at the same depth and with the same palette. What lies outside the
/// picture takes the value that DibGetPixel gives there.
[[nodiscard]] DibHandle DibCropRect(DibHandle source, int32_t left, int32_t top, int32_t right, int32_t bottom);
/// 8-bit grey: WeightedGrey of true colour, but the table entry's red byte of indexed pictures.
[[nodiscard]] DibHandle DibToGrey(DibHandle source);
/// 24-bit: a 1-bit picture becomes black and white whatever its table holds; alpha is dropped.
[[nodiscard]] DibHandle DibToRgb(DibHandle source);
/// The same, but 1-bit pictures too go through their table.
[[nodiscard]] DibHandle ExpandToRgb(DibHandle source);
/// 8-bit grey picture of the alpha bytes.
[[nodiscard]] DibHandle DibAlphaToGrey(DibHandle source);
/// 24-bit: a 32-bit picture laid over a colour by its alpha.
[[nodiscard]] DibHandle DibFlattenOnColor(DibHandle source, Color background);
/// DibFlattenOnColor over the Darkroom's paper colour; null unless the source has 32 bits.
[[nodiscard]] DibHandle DibFlattenOnPaper(DibHandle source, Color ignored);
/// The paper colour of DibFlattenOnPaper, white at first.
extern Color DarkroomPaperColor;
/// 24-bit: the colour laid over the picture where the mask (low byte of its pixels) is high; null unless 24-bit.
[[nodiscard]] DibHandle DibTintByMask(DibHandle source, DibHandle mask, Color color);
/// 24-bit: the pixels' low byte as a mix of two colours, 0 the first and 255 the second.
[[nodiscard]] DibHandle DibColorize(DibHandle source, Color level0, Color level255);
/// Rows reversed.
[[nodiscard]] DibHandle DibFlipVertical(DibHandle source);
/// Columns reversed.
[[nodiscard]] DibHandle DibFlipHorizontal(DibHandle source);
/// Hue moved by degrees, saturation and value scaled; 32-bit pictures keep their alpha.
[[nodiscard]] DibHandle DibAdjustHsv(DibHandle source, float hueOffset, float saturationScale, float valueScale);

/// Sets every pixel of the rectangle to a raw value. @return 1.
int32_t DibFillRect(void *image, int32_t x, int32_t y, int32_t width, int32_t height, uint32_t value);
/// Sets `thickness` pixels inside each edge of the rectangle to a raw value. @return 1.
int32_t DibFrameRect(void *image, int32_t x, int32_t y, int32_t width, int32_t height, uint32_t value,
                     int32_t thickness);
/// Copies raw values where both coordinates lie inside their pictures. @return 1.
int32_t DibCopyRect(void *to, int32_t toX, int32_t toY, const void *from, int32_t fromX, int32_t fromY, int32_t width,
                    int32_t height);

} // namespace lmf
