// Canvas: lays a texture over the picture, repeated over its whole area: where the texture is darker or lighter than
// middle grey, so becomes the picture. Canvas chooses the texture; Contrast and Brightness work on the texture alone.
#include "engine/filter.h"

namespace lmf {

static constexpr const char *kTextures =
    "Rag paper;Plaster;Muslin;Concrete;Threads;Quantum foam;Afternoon sun;Copperplate;Terrazzo;Downpour;"
    "Recycled paper;Haystack;Filaments;Upmarket driveway;Spheres;Permafrost";

static constexpr PageControl kPage[] = {
    Combo(280, "Canvas:", &P::FilterTextureMode, kTextures),
    Slider(281, "Contrast:", &P::FilterTextureCont, {1, 254}),
    Slider(282, "Brightness:", &P::FilterTextureBri, {1, 254}).Restores(128),
};
extern constexpr Filter kCanvas = MakeFilter<kPage>(nullptr);

} // namespace lmf
