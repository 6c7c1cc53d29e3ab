#include "engine/catalogue.h"

#include <cstring>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "image/core/dib.h"
#include "support/pictures.h"

namespace lmf {
namespace {

using testing::RowOf;

/// The names of all rows whose flags suit, in the catalogue's order.
template <typename Suits>
std::string NamesOf(Suits suits) {
    std::string names;
    for (const FilterEntry &entry : FilterCatalogue)
        if (suits(entry.flags)) names += (names.empty() ? "" : ", ") + std::string(entry.name);
    return names;
}

/// Is the filter offered for a picture in true colour that is alone?
bool Offered(const std::string &name, const OfferRules &rules = {}) {
    return FilterIsOffered(rules, kModeTrueColor, false, false, false, RowOf(name));
}

TEST(Catalogue, RowsAreComplete) {
    std::set<std::string> names;
    std::set<int32_t> itemIds, pageIds;
    for (const FilterEntry &entry : FilterCatalogue) {
        EXPECT_EQ(std::strpbrk(entry.name, "=,_;"), nullptr) << entry.name << " must survive the settings files";
        EXPECT_TRUE(names.insert(entry.name).second) << entry.name;
        EXPECT_TRUE(itemIds.insert(entry.itemId).second) << entry.name;
        EXPECT_TRUE(pageIds.insert(entry.pageId).second) << entry.name;
        EXPECT_TRUE(entry.flags & FilterEnabled) << entry.name;
        EXPECT_TRUE(entry.category >= 0 && entry.category <= 7) << entry.name;
    }
    EXPECT_EQ(*itemIds.rbegin(), 94);
    EXPECT_EQ(*pageIds.begin(), 9000);
    EXPECT_EQ(*pageIds.rbegin(), 9094);
    EXPECT_EQ(RowOf("Zoom Blur"), 94);
    EXPECT_EQ(FilterCatalogue[RowOf("Photo Fine-tune")].itemId, 11);
}

TEST(Catalogue, FlagsThatStandForSeveralFilters) {
    // Filters that move pixels take the second picture along.
    EXPECT_EQ(NamesOf([](uint32_t flags) { return (flags & FilterAcceptsGrey) && !(flags & FilterKeepsSecond); }),
              "Convert to 256 Colors, Crop, Explode, Flip, Implode, Matt, Resize, Rotate, Seamless, Shear, Stitch");
    EXPECT_EQ(NamesOf([](uint32_t flags) { return flags & FilterFallback; }).find("Caption, Flip, Invert Channels"),
              0u);
}

TEST(Catalogue, OfferFollowsModeSwitchAndRestrictions) {
    struct Case {
        const char *filter;
        int32_t mode, restrictions; ///< 1 the first alone, 2 the second alone, 3 both
        bool offered;
    };
    const Case cases[] = {
        {"Flip", -1, 0, false},
        {"Flip", 4, 0, false},
        {"Flip", kModeMono, 0, true},
        {"Gamma", kModeMono, 0, false},
        {"Alpha shadow", kModeGrey, 0, false},
        {"Alpha shadow", kModeTrueColor, 3, true},
        {"Crop", kModeTrueColor, 0, true},
        {"Crop", kModeTrueColor, 1, false},
        {"Crop", kModeTrueColor, 2, true},
        {"Halftone", kModeTrueColor, 1, true},
        {"Halftone", kModeTrueColor, 3, false},
        {"Contrast and Brightness", kModeGrey, 3, true},
        {"Contrast and Brightness", kModePalette, 1, false},
    };
    for (const auto &[filter, mode, restrictions, expected] : cases) {
        const bool offered = FilterIsOffered({}, mode, restrictions & 1, restrictions & 2, true, RowOf(filter));
        EXPECT_EQ(offered, expected) << filter << " " << mode << " " << restrictions;
    }
    EXPECT_FALSE(Offered("Alpha shadow")) << "without a second picture";
    FilterEntry &gamma = FilterCatalogue[RowOf("Gamma")];
    EXPECT_TRUE(Offered("Gamma"));
    gamma.flags &= ~static_cast<uint32_t>(FilterEnabled);
    EXPECT_FALSE(Offered("Gamma"));
    gamma.flags |= FilterEnabled;
}

TEST(Catalogue, OfferFollowsTheHost) {
    OfferRules withClipboard;
    withClipboard.clipboardHasPicture = true;
    EXPECT_FALSE(Offered("Stitch"));
    EXPECT_TRUE(Offered("Stitch", withClipboard));
    struct Case {
        const char *filter;
        uint32_t runFlags;
        bool offered;
    };
    const Case cases[] = {
        {"Crop", LMF_RUN_STANDARD, true},
        {"Crop", LMF_RUN_BATCH, false},
        {"Crop", LMF_RUN_BATCH | LMF_RUN_DAUBERY, false},
        {"Add Alpha", LMF_RUN_STANDARD, true},
        {"Add Alpha", LMF_RUN_DAUBERY, false},
        {"Add Alpha", LMF_RUN_PAINT, false},
        {"Add Alpha", LMF_RUN_BATCH, true},
        {"Caption", LMF_RUN_REELSMITH, false},
        {"Caption", LMF_RUN_FRAMELOOM, false},
        {"Caption", LMF_RUN_FIXED_FILTER, true},
        {"Average", LMF_RUN_REELSMITH, true},
    };
    for (const Case &c : cases) {
        OfferRules rules;
        rules.runFlags = c.runFlags;
        EXPECT_EQ(Offered(c.filter, rules), c.offered) << c.filter << " " << c.runFlags;
    }
    // A host's restrictions count for the paint hosts alone: Halftone is barred by the first, Corners by the second.
    for (const uint32_t runFlags : {LMF_RUN_STANDARD, LMF_RUN_DAUBERY, LMF_RUN_PAINT}) {
        for (bool passed : {false, true}) {
            OfferRules a, b;
            a.runFlags = b.runFlags = runFlags;
            a.hasHostRestrictions = b.hasHostRestrictions = passed;
            a.hostRestrictA = b.hostRestrictB = true;
            const bool barred = passed && runFlags != LMF_RUN_STANDARD;
            EXPECT_EQ(Offered("Halftone", a), !barred);
            EXPECT_EQ(Offered("Corners", b), !barred);
            EXPECT_TRUE(Offered("Halftone", b));
            EXPECT_TRUE(Offered("Corners", a));
        }
    }
}

} // namespace
} // namespace lmf
