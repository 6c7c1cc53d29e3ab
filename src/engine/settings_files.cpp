#include "engine/settings_files.h"

#include <algorithm>
#include <cstring>

#include "common/random.h"
#include "common/text.h"
#include "engine/catalogue.h"
#include "lmf16filter.h"
#include "platform/system.h"

namespace lmf {

// Paths.

static constexpr const char *kMakerFolder = "Quillon Works";
static constexpr const char *kProductFolder = "Lumenfold Studio 16";
static constexpr const char *kBackupFormat = "Backup of %s";

struct FilePath {
    char text[kPathSize] = "";
    bool whole = true; ///< nothing was cut: the path can be trusted to name the file that is meant
};

static void Append(FilePath *path, const char *text) {
    const size_t length = std::strlen(path->text);
    const size_t room = kPathSize - 1 - length;
    const size_t count = std::strlen(text);
    std::memcpy(path->text + length, text, std::min(count, room));
    path->text[length + std::min(count, room)] = '\0';
    if (count > room) path->whole = false;
}

static void AppendFolder(FilePath *path, const char *folder) {
    Append(path, folder);
    const size_t length = std::strlen(path->text);
    const char separator[] = {kPathSeparator, '\0'};
    if (length == 0 || path->text[length - 1] != kPathSeparator) Append(path, separator);
}

static bool AppendSettingsFolder(FilePath *path) {
    char folder[kFolderSize];
    if (!ApplicationDataFolder(folder)) return false;
    AppendFolder(path, folder);
    AppendFolder(path, kMakerFolder);
    return true;
}

/// The path of a settings file that is to be opened.
/// @return false where there is no such path, or it is too long
static bool FindSettingsFile(const char *name, FilePath *path) {
    if (!AppendSettingsFolder(path)) return false;
    Append(path, name);
    return path->whole;
}

bool SettingsFolder(char (&out)[kPathSize]) {
    FilePath path;
    const bool found = AppendSettingsFolder(&path);
    std::memcpy(out, path.text, kPathSize);
    return found;
}

const char *SettingsFile(const char *name) {
    static FilePath path;
    path = {};
    if (AppendSettingsFolder(&path)) Append(&path, name);
    return path.text;
}

const char *ProductFile(const char *name) {
    static FilePath path;
    path = {};
    if (AppendSettingsFolder(&path)) {
        AppendFolder(&path, kProductFolder);
        Append(&path, name);
    }
    return path.text;
}

const char *DocumentsFile(const char *name) {
    static FilePath path;
    path = {};
    char folder[kFolderSize];
    if (UserDocumentsFolder(folder)) {
        AppendFolder(&path, folder);
        Append(&path, name);
    }
    return path.text;
}

const char *ModuleFile(const char *name) {
    static FilePath path;
    path = {};
    if (*ModuleFolder() != '\0') {
        AppendFolder(&path, ModuleFolder());
        Append(&path, name);
    }
    return path.text;
}

const SettingsFileSet &SettingsFilesFor(uint32_t runFlags) {
    static constexpr struct {
        uint32_t runFlags;
        SettingsFileSet files;
    } kHosts[] = {
        {LMF_RUN_DAUBERY, {"DauberyFiltr.ini", "DauberyFiltrEnable.ini", "DauberyFiltrList.txt"}},
        {LMF_RUN_REELSMITH | LMF_RUN_FRAMELOOM,
         {"AnimationFilter.ini", "AnimationFilterEnable.ini", "AnimationFilterList.txt"}},
        {LMF_RUN_BATCH, {"LmfFiltrBatch.ini", "LmfFiltrEnableBatch.ini", "LmfFiltrListBatch.txt"}},
    };
    static constexpr SettingsFileSet kStandard = {"LmfFiltr.ini", "LmfFiltrEnable.ini", "LmfFiltrList.txt"};
    for (const auto &host : kHosts) {
        if (runFlags & host.runFlags) return host.files;
    }
    return kStandard;
}

// Opening, lines, replacing.

/// A file that is closed at the end of the scope.
struct OpenFile {
    std::FILE *file;

    OpenFile(const char *path, const char *mode) : file(std::fopen(path, mode)) {}
    OpenFile(const OpenFile &) = delete;
    OpenFile &operator=(const OpenFile &) = delete;
    ~OpenFile() {
        if (file != nullptr) std::fclose(file);
    }

