// The persisted settings: one record of them for the process, and the table that names each one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

namespace lmf {

/// Room of a text setting: 260 characters of code page 1252 and a terminator.
inline constexpr size_t kTextSize = 261;
using SettingText = char[kTextSize];

/// The parameters of all filters, each named after its key. A FilterContext holds one set, the process another.
struct FilterParameters {
#define FILTER_INT(key, value) int32_t key;
#define FILTER_BOOL(key, value) int32_t key;
#define FILTER_TEXT(key, value) SettingText key;
#define CONTEXT_INT(key, value) int32_t key;
#include "engine/settings.def"
};

/// All settings of the process.
struct SettingsStore : FilterParameters {
#define GENERAL_INT(key, value) int32_t key;
#define GENERAL_BOOL(key, value) int32_t key;
#define GENERAL_TEXT(key, value) SettingText key;
#define GENERAL_DATE(key, value) SettingText key;
#include "engine/settings.def"
};

using NumberField = int32_t FilterParameters::*;
using TextMember = SettingText FilterParameters::*;

/// The factory defaults. The build's date is not part of them: see ConfigTable.
inline constexpr SettingsStore kFactorySettings = [] {
    SettingsStore settings{};
    const auto setText = [](char *text, const char *value) {
        while (*value != '\0') *text++ = *value++;
    };
#define FILTER_INT(key, value) settings.key = value;
#define FILTER_BOOL(key, value) settings.key = value;
#define FILTER_TEXT(key, value) setText(settings.key, value);
#define GENERAL_INT(key, value) settings.key = value;
#define GENERAL_BOOL(key, value) settings.key = value;
#define GENERAL_TEXT(key, value) setText(settings.key, value);
#define CONTEXT_INT(key, value) settings.key = value;
#include "engine/settings.def"
    return settings;
}();

/// The variables that the settings files are read into and written from; they start at the factory defaults.
extern SettingsStore Settings;

/// Bits of ConfigEntry.type.
enum ConfigType : uint32_t {
    kConfigBool = 0x0001,
    kConfigText = 0x0002,
    kConfigInt = 0x0004,
    kConfigWriteOnly = 0x0100, ///< written but never read back
    kConfigHexCoded = 0x1000   ///< text kept in hex-coded form in the file
};

struct ConfigEntry {
    const char *key;
    void *variable; ///< int32_t, or a SettingText for a row with kConfigText
    uint32_t type;
    NumberField number = nullptr; ///< the field of a filter's number, null for texts and general settings
    TextMember text = nullptr;    ///< the field of a filter's text

    /// The value of a row without kConfigText.
    int32_t &Number() const { return *static_cast<int32_t *>(variable); }
    /// The kTextSize bytes of a row with kConfigText.
    char *Text() const { return static_cast<char *>(variable); }
};

inline constexpr size_t kConfigRows = 354;

/// The settings in the order of the settings file.
extern const ConfigEntry ConfigTable[kConfigRows];
/// The filters' parameters that live in no file, in the same form.
extern const std::span<const ConfigEntry> kKeylessSettings;

/// The row of a filter's parameter in one of the two tables above, by its key or by its field; null where there is
/// none.
[[nodiscard]] const ConfigEntry *FindParameter(std::string_view key);
[[nodiscard]] const ConfigEntry *FindParameter(NumberField number);
[[nodiscard]] const ConfigEntry *FindParameter(TextMember text);

} // namespace lmf
