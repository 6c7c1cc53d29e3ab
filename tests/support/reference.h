// Compares filters with slow, plain readings of what they do: over pictures of many sizes and kinds, with random
// settings, bit for bit.
#pragma once

#include <functional>
#include <initializer_list>

#include "support/pictures.h"

namespace lmf::testing {

/// What a filter makes of a picture; empty where it refuses.
using Definition = std::function<LockedDib(const ReadView &source, const FilterContext &context)>;

enum class Kind { Color, Alpha, Grey, Palette, Mono };

struct Size {
    int32_t width, height;
};
inline const std::vector<Size> kManySizes = {{1, 1},  {2, 1},   {1, 7},   {2, 2},    {3, 5},    {9, 8},
                                             {17, 9}, {64, 20}, {6, 100}, {131, 40}, {33, 171}, {200, 33}};

struct Trials {
    std::vector<Kind> kinds = {Kind::Color};
    /// Another filter whose page counts, if any.
    std::string otherPage = {};
    /// Settings that are not left to chance.
    std::vector<Setting> fixed = {};
    std::vector<Size> sizes = kManySizes;
    int32_t rounds = 3;
};

/// A random picture: of all levels, of a few near ones or of the extremes, so that ties and overflows occur.
LockedDib RandomKind(Kind kind, int32_t width, int32_t height, uint32_t seed);

/// Runs the filter and its definition, which must agree on the picture and on how far the random stream has moved.
void ExpectDefinition(const std::string &filter, const Trials &trials, const Definition &definition);

/// The definition whose pixel (x, y) is rule(from, context, x, y), with `from` the locked source.
template <typename Rule>
Definition ByPixel(Rule rule) {
    return [rule](const ReadView &source, const FilterContext &context) {
        const ReadView from = source;
        return PictureLike(source, [&](int32_t x, int32_t y) { return rule(from, context, x, y); });
    };
}

/// The definition for which a channel of pixel (x, y) is rule(read, context, x, y), with read(x, y) the same channel of
/// the source. The alpha of 32 bits becomes 0.
template <typename Rule>
Definition ByChannel(Rule rule) {
    return ByPixel([rule](const ReadView &from, const FilterContext &context, int32_t x, int32_t y) {
        uint32_t pixel = 0;
        for (int32_t shift = 0; shift < (from.bits == 8 ? 8 : 24); shift += 8) {
            const auto read = [&](int32_t column, int32_t row) {
                return static_cast<int32_t>(DibGetPixel(from, column, row) >> shift & 255);
            };
            pixel |= static_cast<uint32_t>(rule(read, context, x, y)) << shift;
        }
        return pixel;
    });
}

} // namespace lmf::testing
