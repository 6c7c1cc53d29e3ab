#include "settings.h"

#include <algorithm>
#include <cstdlib>

#include "console.h"
#include "documents.h"
#include "progress.h"
#include "settings_file.h"
#include "values.h"

namespace lmf::host {

namespace {

constexpr size_t kMostFaults = 20; // that are named of one file

struct Assigned {
    const Json *setting;
    std::string typed; // the name, as it was typed
    std::string stored;
};

// The settings of one filter while they are put together: what was typed, and the boxes that it switches on.
class StepSettings {
public:
    StepSettings(const Json &ofFilter, StoredValues begun) : filter(ofFilter), beginning(std::move(begun)) {}

    // Takes one NAME=VALUE.
    bool Assign(const std::string &assignment, Report &report) {
        const size_t equals = assignment.find('=');
        if (equals == std::string::npos) return report.Fail("\"" + assignment + "\" is not of the form KEY=VALUE");
        const std::string name = assignment.substr(0, equals);
        const FoundSetting found = FindSetting(filter, name, report);
        if (!found.setting) return false;
        const Manner manner = found.byKey ? Manner::kStored : Manner::kMeant;
        std::string stored;
        if (!ParseValue(*found.setting, assignment.substr(equals + 1), manner, stored, report)) return false;
        assigned.push_back({found.setting, name, stored});
        values[KeyOf(*found.setting)] = stored;
        return true;
    }

    // Sets what the typed settings need and nobody typed, and warns of those that do nothing all the same.
    void Settle(Report &report) {
        const StoredValues typed = values;
        for (const Assigned &one : assigned)
            if (!IsOff(one)) SwitchOn(*one.setting, typed);
        for (const Assigned &one : assigned) {
            if (one.setting->contains("replacedBy")) WarnOfIdle(one, report);
            for (const Json &need : NeedsOf(*one.setting))
                if (!IsMet(need) && !IsOff(one)) WarnOfNeed(one, need, report);
        }
    }

    Step Finish() const {
        Step step;
        step.filter = &filter;
        step.values = beginning;
        step.values["CurrentFilter"] = filter["row"].dump();
        for (const auto &[key, value] : values) step.values[key] = value;
        step.readsClock = true;
        for (const Json &setting : filter["settings"]) {
            const std::string key = KeyOf(setting);
            const auto value = step.values.find(key);
            const bool isSet = value != step.values.end();
            if (setting["type"] == "font") step.readsClock = false; // texts may show the date
            if (setting.value("unit", "") == "seed" && !isSet) step.seed = &setting;
            if (setting.contains("within") && isSet)
                step.places.push_back({key, NameOf(setting), std::strtoll(value->second.c_str(), nullptr, 10),
                                       setting["within"] == "width"});
        }
        return step;
    }

private:
    static std::string KeyOf(const Json &setting) { return setting["key"]; }
    static std::string NameOf(const Json &setting) { return setting["short"]; }
    static const Json &NeedsOf(const Json &setting) {
        static const Json kNone = Json::array();
        return setting.contains("needs") ? setting["needs"] : kNone;
    }
    // Clearing a box never needs another one.
    static bool IsOff(const Assigned &one) { return (*one.setting)["type"] == "boolean" && one.stored == "0"; }

    const Json &SettingOf(const Json &need) const {
        const Json &settings = filter["settings"];
        return *std::find_if(settings.begin(), settings.end(),
                             [&](const Json &setting) { return setting["key"] == need["key"]; });
    }

    int64_t ValueOf(const Json &setting) const {
        for (const StoredValues *known : {&values, &beginning})
            if (const auto value = known->find(KeyOf(setting)); value != known->end())
                return std::strtoll(value->second.c_str(), nullptr, 10);
        const Json &value = setting["default"];
        return value.is_boolean() ? value.get<bool>() : value.get<int64_t>();
    }

    bool IsMet(const Json &need) const {
        const Json &setting = SettingOf(need);
        const int64_t value = ValueOf(setting);
        const Json held = setting["type"] == "boolean" ? value != 0 : value;
        return std::any_of(need["values"].begin(), need["values"].end(), [&](const Json &legal) {
            return held.is_boolean() ? (legal != 0) == held.get<bool>() : legal == held;
        });
    }

    void SwitchOn(const Json &setting, const StoredValues &typed) {
        for (const Json &need : NeedsOf(setting)) {
            const std::string key = need["key"];
            if (IsMet(need) || typed.count(key)) continue;
            values[key] = need["values"][0].dump();
            if (values[key] != "0") SwitchOn(SettingOf(need), typed);
        }
    }

