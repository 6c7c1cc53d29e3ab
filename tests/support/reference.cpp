#include "support/reference.h"

#include "common/random.h"

namespace lmf::testing {

LockedDib RandomKind(Kind kind, int32_t width, int32_t height, uint32_t seed) {
    static constexpr uint8_t kFew[] = {99, 100, 100, 100, 101, 103};
    static constexpr uint8_t kExtremes[] = {0, 0, 1, 2, 253, 254, 255, 255};
    static constexpr uint32_t kDepths[] = {24, 32, 8};
    if (kind == Kind::Palette) return RandomPicture(width, height, kModePalette, seed);
    uint32_t state = seed * 2654435761u + 1;
    Pixels pixels(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (uint32_t &pixel : pixels) {
        for (int32_t channel = 0; channel < 4; channel++) {
            const uint32_t draw = TestRandom(&state) >> 8;
            const uint32_t level = seed % 3 == 0 ? draw & 255 : seed % 3 == 1 ? kFew[draw % 6] : kExtremes[draw % 8];
            pixel = pixel << 8 | level;
        }
        if (kind == Kind::Mono) pixel = TestRandom(&state) / 64 % (seed % 3 * 8 + 2) != 0;
    }
    return MakePicture(width, height, kind == Kind::Mono ? 1 : kDepths[static_cast<int>(kind)], pixels);
}

/// A third of the settings keep their defaults, where centres have exact mirror images.
static void RandomSettings(const std::string &filter, FilterContext *context, uint32_t *state) {
    for (const PageControl &control : EntryOf(filter).filter->page) {
        const auto count = static_cast<uint32_t>(control.limits.Typed().max - control.limits.Typed().min + 1);
        if (control.number != nullptr && TestRandom(state) / 64 % 3 != 0)
            context->*control.number =
                control.limits.Typed().min + static_cast<int32_t>(TestRandom(state) / 64 % count);
    }
}

static void RunTrial(const std::string &filter, const Trials &trials, const Definition &definition,
                     const LockedDib &source, uint32_t seed) {
    uint32_t state = seed;
    FilterContext context = MakeContext();
    context.paperColor = TestRandom(&state) & 0xFFFFFF;
    RandomSettings(filter, &context, &state);
    if (!trials.otherPage.empty()) RandomSettings(trials.otherPage, &context, &state);
    for (const Setting &setting : trials.fixed) context.*setting.field = setting.value;
    SeedRandom(seed);
    const LockedDib result = RunKernel(filter, source, context);
    const int32_t next = NextRandom();
    SeedRandom(seed);
    const LockedDib expected = definition(source, context);
    ASSERT_EQ(static_cast<bool>(result), static_cast<bool>(expected));
    if (expected) {
        const ReadView plain = expected;
        ExpectPixels(result, [&](int32_t x, int32_t y) { return DibGetPixel(plain, x, y); });
        ASSERT_TRUE(SamePicture(result, expected)) << "size, depth and palette";
    }
    ASSERT_EQ(next, NextRandom()) << "the random stream must go on after the last draw";
}

void ExpectDefinition(const std::string &filter, const Trials &trials, const Definition &definition) {
    uint32_t state = 77;
    for (Kind kind : trials.kinds) {
        for (const auto &[width, height] : trials.sizes) {
            for (int32_t round = 0; round < trials.rounds; round++) {
                const uint32_t seed = TestRandom(&state);
                SCOPED_TRACE(filter + ", kind " + std::to_string(static_cast<int>(kind)) + ", " +
                             std::to_string(width) + "x" + std::to_string(height));
                RunTrial(filter, trials, definition, RandomKind(kind, width, height, seed), seed);
                if (::testing::Test::HasFailure()) return;
            }
        }
    }
}

} // namespace lmf::testing
