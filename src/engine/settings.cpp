#include "engine/settings.h"

#include <algorithm>

#include "engine/build_date.h"

namespace lmf {

namespace {

constexpr SettingsStore StartSettings() {
    SettingsStore settings = kFactorySettings;
    for (size_t i = 0; kBuildDate[i] != '\0'; i++) settings.BuildDate[i] = kBuildDate[i];
    return settings;
}

} // namespace

constinit SettingsStore Settings = StartSettings();

const ConfigEntry ConfigTable[kConfigRows] = {
#define FILTER_INT(key, value) {#key, &Settings.key, kConfigInt, &FilterParameters::key},
#define FILTER_BOOL(key, value) {#key, &Settings.key, kConfigBool, &FilterParameters::key},
#define FILTER_TEXT(key, value) {#key, Settings.key, kConfigText, nullptr, &FilterParameters::key},
#define GENERAL_INT(key, value) {#key, &Settings.key, kConfigInt},
#define GENERAL_BOOL(key, value) {#key, &Settings.key, kConfigBool},
#define GENERAL_TEXT(key, value) {#key, Settings.key, kConfigText},
#define GENERAL_DATE(key, value) {#key, Settings.key, kConfigText | kConfigWriteOnly},
#include "engine/settings.def"
};

namespace {

const ConfigEntry kKeylessRows[] = {
#define CONTEXT_INT(key, value) {#key, &Settings.key, kConfigInt, &FilterParameters::key},
#include "engine/settings.def"
};

} // namespace

const std::span<const ConfigEntry> kKeylessSettings = kKeylessRows;

namespace {

template <typename Matches>
const ConfigEntry *FindRow(Matches matches) {
    for (const std::span<const ConfigEntry> table : {std::span<const ConfigEntry>(ConfigTable), kKeylessSettings}) {
        const auto row = std::find_if(table.begin(), table.end(), [&](const ConfigEntry &entry) {
            return (entry.number != nullptr || entry.text != nullptr) && matches(entry);
        });
        if (row != table.end()) return &*row;
    }
    return nullptr;
}

} // namespace

const ConfigEntry *FindParameter(std::string_view key) {
    return FindRow([&](const ConfigEntry &entry) { return key == entry.key; });
}

const ConfigEntry *FindParameter(NumberField number) {
    return FindRow([&](const ConfigEntry &entry) { return entry.number == number; });
}

const ConfigEntry *FindParameter(TextMember text) {
    return FindRow([&](const ConfigEntry &entry) { return entry.text == text; });
}

namespace {

consteval int CountRows(uint32_t type) {
    int count = 0;
#define FILTER_INT(key, value) count += type == kConfigInt;
#define FILTER_BOOL(key, value) count += type == kConfigBool;
#define FILTER_TEXT(key, value) count += type == kConfigText;
#define GENERAL_INT(key, value) count += type == kConfigInt;
#define GENERAL_BOOL(key, value) count += type == kConfigBool;
#define GENERAL_TEXT(key, value) count += type == kConfigText;
#define GENERAL_DATE(key, value) count += type == (kConfigText | kConfigWriteOnly);
#include "engine/settings.def"
    return count;
}
static_assert(CountRows(kConfigBool) == 88);
static_assert(CountRows(kConfigInt) == 252);
static_assert(CountRows(kConfigText) == 13);
static_assert(CountRows(kConfigText | kConfigWriteOnly) == 1);
static_assert(88 + 252 + 13 + 1 == kConfigRows);

} // namespace

} // namespace lmf
