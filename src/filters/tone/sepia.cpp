// Sepia: tones a picture in the browns of an old print. Contrast and brightness are changed first; the linear intensity
// of each pixel then chooses the tone, "Threshold" where the tone passes into white, and "Blend" the percentage of the
// toned colour over the plain grey.
#include <algorithm>
#include <cmath>

#include "engine/filter.h"
#include "image/color/tone_table.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(830, "Threshold:", &P::FilterSepiaThreshold, {20, 99})
        .In(Unit::Levels)
        .Help("Sets the light level above which red is full; higher values make the brown deeper."),
    Slider(831, "Blend:", &P::FilterSepiaBlend, {1, 100})
        .In(Unit::Percent)
        .Help("Mixes the brown picture into the plain grey one."),
    Slider(832, "Contrast:", &P::FilterSepiaContrast, {1, 255})
        .Edit(0, 255)
        .Help("Spreads light and dark tones apart above 127 before the toning, and brings them together below."),
    Slider(833, "Brightness:", &P::FilterSepiaBrightness, {1, 255})
        .Edit(0, 255)
        .Help("Lightens the picture above 127 before the toning, and darkens it below."),
};

/// What a channel value adds to the pixel's two luminances.
struct Share {
    float light;  ///< weighted linear light
    int32_t grey; ///< quotient of the encoded grey
};

struct SepiaTables {
    Share red[256], green[256], blue[256];
    uint32_t toned[256][256]; ///< the finished colour, by intensity and grey
};

/// Undoes the encoding of sRGB, on the scale 0 to 255.
float LinearLight(uint8_t value) {
    if (value <= 10.314300250662438) return static_cast<float>(value) / 12.92f;
    return static_cast<float>(std::pow((value * 0.00392156862745098 + 0.055) / 1.055, 2.4) * 255.0);
}

void FillShares(SepiaTables *tables, const ToneTable &contrast) {
    for (int32_t i = 0; i < 256; i++) {
        const uint8_t value = contrast.at[i];
        const float light = LinearLight(value);
        tables->red[i] = {0.298839f * light, value * 77 / 255};
        tables->green[i] = {0.586811f * light, value * 150 / 255};
        tables->blue[i] = {0.11435f * light, value * 28 / 255};
    }
}

struct Tone {
    int32_t red, green, blue;
};

Tone ToneOf(int32_t intensity, float threshold) {
    const double sixth = threshold / 6.0;
    const double sevenSixths = threshold * 7.0 / 6.0;
    const auto seventh = static_cast<float>(threshold / 7.0);
    const auto floor = static_cast<int32_t>(seventh);
    const auto level = static_cast<float>(intensity);
    Tone tone;
    tone.red = level > threshold ? 255 : static_cast<int32_t>(level + 255.0f - threshold);
    tone.green = level > sevenSixths ? 255 : static_cast<int32_t>(level + 255.0f - sevenSixths);
    tone.blue = sixth > level ? 0 : static_cast<int32_t>(level - sixth);
    if (seventh > static_cast<float>(tone.green)) tone.green = floor;
    if (seventh > static_cast<float>(tone.blue)) tone.blue = floor;
    return tone;
}

uint32_t Blended(int32_t toned, int32_t grey, float percent) {
    const float plain = static_cast<float>(grey) * (100.0f - percent) / 100.0f;
    return static_cast<uint32_t>(static_cast<float>(toned) * percent / 100.0f + plain);
}

void FillTones(SepiaTables *tables, float threshold, float percent) {
    for (int32_t intensity = 0; intensity < 256; intensity++) {
        const Tone tone = ToneOf(intensity, threshold);
        for (int32_t grey = 0; grey < 256; grey++)
            tables->toned[intensity][grey] =
                PackColor(Blended(tone.red, grey, percent), Blended(tone.green, grey, percent),
                          Blended(tone.blue, grey, percent));
    }
}

void SepiaRow(uint8_t *__restrict to, const uint8_t *__restrict from, size_t width, const SepiaTables &tables) {
    for (size_t i = 0; i < width * 3; i += 3) {
        const Share &blue = tables.blue[from[i]], &green = tables.green[from[i + 1]], &red = tables.red[from[i + 2]];
        const float light = green.light + red.light + blue.light;
        const auto intensity = static_cast<int32_t>(std::min(light, 255.0f));
        StoreBgr(to + i, tables.toned[intensity][red.grey + green.grey + blue.grey]);
    }
}

DibHandle SepiaKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source, ResultPalette::Black);
    BlockArray<SepiaTables> tables(1);
    if (!pass || !tables) return nullptr;
    FillShares(tables.data, BuildContrastTable(context.FilterSepiaContrast, context.FilterSepiaBrightness));
    FillTones(tables.data, static_cast<float>(context.FilterSepiaThreshold),
              static_cast<float>(context.FilterSepiaBlend));
    MapColors(pass,
              [&tables](uint8_t *to, const uint8_t *from, size_t width) { SepiaRow(to, from, width, tables[0]); });
    return pass.Finish();
}

} // namespace

extern constexpr Filter kSepia = MakeFilter<kPage>(SepiaKernel);

} // namespace lmf
