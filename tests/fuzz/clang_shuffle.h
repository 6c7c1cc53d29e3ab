// GCC's vector shuffle for the fuzz builds, which only clang can make: clang has none whose order is a variable.
#pragma once

/// Lane i of the result is lane `order[i]` of `a`, counted modulo the number of lanes.
template <typename Lanes, typename Order>
static inline Lanes __builtin_shuffle(Lanes a, Order order) {
    constexpr unsigned kCount = sizeof(Lanes) / sizeof(a[0]);
    Lanes result;
    for (unsigned i = 0; i < kCount; i++) result[i] = a[static_cast<unsigned>(order[i]) % kCount];
    return result;
}

/// The same over the lanes of `a` followed by those of `b`.
template <typename Lanes, typename Order>
static inline Lanes __builtin_shuffle(Lanes a, Lanes b, Order order) {
    constexpr unsigned kCount = sizeof(Lanes) / sizeof(a[0]);
    Lanes result;
    for (unsigned i = 0; i < kCount; i++) {
        const unsigned lane = static_cast<unsigned>(order[i]) % (2 * kCount);
        result[i] = lane < kCount ? a[lane] : b[lane - kCount];
    }
    return result;
}
