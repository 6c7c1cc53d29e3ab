#include "image/blur/taps.h"

#include "common/multiversion.h"

namespace lmf {

namespace {

/// Four taps a sweep keep the sums in registers for longer; the expression still adds them one after the other.
template <typename T>
[[gnu::always_inline]] inline void AddTapsOf(double *__restrict sums, const T *const *taps, const double *weights,
                                             int32_t tapCount, int32_t count) {
    int32_t k = 0;
    for (; k + 4 <= tapCount; k += 4) {
        // The taps are only read and never overlap the sums.
        const T *__restrict t0 = taps[k], *__restrict t1 = taps[k + 1];
        const T *__restrict t2 = taps[k + 2], *__restrict t3 = taps[k + 3];
        const double w0 = weights[k], w1 = weights[k + 1], w2 = weights[k + 2], w3 = weights[k + 3];
        for (int32_t i = 0; i < count; i++) sums[i] = (((sums[i] + w0 * t0[i]) + w1 * t1[i]) + w2 * t2[i]) + w3 * t3[i];
    }
    for (; k < tapCount; k++) {
        const T *__restrict tap = taps[k];
        const double weight = weights[k];
        for (int32_t i = 0; i < count; i++) sums[i] += weight * tap[i];
    }
}

} // namespace

LMF_MULTIVERSION
void AddTaps(double *sums, const double *const *taps, const double *weights, int32_t tapCount, int32_t count) {
    AddTapsOf(sums, taps, weights, tapCount, count);
}

LMF_MULTIVERSION
void AddTaps(double *sums, const uint8_t *const *taps, const double *weights, int32_t tapCount, int32_t count) {
    AddTapsOf(sums, taps, weights, tapCount, count);
}

LMF_MULTIVERSION
void WidenBytes(double *__restrict to, const uint8_t *__restrict from, int32_t count) {
    for (int32_t i = 0; i < count; i++) to[i] = from[i];
}

LMF_MULTIVERSION
void TruncateSums(uint8_t *__restrict to, const double *__restrict sums, double bias, int32_t count) {
    for (int32_t i = 0; i < count; i++) to[i] = static_cast<uint8_t>(static_cast<int32_t>(sums[i] + bias));
}

LMF_MULTIVERSION
void TruncateRatios(uint8_t *__restrict to, const double *__restrict sums, double bias, double divisor, int32_t count) {
    for (int32_t i = 0; i < count; i++) to[i] = static_cast<uint8_t>(static_cast<int32_t>((sums[i] + bias) / divisor));
}

} // namespace lmf
