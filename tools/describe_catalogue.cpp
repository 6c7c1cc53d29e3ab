// Prints the catalogue document: all filters with their settings as the library's own tables have them.
// Usage: describe_catalogue CATALOGUE.json CATALOGUE.inc. The second file holds the same text as C++ string literals.
#include <fstream>
#include <string>
#include <string_view>
#include <tuple>

#include <nlohmann/json.hpp>

#include "engine/catalogue.h"
#include "engine/document.h"

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

void AddNumber(Json &setting, const PageControl &control, bool isBool) {
    const int32_t value = kFactorySettings.*control.number;
    const int32_t restore = RestoreValueOf(control);
    if (std::string_view(TypeOf(control, isBool)) == "boolean") {
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
    if (control.shown != Shown::Plain) setting["shown"] = NameOf(control.shown);
    if (control.offset != 0) setting["offset"] = control.offset;
    if (control.unit != Unit::None) setting["unit"] = NameOf(control.unit);
    if (control.perUnit != 1) setting["perUnit"] = control.perUnit;
    if (control.list) setting["entries"] = ListEntries(control.list);
}

/// One control becomes one setting, but for the radio buttons: each adds its entry to the setting that they share.
/// @return false when the control's setting has no key
bool AddControl(Json &settings, const PageControl &control) {
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
        if (control.name) setting["name"] = control.name;
        setting["help"] = control.help;
        setting["control"] = NameOf(control.kind);
        setting["id"] = control.id;
        if (const auto kind = DocumentKindOf(control)) setting["document"] = kDocumentKinds[static_cast<size_t>(*kind)];
        setting["stored"] = !IsKeyless(*parameter);
        if (control.number) {
            AddNumber(setting, control, isBool);
        } else {
            setting["default"] = setting["restore"] = kFactorySettings.*control.text;
        }
        settings.push_back(std::move(setting));
        known = &settings.back();
    }
    if (radio)
        (*known)["entries"].push_back({{"value", control.pressedValue}, {"name", control.label}, {"id", control.id}});
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

Json DescribeFilter(int32_t row, const Json &categories) {
    const FilterEntry &entry = FilterCatalogue[row];
    Json filter;
    filter["row"] = row;
    filter["name"] = entry.name;
    filter["category"] = categories[static_cast<size_t>(entry.category)];
    filter["accepts"] = DescribeAccepted(entry.flags);
    filter["alpha"] = DescribeAlpha(entry.flags);
    filter["needsAlpha"] = (entry.flags & FilterNeedsSecond) != 0;
    filter["needsClipboard"] = (entry.flags & FilterNeedsClipboard) != 0;
    filter["available"] = entry.filter->FilterKernel != nullptr;
    filter["flags"] = entry.flags;
    filter["itemId"] = entry.itemId;
    filter["pageId"] = entry.pageId;
    filter["settings"] = Json::array();
    for (const PageControl &control : entry.filter->page)
        if (control.IsSetting() && !AddControl(filter["settings"], control)) return nullptr;
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
    document["version"] = 1;
    document["categories"] = Json::array();
    for (const Json &entry : ListEntries(kCategoryList)) document["categories"].push_back(entry["name"]);
    for (int32_t row = 0; row < kFilterCount; row++) {
        document["filters"].push_back(DescribeFilter(row, document["categories"]));
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
