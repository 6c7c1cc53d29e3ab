#include "common/random.h"

#include "common/multiversion.h"

namespace lmf {

namespace {

uint32_t randomState = 1;

constexpr uint32_t kMultiplier = 214013;
constexpr uint32_t kIncrement = 2531011;

} // namespace

void SeedRandom(uint32_t seed) {
    randomState = seed;
}

namespace {

uint32_t NextState(uint32_t state) {
    return state * kMultiplier + kIncrement;
}

uint32_t DrawOf(uint32_t state) {
    return (state >> 16) & kRandomMax;
}

} // namespace

int32_t NextRandom() {
    randomState = NextState(randomState);
    return static_cast<int32_t>(DrawOf(randomState));
}

namespace {

/// Many steps of the generator as one: state * multiplier + increment.
struct Leap {
    uint32_t multiplier = 1;
    uint32_t increment = 0;

    constexpr uint32_t From(uint32_t state) const { return state * multiplier + increment; }
};

/// Puts a leap together from leaps of 1, 2, 4 and so on steps.
constexpr Leap LeapOf(uint64_t steps) {
    Leap leap, power{kMultiplier, kIncrement};
    for (; steps > 0; steps >>= 1) {
        if (steps & 1) leap = {leap.multiplier * power.multiplier, power.From(leap.increment)};
        power = {power.multiplier * power.multiplier, power.From(power.increment)};
    }
    return leap;
}

/// Each lane takes every kLanes-th draw of the stream, so that the lanes do not wait for each other.
constexpr size_t kLanes = 64;
constexpr Leap kLeap = LeapOf(kLanes);

/// Writes whole groups of kLanes draws. @return the state after the last of them.
LMF_MULTIVERSION
uint32_t DrawGroups(uint32_t state, uint16_t *draws, size_t groups) {
    uint32_t lanes[kLanes];
    for (size_t i = 0; i < kLanes; i++) lanes[i] = state = NextState(state);
    for (size_t group = 0; group < groups; group++, draws += kLanes) {
        state = lanes[kLanes - 1];
        for (size_t i = 0; i < kLanes; i++) {
            draws[i] = static_cast<uint16_t>(DrawOf(lanes[i]));
            lanes[i] = kLeap.From(lanes[i]);
        }
    }
    return state;
}

} // namespace

void PeekRandoms(uint16_t *draws, size_t count) {
    const size_t groups = count / kLanes;
    uint32_t state = randomState;
    if (groups > 0) state = DrawGroups(state, draws, groups);
    for (size_t i = groups * kLanes; i < count; i++) {
        state = NextState(state);
        draws[i] = static_cast<uint16_t>(DrawOf(state));
    }
}

void SkipRandoms(uint64_t count) {
    randomState = LeapOf(count).From(randomState);
}

void NextRandoms(uint16_t *draws, size_t count) {
    PeekRandoms(draws, count);
    SkipRandoms(count);
}

} // namespace lmf
