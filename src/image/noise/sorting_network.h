// Sorting without a branch: a network is a fixed list of steps that each put two bytes in order, so a loop over pixels
// that runs the same steps for every pixel becomes code for many pixels at once.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace lmf {

/// Bytes that a network works on are its wires. These are some of them, by number, in the order of their values.
struct Wires {
    std::array<uint8_t, 64> at{};
    size_t count = 0;

    constexpr void Push(uint8_t wire) { at[count++] = wire; }
};

/// `count` wires in turn from `first` on.
constexpr Wires WiresFrom(size_t first, size_t count) {
    Wires wires;
    for (size_t i = 0; i < count; i++) wires.Push(static_cast<uint8_t>(first + i));
    return wires;
}

/// The steps, in turn: wire `low` takes the lower byte of the two and wire `high` the higher one.
struct Network {
    struct Step {
        uint8_t low, high;
    };
    std::array<Step, 320> steps{};
    size_t count = 0;

    /// Appends the steps that make one rising sequence of two (odd-even merge: K. E. Batcher, 1968).
    /// @return the wires in the order of their values
    constexpr Wires Merge(const Wires &a, const Wires &b) {
        if (a.count == 0) return b;
        if (b.count == 0) return a;
        if (a.count + b.count == 2) return Exchange(a.at[0], b.at[0]);
        const Wires even = Merge(EverySecond(a, 0), EverySecond(b, 0));
        const Wires odd = Merge(EverySecond(a, 1), EverySecond(b, 1));
        // The lowest comes first; of the others each odd one and its even neighbour may still be out of order.
        Wires merged;
        merged.Push(even.at[0]);
        for (size_t i = 0; i < odd.count; i++) {
            if (i + 1 < even.count) Exchange(odd.at[i], even.at[i + 1]);
            merged.Push(odd.at[i]);
            if (i + 1 < even.count) merged.Push(even.at[i + 1]);
        }
        if (even.count == odd.count + 2) merged.Push(even.at[even.count - 1]);
        return merged;
    }

    /// Appends the steps that sort `size` wires in turn from `first` on.
    /// @return the wires in the order of their values
    constexpr Wires Sort(size_t first, size_t size) {
        if (size < 2) return WiresFrom(first, size);
        return Merge(Sort(first, size / 2), Sort(first + size / 2, size - size / 2));
    }

private:
    constexpr Wires Exchange(uint8_t low, uint8_t high) {
        steps[count++] = {low, high};
        Wires both;
        both.Push(low);
        both.Push(high);
        return both;
    }
    static constexpr Wires EverySecond(const Wires &wires, size_t first) {
        Wires half;
        for (size_t i = first; i < wires.count; i += 2) half.Push(wires.at[i]);
        return half;
    }
};

/// A network and the wires in the order that it leaves them in.
struct Sorter {
    Network network;
    Wires order;
};

/// Sorts N wires.
template <size_t N>
inline constexpr Sorter kSorter = [] {
    Sorter sorter;
    sorter.order = sorter.network.Sort(0, N);
    return sorter;
}();

/// Runs the steps of `sorter.network`. Part of its caller, and a straight line of minima and maxima there, since only a
/// loop body without calls and loops becomes vector code; what nobody reads afterwards costs nothing.
template <const auto &sorter>
[[gnu::always_inline]] inline void RunNetwork(uint8_t *wires) {
#pragma GCC unroll 320
    for (size_t i = 0; i < sorter.network.count; i++) {
        uint8_t &low = wires[sorter.network.steps[i].low], &high = wires[sorter.network.steps[i].high];
        const uint8_t a = low, b = high;
        low = a < b ? a : b;
        high = a < b ? b : a;
    }
}

} // namespace lmf
