#include "documents.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "engine/document_text.h"
#include "files.h"
#include "product_file.h"
#include "values.h"

namespace lmf::host {

namespace {

/// A control of a page: a setting, or one of the radio buttons that share it.
struct Control {
    const Json *setting = nullptr;
    const Json *button = nullptr;
};

const Json &EntriesOf(const Json &setting) {
    static const Json kNone = Json::array();
    return setting.contains("entries") ? setting["entries"] : kNone;
}

bool IsButton(const Json &entry) {
    return entry.contains("id");
}

// Finds the control on whichever page it stands.
Control FindControl(const char *kind, int id) {
    for (const Json &filter : Catalogue()["filters"]) {
        for (const Json &setting : filter["settings"]) {
            if (setting.value("document", "") != kind) continue;
            bool buttons = false;
            for (const Json &entry : EntriesOf(setting)) {
                buttons |= IsButton(entry);
                if (IsButton(entry) && entry["id"] == id) return {&setting, &entry};
            }
            if (!buttons && setting["id"] == id) return {&setting, nullptr};
        }
    }
    return {};
}

int64_t HeldTo(const Json &setting, int64_t value) {
    if (setting["type"] == "boolean") return value != 0;
    const bool typed = setting.contains("typed");
    const int64_t min = typed ? setting["typed"][0] : setting["min"],
                  max = typed ? setting["typed"][1] : setting["max"];
    return std::clamp(value, min, max);
}

void TakeControl(const Control &control, const char *text, StoredValues &values, Report &report) {
    const Json &setting = *control.setting;
    const std::string key = setting["key"];
    const int64_t given = ParseNumber(text);
    Report fault;
    if (control.button) {
        if (given != 0) values[key] = (*control.button)["value"].dump();
    } else if (!setting["default"].is_string()) {
        values[key] = std::to_string(HeldTo(setting, given));
    } else if (FitsLine(key, text, fault)) {
        values[key] = text;
    } else {
        report.Warn(fault.error + "; it is left out");
    }
}

DocumentKind KindOf(const Json &setting) {
    const std::string kind = setting["document"];
    return DocumentKind(std::find(std::begin(kDocumentKinds), std::end(kDocumentKinds), kind) - kDocumentKinds);
}

int64_t NumberOf(const Json &setting, const std::string *stored) {
    const Json &value = setting["default"];
    int64_t number = stored               ? std::strtoll(stored->c_str(), nullptr, 10)
                     : value.is_boolean() ? int64_t{value.get<bool>()}
                                          : value.get<int64_t>();
    number = HeldTo(setting, number);
    // The bar goes as near as it can; some have no reach of their own.
    if (setting["control"] != "slider" || !setting.contains("bar")) return number;
    const int64_t min = setting["bar"][0], max = setting["bar"][1];
    return min <= max ? std::clamp(number, min, max) : number;
}

void AddLine(const DocumentControl &control, std::string &text) {
    DocumentLine line;
    PrintDocumentControl(control, line);
    text.append(line).append("\n");
}

// Adds the lines of a setting: one for each of its radio buttons, or its only one.
void AddLines(const Json &setting, const std::string *stored, std::string &text) {
    const DocumentKind kind = KindOf(setting);
    const std::string label = setting["label"];
    if (HoldsText(kind)) {
        const std::string value = stored ? *stored : setting["default"].get<std::string>();
        AddLine({kind, setting["id"], label.c_str(), 0, value.c_str()}, text);
        return;
    }
    const int64_t number = NumberOf(setting, stored);
    bool buttons = false;
    for (const Json &entry : EntriesOf(setting)) {
        if (!IsButton(entry)) continue;
        buttons = true;
        const std::string beside = entry.value("label", entry["name"].get<std::string>());
        AddLine({kind, entry["id"], beside.c_str(), entry["value"] == number}, text);
    }
    if (!buttons) AddLine({kind, setting["id"], label.c_str(), int32_t(number)}, text);
}

} // namespace

bool ReadDocument(const std::string &path, const Json &filter, StoredValues &values, Report &report) {
    std::string text;
    if (!ReadProductFile(path, text, report)) return false;
    const std::string name = filter["name"];
    DocumentReader reader(text, name.c_str());
    bool any = false;
    while (reader.Next()) {
        const Control control = FindControl(kDocumentKinds[size_t(reader.kind)], reader.id);
        if (!control.setting) continue;
        any = true;
        TakeControl(control, reader.value, values, report);
    }
    if (reader.outcome == DocumentOutcome::OtherFilter) return report.Fail("this is a document of another filter");
    if (reader.outcome == DocumentOutcome::Damaged) return report.Fail("this is no filter document");
    if (!any) report.Warn("the document sets nothing");
    return true;
}

bool WriteDocument(const std::string &path, const Step &step, Report &report) {
    const std::string name = (*step.filter)["name"];
    char filterLine[kDocumentLineSize];
    std::snprintf(filterLine, sizeof filterLine, kDocumentFilterForm, name.c_str());
    std::string text = std::string(kDocumentHead) + "\n" + kDocumentStart + "\n" + filterLine + "\n";
    for (const Json &setting : (*step.filter)["settings"]) {
        const auto value = step.values.find(setting["key"].get_ref<const std::string &>());
        const std::string *stored = value == step.values.end() ? nullptr : &value->second;
        if (setting.contains("document") && (stored || !setting.contains("start"))) AddLines(setting, stored, text);
    }
    text.append(kDocumentEnd).append("\n");
    OutputFile output;
    if (!output.Open(path, report)) return false;
    std::fwrite(text.data(), 1, text.size(), output.file);
    return output.Commit(report);
}

} // namespace lmf::host
