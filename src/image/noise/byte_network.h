// Sorting and selecting a fixed number of bytes without a branch: comparator networks as straight lines of minima and
// maxima, which the compiler turns into code for many pixels at once. Outputs that nobody reads cost nothing.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <utility>

namespace lmf {

/// Only a loop body without calls can be vectorised, so everything here is part of its caller.
#define LMF_NETWORK [[gnu::always_inline]] inline

template <size_t N>
using Bytes = std::array<uint8_t, N>;

LMF_NETWORK uint8_t LowerByte(uint8_t a, uint8_t b) {
    return a < b ? a : b;
}
LMF_NETWORK uint8_t HigherByte(uint8_t a, uint8_t b) {
    return a < b ? b : a;
}

template <size_t First, size_t N, size_t... I>
LMF_NETWORK Bytes<sizeof...(I)> PickBytes(const Bytes<N> &bytes, size_t step, std::index_sequence<I...>) {
    return {bytes[First + I * step]...};
}
/// `Count` bytes from `First` on.
template <size_t First, size_t Count, size_t N>
LMF_NETWORK Bytes<Count> SliceOf(const Bytes<N> &bytes) {
    return PickBytes<First>(bytes, 1, std::make_index_sequence<Count>{});
}
/// Every second byte from `First` (0 or 1) on.
template <size_t First, size_t N>
LMF_NETWORK Bytes<(N + 1 - First) / 2> HalfOf(const Bytes<N> &bytes) {
    return PickBytes<First>(bytes, 2, std::make_index_sequence<(N + 1 - First) / 2>{});
}

/// Element K of the merged sequence, from the merged even and the merged odd elements.
template <size_t K, size_t E, size_t O>
LMF_NETWORK uint8_t MergedByte(const Bytes<E> &even, const Bytes<O> &odd) {
    constexpr size_t i = (K + 1) / 2;
    if constexpr (K == 0 || i > O)
        return even[i];
    else if constexpr (i >= E)
        return odd[i - 1];
    else if constexpr (K % 2 == 1)
        return LowerByte(even[i], odd[i - 1]);
    else
        return HigherByte(even[i], odd[i - 1]);
}
template <size_t E, size_t O, size_t... K>
LMF_NETWORK Bytes<sizeof...(K)> Interleave(const Bytes<E> &even, const Bytes<O> &odd, std::index_sequence<K...>) {
    return {MergedByte<K>(even, odd)...};
}

/// Two rising sequences as one (odd-even merge: K. E. Batcher, 1968).
template <size_t M, size_t N>
LMF_NETWORK Bytes<M + N> MergeBytes(const Bytes<M> &a, const Bytes<N> &b) {
    if constexpr (M == 0)
        return b;
    else if constexpr (N == 0)
        return a;
    else if constexpr (M == 1 && N == 1)
        return {LowerByte(a[0], b[0]), HigherByte(a[0], b[0])};
    else
        return Interleave(MergeBytes(HalfOf<0>(a), HalfOf<0>(b)), MergeBytes(HalfOf<1>(a), HalfOf<1>(b)),
                          std::make_index_sequence<M + N>{});
}

/// The bytes in rising order.
template <size_t N>
LMF_NETWORK Bytes<N> SortBytes(const Bytes<N> &bytes) {
    if constexpr (N < 2)
        return bytes;
    else
        return MergeBytes(SortBytes(SliceOf<0, N / 2>(bytes)), SortBytes(SliceOf<N / 2, N - N / 2>(bytes)));
}

/// What element Rank of the merged sequence is at most, if I bytes of `a` are among those up to it.
template <size_t Rank, size_t I, size_t M, size_t N>
LMF_NETWORK uint8_t SelectionBound(const Bytes<M> &a, const Bytes<N> &b) {
    constexpr size_t j = Rank + 1 - I;
    if constexpr (I == 0)
        return b[j - 1];
    else if constexpr (j == 0)
        return a[I - 1];
    else
        return HigherByte(a[I - 1], b[j - 1]);
}
template <size_t Rank, size_t First, size_t M, size_t N, size_t... I>
LMF_NETWORK uint8_t LowestBound(const Bytes<M> &a, const Bytes<N> &b, std::index_sequence<I...>) {
    uint8_t lowest = 255;
    ((lowest = LowerByte(lowest, SelectionBound<Rank, First + I>(a, b))), ...);
    return lowest;
}
/// The byte at place `Rank`, from 0, of two rising sequences taken together: the lowest over all ways to split the
/// Rank + 1 bytes up to it of the higher of the two last ones.
template <size_t Rank, size_t M, size_t N>
LMF_NETWORK uint8_t SelectFromTwo(const Bytes<M> &a, const Bytes<N> &b) {
    constexpr size_t kFewest = Rank + 1 > N ? Rank + 1 - N : 0;
    constexpr size_t kMost = Rank + 1 < M ? Rank + 1 : M;
    return LowestBound<Rank, kFewest>(a, b, std::make_index_sequence<kMost - kFewest + 1>{});
}

} // namespace lmf
