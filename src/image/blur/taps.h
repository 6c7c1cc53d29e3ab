// Weighted sums of shifted lines: the inner loop of blurs whose weights are not integers.
#pragma once

#include <cstdint>

namespace lmf {

/// To each of `count` sums adds weights[0] * taps[0][i], then weights[1] * taps[1][i], and so on: whatever the machine
/// makes of the loop, every sum takes its taps in this order and rounds after each. No tap overlaps the sums.
void AddTaps(double *sums, const double *const *taps, const double *weights, int32_t tapCount, int32_t count);
/// The same for lines of bytes.
void AddTaps(double *sums, const uint8_t *const *taps, const double *weights, int32_t tapCount, int32_t count);

/// Bytes as doubles.
void WidenBytes(double *to, const uint8_t *from, int32_t count);
/// Each sum + bias, truncated to a byte. It must come out at 0 to 255.
void TruncateSums(uint8_t *to, const double *sums, double bias, int32_t count);
/// Each (sum + bias) / divisor, truncated to a byte.
void TruncateRatios(uint8_t *to, const double *sums, double bias, double divisor, int32_t count);

} // namespace lmf
