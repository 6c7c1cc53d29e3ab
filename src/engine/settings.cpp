#include "engine/settings.h"

#include "engine/build_date.h"

namespace lmf {

static constexpr void SetText(char *text, const char *value) {
    for (size_t i = 0; i < kTextSize; i++) {
        text[i] = *value;
        if (*value != '\0') value++;
    }
}

static constexpr SettingsStore MakeFactorySettings() {
    SettingsStore settings{};
#define FILTER_INT(key, value) settings.key = value;
#define FILTER_BOOL(key, value) settings.key = value;
#define FILTER_TEXT(key, value) SetText(settings.key, value);
#define GENERAL_INT(key, value) settings.key = value;
#define GENERAL_BOOL(key, value) settings.key = value;
#define GENERAL_TEXT(key, value) SetText(settings.key, value);
#define GENERAL_DATE(key, value) SetText(settings.key, value);
#define CONTEXT_INT(key, value) settings.key = value;
#include "engine/settings.def"
    return settings;
}

constinit SettingsStore Settings = MakeFactorySettings();

const SettingsStore &FactorySettings() {
    static constexpr SettingsStore kFactory = MakeFactorySettings();
    return kFactory;
}

const ConfigEntry ConfigTable[kConfigRows] = {
#define FILTER_INT(key, value) {#key, &Settings.key, kConfigInt},
#define FILTER_BOOL(key, value) {#key, &Settings.key, kConfigBool},
#define FILTER_TEXT(key, value) {#key, Settings.key, kConfigText},
#define GENERAL_INT(key, value) {#key, &Settings.key, kConfigInt},
#define GENERAL_BOOL(key, value) {#key, &Settings.key, kConfigBool},
#define GENERAL_TEXT(key, value) {#key, Settings.key, kConfigText},
#define GENERAL_DATE(key, value) {#key, Settings.key, kConfigText | kConfigWriteOnly},
#include "engine/settings.def"
};

static consteval int CountRows(uint32_t type) {
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

} // namespace lmf
