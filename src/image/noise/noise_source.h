// Random numbers of five distributions, as bytes.
#pragma once

#include "image/core/dib.h"

namespace lmf {

enum class NoiseType : int32_t { Gaussian, Multiplicative, Impulse, Laplacian, Poisson };

/// Most samples that are drawn at a time.
inline constexpr size_t kNoiseBatch = 2048;

/// A distribution, as tables over the draws where these decide alone: a draw has few values, a picture many pixels.
struct NoiseSource {
    NoiseType type;
    double a;                   ///< the intensity
    double poissonEnd;          ///< where the product of a Poisson sample ends
    BlockArray<uint8_t> levels; ///< the sample of a draw: multiplicative, impulse and Laplacian noise
    // Gaussian noise takes the distance of one draw and the angle of the next (G. E. P. Box and M. E. Muller, 1958).
    BlockArray<double> distance, cosine, sine;

    NoiseSource(int32_t intensity, NoiseType type);

    /// Is there the memory for its tables?
    explicit operator bool() const { return type == NoiseType::Poisson || levels || (distance && cosine && sine); }
};

/// The next `count` samples, up to kNoiseBatch, in the order of the random stream.
void DrawSamples(const NoiseSource &noise, uint8_t *samples, size_t count);

} // namespace lmf
