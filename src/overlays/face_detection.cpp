#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(442, "Mask blur:", &FilterParameters::FilterFaceDetectBlur, {0, 65}),
    Slider(444, "Line size:", &FilterParameters::FilterFaceDetectLineSize, {1, 64}),
    Slider(441, "Obscure:", &FilterParameters::FilterFaceDetectObscure, {2, 16}),
    Slider(443, "Mask opacity:", &FilterParameters::FilterFaceDetectOpacity, {8, 255}),
    Slider(440, "Function:", &FilterParameters::FilterFaceDetectOption, {0, 13}),
    Slider(445, "Round:", &FilterParameters::FilterFaceDetectRound, {0, 100}),
};
extern constexpr FilterSlots kFaceDetection = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
