#include "listing.h"

#include <algorithm>

#include "console.h"
#include "values.h"

namespace lmf::host {

namespace {

constexpr size_t kNameWidth = 27;
constexpr size_t kTermWidth = 10;

std::string TextOf(const Json &object, const char *member) {
    return object.value(member, std::string());
}

bool Mentions(const Json &filter, const std::string &word) {
    const std::string wanted = Normalized(word);
    const auto has = [&](const std::string &text) { return Normalized(text).find(wanted) != std::string::npos; };
    const Json &synonyms = filter["synonyms"];
    return has(TextOf(filter, "name")) || has(TextOf(filter, "category")) || has(TextOf(filter, "description")) ||
           std::any_of(synonyms.begin(), synonyms.end(), has);
}

bool IsListed(const Json &filter, const ListRequest &request) {
    if (!request.all && !filter["available"]) return false;
    if (!request.category.empty() && Normalized(TextOf(filter, "category")) != Normalized(request.category))
        return false;
    return std::all_of(request.words.begin(), request.words.end(),
                       [&](const std::string &word) { return Mentions(filter, word); });
}

std::string Line(const std::string &term, const std::string &text) {
    return text.empty() ? "" : "  " + Padded(term, kTermWidth) + text + "\n";
}

// The entries of a list, one a line, with what each does where that is told.
std::string EntryLines(const Json &setting) {
    std::string lines;
    for (const Json &entry : setting.contains("entries") ? setting["entries"] : Json::array()) {
        const std::string help = TextOf(entry, "help");
        lines += Line(lines.empty() ? "entries" : "",
                      entry["value"].dump() + " " + TextOf(entry, "name") + (help.empty() ? "" : ": " + help));
    }
    return lines;
}

// What the page's control shows, where that is something else than what a person says.
std::string ControlText(const Json &setting) {
    if (setting["type"] != "integer") return "";
    const int64_t value = setting["default"];
    const std::string displayed = DisplayedText(setting, value);
    if (std::stod(displayed) == std::stod(MeantText(setting, value))) return "";
    return "the " + TextOf(setting, "control") + " of the window shows " + displayed + " for " + DefaultText(setting);
}

// What else has to be so for the setting to do something.
std::string NeedText(const Json &filter, const Json &need) {
    for (const Json &other : filter["settings"]) {
        if (other["key"] != need["key"]) continue;
        std::string values;
        for (const Json &value : need["values"])
            values.append(values.empty() ? "" : " or ").append(ValueName(other, value.get<int64_t>()));
        return TextOf(other, "short") + " " + values;
    }
    return "";
}

std::string SettingText(const Json &filter, const Json &setting) {
    const std::string label = LabelOf(setting);
    std::string text(1, '\n');
    text += TextOf(setting, "short");
    if (!label.empty()) text.append("  \"").append(label).append("\"");
    if (setting.contains("from")) text += "  (of " + TextOf(setting, "from") + ")";
    text += "\n";
    if (const std::string help = TextOf(setting, "help"); !help.empty()) text += "  " + help + "\n";
    text += Line("range", RangeText(setting)) + EntryLines(setting) + Line("default", DefaultText(setting));
    text += Line("", ControlText(setting));
    for (const Json &need : setting.contains("needs") ? setting["needs"] : Json::array())
        text += Line("needs", NeedText(filter, need));
    if (setting.contains("replacedBy"))
        text += Line("effect", "none; give " + TextOf(setting, "replacedBy") + " instead");
    return text + Line("key", StoredText(setting) + (setting["stored"] ? "" : "; kept in no file"));
}

} // namespace

std::string ListText(const ListRequest &request) {
    std::vector<const Json *> filters;
    for (const Json &filter : Catalogue()["filters"])
        if (IsListed(filter, request)) filters.push_back(&filter);
    std::stable_sort(filters.begin(), filters.end(), [](const Json *a, const Json *b) {
        return Normalized(TextOf(*a, "name")) < Normalized(TextOf(*b, "name"));
    });
    std::string text;
    for (const Json *filter : filters)
        text += Padded(TextOf(*filter, "name"), kNameWidth) + TextOf(*filter, "description") +
                ((*filter)["available"] ? "" : " (not in this version)") + "\n";
    return text;
}

std::string ShowText(const Json &filter) {
    std::string synonyms;
    for (const Json &synonym : filter["synonyms"])
        synonyms += (synonyms.empty() ? "" : ", ") + synonym.get<std::string>();
    std::string text = TextOf(filter, "name") + ": " + TextOf(filter, "description") + "\n" +
                       Line("category", TextOf(filter, "category")) + Line("also", synonyms) +
                       Line("accepts", AcceptedModes(filter)) + Line("alpha", TextOf(filter, "alpha"));
    if (!filter["available"]) text += "  This version cannot run it.\n";
    for (const Json &setting : filter["settings"]) text += SettingText(filter, setting);
    for (const Json &setting : filter.contains("borrows") ? filter["borrows"] : Json::array())
        text += SettingText(filter, setting);
    return text + (filter["settings"].empty() ? "\nThis filter has no settings.\n" : "");
}

} // namespace lmf::host
