#include "engine/host_menu.h"

#include <cstring>
#include <span>
#include <string_view>

#include "engine/catalogue.h"
#include "engine/settings_files.h"
#include "image/core/dib.h"

namespace lmf {

namespace {

/// The menu is that of a paint host, whoever asks for it.
constexpr uint32_t kMenuRunFlags = LMF_RUN_DAUBERY;

/// What an item of a Win32 menu was, which hosts know.
constexpr int32_t kWasEnabled = 0, kWasGreyed = 3, kNoItem = -1;

struct CategoryTitles {
    char title[8][sizeof LmfMenuItem::category] = {};
    int32_t count = 0;
};

constexpr CategoryTitles kCategories = [] {
    CategoryTitles titles;
    size_t length = 0;
    for (const char *next = kCategoryList; *next != '\0'; ++next) {
        if (*next == ';') {
            ++titles.count;
            length = 0;
        } else {
            titles.title[titles.count][length++] = *next;
        }
    }
    ++titles.count;
    return titles;
}();

/// Names and titles fit into an item with their terminators.
#define LMF_NAME_SIZE(id, text) static_assert(sizeof text <= sizeof LmfMenuItem::name);
LMF_FILTERS(LMF_NAME_SIZE)
#undef LMF_NAME_SIZE

bool IsShown(uint32_t flags) {
    return (flags & FilterHiddenFromPaint) == 0;
}

/// A menu under construction; room for all rows.
struct MenuItems {
    LmfMenuItem items[kFilterCount] = {};
    uint32_t count = 0;

    void Add(uint32_t firstId, int32_t row) {
        const FilterEntry &entry = FilterCatalogue[row];
        LmfMenuItem &item = items[count++];
        item.id = firstId + static_cast<uint32_t>(row);
        item.enabled = 1;
        std::memcpy(item.category, kCategories.title[entry.category], sizeof item.category);
        std::memcpy(item.name, entry.name, std::strlen(entry.name));
    }
};

/// The items of a locked menu; none where the block cannot be one.
std::span<LmfMenuItem> ItemsOf(uint8_t *bytes, uint64_t size) {
    if (bytes == nullptr || size < sizeof(LmfMenu)) return {};
    LmfMenu head;
    std::memcpy(&head, bytes, sizeof head);
    if ((size - sizeof head) / sizeof(LmfMenuItem) < head.count) return {};
    return {reinterpret_cast<LmfMenuItem *>(bytes + sizeof head), head.count};
}

bool ModeAccepts(int32_t mode, uint32_t flags) {
    constexpr uint32_t kNeeded[] = {FilterAcceptsColor, FilterAcceptsGrey, FilterAcceptsPalette, FilterAcceptsMono};
    return mode >= kModeTrueColor && mode <= kModeMono && (flags & kNeeded[mode]) != 0;
}

/// A filter that needs a second picture counts as one that takes no colour, unlike in FilterIsOffered.
bool IsEnabled(uint32_t flags, int32_t mode, const HostRestrictions &restrictions) {
    uint32_t barred = FilterHiddenFromPaint;
    if (restrictions.restrictA != 0) barred |= FilterBarredByA;
    if (restrictions.restrictB != 0) barred |= FilterBarredByB;
    return (flags & FilterEnabled) != 0 && (flags & barred) == 0 && ModeAccepts(mode, flags);
}

} // namespace

BlockHandle MakeHostMenu(uint32_t firstId, bool grouped) {
    (void)ReadEnableFile(kMenuRunFlags);
    MenuItems made;
    for (int32_t category = 0; grouped && category < kCategories.count; ++category) {
        for (int32_t row = 0; row < kFilterCount; ++row) {
            const FilterEntry &entry = FilterCatalogue[row];
            if (entry.category == category && IsShown(entry.flags)) made.Add(firstId, row);
        }
    }
    for (int32_t row = 0; !grouped && row < kFilterCount; ++row) {
        const uint32_t flags = FilterCatalogue[row].flags;
        if (IsShown(flags) && (flags & FilterEnabled)) made.Add(firstId, row);
    }

    const size_t itemBytes = made.count * sizeof(LmfMenuItem);
    BlockOwner menu(BlockAlloc(sizeof(LmfMenu) + itemBytes));
    auto *bytes = static_cast<uint8_t *>(BlockLock(menu.handle));
    if (bytes == nullptr) return nullptr;
    const LmfMenu head = {made.count, grouped ? 1u : 0u};
    std::memcpy(bytes, &head, sizeof head);
    std::memcpy(bytes + sizeof head, made.items, itemBytes);
    BlockUnlock(menu.handle);
    return menu.Release();
}

int32_t EnableHostMenu(BlockHandle menu, uint32_t firstId, const HostRestrictions *restrictions) {
    const HostRestrictions given = restrictions != nullptr ? *restrictions : HostRestrictions{};
    const int32_t mode = DibClassify(given.picture);
    (void)ReadEnableFile(kMenuRunFlags);
    int32_t wasLast = kNoItem;
    auto *bytes = static_cast<uint8_t *>(BlockLock(menu));
    for (LmfMenuItem &item : ItemsOf(bytes, BlockSize(menu))) {
        const uint32_t row = item.id - firstId;
        if (row >= static_cast<uint32_t>(kFilterCount)) continue;
        if (row == kFilterCount - 1) wasLast = item.enabled != 0 ? kWasEnabled : kWasGreyed;
        item.enabled = IsEnabled(FilterCatalogue[row].flags, mode, given) ? 1 : 0;
    }
    if (bytes != nullptr) BlockUnlock(menu);
    return wasLast;
}

} // namespace lmf
