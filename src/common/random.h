// The library's one stream of random numbers, the same on every system: a seed gives the same grain everywhere.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lmf {

/// Greatest value that NextRandom gives.
inline constexpr int32_t kRandomMax = 0x7FFF;

/// Restarts the stream. It starts at seed 1 when the library is loaded.
void SeedRandom(uint32_t seed);
/// Next draw, 0 to kRandomMax: the upper bits of a linear congruential generator (D. H. Lehmer, 1951).
[[nodiscard]] int32_t NextRandom();
/// The next `count` draws in order, as if by NextRandom, several times as fast.
void NextRandoms(uint16_t *draws, size_t count);
/// The same without moving the stream on, for a reader that doesn't know yet how many it will use.
void PeekRandoms(uint16_t *draws, size_t count);
/// Moves the stream on by `count` draws.
void SkipRandoms(uint64_t count);

} // namespace lmf
