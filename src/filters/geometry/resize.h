// Resize for other filters, with its numbers as arguments instead of settings.
#pragma once

#include "image/core/dib.h"

namespace lmf {

/// What a Resize is asked for.
struct ResizeParameters {
    bool interpolate = true;   ///< filter the samples; true colour and grey only
    int32_t horizontal = 100;  ///< percent of the width; of both axes when `constant` is set or nothing is filtered
    int32_t vertical = 100;    ///< percent of the height
    bool constant = true;      ///< keep the picture's aspect
    int32_t windowIndex = 0;   ///< of kResampleWindowList
    bool byDimensions = false; ///< take the size in pixels below instead of the percentages
    int32_t width = 0;
    int32_t depth = 0;
};

/// The picture at another size, as the Resize filter makes it in this mode. New, owned by the caller; null on failure
/// and when a side would come to nothing.
[[nodiscard]] DibHandle ResizePicture(const ReadView &source, int32_t mode, const ResizeParameters &parameters);

} // namespace lmf
