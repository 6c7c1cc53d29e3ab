// The list of sizes that Social Media makes pictures for, as a text: one destination a line,
//
//     name="Banner 1500 x 500" width=1500 depth=500
//
// Where such a text lies is not known here, and nothing of pictures either, so that programs can read it, too.
#pragma once

#include <cstdint>
#include <string_view>

namespace lmf {

/// One line of the list. What it does not name is 0 or empty.
struct SocialDestination {
    char name[264]; ///< zero-terminated
    int32_t width;  ///< pixels
    int32_t depth;  ///< pixels from top to bottom
    int32_t num, den, flags;
};
static_assert(sizeof(SocialDestination) == 284);

/// The names of the file, the first of which that is there counts: the user's own, and the one that comes with the
/// program.
inline constexpr const char *kDestinationFiles[] = {"MySocialMediaDestinations.txt", "SocialMediaDestinations.txt"};

/// What a line says. It is a run of attributes KEY=VALUE between spaces and tabs. A value in double quotes may hold
/// spaces; the quotes, which may also stand within a value, are dropped. Keys are read in any case; of several alike
/// the first counts, and what is no attribute is passed over.
/// @param line  at most 259 characters before its end, which a line feed or a carriage return may mark, too
[[nodiscard]] SocialDestination ParseDestination(const char *line);

/// Reads a text line by line, without the mark of its encoding that some editors put before it. Every line is a
/// destination, a blank one, too. One of more than 259 bytes goes on as a further line.
/// @param take  is called with `target`, the number of the destination from 0, and the destination
void ReadDestinations(std::string_view text,
                      void (*take)(void *target, int32_t index, const SocialDestination &destination), void *target);

} // namespace lmf
