// Reads arbitrary bytes as an ini file, an enable file and a list file. Whatever they hold, no reader may leave its
// buffers, settings must come back from a written file as they were, and a written file must not change by being read.
#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <span>
#include <string>

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

/// The rows that are written and read back: a few of each type, so that a second holds many runs.
static constexpr std::span<const ConfigEntry> kSample = std::span(ConfigTable).first(40);

static std::string Written() {
    char *text = nullptr;
    size_t size = 0;
    std::FILE *file = open_memstream(&text, &size);
    Require(file != nullptr, "no memory file");
    WriteIniLines(file, kSample);
    std::fclose(file);
    const std::string written(text, size);
    std::free(text);
    return written;
}

/// All settings but the time of writing, which the heading shows.
static std::string Body(const std::string &ini) {
    return ini.substr(ini.find("[PlugIn]"));
}

static void CheckIni(const char *bytes, size_t size) {
    Settings = FactorySettings();
    ReadFrom(bytes, size, [](std::FILE *file) { ReadIniLines(file, ConfigTable); });
    for (const ConfigEntry &row : ConfigTable)
        Require(!(row.type & kConfigText) || std::memchr(row.Text(), '\0', kTextSize) != nullptr, "open text");
    Require(std::strcmp(Settings.BuildDate, FactorySettings().BuildDate) == 0, "the build date was read");

    const auto read = [](std::FILE *file) { ReadIniLines(file, kSample); };
    const std::string first = Written();
    ReadFrom(first.data(), first.size(), read);
    const std::string second = Written();
    // Numbers below 0 come back as the greatest one, so that the second reading is the one to hold.
    ReadFrom(second.data(), second.size(), read);
    Require(Body(Written()) == Body(second), "a file changed by being read");
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
