#include "values.h"

#include <charconv>
#include <climits>
#include <cstdio>
#include <optional>

namespace lmf::host {

namespace {

constexpr size_t kLongestLine = 258; // the library reads lines of up to 259 bytes, line end included
constexpr size_t kMostDigits = 12;   // of a number in a unit, so that its steps fit 64 bits
constexpr int64_t kFullCircle = 360; // degrees

struct ColorName {
    const char *name;
    uint32_t rgb; // 0xRRGGBB
};

// The basic colors of the web, and a few of its others.
constexpr ColorName kColorNames[] = {
    {"black", 0x000000},  {"silver", 0xC0C0C0}, {"gray", 0x808080},   {"grey", 0x808080},    {"white", 0xFFFFFF},
    {"maroon", 0x800000}, {"red", 0xFF0000},    {"purple", 0x800080}, {"fuchsia", 0xFF00FF}, {"magenta", 0xFF00FF},
    {"green", 0x008000},  {"lime", 0x00FF00},   {"olive", 0x808000},  {"yellow", 0xFFFF00},  {"navy", 0x000080},
    {"blue", 0x0000FF},   {"teal", 0x008080},   {"aqua", 0x00FFFF},   {"cyan", 0x00FFFF},    {"orange", 0xFFA500},
    {"brown", 0xA52A2A},  {"pink", 0xFFC0CB},   {"gold", 0xFFD700},   {"beige", 0xF5F5DC},   {"ivory", 0xFFFFF0},
};

std::optional<int64_t> ParseInteger(std::string_view text, int base = 10) {
    if (!text.empty() && text[0] == '+') text.remove_prefix(1);
    int64_t value = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), value, base);
    if (error != std::errc() || end != text.data() + text.size() || text.empty()) return std::nullopt;
    return value;
}

std::optional<int64_t> StoredColor(std::string_view text) {
    std::optional<int64_t> rgb;
    for (const ColorName &color : kColorNames)
        if (EqualInAnyCase(text, color.name)) rgb = color.rgb;
    if (text.starts_with('#')) text.remove_prefix(1);
    if (!rgb && text.size() == 6 && text.find_first_not_of("0123456789abcdefABCDEF") == std::string_view::npos)
        rgb = ParseInteger(text, 16);
    if (!rgb) return std::nullopt;
    return (*rgb & 0xFF) << 16 | (*rgb & 0xFF00) | *rgb >> 16;
}

std::string ColorText(int64_t stored) {
    char text[8];
    std::snprintf(text, sizeof text, "#%02x%02x%02x", unsigned(stored & 0xFF), unsigned(stored >> 8 & 0xFF),
                  unsigned(stored >> 16 & 0xFF));
    return text;
}

bool ParseBoolean(const std::string &given, std::string &stored) {
    for (const char *name : {"true", "yes", "on", "1"})
        if (EqualInAnyCase(given, name)) stored = "1";
    for (const char *name : {"false", "no", "off", "0"})
        if (EqualInAnyCase(given, name)) stored = "0";
    return !stored.empty();
}

int64_t ScaleOf(const Json &setting) {
    return setting.value("scale", int64_t{1});
}

int64_t OffsetOf(const Json &setting) {
    return setting.value("offset", int64_t{0});
}

// Gives a number with the decimals that steps of 1 / scale make out.
std::string Decimal(double value, int64_t scale) {
    char text[32];
    std::snprintf(text, sizeof text, "%.*f", scale == 1 ? 0 : scale <= 10 ? 1 : scale <= 100 ? 2 : 3, value);
    return text;
}

std::string Fraction(int64_t value, int64_t scale) {
    return Decimal(double(value) / double(scale), scale);
}

