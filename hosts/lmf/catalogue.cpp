#include "catalogue.h"

#include <algorithm>

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

// The part that all keys of the filter begin with, so that "FilterGaussianRadius" can be given as "Radius".
// It ends where a word of each key begins, so that something is left of every key.
std::string CommonPrefix(const Json &filter) {
    const Json &settings = filter["settings"];
    std::string prefix = settings.empty() ? "" : settings[0]["key"].get<std::string>();
    const auto opens = [&](const Json &setting) {
        const auto &key = setting["key"].get_ref<const std::string &>();
        return prefix.size() < key.size() && key.starts_with(prefix) && StartsWord(key[prefix.size()]);
    };
    while (!prefix.empty() && !std::all_of(settings.begin(), settings.end(), opens)) prefix.pop_back();
    return prefix;
}

// The keys as whoever wrote `wanted` writes them: whole, or without what they all begin with.
std::vector<std::string> NamesLike(std::string_view wanted, std::vector<std::string> keys, const std::string &prefix) {
    constexpr std::string_view kStart = "Filter";
    if (EqualInAnyCase(wanted.substr(0, kStart.size()), kStart)) return keys;
    for (std::string &key : keys) key.erase(0, prefix.size());
    return keys;
}

// Whether `key` ends in `wanted`, and that is where a word begins.
bool EndsInWords(const std::string &key, std::string_view wanted) {
    if (wanted.empty() || wanted.size() >= key.size()) return false;
    const size_t start = key.size() - wanted.size();
    return StartsWord(key[start]) && EqualInAnyCase(std::string_view(key).substr(start), wanted);
}

} // namespace

const Json &Catalogue() {
    static const Json kCatalogue = WithDestinations(Json::parse(kDocument));
    return kCatalogue;
}

bool EqualInAnyCase(std::string_view a, std::string_view b) {
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) { return Lower(x) == Lower(y); });
}

const Json *FindFilter(std::string_view name) {
    for (const Json &filter : Catalogue()["filters"])
        if (EqualInAnyCase(filter["name"].get_ref<const std::string &>(), name)) return &filter;
    return nullptr;
}

const Json *FindSetting(const Json &filter, std::string_view key, Report &report) {
    const auto &name = filter["name"].get_ref<const std::string &>();
    std::vector<std::string> keys;
    std::vector<const Json *> matches;
    const Json *exact = nullptr; // without the filter's own prefix
    const std::string prefix = CommonPrefix(filter);
    for (const Json &setting : filter["settings"]) {
        const auto &candidate = setting["key"].get_ref<const std::string &>();
        if (EqualInAnyCase(candidate, key)) return &setting;
        if (EndsInWords(candidate, key)) {
            matches.push_back(&setting);
            if (candidate.size() == prefix.size() + key.size()) exact = &setting;
        }
        keys.push_back(candidate);
    }
    if (exact) return exact;
    if (matches.size() == 1) return matches[0];
    const std::string given(key);
    if (keys.empty()) {
        report.error = name + " has no settings";
        return nullptr;
    }
    std::string list;
    for (const std::string &candidate : keys) list.append(list.empty() ? "" : ", ").append(candidate);
    if (matches.empty()) {
        report.error = name + " has no setting \"" + given + "\"" + Suggestion(key, NamesLike(key, keys, prefix)) +
                       " Its settings: " + list;
    } else {
        report.error = name + " has several settings that end in \"" + given + "\":";
        for (const Json *match : matches) report.error.append(" ").append((*match)["key"]);
    }
    return nullptr;
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
