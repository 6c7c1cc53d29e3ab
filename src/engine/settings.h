// The persisted settings: one record of them for the process, and the table that names each one.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

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

/// The variables that the settings files are read into and written from; they start at the factory defaults.
extern SettingsStore Settings;

/// The factory defaults.
const SettingsStore &FactorySettings();

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

    /// The value of a row without kConfigText.
    int32_t &Number() const { return *static_cast<int32_t *>(variable); }
    /// The kTextSize bytes of a row with kConfigText.
    char *Text() const { return static_cast<char *>(variable); }
};

inline constexpr size_t kConfigRows = 354;

/// The settings in the order of the settings file.
extern const ConfigEntry ConfigTable[kConfigRows];

} // namespace lmf
