#include "engine/host_menu.h"

#include <filesystem>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "engine/catalogue.h"
#include "host/lmf_program.h"
#include "support/pictures.h"
#include "support/shared_folder.h"

namespace lmf::testing {

namespace {

constexpr uint32_t kFirst = 0xFFFFFFF0u; // ids go on from 0

/// A user who switched Bump off for paint hosts; the catalogue is put back afterwards.
struct HostMenu : ::testing::Test {
    SharedFolder folder;
    std::vector<uint32_t> kept;

    void SetUp() override {
        for (const FilterEntry &entry : FilterCatalogue) kept.push_back(entry.flags);
        std::filesystem::create_directories(folder.path + "/Quillon Works");
        WriteText(folder.path + "/Quillon Works/DauberyFiltrEnable.ini", "[Enable]\nbump=0\n");
        ::setenv("XDG_CONFIG_HOME", folder.path.c_str(), 1);
    }
    void TearDown() override {
        for (size_t row = 0; row < kept.size(); ++row) FilterCatalogue[row].flags = kept[row];
    }
    static std::vector<LmfMenuItem> Items(BlockHandle menu) {
        const auto *head = static_cast<const LmfMenu *>(BlockLock(menu));
        std::vector<LmfMenuItem> items(LmfMenuItems(head), LmfMenuItems(head) + head->count);
        BlockUnlock(menu);
        return items;
    }
};

/// The five steps by which a row is enabled.
bool EnabledByDefinition(int32_t row, int32_t mode, bool a, bool b) {
    const uint32_t f = FilterCatalogue[row].flags;
    bool enabled = (f & FilterEnabled) && !(f & FilterHiddenFromPaint);
    if (a) enabled = (f & (FilterBarredByA | FilterHiddenFromPaint)) ? false : (f & FilterEnabled) != 0;
    if (b && (f & FilterBarredByB)) enabled = false;
    if (mode == 0 && !(f & FilterAcceptsColor)) enabled = false;
    if (mode == 1 && !(f & FilterAcceptsGrey)) enabled = false;
    if (mode == 2 && !(f & FilterAcceptsPalette)) enabled = false;
    if (mode == 3 && !(f & FilterAcceptsMono)) enabled = false;
    return mode != 4 && enabled;
}

} // namespace

TEST_F(HostMenu, ListsRowsInOrderOrByCategory) {
    for (const bool grouped : {false, true}) {
        const BlockOwner menu(MakeHostMenu(kFirst, grouped));
        std::vector<std::string> wanted, found;
        for (int32_t category = 0; category < (grouped ? 8 : 1); ++category) {
            for (const FilterEntry &entry : FilterCatalogue) {
                const bool fits = grouped ? entry.category == category : std::string(entry.name) != "Bump";
                if (fits && !(entry.flags & FilterHiddenFromPaint)) wanted.emplace_back(entry.name);
            }
        }
        std::string categories;
        for (const LmfMenuItem &item : Items(menu.handle)) {
            found.emplace_back(item.name);
            EXPECT_STREQ(item.name, FilterCatalogue[item.id - kFirst].name);
            EXPECT_EQ(item.enabled, 1);
            if (categories.ends_with(item.category)) continue;
            if (!categories.empty()) categories += ';';
            categories += item.category;
        }
        EXPECT_EQ(found, wanted);
        if (grouped) {
            EXPECT_EQ(categories, kCategoryList);
        }
    }
}

TEST_F(HostMenu, EnablesWhatThePictureAndTheHostAllow) {
    const BlockOwner menu(MakeHostMenu(kFirst, true));
    int32_t before = 0;
    for (const ImageMode mode : {kModeTrueColor, kModeGrey, kModePalette, kModeMono, kModeUnreadable}) {
        const LockedDib picture = mode != kModeUnreadable ? RandomPicture(3, 2, mode, 1) : LockedDib();
        for (const int32_t barred : {0, 1, 2, 3}) {
            const HostRestrictions restrictions = {picture.owner.handle, barred & 1, barred & 2};
            const HostRestrictions *given = mode != kModeUnreadable || barred != 0 ? &restrictions : nullptr;
            EXPECT_EQ(EnableHostMenu(menu.handle, kFirst, given), before);
            for (const LmfMenuItem &item : Items(menu.handle)) {
                const auto row = static_cast<int32_t>(item.id - kFirst);
                EXPECT_EQ(item.enabled, EnabledByDefinition(row, mode, barred & 1, barred & 2))
                    << item.name << mode << barred;
            }
            for (const LmfMenuItem &item : Items(menu.handle))
                if (item.id == kFirst + 94) before = item.enabled ? 0 : 3;
        }
    }
}

TEST_F(HostMenu, LeavesAloneWhatIsNoMenu) {
    EXPECT_EQ(EnableHostMenu(nullptr, 0, nullptr), -1);
    const BlockOwner small(BlockAlloc(7)), lying(BlockAlloc(sizeof(LmfMenu) + sizeof(LmfMenuItem)));
    static_cast<LmfMenu *>(BlockLock(lying.handle))->count = 2;
    BlockUnlock(lying.handle);
    EXPECT_EQ(EnableHostMenu(small.handle, 0, nullptr), -1);
    EXPECT_EQ(EnableHostMenu(lying.handle, 0, nullptr), -1);
    const BlockOwner menu(MakeHostMenu(500, false));
    EXPECT_EQ(EnableHostMenu(menu.handle, 100, nullptr), -1) << "items of other ids";
    FailAllocationAfter(0);
    EXPECT_EQ(MakeHostMenu(0, true), nullptr);
    FailAllocationAfter(-1);
}

} // namespace lmf::testing
