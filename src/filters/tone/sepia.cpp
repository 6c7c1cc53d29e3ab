#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(831, "Blend:", &FilterParameters::FilterSepiaBlend, {1, 100}),
    Slider(833, "Brightness:", &FilterParameters::FilterSepiaBrightness, {1, 255}).Edit(0, 255),
    Slider(832, "Contrast:", &FilterParameters::FilterSepiaContrast, {1, 255}).Edit(0, 255),
    Slider(830, "Threshold:", &FilterParameters::FilterSepiaThreshold, {20, 99}),
};
extern constexpr FilterSlots kSepia = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
