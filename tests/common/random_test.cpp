#include "common/random.h"

#include <gtest/gtest.h>

#include <vector>

namespace lmf::testing {

TEST(Random, SeedOneGivesTheKnownSequence) {
    SeedRandom(1);
    for (int32_t draw : {41, 18467, 6334, 26500, 19169, 15724}) EXPECT_EQ(NextRandom(), draw);
}

TEST(Random, ManyDrawsAreTheSameAsOneByOne) {
    for (size_t count : {0u, 1u, 63u, 64u, 65u, 1000u}) {
        std::vector<uint16_t> together(count), single(count);
        SeedRandom(77);
        NextRandoms(together.data(), count);
        const int32_t next = NextRandom();
        SeedRandom(77);
        for (uint16_t &draw : single) draw = static_cast<uint16_t>(NextRandom());
        EXPECT_EQ(together, single) << count;
        EXPECT_EQ(next, NextRandom()) << count;
        SeedRandom(77);
        PeekRandoms(together.data(), count);
        EXPECT_EQ(together, single) << count;
        SkipRandoms(count);
        EXPECT_EQ(next, NextRandom()) << count;
    }
}

} // namespace lmf::testing
