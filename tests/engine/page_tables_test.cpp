#include "engine/page.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <set>
#include <string>

#include <gtest/gtest.h>

#include "engine/catalogue.h"
#include "support/pictures.h"

namespace lmf {
namespace {

/// Calls `visit(entry, control)` for every control of every page.
template <typename Visit>
void ForEachControl(Visit visit) {
    for (const FilterEntry &entry : FilterCatalogue) {
        for (const PageControl &control : entry.filter->page) visit(entry, control);
    }
}

/// The row of a control's setting in the settings file, or null for a setting that is kept in no file.
const ConfigEntry *FileRowOf(const PageControl &control) {
    const void *variable = control.number != nullptr ? static_cast<const void *>(&(Settings.*control.number))
                                                     : static_cast<const void *>(Settings.*control.text);
    for (const ConfigEntry &row : ConfigTable)
        if (row.variable == variable) return &row;
    return nullptr;
}

std::string KeyOf(const PageControl &control) {
    const ConfigEntry *row = FileRowOf(control);
    return row != nullptr ? row->key : "";
}

/// Puts the settings of the process back, whatever a test did to them.
struct Pages : ::testing::Test {
    SettingsStore kept = Settings;
    ~Pages() override { Settings = kept; }
};

TEST_F(Pages, EveryFilterSettingIsOnOnePageAndOfItsType) {
    std::map<std::string, std::set<std::string>> pages;
    std::set<std::string> hidden, inNoFile, keys;
    ForEachControl([&](const FilterEntry &entry, const PageControl &control) {
        if (!control.IsSetting()) return;
        const std::string key = KeyOf(control);
        const ConfigEntry *row = FileRowOf(control);
        (row != nullptr ? pages[key] : inNoFile).insert(entry.name);
        if (control.kind == ControlKind::None) hidden.insert(key);
        if (row == nullptr) return;
        const bool text = control.kind == ControlKind::TextField || control.kind == ControlKind::FontButton;
        EXPECT_EQ((row->type & kConfigText) != 0, text) << key;
        EXPECT_TRUE(control.kind != ControlKind::CheckBox || row->type == kConfigBool) << key;
    });
    const auto *first = reinterpret_cast<const char *>(static_cast<FilterParameters *>(&Settings));
    for (const ConfigEntry &row : ConfigTable) {
        const auto *variable = static_cast<const char *>(row.variable);
        const bool ofFilter = variable >= first && variable < first + sizeof(FilterParameters);
        EXPECT_EQ(pages[row.key].size(), ofFilter ? 1u : 0u) << row.key;
        EXPECT_TRUE(keys.insert(row.key).second) << row.key;
    }
    EXPECT_EQ(hidden, (std::set<std::string>{"FilterPosonlyRound", "FilterPrepressOnePixelLines",
                                             "FilterSocialMediaFrameSize", "FilterWatermarkKeyFactor"}));
    EXPECT_EQ(inNoFile, (std::set<std::string>{"Crop", "Matt", "Waves"}));
}

TEST_F(Pages, ControlIdsAreUniqueOverAllPages) {
    std::map<int32_t, std::string> owners;
    ForEachControl([&](const FilterEntry &entry, const PageControl &control) {
        SCOPED_TRACE(std::string(entry.name) + " " + std::to_string(control.id));
        const bool hidden = control.kind == ControlKind::None;
        EXPECT_EQ(control.id == 0, hidden);
        if (hidden) return;
        EXPECT_TRUE(control.id >= 200 && control.id < 10000) << "spins, edits and labels follow from here";
        EXPECT_TRUE(owners.emplace(control.id, entry.name).second) << "also of " << owners[control.id];
        const bool arrow = std::string(entry.name) == "Rotate" && control.kind == ControlKind::RadioButton;
        EXPECT_TRUE(arrow || control.kind == ControlKind::Picture || *control.label != '\0');
        EXPECT_LE(static_cast<uint32_t>(control.trackStyle), 15u);
    });
}

TEST_F(Pages, CombosAndRadioButtonsNameAllTheirValues) {
    std::map<std::string, std::pair<std::set<int32_t>, ControlRange>> pressed;
    std::set<std::string> openLists;
    ForEachControl([&](const FilterEntry &, const PageControl &control) {
        const std::string key = KeyOf(control);
        EXPECT_EQ(control.list != nullptr, control.kind == ControlKind::Combo) << key;
        if (control.list != nullptr) {
            EXPECT_EQ(std::strstr(control.list, ";;"), nullptr) << key;
            EXPECT_EQ(control.limits.Typed().min, 0) << key;
            if (control.limits.Stored().max == INT32_MAX)
                openLists.insert(key);
            else
                EXPECT_EQ(control.limits.Typed().max, ListLength(control.list) - 1) << key;
        }
        if (control.kind == ControlKind::RadioButton) {
            EXPECT_TRUE(pressed[key].first.insert(control.pressedValue).second) << key;
            pressed[key].second = control.limits.Typed();
        }
    });
    EXPECT_EQ(openLists, (std::set<std::string>{"FilterFaceDetectOption", "FilterSocialMediaDestination"}));
    for (const auto &[key, buttons] : pressed) {
        const auto &[values, range] = buttons;
        EXPECT_TRUE(*values.begin() == range.min && *values.rbegin() == range.max) << key;
        EXPECT_EQ(static_cast<int32_t>(values.size()), range.max - range.min + 1) << key;
    }
}

TEST_F(Pages, RestoringGivesTheFactoryValuesButForFour) {
    Settings = kFactorySettings;
    FilterContext loaded{}, restored{};
    LoadAllSettings(loaded);
    ResetAllDefaults(restored);
    std::map<std::string, int32_t> different;
    ForEachControl([&](const FilterEntry &entry, const PageControl &control) {
        const std::string key = KeyOf(control);
        if (control.text != nullptr) {
            EXPECT_STREQ(restored.*control.text, kFactorySettings.*control.text) << entry.name;
            EXPECT_STREQ(loaded.*control.text, kFactorySettings.*control.text) << entry.name;
        } else if (!key.empty()) {
            EXPECT_EQ(loaded.*control.number, kFactorySettings.*control.number) << key;
            if (restored.*control.number != loaded.*control.number) different[key] = restored.*control.number;
        }
    });
    EXPECT_EQ(different, (std::map<std::string, int32_t>{{"FilterResizeDepth", 800},
                                                         {"FilterCurlAntialias", 1},
                                                         {"FilterTextureBri", 128},
                                                         {"FilterSwirlDegrees", 2925}}));
}

TEST_F(Pages, LoadingLimitsEveryNumberToItsRange) {
    for (int32_t extreme : {INT32_MIN, -1, INT32_MAX}) {
        ForEachControl([&](const FilterEntry &, const PageControl &control) {
            if (control.number != nullptr) Settings.*control.number = extreme;
        });
        FilterContext context{};
        context.width = 30;
        context.height = 20;
        FilterContext again = context;
        LoadAllSettings(context);
        ForEachControl([&](const FilterEntry &, const PageControl &control) {
            if (control.number == nullptr || KeyOf(control).empty()) return;
            const ControlRange range = control.limits.Stored();
            EXPECT_EQ(context.*control.number, std::clamp(extreme, range.min, range.max)) << KeyOf(control);
        });
        EXPECT_TRUE(context.FilterMattWidth == 30 && context.FilterMattDepth == 20);
        StoreAllSettings(context);
        LoadAllSettings(again);
        EXPECT_EQ(std::memcmp(static_cast<void *>(&again), static_cast<void *>(&context), sizeof context), 0);
    }
}

TEST_F(Pages, AFilterTouchesItsOwnSettingsOnly) {
    for (const FilterEntry &entry : FilterCatalogue) {
        FilterContext context{};
        std::memset(static_cast<FilterParameters *>(&context), 0x5A, sizeof(FilterParameters));
        const FilterContext other = context;
        ResetPage(*entry.filter, context);
        // Copying the page's values over must take back all that was changed.
        CopyPage(*entry.filter, context, other);
        EXPECT_EQ(std::memcmp(static_cast<void *>(&context), static_cast<const void *>(&other), sizeof context), 0)
            << entry.name;
    }
}

TEST_F(Pages, AControlIsFoundByItsId) {
    for (int32_t row = 0; row < kFilterCount; row++) {
        for (const PageControl &control : FilterCatalogue[row].filter->page) {
            const ControlPlace *place = FindControl(control.id);
            ASSERT_EQ(place != nullptr, control.kind != ControlKind::None);
            EXPECT_TRUE(place == nullptr || (place->control == &control && place->row == row)) << control.id;
        }
    }
    EXPECT_EQ(FindControl(199), nullptr);
    EXPECT_EQ(FindControl(INT32_MAX), nullptr);
}

TEST(EnableRules, TestOneBitForEachValue) {
    const EnableRule on = EnabledWhileOn(1, nullptr), off = EnabledWhileOff(1, nullptr), two = EnabledAt(1, nullptr, 2);
    for (const int32_t value : {INT32_MIN, 0, 1, 2, 31, INT32_MAX}) {
        EXPECT_EQ(on.Allows(value), value > 0) << value;
        EXPECT_EQ(off.Allows(value), value <= 0) << value;
        EXPECT_EQ(two.Allows(value), value == 2) << value;
    }
}

} // namespace
} // namespace lmf
