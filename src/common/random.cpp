#include "common/random.h"

namespace lmf {

static uint32_t randomState = 1;

void SeedRandom(uint32_t seed) {
    randomState = seed;
}

int32_t NextRandom() {
    randomState = randomState * 214013u + 2531011u;
    return static_cast<int32_t>((randomState >> 16) & 0x7FFF);
}

} // namespace lmf
