// Tone tables of the filters that change contrast, and how filters run a table over a picture of any mode.
#pragma once

#include "image/core/pixel_map.h"

namespace lmf {

/// Fills the table with a straight line that clips at 0 and 255. Both numbers run from -127 to 128, with 0 for no
/// change; `contrast` makes the line steeper, `brightness` lifts it.
void BuildContrastTable(int32_t contrast, int32_t brightness, ToneTable *table);

/// New picture: the table on the colour table of palette and mono pictures, on the low byte of grey pixels, on the
/// three channels of true colour; what the picture is comes from the mode. Null on failure.
[[nodiscard]] DibHandle ApplyToneTableByMode(const ReadView &picture, const ToneTable &table, int32_t mode);

/// New picture: the table on the colour table of palette pictures and on the pixels of all others; what the picture is
/// comes from the picture itself. Null on failure.
[[nodiscard]] DibHandle ApplyToneTable(const ReadView &picture, const ToneTable &table);

} // namespace lmf
