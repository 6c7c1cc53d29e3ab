// Canvas: lays a texture over the picture, repeated over its whole area: where the texture is darker or lighter than
// middle grey, so becomes the picture. Canvas chooses the texture; Contrast and Brightness work on the texture alone.
#include "engine/filter.h"
#include "image/color/tone_table.h"
#include "image/texture/textures.h"
#include "image/texture/tile.h"

namespace lmf {

namespace {

constexpr const char *kTextures =
    "Rag paper;Plaster;Muslin;Concrete;Threads;Quantum foam;Afternoon sun;Copperplate;Terrazzo;Downpour;"
    "Recycled paper;Haystack;Filaments;Upmarket driveway;Spheres;Permafrost";
static_assert(ListLength(kTextures) == kTextureCount);

constexpr PageControl kPage[] = {
    Combo(280, "Canvas:", &P::FilterTextureMode, kTextures).Help("Chooses the texture that is laid over the picture."),
    Slider(281, "Contrast:", &P::FilterTextureCont, {1, 254})
        .In(Unit::Levels)
        .Help("Makes the relief of the texture stronger above 127 and weaker below."),
    Slider(282, "Brightness:", &P::FilterTextureBri, {1, 254})
        .Restores(128)
        .In(Unit::Levels)
        .Help("Makes the picture lighter above 127 and darker below, by way of the texture."),
};

/// One of the textures in the picture that holds them all.
ReadView TextureOf(const ReadView &textures, int32_t index) {
    ReadView texture = textures;
    texture.height = kTextureSide;
    texture.bottom = textures.Row(kTextureSide * (index + 1) - 1);
    return texture;
}

DibHandle CanvasKernel(const ReadView &source, FilterContext &context) {
    const LockedDib textures(CanvasTextures());
    if (!textures) return nullptr;
    const ToneTable tones = BuildContrastTable(context.FilterTextureCont, context.FilterTextureBri);
    ToneOffsets offsets;
    for (int32_t i = 0; i < 256; i++) offsets.at[i] = static_cast<int16_t>(tones.at[i] - 128);
    return AddTile(source, TextureOf(textures, context.FilterTextureMode), offsets);
}

} // namespace

extern constexpr Filter kCanvas = MakeFilter<kPage>(CanvasKernel);

} // namespace lmf
