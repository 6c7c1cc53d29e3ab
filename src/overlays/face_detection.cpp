// Face Detection: finds faces with the face finder beside the library, and shows, hides, frames, blurs or coarsens
// them, or cuts one out. Function chooses; its entries after the list extract one face each, as many as were found.
// Obscure is the side of the cells that coarsen a face, in pixels; Mask blur the softness of the mask's edge and of the
// blur; Mask opacity how much of the paper colour covers the rest; Line size the width of a frame in pixels; Round how
// round the corners of a rectangle are, in percent.
#include "engine/filter.h"

namespace lmf {

namespace {

constexpr const char *kFunctions =
    "Show faces (rectanglular);Mask faces (rectangular);Show faces (elliptical);Mask faces (elliptical);"
    "Frame faces (rectangular);Frame faces (elliptical);Blur faces (rectangular);Blur faces (elliptical);"
    "Obscure faces (rectangular);Obscure faces (elliptical);Show faces alpha (rectanglular);"
    "Mask faces alpha (rectangular);Show faces alpha (elliptical);Mask faces alpha (elliptical)";

constexpr PageControl kPage[] = {
    Combo(440, "Function:", &P::FilterFaceDetectOption, kFunctions)
        .Edit(0, INT32_MAX)
        .Help("What happens to the faces; entries after the list cut out one face each."),
    Slider(441, "Obscure:", &P::FilterFaceDetectObscure, {2, 16})
        .In(Unit::Pixels)
        .Help("The side of the cells that make a face unrecognizable."),
    Slider(442, "Mask blur:", &P::FilterFaceDetectBlur, {0, 65})
        .In(Unit::Pixels)
        .Help("How soft the edge of the mask and the blur of a face are."),
    Slider(443, "Mask opacity:", &P::FilterFaceDetectOpacity, {8, 255})
        .In(Unit::Levels)
        .Help("How much of the paper color covers everything but the faces."),
    Slider(444, "Line size:", &P::FilterFaceDetectLineSize, {1, 64})
        .In(Unit::Pixels)
        .Help("The width of the frame around a face."),
    Slider(445, "Round:", &P::FilterFaceDetectRound, {0, 100})
        .In(Unit::Percent)
        .Help("How round the corners of a rectangle are."),
};

} // namespace

extern constexpr Filter kFaceDetection = MakeFilter<kPage>(nullptr);

} // namespace lmf
