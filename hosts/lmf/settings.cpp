#include "settings.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cctype>
#include <charconv>
#include <cstdlib>
#include <optional>

namespace lmf::host {

namespace {

constexpr char kFolderName[] = "Quillon Works";
constexpr size_t kLongestPath = 260; // a longer one counts as absent for the library, which then takes its defaults
constexpr size_t kLongestLine = 258; // the library reads lines of up to 259 bytes, line end included

constexpr size_t kLargestIni = size_t{1} << 20;
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";

// The characters that code page 1252 has at 0x80 to 0x9F; 0 marks the unused places.
constexpr uint16_t kWindows1252[32] = {0x20AC, 0,      0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                       0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0,      0x017D, 0,
                                       0,      0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                       0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0,      0x017E, 0x0178};

std::optional<int64_t> ParseInteger(std::string_view text, int base = 10) {
    if (!text.empty() && text[0] == '+') text.remove_prefix(1);
    int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (error != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
    return value;
}

// "0.4" or "12.25" as hundredths; more than two decimals are not a value that a setting can have.
std::optional<int64_t> ParseHundredths(std::string_view text) {
    const size_t point = text.find('.');
    if (point == std::string_view::npos || text.size() - point - 1 > 2) return std::nullopt;
    std::string digits(text.substr(0, point));
    const std::string decimals(text.substr(point + 1));
    if (digits.empty() || digits == "-" || digits == "+") digits += '0';
    if (!decimals.empty() && !std::isdigit(static_cast<unsigned char>(decimals[0]))) return std::nullopt;
    return ParseInteger(digits + decimals + std::string(2 - decimals.size(), '0'));
}

// RRGGBB as 0x00BBGGRR.
std::optional<int64_t> ParseColor(std::string_view text) {
    if (!text.empty() && text[0] == '#') text.remove_prefix(1);
    if (text.size() != 6 || text.find_first_not_of("0123456789abcdefABCDEF") != std::string_view::npos)
        return std::nullopt;
    const int64_t rgb = *ParseInteger(text, 16);
    return (rgb & 0xFF) << 16 | (rgb & 0xFF00) | rgb >> 16;
}

// Reads one character of UTF-8 from `text` at `at`. Gives nothing where the bytes are not UTF-8.
std::optional<uint32_t> NextCharacter(std::string_view text, size_t &at) {
    const auto byte = [&](size_t i) { return i < text.size() ? uint8_t(text[i]) : uint8_t{0}; };
    const uint8_t lead = byte(at);
    const size_t length = lead < 0x80 ? 1 : lead >= 0xC2 && lead < 0xE0 ? 2 : lead >= 0xE0 && lead < 0xF0 ? 3 : 4;
    if (lead >= 0x80 && (lead < 0xC2 || lead > 0xF4)) return std::nullopt;
    uint32_t value = length == 1 ? lead : lead & (0xFFu >> (length + 1));
    for (size_t i = 1; i < length; ++i) {
        if ((byte(at + i) & 0xC0) != 0x80) return std::nullopt;
        value = value << 6 | (byte(at + i) & 0x3Fu);
    }
    at += length;
    return value;
}

// From the terminal's UTF-8 to the library's code page. Bytes that are not UTF-8 are taken to be in that page already.
bool ToWindows1252(const std::string &text, std::string &converted, Report &report) {
    converted.clear();
    for (size_t at = 0; at < text.size();) {
        const size_t start = at;
        const std::optional<uint32_t> character = NextCharacter(text, at);
        if (!character) {
            converted = text;
            return true;
        }
        int place = *character < 0x80 || (*character >= 0xA0 && *character <= 0xFF) ? int(*character) : -1;
        for (int i = 0; i < 32 && place < 0; ++i)
            if (kWindows1252[i] == *character) place = 0x80 + i;
        if (place < 0)
            return report.Fail("the library's texts cannot hold \"" + text.substr(start, at - start) +
                               "\" (code page 1252)");
        converted += char(place);
    }
    return true;
}

// Whether the ini file gives the text back as it is: the reader skips blanks and '=' before a value, ends it at the
// first control byte, and takes one line at a time.
bool FitsLine(const std::string &key, const std::string &text, Report &report) {
    for (const char c : text)
        if (static_cast<unsigned char>(c) < 32) return report.Fail(key + ": a text cannot hold control characters");
    if (!text.empty() && (text[0] == ' ' || text[0] == '='))
        return report.Fail(key + ": a text cannot begin with a blank or \"=\"");
    const size_t room = kLongestLine - key.size() - 3;
    if (text.size() > room) return report.Fail(key + ": a text has at most " + std::to_string(room) + " characters");
    return true;
}

std::vector<std::string> EntryNames(const Json &setting) {
    std::vector<std::string> names;
    if (setting.contains("entries"))
        for (const Json &entry : setting["entries"]) names.push_back(entry["name"]);
    return names;
}

bool ParseBoolean(const std::string &given, std::string &value) {
    for (const char *name : {"true", "yes", "on", "1"})
        if (EqualInAnyCase(given, name)) value = "1";
    for (const char *name : {"false", "no", "off", "0"})
        if (EqualInAnyCase(given, name)) value = "0";
    return !value.empty();
}

std::string AsShown(int64_t hundredths) {
    char text[32];
    std::snprintf(text, sizeof text, "%.2f", double(hundredths) / 100);
    return text;
}

bool ParseNumber(const Json &setting, const std::string &given, std::string &value, Report &report) {
    const auto &key = setting["key"].get_ref<const std::string &>();
    const bool isColor = setting["type"] == "color";
    const bool isHundredths = setting.value("shown", "") == "hundredths";
    std::string legal =
        std::to_string(setting["min"].get<int64_t>()) + " to " + std::to_string(setting["max"].get<int64_t>());
    if (isHundredths) legal += ", or " + AsShown(setting["min"]) + " to " + AsShown(setting["max"]);
    std::optional<int64_t> number;
    if (isColor) {
        number = ParseColor(given);
        legal = "a color as RRGGBB";
    } else {
        number = ParseInteger(given);
        if (!number && isHundredths) number = ParseHundredths(given);
    }
    const std::vector<std::string> names = EntryNames(setting);
    for (const Json &entry : setting.contains("entries") ? setting["entries"] : Json::array()) {
        const auto &name = entry["name"].get_ref<const std::string &>();
        if (EqualInAnyCase(name, given)) number = entry["value"].get<int64_t>();
        legal += ", \"" + name + "\"";
    }
    if (number && *number >= setting["min"].get<int64_t>() && *number <= setting["max"].get<int64_t>()) {
        value = std::to_string(*number);
        return true;
    }
    const std::string suggestion = names.empty() || number ? "." : Suggestion(given, names);
    return report.Fail(key + " cannot be \"" + given + "\"" + suggestion + " Legal: " + legal);
}

std::string DefaultLines() {
    std::string lines;
    for (const Json &row : Catalogue()["keys"]) {
        const Json &value = row["default"];
        lines += row["key"].get<std::string>() + " = ";
        lines += (value.is_string() ? value.get<std::string>() : std::to_string(value.get<int64_t>())) + "\n";
    }
    return lines;
}

} // namespace

bool ParseAssignment(const Json &filter, const std::string &assignment, std::string &key, std::string &value,
                     Report &report) {
    const size_t equals = assignment.find('=');
    if (equals == std::string::npos) return report.Fail("\"" + assignment + "\" is not of the form KEY=VALUE");
    const Json *setting = FindSetting(filter, assignment.substr(0, equals), report);
    if (!setting) return false;
    key = (*setting)["key"];
    value.clear();
    const std::string given = assignment.substr(equals + 1);
    if (!(*setting)["stored"].get<bool>())
        return report.Fail(key + " is set in the filter's window only; no settings file keeps it");
    const std::string type = (*setting)["type"];
    if (type == "text" || type == "font") return ToWindows1252(given, value, report) && FitsLine(key, value, report);
    if (type == "boolean")
        return ParseBoolean(given, value) ||
               report.Fail(key + " cannot be \"" + given + "\". Legal: true, false, yes, no, on, off, 1, 0");
    return ParseNumber(*setting, given, value, report);
}

bool MakeIni(const SettingsRequest &request, std::string &ini, bool &unreadable, Report &report) {
    unreadable = false;
    ini = DefaultLines();
    if (!request.fromFile.empty()) {
        Bytes file;
        unreadable = !ReadFile(
            request.fromFile, [](ByteView) { return true; }, file, report);
        if (unreadable) return false;
        std::string_view text(reinterpret_cast<const char *>(file.data()), file.size());
        if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
        ini += text;
        // Not one too many: the library takes an empty line for a setting.
        if (!ini.ends_with('\n')) ini += '\n';
    }
    ini += "CurrentFilter = " + std::to_string((*request.filter)["row"].get<int>()) + "\n";
    if (!request.paper.empty()) {
        const std::optional<int64_t> color = ParseColor(request.paper);
        if (!color) return report.Fail("\"" + request.paper + "\" is not a color; give it as RRGGBB");
        ini += "PaperColor = " + std::to_string(*color) + "\n";
    }
    for (const std::string &assignment : request.assignments) {
        std::string key;
        std::string value;
        if (!ParseAssignment(*request.filter, assignment, key, value, report)) return false;
        ini += key + " = " + value + "\n";
    }
    if (ini.size() <= kLargestIni) return true;
    unreadable = !request.fromFile.empty();
    return report.Fail("the settings take more than 1 MB, which the library does not read");
}

bool InstallIni(const PrivateFolder &folder, const std::string &ini, Report &report) {
    // Fonts stay as the user has set them up, although their settings are looked for in the same place.
    const std::string own = UserIniPath();
    const std::string config = own.substr(0, own.rfind(kFolderName));
    (void)symlink((config + "fontconfig").c_str(), (folder.path + "/fontconfig").c_str());

    const std::string inside = folder.path + "/" + kFolderName;
    const std::string path = inside + "/LmfFiltrBatch.ini";
    if (path.size() > kLongestPath) return report.Fail(path + ": too long a name for the library; set TMPDIR");
    if (mkdir(inside.c_str(), 0700) != 0) return report.Fail(inside + ": " + SystemError());
    std::FILE *file = std::fopen(path.c_str(), "wbe");
    if (!file) return report.Fail(path + ": " + SystemError());
    const bool written = std::fwrite(ini.data(), 1, ini.size(), file) == ini.size();
    if (std::fclose(file) != 0 || !written) return report.Fail(path + ": " + SystemError());
    setenv("XDG_CONFIG_HOME", folder.path.c_str(), 1);
    return true;
}

std::string UserIniPath() {
    const char *config = std::getenv("XDG_CONFIG_HOME");
    const char *home = std::getenv("HOME");
    const std::string folder = config && *config == '/' ? config : std::string(home ? home : "") + "/.config";
    return folder + (folder.ends_with('/') ? "" : "/") + kFolderName + "/LmfFiltr.ini";
}

} // namespace lmf::host
