#include "settings_file.h"

#include <algorithm>
#include <charconv>

#include "catalogue.h"
#include "files.h"

namespace lmf::host {

namespace {

constexpr size_t kLargestFile = size_t{1} << 20; // the library reads no larger one either
constexpr size_t kLongestLine = 258;             // without its end
constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr std::string_view kWrittenOnly = "BuildDate"; // the library writes it and never reads it

/// What is known of a key: its setting if it is a filter's, and whether its value is a text.
struct KnownKey {
    const Json *setting = nullptr;
    bool isText = false;
};

std::map<std::string_view, KnownKey> KnownKeys() {
    std::map<std::string_view, KnownKey> keys;
    for (const Json &key : Catalogue()["keys"])
        keys[key["key"].get_ref<const std::string &>()].isText = key["default"].is_string();
    for (const Json &filter : Catalogue()["filters"])
        for (const Json &setting : filter["settings"])
            keys[setting["key"].get_ref<const std::string &>()].setting = &setting;
    return keys;
}

std::string_view Trimmed(std::string_view text) {
    const size_t start = std::min(text.find_first_not_of(' '), text.size());
    return text.substr(start, text.find_last_not_of(' ') + 1 - start);
}

// Finds fault with the value of a key; empty where there is none.
std::string FaultOfValue(const std::string &key, const KnownKey &known, std::string_view value) {
    if (known.isText) return "";
    int64_t number = 0;
    const auto [end, error] = std::from_chars(value.data(), value.data() + value.size(), number);
    if (error != std::errc() || end != value.data() + value.size())
        return key + " takes a number, not \"" + std::string(value) + "\"";
    if (!known.setting || !known.setting->contains("min")) return "";
    const int64_t min = (*known.setting)["min"], max = (*known.setting)["max"];
    if (number >= min && number <= max) return "";
    return key + " = " + std::string(value) + " would be limited to " + std::to_string(std::clamp(number, min, max)) +
           "; legal: " + std::to_string(min) + " to " + std::to_string(max);
}

// What the library would do with each line is known only for those of the one form.
std::string TakeLine(std::string_view line, const std::map<std::string_view, KnownKey> &keys, SettingsFile &file) {
    const size_t equals = line.find('=');
    const std::string_view left = line.substr(0, std::min(equals, line.size()));
    const std::string key(left.substr(0, left.find_last_not_of(' ') + 1));
    const bool formed = equals != std::string_view::npos && !key.empty() && key.find(' ') == std::string::npos;
    if (!formed) return "this is not of the form Key = value";
    if (line.size() > kLongestLine) return "a line has at most " + std::to_string(kLongestLine) + " characters";
    if (key == kWrittenOnly) return "";
    const auto known = keys.find(key);
    if (known == keys.end()) {
        std::vector<std::string> names;
        for (const auto &[name, of] : keys) names.emplace_back(name);
        return "there is no key \"" + key + "\"" + Suggestion(key, names);
    }
    const std::string_view value = known->second.isText
                                       ? line.substr(std::min(line.find_first_not_of(" =", equals), line.size()))
                                       : Trimmed(line.substr(equals + 1));
    const std::string fault = FaultOfValue(key, known->second, value);
    if (fault.empty()) file.values[key] = value;
    return fault;
}

} // namespace

bool SettingsFile::Read(const std::string &path, Report &report) {
    std::string bytes;
    if (!ReadText(path, kLargestFile, bytes, report)) return false;
    std::string_view text = bytes;
    if (text.starts_with(kByteOrderMark)) text.remove_prefix(kByteOrderMark.size());
    const std::map<std::string_view, KnownKey> keys = KnownKeys();
    for (size_t number = 1; !text.empty(); ++number) {
        const size_t end = std::min(text.find('\n'), text.size());
        std::string_view line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        if (line.ends_with('\r')) line.remove_suffix(1);
        if (Trimmed(line).empty() || line[0] == ';') continue;
        const bool plain = std::none_of(line.begin(), line.end(), [](char c) { return uint8_t(c) < 32; });
        const std::string fault = plain ? TakeLine(line, keys, *this) : "this line holds control characters";
        if (!fault.empty()) faults.push_back("line " + std::to_string(number) + ": " + fault);
    }
    return true;
}

} // namespace lmf::host
