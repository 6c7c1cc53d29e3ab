#include "engine/settings_files.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "common/text.h"
#include "engine/config_text.h"
#include "engine/text_file.h"

namespace lmf {

namespace {

TextFile ReadText(const char *name) {
    char path[kPathSize];
    return TextFile(FindSettingsFile(name, path) ? path : nullptr);
}

/// Writes what is to take the place of a settings file.
bool WritePending(const char *name, std::string_view text, PendingFile *file) {
    char path[kPathSize];
    return FindSettingsFile(name, path) && file->Write(path, text, path);
}

void WriteHeading(LineWriter &out, const char *title, const char *section) {
    static constexpr const char *kDays[] = {"Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"};
    static constexpr const char *kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                              "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    char time[64] = "";
    std::tm now;
    if (LocalTime(SystemTime(), &now))
        std::snprintf(time, sizeof time, "%s %s %02d %02d:%02d:%02d %04lld", kDays[now.tm_wday], kMonths[now.tm_mon],
                      now.tm_mday, now.tm_hour, now.tm_min, now.tm_sec, now.tm_year + 1900LL);
    out.Add(";%s", title);
    out.Add(";Edit this at your own risk");
    out.Add(";Last updated %24.24s", time);
    out.Add(";");
    out.Add("[%s]", section);
}

constexpr size_t kHeadingLines = 5;

void ReplaceFile(const char *name, const LineWriter &text) {
    char path[kPathSize];
    if (text.Whole() && FindSettingsFile(name, path)) ReplaceTextFile(path, text.Text());
}

// The ini file.

/// The place of a row's variable in another store than `Settings`.
const char *VariableIn(const SettingsStore &store, const ConfigEntry &row) {
    const auto offset = static_cast<const char *>(row.variable) - reinterpret_cast<const char *>(&Settings);
    return reinterpret_cast<const char *>(&store) + offset;
}

/// Have the two stores the same value in this row?
bool SameValue(const SettingsStore &a, const SettingsStore &b, const ConfigEntry &row) {
    const char *left = VariableIn(a, row), *right = VariableIn(b, row);
    if (row.type & kConfigText) return std::strncmp(left, right, kTextSize) == 0;
    return std::memcmp(left, right, sizeof(int32_t)) == 0;
}

/// Takes from the file as it is now every value that this call left as it found it.
void TakeOthersChanges(std::string_view text, const SettingsStore &found) {
    const SettingsStore mine = Settings;
    Settings = found;
    ReadConfigLines(text, ConfigTable);
    const SettingsStore theirs = Settings;
    Settings = mine;
    for (const ConfigEntry &row : ConfigTable) {
        if (SameValue(mine, found, row))
            std::memcpy(row.variable, VariableIn(theirs, row), row.type & kConfigText ? kTextSize : sizeof(int32_t));
    }
}

bool BackUp(const char *name, const TextFile &file, const char *backup, PendingFile *pending) {
    char from[kPathSize], to[kPathSize];
    return FindSettingsFile(name, from) && FindSettingsFile(backup, to) && BackUpFile(from, file, to, pending);
}

/// Moves the generations of a file by one: the first backup becomes the second, and the present file the first. Either
/// both move or none: with the first alone in the second's place, the older would be lost and nothing gained.
void RotateBackups(const char *name, const TextFile &present) {
    char first[kPathSize], second[kPathSize + 10];
    std::snprintf(first, sizeof first, "Backup of %s", name);
    std::snprintf(second, sizeof second, "Backup of %s", first);
    const TextFile oldFirst = ReadText(first);
    PendingFile newFirst, newSecond;
    if (oldFirst.Failed()) return;
    if (oldFirst.Exists() && !BackUp(first, oldFirst, second, &newSecond)) return;
    if (present.Exists() && !BackUp(name, present, first, &newFirst)) return;
    (void)newSecond.TakePlace();
    (void)newFirst.TakePlace();
}

} // namespace

FoundSettings ReadSettings(uint32_t runFlags) {
    const TextFile file = ReadText(SettingsFilesFor(runFlags).ini);
    ReadConfigLines(file.Text(), ConfigTable);
    return {Settings, !file.Failed()};
}

void WriteSettings(uint32_t runFlags, const FoundSettings &found) {
    if (!found.mayReplace) return;
    const char *name = SettingsFilesFor(runFlags).ini;
    const SettingsLock lock;
    const TextFile present = ReadText(name);
    if (present.Failed()) return;
    TakeOthersChanges(present.Text(), found.values);
    LineWriter out(kHeadingLines + kConfigRows);
    WriteHeading(out, "LMFFILTR configuration file", "PlugIn");
    WriteConfigLines(out, ConfigTable);
    // The backups move only once the new file has its room on the disk.
    PendingFile file;
    if (!out.Whole() || !WritePending(name, out.Text(), &file)) return;
    RotateBackups(name, present);
    if (file.TakePlace()) file.SyncFolder();
}

// The enable file.

namespace {

std::bitset<kFilterCount> EnabledBits() {
    std::bitset<kFilterCount> bits;
    for (size_t row = 0; row < kFilterCount; row++) bits[row] = (FilterCatalogue[row].flags & FilterEnabled) != 0;
    return bits;
}

void SetEnabled(FilterEntry *entry, bool enabled) {
    entry->flags &= ~static_cast<uint32_t>(FilterEnabled);
    if (enabled) entry->flags |= FilterEnabled;
}

void SetEnabledBits(const std::bitset<kFilterCount> &bits) {
    for (size_t row = 0; row < kFilterCount; row++) SetEnabled(&FilterCatalogue[row], bits[row]);
}

/// The file has underscores for the blanks of a filter's name. No name has an underscore of its own, and no key a
/// blank.
FilterEntry *FindFilter(char *key) {
    std::replace(key, key + std::strlen(key), '_', ' ');
    for (FilterEntry &entry : FilterCatalogue) {
        if (SameIgnoringCase(key, entry.name)) return &entry;
    }
    return nullptr;
}

} // namespace

void ReadEnableLines(std::string_view text) {
    LineReader lines{text};
    Line line;
    while (lines.Next(line, kLineSize)) {
        CutLineEnd(line);
        if (line[0] == ';') continue;
        const char *value = std::strchr(line, '=');
        if (value == nullptr) continue;
        value += std::strspn(value, "= ");
        if (*value < '0' || *value > '9') continue;
        const bool enabled = ParseNumber(value) != 0;
        line[std::strcspn(line, " =")] = '\0';
        if (FilterEntry *entry = FindFilter(line)) SetEnabled(entry, enabled);
    }
}

FoundSwitches ReadEnableFile(uint32_t runFlags) {
    const TextFile file = ReadText(SettingsFilesFor(runFlags).enable);
    ReadEnableLines(file.Text());
    return {EnabledBits(), !file.Failed()};
}

void WriteEnableFile(uint32_t runFlags, const FoundSwitches *found) {
    if (found != nullptr && !found->mayReplace) return;
    const char *name = SettingsFilesFor(runFlags).enable;
    const SettingsLock lock;
    const TextFile present = ReadText(name);
    if (present.Failed()) return;
    if (found != nullptr) {
        const auto mine = EnabledBits(), changed = mine ^ found->enabled;
        SetEnabledBits(found->enabled);
        ReadEnableLines(present.Text());
        SetEnabledBits((mine & changed) | (EnabledBits() & ~changed));
    }
    LineWriter out(kHeadingLines + kFilterCount);
    WriteHeading(out, "LMFFILTR enable file", "Filter");
    for (const FilterEntry &entry : FilterCatalogue) {
        Line key;
        std::snprintf(key, kLineSize, "%s", entry.name);
        std::replace(key, key + std::strlen(key), ' ', '_');
        out.Add("%s=%d", key, entry.flags & FilterEnabled ? 1 : 0);
    }
    // Every picture of a batch comes here, many within the second that the heading tells.
    if (out.Text() != present.Bytes()) ReplaceFile(name, out);
}

// The list of recent filters.

void ReadListLines(std::string_view text, RecentFilterSink sink, void *target) {
    LineReader lines{text};
    Line line;
    while (lines.Next(line, kLineSize)) {
        CutLineEnd(line);
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
    ReadListLines(ReadText(SettingsFilesFor(runFlags).list).Text(), sink, target);
}

void WriteListFile(uint32_t runFlags, std::span<const RecentFilter> recent) {
    if (recent.empty() || Settings.RememberFilterSave == 0) return;
    const char *name = SettingsFilesFor(runFlags).list;
    const SettingsLock lock;
    if (ReadText(name).Failed()) return;
    LineWriter out(2 * recent.size());
    for (const RecentFilter &filter : recent) out.Add("%s,%d", filter.name, static_cast<int>(filter.time));
    ReplaceFile(name, out);
}

} // namespace lmf
