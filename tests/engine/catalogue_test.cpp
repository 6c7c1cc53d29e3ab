#include "engine/catalogue.h"

#include <cstring>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "image/dib.h"

namespace lmf {
namespace {

int32_t RowOf(const std::string &name) {
    for (int32_t row = 0; row < kFilterCount; row++) {
        if (FilterCatalogue[row].name == name) return row;
    }
    ADD_FAILURE() << name;
    return 0;
}

/// Is the filter offered for this mode? `restrictions`: bit 1 the first of the context's, bit 2 the second.
bool Offered(const std::string &name, int32_t mode, const OfferRules &rules = {}, bool hasSecond = false,
             int32_t restrictions = 0) {
    return FilterIsOffered(rules, mode, (restrictions & 1) != 0, (restrictions & 2) != 0, hasSecond, RowOf(name));
}

TEST(Catalogue, RowsAreComplete) {
    std::set<std::string> names;
    std::set<int32_t> itemIds, pageIds;
    uint32_t allFlags = 0;
    for (const FilterEntry &entry : FilterCatalogue) {
        names.insert(entry.name);
        itemIds.insert(entry.itemId);
        pageIds.insert(entry.pageId);
        allFlags |= entry.flags;
        EXPECT_TRUE(entry.flags & FilterEnabled) << entry.name;
        EXPECT_TRUE(entry.category >= 0 && entry.category <= 7) << entry.name;
        const FilterSlots &slots = *entry.slots;
        EXPECT_TRUE(slots.FilterKernel && slots.LoadSettings && slots.StoreSettings && slots.ResetDefaults &&
                    slots.OnQuery)
            << entry.name;
        EXPECT_EQ(std::strpbrk(entry.name, "=,_;"), nullptr) << entry.name << " must survive the settings files";
    }
    EXPECT_EQ(names.size(), 95u);
    EXPECT_EQ(itemIds.size(), 95u);
    EXPECT_EQ(*itemIds.rbegin(), 94);
    EXPECT_EQ(pageIds.size(), 95u);
    EXPECT_EQ(*pageIds.begin(), 9000);
    EXPECT_EQ(*pageIds.rbegin(), 9094);
    EXPECT_EQ(allFlags, 0x3FFFFu);
    EXPECT_EQ(RowOf("Zoom Blur"), 94);
    EXPECT_EQ(FilterCatalogue[RowOf("Photo Fine-tune")].itemId, 11);
}

TEST(Catalogue, FiltersThatMovePixelsTakeTheSecondPictureAlong) {
    std::vector<std::string> moving;
    for (const FilterEntry &entry : FilterCatalogue) {
        if ((entry.flags & FilterAcceptsGrey) && !(entry.flags & FilterKeepsSecond)) moving.push_back(entry.name);
    }
    const std::vector<std::string> expected = {"Convert to 256 Colors",
                                               "Crop",
                                               "Explode",
                                               "Flip",
                                               "Implode",
                                               "Matt",
                                               "Resize",
                                               "Rotate",
                                               "Seamless",
                                               "Shear",
                                               "Stitch"};
    EXPECT_EQ(moving, expected);
}

TEST(Catalogue, FallbackRowsStandInCatalogueOrder) {
    std::vector<std::string> fallback;
    for (const FilterEntry &entry : FilterCatalogue) {
        if (entry.flags & FilterFallback) fallback.push_back(entry.name);
    }
    fallback.resize(3);
    EXPECT_EQ(fallback, (std::vector<std::string>{"Caption", "Flip", "Invert Channels"}));
}

TEST(Catalogue, OfferFollowsModeAndSwitch) {
    for (int32_t row = 0; row < kFilterCount; row++) {
        const uint32_t flags = FilterCatalogue[row].flags;
        const bool mono = FilterIsOffered({}, kModeMono, false, false, true, row);
        EXPECT_EQ(mono, (flags & FilterAcceptsMono) && !(flags & FilterNeedsClipboard)) << FilterCatalogue[row].name;
        EXPECT_FALSE(FilterIsOffered({}, 4, false, false, true, row));
        EXPECT_FALSE(FilterIsOffered({}, -1, false, false, true, row));
    }
    FilterEntry &gamma = FilterCatalogue[RowOf("Gamma")];
    EXPECT_TRUE(Offered("Gamma", kModeTrueColor));
    gamma.flags &= ~static_cast<uint32_t>(FilterEnabled);
    EXPECT_FALSE(Offered("Gamma", kModeTrueColor));
    gamma.flags |= FilterEnabled;
}

TEST(Catalogue, OfferFollowsClipboardAndSecondPicture) {
    OfferRules withClipboard;
    withClipboard.clipboardHasPicture = true;
    EXPECT_FALSE(Offered("Stitch", kModeTrueColor));
    EXPECT_TRUE(Offered("Stitch", kModeTrueColor, withClipboard));
    EXPECT_FALSE(Offered("Alpha shadow", kModeTrueColor));
    EXPECT_TRUE(Offered("Alpha shadow", kModeTrueColor, {}, true));
    EXPECT_FALSE(Offered("Alpha shadow", kModeGrey, {}, true));
}

TEST(Catalogue, OfferFollowsTheHost) {
    struct Case {
        const char *filter;
        uint32_t runFlags;
        bool offered;
    };
    const Case cases[] = {
        {"Crop", kRunStandard, true},       {"Crop", kRunBatch, false},        {"Crop", kRunBatch | kRunDaubery, false},
        {"Add Alpha", kRunStandard, true},  {"Add Alpha", kRunDaubery, false}, {"Add Alpha", kRunPaint, false},
        {"Add Alpha", kRunBatch, true},     {"Caption", kRunReelsmith, false}, {"Caption", kRunFrameloom, false},
        {"Caption", kRunFixedFilter, true}, {"Average", kRunReelsmith, true},
    };
    for (const Case &c : cases) {
        OfferRules rules;
        rules.runFlags = c.runFlags;
        EXPECT_EQ(Offered(c.filter, kModeTrueColor, rules), c.offered) << c.filter << " " << c.runFlags;
    }
    // A host's restrictions count for the paint hosts alone: Halftone is barred by the first, Corners by the second.
    for (uint32_t runFlags : {kRunStandard, kRunDaubery, kRunPaint}) {
        for (bool passed : {false, true}) {
            OfferRules a, b;
            a.runFlags = b.runFlags = runFlags;
            a.hasHostRestrictions = b.hasHostRestrictions = passed;
            a.hostRestrictA = b.hostRestrictB = true;
            const bool barred = passed && runFlags != kRunStandard;
            EXPECT_EQ(Offered("Halftone", kModeTrueColor, a), !barred);
            EXPECT_EQ(Offered("Corners", kModeTrueColor, b), !barred);
            EXPECT_TRUE(Offered("Halftone", kModeTrueColor, b));
            EXPECT_TRUE(Offered("Corners", kModeTrueColor, a));
        }
    }
}

TEST(Catalogue, OfferFollowsTheRestrictionsOfTheContext) {
    EXPECT_TRUE(Offered("Crop", kModeTrueColor, {}, false, 0));
    EXPECT_FALSE(Offered("Crop", kModeTrueColor, {}, false, 1)) << "barred by B under the first";
    EXPECT_TRUE(Offered("Crop", kModeTrueColor, {}, false, 2)) << "the second alone does nothing";
    EXPECT_TRUE(Offered("Halftone", kModeTrueColor, {}, false, 1));
    EXPECT_FALSE(Offered("Halftone", kModeTrueColor, {}, false, 3)) << "barred by A under both";
    EXPECT_TRUE(Offered("Contrast and Brightness", kModeGrey, {}, false, 3));
    EXPECT_FALSE(Offered("Contrast and Brightness", kModePalette, {}, false, 1)) << "the rule for palettes";
    EXPECT_TRUE(Offered("Alpha shadow", kModeTrueColor, {}, true, 3)) << "the second picture alone decides";
}

} // namespace
} // namespace lmf
