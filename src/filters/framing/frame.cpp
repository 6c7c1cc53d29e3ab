// Frame: puts a picture frame in the paper colour around the picture, which grows by the frame on every side: a bevel
// that is lit from the top left, a flat band, and a bevel that falls towards the picture. Bevel and Matte are the
// widths of a bevel and of the band in pixels.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(470, "Bevel:", &P::FilterFrameBevel, {2, 48}),
    Slider(471, "Matte:", &P::FilterFrameMatte, {2, 128}),
};
extern constexpr Filter kFrame = MakeFilter<kPage>(nullptr);

} // namespace lmf
