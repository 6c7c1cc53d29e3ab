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

const void *VariableOf(const PageControl &control) {
    return control.number != nullptr ? static_cast<const void *>(&(Settings.*control.number))
                                     : static_cast<const void *>(Settings.*control.text);
}

/// The row of a control's setting in the settings file, or null for a setting that is kept in no file.
const ConfigEntry *FileRowOf(const PageControl &control) {
    for (const ConfigEntry &row : ConfigTable)
        if (row.variable == VariableOf(control)) return &row;
    return nullptr;
}

std::string KeyOf(const PageControl &control) {
    const ConfigEntry *row = FileRowOf(control);
    return row != nullptr ? row->key : "";
}

/// Calls `visit(name, control)` for every control of a number that is kept in the settings file.
template <typename Visit>
void ForEachNumber(Visit visit) {
    ForEachControl([&](const FilterEntry &entry, const PageControl &control) {
        const std::string key = KeyOf(control);
        if (control.number != nullptr && !key.empty()) visit(std::string(entry.name) + " " + key, control);
    });
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
        if (key.empty())
            inNoFile.insert(entry.name);
        else
            pages[key].insert(entry.name);
        if (control.kind == ControlKind::None) hidden.insert(key);
        const ConfigEntry *row = FileRowOf(control);
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
        if (control.kind == ControlKind::None) {
            EXPECT_EQ(control.id, 0) << entry.name;
            return;
        }
        EXPECT_GE(control.id, 200) << entry.name;
        EXPECT_LT(control.id, 10000) << entry.name << ": spins, edits and labels follow from here";
        EXPECT_TRUE(owners.emplace(control.id, entry.name).second)
            << entry.name << " " << control.id << ", also of " << owners[control.id];
        const bool arrow = std::string(entry.name) == "Rotate" && control.kind == ControlKind::RadioButton;
        EXPECT_TRUE(arrow || control.kind == ControlKind::Picture || *control.label != '\0')
            << entry.name << " " << control.id;
        EXPECT_LE(static_cast<uint32_t>(control.trackStyle), 15u) << entry.name << " " << control.id;
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
        EXPECT_EQ(*values.begin(), range.min) << key;
        EXPECT_EQ(*values.rbegin(), range.max) << key;
        EXPECT_EQ(static_cast<int32_t>(values.size()), range.max - range.min + 1) << key;
    }
}

TEST_F(Pages, RestoringGivesTheFactoryValuesButForFour) {
    Settings = kFactorySettings;
    FilterContext loaded{}, restored{};
    LoadAllSettings(loaded);
    ResetAllDefaults(restored);
    ForEachControl([&](const FilterEntry &entry, const PageControl &control) {
        if (control.text == nullptr) return;
        EXPECT_STREQ(restored.*control.text, kFactorySettings.*control.text) << entry.name;
        EXPECT_STREQ(loaded.*control.text, kFactorySettings.*control.text) << entry.name;
    });
    std::map<std::string, int32_t> different;
    ForEachNumber([&](const std::string &name, const PageControl &control) {
        EXPECT_EQ(loaded.*control.number, kFactorySettings.*control.number) << name;
        if (restored.*control.number != loaded.*control.number) different[KeyOf(control)] = restored.*control.number;
    });
    const std::map<std::string, int32_t> expected = {
        {"FilterResizeDepth", 800},
        {"FilterCurlAntialias", 1},
        {"FilterTextureBri", 128},
        {"FilterSwirlDegrees", 2925},
    };
    EXPECT_EQ(different, expected);
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
        ForEachNumber([&](const std::string &name, const PageControl &control) {
            EXPECT_EQ(context.*control.number,
                      std::clamp(extreme, control.limits.Stored().min, control.limits.Stored().max))
                << name;
        });
        EXPECT_EQ(context.FilterMattWidth, 30);
        EXPECT_EQ(context.FilterMattDepth, 20);
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
            if (place == nullptr) continue;
            EXPECT_EQ(place->control, &control);
            EXPECT_EQ(place->row, row);
        }
    }
    EXPECT_EQ(FindControl(199), nullptr);
    EXPECT_EQ(FindControl(INT32_MAX), nullptr);
}

TEST(EnableRules, TestOneBitForEachValue) {
    const EnableRule on = EnabledWhileOn(1, nullptr), off = EnabledWhileOff(1, nullptr), two = EnabledAt(1, nullptr, 2);
    const int32_t values[] = {INT32_MIN, 0, 1, 2, 31, INT32_MAX};
    const bool allowedOn[] = {false, false, true, true, true, true};
    for (size_t i = 0; i < std::size(values); i++) {
        EXPECT_EQ(on.Allows(values[i]), allowedOn[i]) << values[i];
        EXPECT_NE(off.Allows(values[i]), allowedOn[i]) << values[i];
        EXPECT_EQ(two.Allows(values[i]), values[i] == 2) << values[i];
    }
}

} // namespace
} // namespace lmf
