// Prints the catalogue document: all filters with their settings as the library's own tables have them, and what the
// tables beside this program add for those who type.
// Usage: describe_catalogue CATALOGUE.json CATALOGUE.inc. The second file holds the same text as C++ string literals.
#include <algorithm>
#include <fstream>
#include <set>
#include <string>
#include <string_view>
#include <tuple>

#include <nlohmann/json.hpp>

#include "engine/catalogue.h"
#include "engine/document.h"
#include "filter_words.h"
#include "setting_effects.h"

namespace lmf {
namespace {

using Json = nlohmann::ordered_json;

const ConfigEntry *ParameterOf(const PageControl &control) {
    return control.number != nullptr ? FindParameter(control.number) : FindParameter(control.text);
}

bool IsKeyless(const ConfigEntry &parameter) {
    return &parameter >= kKeylessSettings.data() && &parameter < kKeylessSettings.data() + kKeylessSettings.size();
}

const char *TypeOf(const PageControl &control, bool isBool) {
    switch (control.kind) {
    case ControlKind::Combo:
    case ControlKind::RadioButton:
        return "choice";
    case ControlKind::ColorButton:
        return "color";
    case ControlKind::FontButton:
        return "font";
    case ControlKind::TextField:
        return "text";
    case ControlKind::CheckBox:
        return "boolean";
    default:
        return isBool ? "boolean" : "integer";
    }
}

const char *NameOf(ControlKind kind) {
    static constexpr const char *kNames[] = {"none",       "slider",       "number edit",  "combo box",
                                             "check box",  "radio button", "color button", "font button",
                                             "text field", "button",       "static",       "picture"};
    return kNames[static_cast<size_t>(kind)];
}

const char *NameOf(Unit unit) {
    static constexpr const char *kNames[] = {"",     "pixels", "percent",     "degrees", "levels",
                                             "seed", "points", "millimetres", "kelvin",  "times"};
    return kNames[static_cast<size_t>(unit)];
}

const char *NameOf(Shown shown) {
    static constexpr const char *kNames[] = {"plain", "tenths", "hundredths", "offset"};
    return kNames[static_cast<size_t>(shown)];
}

Json ListEntries(std::string_view list) {
    Json entries = Json::array();
    while (!list.empty()) {
        const size_t end = std::min(list.find(';'), list.size());
        if (end > 0) entries.push_back({{"value", entries.size()}, {"name", std::string(list.substr(0, end))}});
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    return entries;
}

/// Stored steps that make one of what a person counts in: the unit, or what the control shows where nothing names one.
int32_t ScaleOf(const PageControl &control) {
    if (control.unit != Unit::None) return control.perUnit;
    return control.shown == Shown::Hundredths ? 100 : control.shown == Shown::Tenths ? 10 : 1;
}

/// What a person says for a stored value.
Json MeantValue(const PageControl &control, int32_t stored) {
    const int64_t number = int64_t{stored} - control.offset;
    const int32_t scale = ScaleOf(control);
    return scale == 1 ? Json(number) : Json(static_cast<double>(number) / scale);
}

/// The reach of what a person may say: that of typing, but for settings that go as far as the picture.
ControlRange MeantRange(const PageControl &control) {
    return control.limits.Stored().max == INT32_MAX ? control.limits.Stored() : control.limits.Typed();
}

void AddNumber(Json &setting, const PageControl &control, bool isBool) {
    const int32_t value = kFactorySettings.*control.number;
    const int32_t restore = RestoreValueOf(control);
    const std::string_view type = TypeOf(control, isBool);
    if (type == "boolean") {
        setting["default"] = value != 0;
        setting["restore"] = restore != 0;
        return;
    }
    setting["default"] = value;
    setting["restore"] = restore;
    const auto [bar, typed, stored] = std::tuple(control.limits.Bar(), control.limits.Typed(), control.limits.Stored());
    setting["min"] = stored.min;
    setting["max"] = stored.max;
    if (!(typed == stored)) setting["typed"] = {typed.min, typed.max};
    if (!(bar == typed)) setting["bar"] = {bar.min, bar.max};
    if (control.shown != Shown::Plain) setting["display"] = NameOf(control.shown);
    if (control.unit != Unit::None) setting["unit"] = NameOf(control.unit);
    if (type == "integer") {
        const ControlRange meant = MeantRange(control);
        setting["scale"] = ScaleOf(control);
        setting["offset"] = control.offset;
        setting["shown"] = {{"min", MeantValue(control, meant.min)},
                            {"max", MeantValue(control, meant.max)},
                            {"default", MeantValue(control, value)}};
    }
    for (const PictureStart &start : kPictureStarts)
        if (start.setting == control.number) setting["start"] = start.text;
    if (control.rangeSource == RangeSource::PictureWidth) setting["within"] = "width";
    if (control.rangeSource == RangeSource::PictureHeight) setting["within"] = "height";
    if (control.list) setting["entries"] = ListEntries(control.list);
}

/// Adds that the setting works only while another has one of some values.
void AddNeed(Json &setting, const EnableRule &rule, const PageControl &other) {
    const ControlRange range = other.kind == ControlKind::CheckBox ? ControlRange{0, 1} : other.limits.Stored();
    Json values = Json::array();
    for (int32_t value = range.min; value <= std::min(range.max, 31); value++)
        if (rule.Allows(value)) values.push_back(value);
    setting["needs"].push_back({{"key", FindParameter(rule.when)->key}, {"values", values}});
}

const PageControl &ControlOf(const Filter &filter, NumberField number) {
    return *std::ranges::find(filter.page, number, &PageControl::number);
}

void AddNeeds(Json &setting, const Filter &filter, const PageControl &control) {
    for (const EnableRule &rule : filter.rules)
        if (rule.control == control.id) AddNeed(setting, rule, ControlOf(filter, rule.when));
    for (const EffectRule &effect : kEffectRules)
        if (effect.setting == control.number && effect.text == control.text)
            AddNeed(setting, effect.rule, ControlOf(filter, effect.rule.when));
}

/// One control becomes one setting, but for the radio buttons: each adds its entry to the setting that they share.
/// @return false when the control's setting has no key
bool AddControl(Json &settings, const Filter &filter, const PageControl &control) {
    const ConfigEntry *parameter = ParameterOf(control);
    if (!parameter) return false;
    const bool isBool = parameter->type == kConfigBool;
    Json *known = nullptr;
    for (Json &setting : settings)
        if (setting["key"] == parameter->key) known = &setting;
    const bool radio = control.kind == ControlKind::RadioButton;
    if (!known) {
        Json setting;
        setting["key"] = parameter->key;
        setting["type"] = TypeOf(control, isBool);
        setting["label"] = radio ? "" : control.label;
        if (control.name && !radio) setting["name"] = control.name;
        setting["help"] = radio ? "" : control.help;
        setting["control"] = NameOf(control.kind);
        setting["id"] = control.id;
        if (const auto kind = DocumentKindOf(control)) setting["document"] = kDocumentKinds[static_cast<size_t>(*kind)];
        setting["stored"] = !IsKeyless(*parameter);
        if (control.number) {
            AddNumber(setting, control, isBool);
        } else {
            setting["default"] = setting["restore"] = kFactorySettings.*control.text;
        }
        AddNeeds(setting, filter, control);
        settings.push_back(std::move(setting));
        known = &settings.back();
    }
    const char *entry = control.name ? control.name : control.label;
    if (radio) {
        Json &button = (*known)["entries"].emplace_back(
            Json{{"value", control.pressedValue}, {"name", entry}, {"help", control.help}, {"id", control.id}});
        if (control.name) button["label"] = control.label;
    }
    return true;
}

/// Does a word of a key begin with this letter?
bool StartsWord(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

/// The part that all keys of the filter begin with. It ends where a word of each key begins, so that something is left
/// of every key.
std::string CommonPrefix(const Json &settings) {
    std::string prefix = settings.empty() ? "" : settings[0]["key"].get<std::string>();
    const auto opens = [&](const Json &setting) {
        const auto &key = setting["key"].get_ref<const std::string &>();
        return prefix.size() < key.size() && key.starts_with(prefix) && StartsWord(key[prefix.size()]);
    };
    while (!prefix.empty() && !std::ranges::all_of(settings, opens)) prefix.pop_back();
    return prefix;
}

/// Gives every setting the short name by which people call it.
void AddShortNames(Json &settings, const std::string &prefix) {
    for (Json &setting : settings) setting["short"] = setting["key"].get<std::string>().substr(prefix.size());
}

/// Marks the settings that the filter passes over, and adds those of other pages that it works with.
void AddBorrowed(Json &filter, int32_t row) {
    for (const BorrowedSetting &borrowed : kBorrowedSettings) {
        if (borrowed.row != row) continue;
        const char *used = FindParameter(borrowed.used)->key;
        for (Json &setting : filter["settings"])
            if (setting["key"] == FindParameter(borrowed.idle)->key) setting["replacedBy"] = used;
        for (const FilterEntry &entry : FilterCatalogue) {
            const auto control = std::ranges::find(entry.filter->page, borrowed.used, &PageControl::number);
            if (control == entry.filter->page.end()) continue;
            AddControl(filter["borrows"], *entry.filter, *control);
            filter["borrows"].back()["from"] = entry.name;
        }
    }
    if (filter.contains("borrows")) AddShortNames(filter["borrows"], "Filter");
}

/// The words by which people find the filter.
/// @param known  the synonyms so far
/// @return false for one that another filter has
bool AddWords(Json &filter, const FilterWords &words, std::set<std::string> &known) {
    filter["description"] = words.description;
    filter["synonyms"] = Json::array();
    for (const Json &entry : ListEntries(words.synonyms)) {
        if (!known.insert(entry["name"]).second) return false;
        filter["synonyms"].push_back(entry["name"]);
    }
    return true;
}

Json DescribeAccepted(uint32_t flags) {
    Json modes = Json::array();
    if (flags & (FilterAcceptsColor | FilterNeedsSecond)) modes.push_back("true color");
    if (flags & FilterAcceptsGrey) modes.push_back("grey");
    if (flags & FilterAcceptsPalette) modes.push_back("palette");
    if (flags & FilterAcceptsMono) modes.push_back("mono");
    return modes;
}

const char *DescribeAlpha(uint32_t flags) {
    if (flags & FilterDropsSecond) return "dropped";
    if (flags & FilterKeepsSecond) return "kept";
    return flags & (FilterAcceptsGrey | FilterRunsSecond) ? "filtered" : "kept";
}

Json DescribeFilter(int32_t row, const Json &categories, std::set<std::string> &synonyms) {
    const FilterEntry &entry = FilterCatalogue[row];
    Json filter;
    filter["row"] = row;
    filter["name"] = entry.name;
    if (!AddWords(filter, kFilterWords[row], synonyms)) return nullptr;
    filter["category"] = categories[static_cast<size_t>(entry.category)];
    filter["accepts"] = DescribeAccepted(entry.flags);
    filter["alpha"] = DescribeAlpha(entry.flags);
    filter["needsAlpha"] = (entry.flags & FilterNeedsSecond) != 0;
    filter["needsClipboard"] = (entry.flags & FilterNeedsClipboard) != 0;
    filter["needsFaceFinder"] = entry.filter->hooks.FilterPrepare != nullptr;
    filter["available"] = entry.filter->FilterKernel != nullptr;
    filter["flags"] = entry.flags;
    filter["itemId"] = entry.itemId;
    filter["pageId"] = entry.pageId;
    filter["settings"] = Json::array();
    for (const PageControl &control : entry.filter->page)
        if (control.IsSetting() && !AddControl(filter["settings"], *entry.filter, control)) return nullptr;
    AddShortNames(filter["settings"], CommonPrefix(filter["settings"]));
    AddBorrowed(filter, row);
    return filter;
}

Json DescribeFileKeys() {
    Json keys = Json::array();
    for (const ConfigEntry &entry : ConfigTable) {
        if (entry.type & kConfigWriteOnly) continue;
        Json key = {{"key", entry.key}};
        if (entry.type & kConfigText) {
            key["default"] = entry.Text();
        } else {
            key["default"] = entry.Number();
        }
        keys.push_back(std::move(key));
    }
    return keys;
}

/// String literals of whole lines, since compilers bound the length of each.
void WriteLiterals(std::ofstream &out, const std::string &text) {
    for (size_t start = 0; start < text.size();) {
        const size_t end = std::min(text.find('\n', start), text.size() - 1) + 1;
        out << "R\"json(" << text.substr(start, end - start) << ")json\"\n";
        start = end;
    }
}

} // namespace
} // namespace lmf

int main(int count, char **arguments) {
    using namespace lmf;
    if (count != 3) return 1;
    Json document;
    document["version"] = 2;
    document["categories"] = Json::array();
    for (const Json &entry : ListEntries(kCategoryList)) document["categories"].push_back(entry["name"]);
    std::set<std::string> synonyms;
    for (int32_t row = 0; row < kFilterCount; row++) {
        document["filters"].push_back(DescribeFilter(row, document["categories"], synonyms));
        if (document["filters"].back().is_null()) return 2;
    }
    document["keys"] = DescribeFileKeys();
    const std::string text = document.dump(1) + "\n";
    std::ofstream json(arguments[1]);
    json << text;
    std::ofstream literals(arguments[2]);
    WriteLiterals(literals, text);
    return json.good() && literals.good() ? 0 : 3;
}