    void WarnOfIdle(const Assigned &one, Report &report) const {
        const std::string used = (*one.setting)["replacedBy"];
        for (const Json &borrowed : filter["borrows"])
            if (borrowed["key"] == used)
                report.Warn(FilterName() + ": " + one.typed + " has no effect; the filter works with " +
                            NameOf(borrowed) + " (" + used + ")");
    }

    void WarnOfNeed(const Assigned &one, const Json &need, Report &report) const {
        const Json &other = SettingOf(need);
        report.Warn(FilterName() + ": " + one.typed + " has no effect while " + NameOf(other) + " is " +
                    ValueName(other, ValueOf(other)));
    }

    std::string FilterName() const { return filter["name"]; }

    const Json &filter;
    StoredValues beginning;
    std::vector<Assigned> assigned;
    StoredValues values;
};

int ReadBeginning(const std::string &path, SettingsFile &file) {
    Report report;
    if (path.empty()) return kDone;
    const std::string name = Printable(path) + ": ";
    if (!file.Read(path, report)) {
        Complain(name + report.error);
        return kUnreadable;
    }
    for (size_t i = 0; i < std::min(file.faults.size(), kMostFaults); ++i) Complain(Printable(name + file.faults[i]));
    if (file.faults.size() > kMostFaults)
        Complain(name + "and " + std::to_string(file.faults.size() - kMostFaults) + " more");
    return file.faults.empty() ? kDone : kUsage;
}

// Brings a seed into the reach of a setting.
int64_t Wrapped(const Json &setting, int64_t seed) {
    const int64_t min = setting["min"], max = setting["max"];
    return seed >= min && seed <= max ? seed : min + seed % (max - min + 1);
}

} // namespace

int MakeSteps(const SettingsRequest &request, std::vector<Step> &steps, Report &report) {
    SettingsFile file;
    if (const int code = ReadBeginning(request.fromFile, file); code != kDone) return code;
    if (!request.paper.empty() && !ParseColor(request.paper, file.values["PaperColor"], report)) {
        Complain("--paper: " + Printable(report.error));
        return kUsage;
    }
    for (const StepRequest &asked : request.steps) {
        StoredValues beginning = file.values;
        for (const auto &[key, value] : asked.beginning) beginning[key] = value;
        if (!asked.document.empty() && !ReadDocument(asked.document, *asked.filter, beginning, report)) {
            Complain(Printable(asked.document + ": " + report.error));
            return kUnreadable;
        }
        StepSettings settings(*asked.filter, std::move(beginning));
        for (const std::string &assignment : asked.assignments) {
            if (settings.Assign(assignment, report)) continue;
            Complain(Printable(report.error));
            return kUsage;
        }
        settings.Settle(report);
        steps.push_back(settings.Finish());
    }
    return kDone;
}

std::string LinesFor(const Step &step, const Grain &grain, const Bitmap &image, Report &report) {
    std::string lines;
    const auto addText = [&](const std::string &key, const std::string &value) {
        lines.append(key).append(" = ").append(value).append("\n");
    };
    const auto addLine = [&](const std::string &key, int64_t value) { addText(key, std::to_string(value)); };
    for (const auto &[key, value] : step.values) addText(key, value);
    for (const Place &place : step.places) {
        const int64_t end = place.across ? image.width : image.height;
        if (place.value <= end) continue;
        addLine(place.key, end);
        report.Warn((*step.filter)["name"].get<std::string>() + ": " + place.name + " is held to the picture's " +
                    std::to_string(end) + " pixels");
    }
    if (step.seed && (grain.seed || grain.many)) {
        const int64_t seed = grain.seed ? *grain.seed : (*step.seed)["default"].get<int64_t>() + grain.index;
        addLine((*step.seed)["key"], Wrapped(*step.seed, seed));
    }
    return lines;
}

std::optional<int64_t> ClockFor(const Step &step, const Grain &grain) {
    if (!step.readsClock) return std::nullopt;
    if (grain.seed || !grain.many) return grain.seed;
    return grain.start + grain.index;
}

std::string UserIniPath() {
    const char *config = std::getenv("XDG_CONFIG_HOME");
    const char *home = std::getenv("HOME");
    const std::string folder = config && *config == '/' ? config : std::string(home ? home : "") + "/.config";
    return folder + (folder.ends_with('/') ? "" : "/") + "Quillon Works/LmfFiltr.ini";
}

} // namespace lmf::host
