// Add noise: adds a random number of one of five distributions to every pixel, or to every channel of it for coloured
// noise. The intensity is both the middle and the spread of the numbers, and half of it is taken off again, so the
// picture gets a little lighter. The numbers go on in the library's random stream: each run gives another grain.
#include "common/multiversion.h"
#include "engine/filter.h"
#include "image/core/pixel_pass.h"
#include "image/noise/noise_source.h"

namespace lmf {

namespace {

constexpr PageControl kPage[] = {
    Slider(210, "Intensity:", &P::FilterNoiseLevel, {1, 32})
        .In(Unit::Levels)
        .Help("How strong the noise is: the middle of its random numbers."),
    Combo(211, "Type:", &P::FilterNoiseType,
          "Gaussian Noise;Multiplicative Noise;Impulse Noise;Laplacian Noise;Poisson Noise")
        .Help("Which curve the random numbers follow; impulse noise gives rare specks of white."),
    CheckBox(212, "Colored noise", &P::FilterNoiseColour)
        .Help("Gives red, green and blue noise of their own; off, the noise is grey."),
};

/// Adds a sample and the bias to each byte.
LMF_MULTIVERSION
void AddToBytes(uint8_t *__restrict to, const uint8_t *__restrict from, const uint8_t *__restrict samples, size_t count,
                int32_t bias) {
    for (size_t i = 0; i < count; i++) to[i] = ClampByte(from[i] + samples[i] + bias);
}

/// Adds a sample and the bias to each pixel of three bytes.
LMF_MULTIVERSION
void AddToPixels(uint8_t *__restrict to, const uint8_t *__restrict from, const uint8_t *__restrict samples,
                 size_t count, int32_t bias) {
    for (size_t i = 0; i < count; i++) {
        const int32_t noise = samples[i] + bias;
        for (size_t channel = 0; channel < 3; channel++) to[3 * i + channel] = ClampByte(from[3 * i + channel] + noise);
    }
}

DibHandle AddNoiseKernel(const ReadView &source, FilterContext &context) {
    PixelPass pass(source);
    if (!pass) return nullptr;

    if (context.mode == kModeTrueColor || context.mode == kModeGrey) {
        const NoiseSource noise(context.FilterNoiseLevel, static_cast<NoiseType>(context.FilterNoiseType));
        if (!noise) return nullptr;
        const bool wholePixels = context.mode == kModeTrueColor && context.FilterNoiseColour == 0;
        const auto add = wholePixels ? AddToPixels : AddToBytes;
        const size_t unit = wholePixels ? 3 : 1;
        const size_t samplesInRow =
            static_cast<size_t>(pass.from.width) * (context.mode == kModeTrueColor && !wholePixels ? 3 : 1);
        // Rows of a depth that does not fit the mode may be shorter than the walk.
        const size_t count =
            std::min(samplesInRow, static_cast<size_t>(std::min(pass.from.stride, pass.to.stride)) / unit);
        const int32_t bias = -(context.FilterNoiseLevel / 2);
        for (int32_t y = 0; y < pass.from.height; y++) {
            for (size_t i = 0; i < count; i += kNoiseBatch) {
                uint8_t samples[kNoiseBatch];
                const size_t batch = std::min(kNoiseBatch, count - i);
                DrawSamples(noise, samples, batch);
                add(pass.to.MemoryRow(y) + i * unit, pass.from.MemoryRow(y) + i * unit, samples, batch, bias);
            }
        }
    }
    return pass.Finish();
}

} // namespace

extern constexpr Filter kAddNoise = MakeFilter<kPage>(AddNoiseKernel);

} // namespace lmf
