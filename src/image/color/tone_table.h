// Tone tables of the filters that change contrast, and how filters run a table over a picture of any mode.
#pragma once

#include "image/core/pixel_map.h"

namespace lmf {

/// The setting of contrast or of brightness that changes nothing.
inline constexpr int32_t kToneMiddle = 127;

/// A straight line that clips at 0 and 255. Both settings run from 0 to 255: `contrast` makes the line steeper above
/// kToneMiddle and flatter below, `brightness` lifts and lowers it.
[[nodiscard]] ToneTable BuildContrastTable(int32_t contrast, int32_t brightness);

/// New picture: the table on the colour table of palette and mono pictures, on the low byte of grey pixels, on the
/// three channels of true colour; what the picture is comes from the mode. Null on failure.
[[nodiscard]] DibHandle ApplyToneTableByMode(const ReadView &picture, const ToneTable &table, int32_t mode);

/// New picture: the table on the colour table of palette pictures and on the pixels of all others; what the picture is
/// comes from the picture itself. Null on failure.
[[nodiscard]] DibHandle ApplyToneTable(const ReadView &picture, const ToneTable &table);

} // namespace lmf
