// Reads arbitrary bytes as an ini file, an enable file and a list file. Whatever they hold, no reader may leave its
// buffers or touch what is not its own.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "engine/catalogue.h"
#include "engine/settings_files.h"

using namespace lmf;

static void Require(bool condition, const char *what) {
    if (condition) return;
    std::fprintf(stderr, "settings_fuzz: %s\n", what);
    std::abort();
}

template <typename Reader>
static void ReadFrom(const char *bytes, size_t size, Reader read) {
    if (size == 0) return; // not every system opens an empty buffer
    std::FILE *file = fmemopen(const_cast<char *>(bytes), size, "r");
    Require(file != nullptr, "no memory file");
    read(file);
    std::fclose(file);
}

static void CheckIni(const char *bytes, size_t size) {
    Settings = FactorySettings();
    ReadFrom(bytes, size, [](std::FILE *file) { ReadIniLines(file, ConfigTable); });
    for (const ConfigEntry &row : ConfigTable)
        Require(!(row.type & kConfigText) || std::memchr(row.Text(), '\0', kTextSize) != nullptr, "open text");
    Require(std::strcmp(Settings.BuildDate, FactorySettings().BuildDate) == 0, "the build date was read");
}

static void CheckEnable(const char *bytes, size_t size) {
    uint32_t flags[kFilterCount];
    for (int32_t row = 0; row < kFilterCount; row++) flags[row] = FilterCatalogue[row].flags;
    ReadFrom(bytes, size, ReadEnableLines);
    for (int32_t row = 0; row < kFilterCount; row++) {
        Require(((FilterCatalogue[row].flags ^ flags[row]) & ~static_cast<uint32_t>(FilterEnabled)) == 0,
                "a flag other than the switch changed");
        FilterCatalogue[row].flags = flags[row];
    }
}

static void CheckList(const char *bytes, size_t size) {
    ReadFrom(bytes, size, [](std::FILE *file) {
        ReadListLines(
            file,
            [](void *, const char *name, int32_t) {
                const size_t length = std::strlen(name);
                Require(length > 0 && length < kTextSize, "a name that no record holds");
                Require(std::strpbrk(name, ",\r\n") == nullptr, "a name that no line holds");
            },
            nullptr);
    });
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const char *bytes = reinterpret_cast<const char *>(data);
    CheckIni(bytes, size);
    CheckEnable(bytes, size);
    CheckList(bytes, size);
    SettingText text = "";
    if (size > 0) std::memcpy(text, data, std::min(size, kTextSize - 1));
    HexCodeText(text, false);
    return 0;
}
