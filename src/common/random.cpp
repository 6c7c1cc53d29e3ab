#include "common/random.h"

#include "image/multiversion.h"

namespace lmf {

static uint32_t randomState = 1;

static constexpr uint32_t kMultiplier = 214013;
static constexpr uint32_t kIncrement = 2531011;

void SeedRandom(uint32_t seed) {
    randomState = seed;
}

static uint32_t NextState(uint32_t state) {
    return state * kMultiplier + kIncrement;
}

static uint32_t DrawOf(uint32_t state) {
    return (state >> 16) & kRandomMax;
}

int32_t NextRandom() {
    randomState = NextState(randomState);
    return static_cast<int32_t>(DrawOf(randomState));
}

/// Many steps of the generator as one: state * multiplier + increment.
struct Leap {
    uint32_t multiplier = 1;
    uint32_t increment = 0;
};

static constexpr Leap LeapOf(size_t steps) {
    Leap leap;
    for (size_t i = 0; i < steps; i++) {
        leap.multiplier *= kMultiplier;
        leap.increment = leap.increment * kMultiplier + kIncrement;
    }
    return leap;
}

/// Each lane takes every kLanes-th draw of the stream, so that the lanes do not wait for each other.
static constexpr size_t kLanes = 64;
static constexpr Leap kLeap = LeapOf(kLanes);

/// Writes whole groups of kLanes draws. @return the state after the last of them.
LMF_MULTIVERSION
static uint32_t DrawGroups(uint32_t state, uint16_t *draws, size_t groups) {
    uint32_t lanes[kLanes];
    for (size_t i = 0; i < kLanes; i++) lanes[i] = state = NextState(state);
    for (size_t group = 0; group < groups; group++, draws += kLanes) {
        state = lanes[kLanes - 1];
        for (size_t i = 0; i < kLanes; i++) {
            draws[i] = static_cast<uint16_t>(DrawOf(lanes[i]));
            lanes[i] = lanes[i] * kLeap.multiplier + kLeap.increment;
        }
    }
    return state;
}

void NextRandoms(uint16_t *draws, size_t count) {
    const size_t groups = count / kLanes;
    if (groups > 0) randomState = DrawGroups(randomState, draws, groups);
    for (size_t i = groups * kLanes; i < count; i++) draws[i] = static_cast<uint16_t>(NextRandom());
}

} // namespace lmf
