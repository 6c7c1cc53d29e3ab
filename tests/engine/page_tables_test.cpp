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

using testing::MakeContext;

/// Calls `visit(entry, control)` for every control of every page.
template <typename Visit>
void ForEachControl(Visit visit) {
    for (const FilterEntry &entry : FilterCatalogue) {
        for (const PageControl &control : entry.slots->page) visit(entry, control);
    }
}

const void *VariableOf(const PageControl &control) {
    return control.number != nullptr ? static_cast<const void *>(&(Settings.*control.number))
                                     : static_cast<const void *>(Settings.*control.text);
}

/// The key of a control's setting, or an empty text for a setting that is kept in no file.
std::string KeyOf(const PageControl &control) {
    for (const ConfigEntry &row : ConfigTable) {
        if (row.variable == VariableOf(control)) return row.key;
    }
    return "";
}

/// Puts the settings of the process back, whatever a test did to them.
struct Pages : ::testing::Test {
    SettingsStore kept = Settings;
    ~Pages() override { Settings = kept; }
};

TEST_F(Pages, KeysAreUnique) {
    std::set<std::string> keys;
    for (const ConfigEntry &row : ConfigTable) EXPECT_TRUE(keys.insert(row.key).second) << row.key;
}

TEST_F(Pages, EveryFilterSettingIsOnOnePage) {
    std::map<std::string, std::set<std::string>> pages;
    std::set<std::string> hidden, inNoFile;
    ForEachControl([&](const FilterEntry &entry, const PageControl &control) {
        const std::string key = KeyOf(control);
        if (key.empty())
            inNoFile.insert(entry.name);
        else
            pages[key].insert(entry.name);
        if (control.kind == ControlKind::None) hidden.insert(key);
    });
    const auto *first = reinterpret_cast<const char *>(static_cast<FilterParameters *>(&Settings));
    for (const ConfigEntry &row : ConfigTable) {
        const auto *variable = static_cast<const char *>(row.variable);
        const bool ofFilter = variable >= first && variable < first + sizeof(FilterParameters);
        EXPECT_EQ(pages[row.key].size(), ofFilter ? 1u : 0u) << row.key;
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
        EXPECT_TRUE(arrow || *control.label != '\0') << entry.name << " " << control.id;
        EXPECT_LE(static_cast<uint32_t>(control.trackStyle), 15u) << entry.name << " " << control.id;
    });
}

TEST_F(Pages, DefaultsLieInTheirRanges) {
    ForEachControl([&](const FilterEntry &entry, const PageControl &control) {
        if (control.number == nullptr || KeyOf(control).empty()) return;
        const std::string name = std::string(entry.name) + " " + KeyOf(control);
        EXPECT_LE(control.edit.min, control.edit.max) << name;
        EXPECT_LE(control.stored.min, control.edit.min) << name;
        EXPECT_GE(control.stored.max, control.edit.max) << name;
        EXPECT_GE(RestoreValueOf(control), control.stored.min) << name;
        EXPECT_LE(RestoreValueOf(control), control.stored.max) << name;
        if (control.kind != ControlKind::CheckBox) {
            EXPECT_GE(FactorySettings().*control.number, control.edit.min) << name;
            EXPECT_LE(FactorySettings().*control.number, control.edit.max) << name;
        }
    });
}

TEST_F(Pages, TypesOfTheFileFitTheControls) {
    ForEachControl([&](const FilterEntry &entry, const PageControl &control) {
        for (const ConfigEntry &row : ConfigTable) {
            if (row.variable != VariableOf(control)) continue;
            const bool text = control.kind == ControlKind::TextField || control.kind == ControlKind::FontButton;
            EXPECT_EQ((row.type & kConfigText) != 0, text) << entry.name << " " << row.key;
            EXPECT_TRUE(control.kind != ControlKind::CheckBox || row.type == kConfigBool)
                << entry.name << " " << row.key;
        }
    });
}

TEST_F(Pages, CombosAndRadioButtonsNameAllTheirValues) {
    std::map<const void *, std::set<int32_t>> pressed;
    std::map<const void *, ControlRange> ranges;
    ForEachControl([&](const FilterEntry &entry, const PageControl &control) {
        const std::string name = std::string(entry.name) + " " + KeyOf(control);
        if (control.kind == ControlKind::Combo) {
            ASSERT_NE(control.list, nullptr) << name;
            EXPECT_EQ(std::strstr(control.list, ";;"), nullptr) << name;
            EXPECT_EQ(control.edit.min, 0) << name;
            EXPECT_TRUE(control.edit.max == ListLength(control.list) - 1 || control.edit.max == INT32_MAX) << name;
        } else {
            EXPECT_EQ(control.list, nullptr) << name;
        }
        if (control.kind == ControlKind::RadioButton) {
            EXPECT_TRUE(pressed[VariableOf(control)].insert(control.pressedValue).second) << name;
            ranges[VariableOf(control)] = control.edit;
        }
    });
    for (const auto &[variable, values] : pressed) {
        EXPECT_EQ(*values.begin(), ranges[variable].min);
        EXPECT_EQ(*values.rbegin(), ranges[variable].max);
        EXPECT_EQ(static_cast<int32_t>(values.size()), ranges[variable].max - ranges[variable].min + 1);
    }
}

