// Canvas: lays a texture over the picture, repeated over its whole area: where the texture is darker or lighter than
// middle grey, so becomes the picture. Canvas chooses the texture; Contrast and Brightness work on the texture alone.
#include "engine/slots.h"

namespace lmf {

static constexpr const char *kTextures =
    "Rag paper;Plaster;Muslin;Concrete;Threads;Quantum foam;Afternoon sun;Copperplate;Terrazzo;Downpour;"
    "Recycled paper;Haystack;Filaments;Upmarket driveway;Spheres;Permafrost";

static constexpr PageControl kPage[] = {
    Combo(280, "Canvas:", &FilterParameters::FilterTextureMode, kTextures),
    Slider(281, "Contrast:", &FilterParameters::FilterTextureCont, {1, 254}),
    Slider(282, "Brightness:", &FilterParameters::FilterTextureBri, {1, 254}).Restores(128),
};
extern constexpr FilterSlots kCanvas = MakeSlots<kPage>(UnavailableKernel);

} // namespace lmf
