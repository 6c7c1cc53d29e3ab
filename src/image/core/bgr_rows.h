// Rows of any picture as bytes blue, green, red, so that a filter on bytes has one form for every depth.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// Copies row y, counted from the top, into 3 * width bytes. Indexed pictures give the index as red.
void ReadBgrRow(const ReadView &from, int32_t y, uint8_t *bytes);
/// Stores 3 * width bytes as row y, counted from the top. Alpha becomes 0; indexed pictures take red as the index.
void WriteBgrRow(const WriteView &to, int32_t y, const uint8_t *bytes);

} // namespace lmf
