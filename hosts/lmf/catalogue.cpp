#include "catalogue.h"

#include <algorithm>
#include <iterator>

#include "destinations.h"

namespace lmf::host {

namespace {

constexpr char kDocument[] =
#include "catalogue_text.inc"
    ;

char Lower(char c) {
    return c >= 'A' && c <= 'Z' ? char(c + 'a' - 'A') : c;
}

std::string Lowered(std::string_view text) {
    std::string lowered(text);
    std::transform(lowered.begin(), lowered.end(), lowered.begin(), Lower);
    return lowered;
}

// The number of letters to add, drop or change (Levenshtein, 1965).
size_t Distance(const std::string &a, const std::string &b) {
    std::vector<size_t> row(b.size() + 1);
    for (size_t j = 0; j <= b.size(); ++j) row[j] = j;
    for (size_t i = 1; i <= a.size(); ++i) {
        size_t diagonal = row[0];
        row[0] = i;
        for (size_t j = 1; j <= b.size(); ++j) {
            const size_t changed = diagonal + (a[i - 1] != b[j - 1]);
            diagonal = row[j];
            row[j] = std::min({changed, row[j] + 1, row[j - 1] + 1});
        }
    }
    return row.back();
}

bool StartsWord(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
}

// The closest of the names, the best first and at most three; none if nothing is near.
std::vector<std::string> ClosestNames(std::string_view wanted, const std::vector<std::string> &names) {
    const std::string lowered = Lowered(wanted);
    std::vector<std::pair<size_t, std::string>> near;
    for (const std::string &name : names) {
        const std::string candidate = Lowered(name);
        // The whole name, or one of its words, which counts a little less.
        size_t distance = Distance(lowered, candidate);
        bool close = distance <= std::max<size_t>(2, candidate.size() / 4);
        for (size_t start = 0; start < candidate.size() && !close;) {
            const size_t end = std::min(candidate.find(' ', start), candidate.size());
            const std::string word = candidate.substr(start, end - start);
            distance = Distance(lowered, word) + 1;
            close = word.size() > 3 && distance <= 1 + word.size() / 3;
            start = end + 1;
        }
        if (!close && lowered.size() >= 3 && candidate.find(lowered) != std::string::npos) {
            distance = candidate.size();
            close = true;
        }
        if (close) near.emplace_back(distance, name);
    }
    std::stable_sort(near.begin(), near.end(), [](const auto &a, const auto &b) { return a.first < b.first; });
    std::vector<std::string> closest;
    for (size_t i = 0; i < near.size() && i < 3; ++i) closest.push_back(near[i].second);
    return closest;
}

// Whether `key` ends in `wanted`, and that is where a word begins.
bool EndsInWords(const std::string &key, std::string_view wanted) {
    if (wanted.empty() || wanted.size() >= key.size()) return false;
    const size_t start = key.size() - wanted.size();
    return StartsWord(key[start]) && EqualInAnyCase(std::string_view(key).substr(start), wanted);
}

// Whether `wanted` (normalized) is what stands beside the control, with or without the unit in brackets behind it.
bool IsLabel(const Json &setting, const std::string &wanted) {
    const std::string label = LabelOf(setting);
    return Normalized(label) == wanted || Normalized(label.substr(0, label.find('('))) == wanted;
}

// The settings by which a name may mean one, the own ones before those of other filters.
std::vector<const Json *> SettingsOf(const Json &filter) {
    std::vector<const Json *> settings;
    for (const char *list : {"settings", "borrows"}) {
        if (!filter.contains(list)) continue;
        for (const Json &setting : filter[list]) settings.push_back(&setting);
    }
    return settings;
}

} // namespace

const Json &Catalogue() {
    // Never destroyed: that would ask for memory, which a program that ends for want of it has not.
    static const Json &kCatalogue = *new Json(WithDestinations(Json::parse(kDocument)));
    return kCatalogue;
}

bool EqualInAnyCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return Lower(x) == Lower(y); });
}

std::string Normalized(std::string_view text) {
    std::string normalized;
    for (const char c : text) {
        const bool counts = (c >= '0' && c <= '9') || (Lower(c) >= 'a' && Lower(c) <= 'z') || (c & 0x80) != 0;
        if (counts) normalized += Lower(c);
    }
    return normalized;
}

const Json *FindFilter(std::string_view name) {
    const std::string wanted = Normalized(name);
    const Json &filters = Catalogue()["filters"];
    for (const Json &filter : filters)
        if (Normalized(filter["name"].get_ref<const std::string &>()) == wanted) return &filter;
    for (const Json &filter : filters)
        for (const Json &synonym : filter["synonyms"])
            if (Normalized(synonym.get_ref<const std::string &>()) == wanted) return &filter;
    return nullptr;
}

std::string LabelOf(const Json &setting) {
    return setting.value("name", setting["label"].get<std::string>());
}

FoundSetting FindSetting(const Json &filter, std::string_view name, Report &report) {
    const std::string wanted = Normalized(name);
    const std::vector<const Json *> settings = SettingsOf(filter);
    std::vector<const Json *> matches;
    const auto select = [&](const auto &fits) {
        if (!matches.empty() || wanted.empty()) return;
        std::copy_if(settings.begin(), settings.end(), std::back_inserter(matches),
                     [&](const Json *setting) { return fits(*setting); });
    };
    select([&](const Json &setting) { return Normalized(setting["key"].get_ref<const std::string &>()) == wanted; });
    const bool byKey = !matches.empty();
    select([&](const Json &setting) { return Normalized(setting["short"].get_ref<const std::string &>()) == wanted; });
    select([&](const Json &setting) { return !setting.contains("from") && IsLabel(setting, wanted); });
    select([&](const Json &setting) { return EndsInWords(setting["key"].get_ref<const std::string &>(), name); });
    if (matches.size() == 1) return {matches[0], byKey};

    const auto &filterName = filter["name"].get_ref<const std::string &>();
    const std::string given(name);
    if (settings.empty()) {
        report.error = filterName + " has no settings";
        return {};
    }
    // The names as whoever wrote `name` writes them: whole keys, or what is left of them.
    const char *member = wanted.starts_with("filter") ? "key" : "short";
    std::vector<std::string> names;
    std::string list;
    for (const Json *setting : matches.empty() ? settings : matches) {
        names.push_back((*setting)[member]);
        list.append(list.empty() ? "" : ", ").append(names.back());
    }
    report.error = matches.empty() ? filterName + " has no setting \"" + given + "\"" + Suggestion(name, names) +
                                         " Its settings: " + list
                                   : filterName + " has several settings that end in \"" + given + "\": " + list;
    return {};
}

bool Accepts(const Json &filter, std::string_view mode) {
    const Json &accepts = filter["accepts"];
    return std::find(accepts.begin(), accepts.end(), mode) != accepts.end();
}

std::string AcceptedModes(const Json &filter) {
    std::string modes;
    for (const Json &mode : filter["accepts"]) modes += (modes.empty() ? "" : ", ") + mode.get<std::string>();
    return modes;
}

std::string Suggestion(std::string_view wanted, const std::vector<std::string> &names) {
    const std::vector<std::string> closest = ClosestNames(wanted, names);
    if (closest.empty()) return ".";
    std::string text = "; did you mean ";
    for (size_t i = 0; i < closest.size(); ++i)
        text += (i == 0 ? "\"" : i + 1 == closest.size() ? " or \"" : ", \"") + closest[i] + "\"";
    return text + "?";
}

} // namespace lmf::host