TEST_F(Pages, RestoringGivesTheFactoryValuesButForFour) {
    Settings = FactorySettings();
    FilterContext loaded{}, restored{};
    LoadAllSettings(&loaded);
    ResetAllDefaults(&restored);
    std::map<std::string, int32_t> different;
    ForEachControl([&](const FilterEntry &entry, const PageControl &control) {
        if (control.text != nullptr) {
            EXPECT_STREQ(restored.*control.text, FactorySettings().*control.text) << entry.name;
            EXPECT_STREQ(loaded.*control.text, FactorySettings().*control.text) << entry.name;
        } else if (!KeyOf(control).empty()) {
            EXPECT_EQ(loaded.*control.number, FactorySettings().*control.number) << entry.name;
            if (restored.*control.number != loaded.*control.number)
                different[KeyOf(control)] = restored.*control.number;
        }
    });
    const std::map<std::string, int32_t> expected = {{"FilterResizeDepth", 800},
                                                     {"FilterCurlAntialias", 1},
                                                     {"FilterTextureBri", 128},
                                                     {"FilterSwirlDegrees", 2925}};
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
        LoadAllSettings(&context);
        ForEachControl([&](const FilterEntry &entry, const PageControl &control) {
            if (control.number == nullptr || KeyOf(control).empty()) return;
            const int32_t expected = std::clamp(extreme, control.stored.min, control.stored.max);
            EXPECT_EQ(context.*control.number, expected) << entry.name << " " << control.label;
        });
        EXPECT_EQ(context.FilterMattWidth, 30);
        EXPECT_EQ(context.FilterMattDepth, 20);
        StoreAllSettings(&context);
        FilterContext again{};
        again.width = 30;
        again.height = 20;
        LoadAllSettings(&again);
        EXPECT_EQ(std::memcmp(static_cast<FilterParameters *>(&again), static_cast<FilterParameters *>(&context),
                              sizeof(FilterParameters)),
                  0);
    }
}

TEST_F(Pages, ListsWithoutAFixedEndKeepAnyIndex) {
    Settings.FilterFaceDetectOption = Settings.FilterSocialMediaDestination = 5000;
    FilterContext context{};
    LoadAllSettings(&context);
    EXPECT_EQ(context.FilterFaceDetectOption, 5000);
    EXPECT_EQ(context.FilterSocialMediaDestination, 5000);
}

TEST_F(Pages, AFilterTouchesItsOwnSettingsOnly) {
    for (const FilterEntry &entry : FilterCatalogue) {
        FilterContext context{};
        std::memset(static_cast<FilterParameters *>(&context), 0x5A, sizeof(FilterParameters));
        FilterContext other = context;
        entry.slots->ResetDefaults(&context);
        // Copying the page's values over must take back all that was changed.
        const uint32_t answer = entry.slots->OnQuery(nullptr, kQueryUpdate, reinterpret_cast<uintptr_t>(&context),
                                                     reinterpret_cast<uintptr_t>(&other));
        EXPECT_EQ(std::memcmp(static_cast<void *>(&context), static_cast<void *>(&other), sizeof context), 0)
            << entry.name;
        EXPECT_EQ(answer == kQueryUnknown, entry.slots->page.empty()) << entry.name;
    }
}

TEST_F(Pages, QueriesAreAnsweredByTheOwnerAlone) {
    for (const FilterEntry &owner : FilterCatalogue) {
        EXPECT_EQ(owner.slots->OnQuery(nullptr, 0x41424344, 0, 0), kQueryUnknown) << owner.name;
        for (const PageControl &control : owner.slots->page) {
            if (control.kind != ControlKind::Slider) continue;
            for (const FilterEntry &entry : FilterCatalogue) {
                const uint32_t expected = &entry == &owner ? static_cast<uint32_t>(control.trackStyle) : kNotMine;
                EXPECT_EQ(entry.slots->OnQuery(nullptr, kQueryTrackStyle, static_cast<uintptr_t>(control.id), 0),
                          expected)
                    << entry.name << " " << control.id;
            }
        }
    }
}

TEST_F(Pages, SlotsRefuseWithoutValidation) {
    Settings.FilterContrast = 77;
    FilterContext context = MakeContext();
    const FilterContext before = context;
    ValidationState = 0;
    LoadAllSettings(&context);
    ResetAllDefaults(&context);
    EXPECT_EQ(FilterCatalogue[0].slots->OnQuery(nullptr, kQueryTrackStyle, 200, 0), 0u);
    context.FilterContrast = 78;
    StoreAllSettings(&context);
    ValidationState = 1;
    context.FilterContrast = before.FilterContrast;
    EXPECT_EQ(std::memcmp(static_cast<void *>(&context), static_cast<const void *>(&before), sizeof context), 0);
    EXPECT_EQ(Settings.FilterContrast, 77);
}

TEST(PageControls, BuildersSayWhatAControlIs) {
    constexpr auto field = &FilterParameters::FilterContrast;
    static_assert(ListLength("") == 0 && ListLength("A") == 1 && ListLength("A;B;;C;") == 3);
    constexpr PageControl slider = Slider(500, "X:", field, {1, 9}).Edit(0, 10).Track(7).Restores(3);
    static_assert(slider.bar == ControlRange{1, 9} && slider.edit == ControlRange{0, 10} &&
                  slider.stored == slider.edit && slider.trackStyle == 7);
    EXPECT_EQ(RestoreValueOf(slider), 3);
    EXPECT_EQ(RestoreValueOf(Slider(500, "X:", field, {0, 255})), 128);
    static_assert(Slider(500, "X:", field, {1, 9}).Stored(0, 99).edit == ControlRange{1, 9});
    static_assert(Combo(501, "Y:", field, "A;B;C").stored == ControlRange{0, 2});
    static_assert(FileCombo(501, "Y:", field).stored == ControlRange{0, INT32_MAX});
}

} // namespace
} // namespace lmf
