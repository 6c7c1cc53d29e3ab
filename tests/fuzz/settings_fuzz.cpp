// Reads arbitrary bytes as an ini file, an enable file and a list file. Whatever they hold, no reader may leave its
// buffers or touch what is not its own.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string_view>

#include "engine/catalogue.h"
#include "engine/config_text.h"
#include "engine/settings_files.h"

using namespace lmf;

static void Require(bool condition, const char *what) {
    if (condition) return;
    std::fprintf(stderr, "settings_fuzz: %s\n", what);
    std::abort();
}

static void CheckIni(std::string_view text) {
    Settings = kFactorySettings;
    ReadConfigLines(text, ConfigTable);
    for (const ConfigEntry &row : ConfigTable)
        Require(!(row.type & kConfigText) || std::memchr(row.Text(), '\0', kTextSize) != nullptr, "open text");
    Require(std::strcmp(Settings.BuildDate, kFactorySettings.BuildDate) == 0, "the build date was read");
}

static void CheckEnable(std::string_view text) {
    uint32_t flags[kFilterCount];
    for (int32_t row = 0; row < kFilterCount; row++) flags[row] = FilterCatalogue[row].flags;
    ReadEnableLines(text);
    for (int32_t row = 0; row < kFilterCount; row++) {
        Require(((FilterCatalogue[row].flags ^ flags[row]) & ~static_cast<uint32_t>(FilterEnabled)) == 0,
                "a flag other than the switch changed");
        FilterCatalogue[row].flags = flags[row];
    }
}

static void CheckList(std::string_view text) {
    ReadListLines(
        text,
        [](void *, const char *name, int32_t) {
            const size_t length = std::strlen(name);
            Require(length > 0 && length < kTextSize, "a name that no record holds");
            Require(std::strpbrk(name, ",\r\n") == nullptr, "a name that no line holds");
        },
        nullptr);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    CheckIni(text);
    CheckEnable(text);
    CheckList(text);
    SettingText coded = "";
    text.copy(coded, kTextSize - 1);
    HexCodeText(coded, false);
    return 0;
}