// Reads a decimal number in the setting's unit. `exact` tells whether it lies on one of the setting's steps.
std::optional<int64_t> ParseMeant(const Json &setting, std::string_view text, bool &exact) {
    const bool negative = !text.empty() && text[0] == '-';
    if (!text.empty() && (text[0] == '-' || text[0] == '+')) text.remove_prefix(1);
    const size_t point = std::min(text.find('.'), text.size());
    std::string digits(text.substr(0, point));
    int64_t parts = 1;
    if (point < text.size()) {
        std::string_view decimals = text.substr(point + 1);
        while (decimals.ends_with('0')) decimals.remove_suffix(1);
        if (digits.empty() && text.size() == 1) return std::nullopt;
        for (size_t i = 0; i < decimals.size() && i < kMostDigits; ++i) parts *= 10;
        digits += decimals;
    }
    if (digits.empty()) digits = "0";
    if (text.empty() || digits.size() > kMostDigits || digits.find_first_not_of("0123456789") != std::string::npos)
        return std::nullopt;
    const int64_t steps = *ParseInteger(digits) * ScaleOf(setting);
    exact = steps % parts == 0;
    return OffsetOf(setting) + (negative ? -steps : steps) / parts;
}

// Whether the setting goes once round the circle, so that any angle has its place on it.
bool IsCircle(const Json &setting) {
    return setting.value("unit", "") == "degrees" && OffsetOf(setting) == 0 && setting["min"] == 0 &&
           setting["max"].get<int64_t>() == kFullCircle * ScaleOf(setting) - 1;
}

bool ParseMeantNumber(const Json &setting, const std::string &given, std::string &stored, Report &report) {
    bool exact = true;
    std::optional<int64_t> number = ParseMeant(setting, given, exact);
    const int64_t circle = kFullCircle * ScaleOf(setting);
    if (number && IsCircle(setting)) number = (*number % circle + circle) % circle;
    const Json &shown = setting["shown"];
    const auto stepsOf = [&](const char *end) {
        return int64_t(shown[end].get<double>() * double(ScaleOf(setting)) + (shown[end] < 0 ? -0.5 : 0.5)) +
               OffsetOf(setting);
    };
    if (number && exact && *number >= stepsOf("min") && *number <= stepsOf("max")) {
        stored = std::to_string(*number);
        return true;
    }
    const bool stepped = number && !exact;
    return report.Fail(
        setting["short"].get<std::string>() + " cannot be \"" + given + "\". Legal: " + RangeText(setting) +
        (stepped ? " in steps of " + Fraction(1, ScaleOf(setting)) : "") + " (" + StoredText(setting) + ")");
}

bool ParseStoredNumber(const Json &setting, const std::string &given, std::string &stored, Report &report) {
    const std::optional<int64_t> number = ParseInteger(given);
    if (number && *number >= setting["min"].get<int64_t>() && *number <= setting["max"].get<int64_t>()) {
        stored = std::to_string(*number);
        return true;
    }
    std::string text = setting["key"].get<std::string>() + " cannot be \"" + given + "\". Legal: the stored integer, " +
                       setting["min"].dump() + " to " + setting["max"].dump();
    if (setting["type"] == "integer")
        text += "; " + setting["short"].get<std::string>() + " takes " + RangeText(setting);
    return report.Fail(text);
}

bool ParseChoice(const Json &setting, const std::string &given, std::string &stored, Report &report) {
    std::optional<int64_t> number = ParseInteger(given);
    std::vector<std::string> names;
    std::string legal = setting["min"].dump() + " to " + setting["max"].dump();
    for (const Json &entry : setting.contains("entries") ? setting["entries"] : Json::array()) {
        names.push_back(entry["name"]);
        legal += ", \"" + names.back() + "\"";
        if (!number && Normalized(names.back()) == Normalized(given)) number = entry["value"].get<int64_t>();
    }
    if (number && *number >= setting["min"].get<int64_t>() && *number <= setting["max"].get<int64_t>()) {
        stored = std::to_string(*number);
        return true;
    }
    const std::string suggestion = names.empty() || number ? "." : Suggestion(given, names);
    return report.Fail(setting["key"].get<std::string>() + " cannot be \"" + given + "\"" + suggestion +
                       " Legal: " + legal);
}

} // namespace

// The library's reader skips blanks and '=' before a value, ends it at the first control byte, and takes one line at a
// time.
bool FitsLine(const std::string &key, const std::string &text, Report &report) {
    for (const char c : text)
        if (static_cast<unsigned char>(c) < 32) return report.Fail(key + ": a text cannot hold control characters");
    if (!text.empty() && (text[0] == ' ' || text[0] == '='))
        return report.Fail(key + ": a text cannot begin with a blank or \"=\"");
    const size_t room = kLongestLine - key.size() - 3;
    if (text.size() > room) return report.Fail(key + ": a text has at most " + std::to_string(room) + " bytes");
    return true;
}