    /// Closes the file. @return whether everything that was written has arrived
    [[nodiscard]] bool Close() {
        const bool good = std::ferror(file) == 0;
        const bool closed = std::fclose(file) == 0;
        file = nullptr;
        return good && closed;
    }
};

/// Buffer of one line. A longer line goes on as a further line, so writers keep below it.
static constexpr size_t kLineSize = 260;
using Line = char[kLineSize];

static bool ReadLine(std::FILE *file, Line &line) {
    return std::fgets(line, kLineSize, file) != nullptr;
}

/// The number of characters before the first that is below 32 or the end. Characters from 128 up count as text.
static size_t PrintableLength(const char *text) {
    const char *end = text;
    while (static_cast<unsigned char>(*end) >= ' ') end++;
    return static_cast<size_t>(end - text);
}

static const char *SkipBlanks(const char *text) {
    while (*text == ' ') text++;
    return text;
}

template <typename Reader>
static void ReadFile(const char *name, Reader read) {
    FilePath path;
    if (!FindSettingsFile(name, &path)) return;
    const OpenFile source(path.text, "r");
    if (source.file != nullptr) read(source.file);
}

/// @param write  takes the open file, and says whether it could get what is to be written
template <typename Writer>
static void ReplaceFile(const char *name, const char *mode, Writer write) {
    FilePath path;
    if (!FindSettingsFile(name, &path)) return;
    FilePath beside = path;
    Append(&beside, ".new");
    if (!beside.whole) return;
    OpenFile target(beside.text, mode);
    if (target.file == nullptr) return;
    const bool written = write(target.file);
    const bool arrived = target.Close();
    if (!written || !arrived || !RenameOver(beside.text, path.text)) std::remove(beside.text);
}

static void WriteHeading(std::FILE *file, const char *title, const char *section) {
    static constexpr const char *kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr const char *kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    char time[64] = "";
    std::tm now;
    if (LocalTime(SystemTime(), &now))
        std::snprintf(time, sizeof time, "%s %s %02d %02d:%02d:%02d %04d", kDays[now.tm_wday], kMonths[now.tm_mon],
                      now.tm_mday, now.tm_hour, now.tm_min, now.tm_sec, now.tm_year + 1900);
    std::fprintf(file, ";%s\n;Edit this at your own risk\n;Last updated %24.24s\n;\n[%s]\n", title, time, section);
}

// The ini file.

void HexCodeText(SettingText &text, bool encode) {
    if (std::strlen(text) < 2) return;
    SettingText coded = "";
    size_t length = 0;
    if (encode) {
        static bool seeded = false;
        if (!seeded) SeedRandom(static_cast<uint32_t>(SystemTime()));
        seeded = true;
        const auto addByte = [&](unsigned byte) {
            static constexpr char kDigits[] = "0123456789ABCDEF";
            coded[length++] = kDigits[byte >> 4 & 15];
            coded[length++] = kDigits[byte & 15];
        };
        addByte(static_cast<unsigned>(NextRandom()) & 0xFF);
        for (const char *c = text; *c != '\0' && length + 2 < kTextSize; c++) addByte(static_cast<unsigned char>(*c));
    } else {
        const auto digitAt = [&](size_t i) {
            const char c = text[i];
            if (c >= '0' && c <= '9') return c - '0';
            if (c >= 'A' && c <= 'F') return c - 'A' + 10;
            if (c >= 'a' && c <= 'f') return c - 'a' + 10;
            return -1;
        };
        for (size_t i = 2; digitAt(i) >= 0 && digitAt(i + 1) >= 0; i += 2)
            coded[length++] = static_cast<char>(digitAt(i) * 16 + digitAt(i + 1));
    }
    std::memcpy(text, coded, kTextSize);
}

/// The row that a line of the file names: the first whose key starts with what the line gives of it. An empty key
/// names the first row of all.
static const ConfigEntry *FindRow(std::span<const ConfigEntry> table, const char *key, size_t length) {
    for (const ConfigEntry &row : table) {
        if (!(row.type & kConfigWriteOnly) && std::strncmp(row.key, key, length) == 0) return &row;
    }
    return nullptr;
}

static void StoreValue(const ConfigEntry &row, const char *value) {
    if (!(row.type & kConfigText)) {
        row.Number() = ParseNumber(value);
        return;
    }
    SettingText &text = *static_cast<SettingText *>(row.variable);
    std::memset(text, 0, kTextSize);
    std::memcpy(text, value, std::min(std::strlen(value), kTextSize - 1));
    if (row.type & kConfigHexCoded) HexCodeText(text, false);
}

void ReadIniLines(std::FILE *file, std::span<const ConfigEntry> table) {
    Line line;
    while (ReadLine(file, line)) {
        if (line[0] == ';') continue;
        line[PrintableLength(line)] = '\0';
        const size_t keyLength = std::strcspn(line, " =");
        const ConfigEntry *row = FindRow(table, line, keyLength);
        if (row == nullptr) continue;
        const char *value = SkipBlanks(line + keyLength);
        if (*value == '=') value = SkipBlanks(value + std::strspn(value, "="));
        StoreValue(*row, value);
    }
}

/// A text is written up to its first control character and cut where its line would not be read back as one: anything
/// more would be taken for further settings.
static void WriteText(std::FILE *file, const ConfigEntry &row) {
    SettingText text;
    std::memcpy(text, row.variable, kTextSize);
    text[kTextSize - 1] = '\0';
    if (row.type & kConfigHexCoded) HexCodeText(text, true);
    const size_t room = kLineSize - std::strlen(" = \n") - 1 - std::strlen(row.key);
    const size_t length = std::min(PrintableLength(text), room);
    std::fprintf(file, "%s = %.*s\n", row.key, static_cast<int>(length), text);
}

void WriteIniLines(std::FILE *file, std::span<const ConfigEntry> table) {
    WriteHeading(file, "LMFFILTR configuration file", "PlugIn");
    for (const ConfigEntry &row : table) {
        if (row.type & kConfigText)
            WriteText(file, row);
        else
            std::fprintf(file, "%s = %u\n", row.key, static_cast<uint32_t>(row.Number()));
    }
}

/// Copies a settings file to its backup, if it exists.
static void KeepBackup(const char *name) {
    FilePath path;
    if (!FindSettingsFile(name, &path)) return;
    const OpenFile source(path.text, "rb");
    if (source.file == nullptr) return;
    char backup[kPathSize];
    std::snprintf(backup, sizeof backup, kBackupFormat, name);
    ReplaceFile(backup, "wb", [&](std::FILE *target) {
        char buffer[4096];
        while (const size_t count = std::fread(buffer, 1, sizeof buffer, source.file))
            std::fwrite(buffer, 1, count, target);
        return std::ferror(source.file) == 0;
    });
}

void ReadSettings(uint32_t runFlags) {
    ReadFile(SettingsFilesFor(runFlags).ini, [](std::FILE *file) { ReadIniLines(file, ConfigTable); });
}

void WriteSettings(uint32_t runFlags) {
    const char *name = SettingsFilesFor(runFlags).ini;
    char backup[kPathSize];
    std::snprintf(backup, sizeof backup, kBackupFormat, name);
    KeepBackup(backup);
    KeepBackup(name);
    ReplaceFile(name, "w", [](std::FILE *file) {
        WriteIniLines(file, ConfigTable);
        return true;
    });
}

// The enable file.

/// A filter's name as the enable file has it: underscores for blanks.
static void EnableKeyOf(const FilterEntry &entry, Line &key) {
    std::snprintf(key, kLineSize, "%s", entry.name);
    std::replace(key, key + std::strlen(key), ' ', '_');
}

static FilterEntry *FindFilter(const char *enableKey) {
    for (FilterEntry &entry : FilterCatalogue) {
        Line key;
        EnableKeyOf(entry, key);
        if (SameIgnoringCase(key, enableKey)) return &entry;
    }
    return nullptr;
}

void ReadEnableLines(std::FILE *file) {
    Line line;
    while (ReadLine(file, line)) {
        line[std::strcspn(line, "\r\n")] = '\0';
        if (line[0] == ';') continue;
        const char *value = std::strchr(line, '=');
        if (value == nullptr) continue;
        value += std::strspn(value, "= ");
        if (*value < '0' || *value > '9') continue;
        const bool enabled = ParseNumber(value) != 0;
        line[std::strcspn(line, " =")] = '\0';
        FilterEntry *entry = FindFilter(line);
        if (entry == nullptr) continue;
        entry->flags &= ~static_cast<uint32_t>(FilterEnabled);
        if (enabled) entry->flags |= FilterEnabled;
    }
}

void ReadEnableFile(uint32_t runFlags) {
    ReadFile(SettingsFilesFor(runFlags).enable, ReadEnableLines);
}

void WriteEnableFile(uint32_t runFlags) {
    ReplaceFile(SettingsFilesFor(runFlags).enable, "w", [](std::FILE *file) {
        WriteHeading(file, "LMFFILTR enable file", "Filter");
        for (const FilterEntry &entry : FilterCatalogue) {
            Line key;
            EnableKeyOf(entry, key);
            std::fprintf(file, "%s=%d\n", key, entry.flags & FilterEnabled ? 1 : 0);
        }
        return true;
    });
}

// The list of recent filters.

void ReadListLines(std::FILE *file, RecentFilterSink sink, void *target) {
    Line line;
    while (ReadLine(file, line)) {
        line[std::strcspn(line, "\r\n")] = '\0';
        char *comma = std::strchr(line, ',');
        if (comma == nullptr || comma == line) continue;
        const char *number = SkipBlanks(comma + 1);
        const char *digits = number + (*number == '-' || *number == '+');
        if (*digits < '0' || *digits > '9') continue;
        *comma = '\0';
        sink(target, line, ParseNumber(number));
    }
}

void ReadListFile(uint32_t runFlags, RecentFilterSink sink, void *target) {
    ReadFile(SettingsFilesFor(runFlags).list, [&](std::FILE *file) { ReadListLines(file, sink, target); });
}

void WriteListFile(uint32_t runFlags, std::span<const RecentFilter> recent) {
    if (recent.empty() || Settings.RememberFilterSave == 0) return;
    ReplaceFile(SettingsFilesFor(runFlags).list, "w", [&](std::FILE *file) {
        for (const RecentFilter &filter : recent)
            std::fprintf(file, "%s,%d\n", filter.name, static_cast<int>(filter.time));
        return true;
    });
}

} // namespace lmf
