#include "image/noise/noise_source.h"

#include <cmath>
#include <numbers>

#include "common/multiversion.h"
#include "common/random.h"

namespace lmf {

namespace {

constexpr uint32_t kDraws = kRandomMax + 1;

/// A draw as a number from 0 to 1.
double Uniform(uint32_t draw) {
    return draw / 32767.0;
}

/// A draw as a number that has a logarithm: 0 counts as 1.
double PositiveUniform(uint32_t draw) {
    return draw == 0 ? 1.0 : Uniform(draw);
}

/// Rounded and limited to 0..255.
uint8_t LevelOf(double value) {
    value = value > 255 ? 255 : value;
    value = value > 0 ? value : 0;
    return static_cast<uint8_t>(static_cast<int32_t>(value + 0.5));
}

/// Only a whole turn of the angle is ever drawn, so the cosine is 1 and the noise is one-sided.
double MultiplicativeNoise(double a, double u) {
    const double s = u <= 1e-5 ? 255.0 : std::sqrt(-2 * std::log(u));
    return a * 0.5 * s + a;
}

double ImpulseNoise(double a, double u) {
    if (u < 0.05) return 0;
    return u >= 0.95 ? 255 : a;
}

double LaplacianNoise(double a, double u) {
    if (u <= 0.5) return u <= 1e-5 ? a - 255 : a + std::log(2 * u) * 10.0;
    const double w = 1 - u;
    return w <= 5e-6 ? a + 255 : a - std::log(2 * w) * 10.0;
}

LMF_MULTIVERSION
void GaussianSamples(const NoiseSource &noise, uint8_t *__restrict samples, const uint16_t *__restrict draws,
                     size_t count) {
    const double *const distance = noise.distance.data, *const cosine = noise.cosine.data,
                        *const sine = noise.sine.data;
    const double a = noise.a, spread = 4 * std::sqrt(a);
    for (size_t i = 0; i < count; i++) {
        const double c = distance[draws[2 * i]];
        const uint32_t t = draws[2 * i + 1];
        samples[i] = LevelOf(cosine[t] * c * spread + a + sine[t] * c * 20.0);
    }
}

/// One number of Poisson noise: how many further draws it takes to bring the product of all down to `end`.
int32_t PoissonEvents(double end) {
    double u = PositiveUniform(static_cast<uint32_t>(NextRandom()));
    int32_t events = 0;
    for (; u > end; events++) u *= Uniform(static_cast<uint32_t>(NextRandom()));
    return events;
}

uint8_t PoissonLevel(int32_t events) {
    return LevelOf(events / 0.05);
}

/// More events than kMostEvents - 1 are so rare that they are counted one by one.
constexpr size_t kMostEvents = 12;
constexpr size_t kStarts = 1024;

/// The events of the number that would start at each draw, as far as kMostEvents. The product never rises, so they are
/// the partial products above `end`: nothing has to stop there, and the lanes can do without branches.
LMF_MULTIVERSION
void CountEvents(uint8_t *__restrict events, const uint16_t *__restrict draws, double end) {
    double uniform[kStarts + kMostEvents];
    for (size_t i = 0; i < kStarts + kMostEvents; i++) uniform[i] = Uniform(draws[i]);
    for (size_t i = 0; i < kStarts; i++) {
        double u = uniform[i] == 0 ? 1.0 : uniform[i];
        double count = u > end ? 1.0 : 0.0; // of the lanes' own width
#pragma GCC unroll 12
        for (size_t k = 1; k < kMostEvents; k++) {
            u *= uniform[i + k];
            count += u > end ? 1.0 : 0.0;
        }
        events[i] = static_cast<uint8_t>(static_cast<int32_t>(count));
    }
}

/// A number takes as many draws as it comes to, so numbers are made for every place where one may start, and then the
/// places where they do start are walked.
void PoissonSamples(uint8_t *samples, size_t count, double end) {
    uint8_t levels[kMostEvents];
    for (size_t i = 0; i < kMostEvents; i++) levels[i] = PoissonLevel(static_cast<int32_t>(i));
    for (size_t i = 0; i < count;) {
        uint16_t draws[kStarts + kMostEvents];
        uint8_t events[kStarts];
        PeekRandoms(draws, kStarts + kMostEvents);
        CountEvents(events, draws, end);
        size_t start = 0;
        for (; i < count && start < kStarts && events[start] < kMostEvents; i++) {
            samples[i] = levels[events[start]];
            start += events[start] + size_t{1};
        }
        SkipRandoms(start);
        if (i < count && start < kStarts) samples[i++] = PoissonLevel(PoissonEvents(end));
    }
}

} // namespace

NoiseSource::NoiseSource(int32_t intensity, NoiseType noiseType)
    : type(noiseType), a(intensity), poissonEnd(std::exp(a * -0.05)),
      levels(type == NoiseType::Gaussian || type == NoiseType::Poisson ? 0 : kDraws),
      distance(type == NoiseType::Gaussian ? kDraws : 0), cosine(type == NoiseType::Gaussian ? kDraws : 0),
      sine(type == NoiseType::Gaussian ? kDraws : 0) {
    for (uint32_t draw = 0; draw < kDraws; draw++) {
        const double u = PositiveUniform(draw);
        if (levels) {
            levels[draw] = LevelOf(type == NoiseType::Multiplicative ? MultiplicativeNoise(a, u)
                                   : type == NoiseType::Impulse      ? ImpulseNoise(a, u)
                                                                     : LaplacianNoise(a, u));
        } else if (distance && cosine && sine) {
            const double t = Uniform(draw) * 2 * std::numbers::pi;
            distance[draw] = std::sqrt(-2 * std::log(u));
            cosine[draw] = std::cos(t);
            sine[draw] = std::sin(t);
        }
    }
}

void DrawSamples(const NoiseSource &noise, uint8_t *samples, size_t count) {
    if (noise.type == NoiseType::Poisson) return PoissonSamples(samples, count, noise.poissonEnd);
    uint16_t draws[2 * kNoiseBatch];
    // Multiplicative noise draws an angle as well and makes no use of it.
    const size_t step = noise.type == NoiseType::Gaussian || noise.type == NoiseType::Multiplicative ? 2 : 1;
    NextRandoms(draws, count * step);
    if (noise.type == NoiseType::Gaussian) return GaussianSamples(noise, samples, draws, count);
    for (size_t i = 0; i < count; i++) samples[i] = noise.levels[draws[i * step]];
}

} // namespace lmf