bool ParseColor(const std::string &given, std::string &stored, Report &report) {
    const std::optional<int64_t> color = StoredColor(given);
    if (!color)
        return report.Fail("\"" + given + "\" is not a color; give it as #RRGGBB, or as a name such as white or navy");
    stored = std::to_string(*color);
    return true;
}

bool ParseValue(const Json &setting, const std::string &given, Manner manner, std::string &stored, Report &report) {
    const auto &key = setting["key"].get_ref<const std::string &>();
    const auto &type = setting["type"].get_ref<const std::string &>();
    stored.clear();
    if (type == "text" || type == "font") {
        stored = given; // the library reads UTF-8
        return FitsLine(key, stored, report);
    }
    if (type == "boolean")
        return ParseBoolean(given, stored) ||
               report.Fail(key + " cannot be \"" + given + "\". Legal: true, false, yes, no, on, off, 1, 0");
    if (type == "choice") return ParseChoice(setting, given, stored, report);
    const bool plain = !given.empty() && given.find_first_not_of("0123456789") == std::string::npos;
    if (type == "color" && !(manner == Manner::kStored && plain))
        return ParseColor(given, stored, report) || report.Fail(key + ": " + report.error);
    return manner == Manner::kStored || type == "color" ? ParseStoredNumber(setting, given, stored, report)
                                                        : ParseMeantNumber(setting, given, stored, report);
}

std::string MeantText(const Json &setting, int64_t stored) {
    return Fraction(stored - OffsetOf(setting), ScaleOf(setting));
}

std::string DisplayedText(const Json &setting, int64_t stored) {
    const std::string display = setting.value("display", "plain");
    if (display == "hundredths") return Fraction(stored, 100);
    if (display == "tenths") return Fraction(stored, 10);
    return std::to_string(display == "offset" ? stored - OffsetOf(setting) : stored);
}

namespace {

std::string UnitText(const Json &setting) {
    // A seed counts nothing: it is a number to remember.
    const std::string unit = setting.value("unit", "");
    return unit.empty() || unit == "seed" ? std::string() : std::string(1, ' ').append(unit);
}

std::string ShownText(const Json &setting, const char *member) {
    return Decimal(setting["shown"][member].get<double>(), ScaleOf(setting));
}

} // namespace

std::string ValueName(const Json &setting, int64_t stored) {
    if (setting["type"] == "boolean") return stored != 0 ? "on" : "off";
    std::string name = std::to_string(stored);
    for (const Json &entry : setting.contains("entries") ? setting["entries"] : Json::array())
        if (entry["value"] == stored) name.assign(1, '"').append(entry["name"].get<std::string>()).append(1, '"');
    return name;
}

std::string DefaultText(const Json &setting) {
    if (setting.contains("start")) return setting["start"];
    const Json &value = setting["default"];
    if (value.is_string()) return "\"" + value.get<std::string>() + "\"";
    if (value.is_boolean()) return value.get<bool>() ? "yes" : "no";
    if (setting["type"] == "color") return ColorText(value.get<int64_t>());
    if (setting["type"] == "integer") return ShownText(setting, "default") + UnitText(setting);
    return ValueName(setting, value.get<int64_t>());
}

std::string RangeText(const Json &setting) {
    const std::string type = setting["type"];
    if (type == "boolean") return "yes or no";
    if (type == "color") return "#RRGGBB, or a name such as white";
    if (type != "integer") return "";
    if (setting["max"] == INT_MAX) return ShownText(setting, "min") + UnitText(setting) + " or more";
    const std::string text = ShownText(setting, "min") + " to " + ShownText(setting, "max") + UnitText(setting);
    return IsCircle(setting) ? text + ", or any other angle" : text;
}

std::string StoredText(const Json &setting) {
    const std::string key = setting["key"], type = setting["type"];
    if (type == "text" || type == "font") return key;
    if (type == "color") return key + "=blue * 65536 + green * 256 + red";
    if (type == "boolean") return key + "=1 or 0";
    return key + "=" + setting["min"].dump() + " to " + setting["max"].dump() + ", default " +
           setting["default"].dump();
}

} // namespace lmf::host
