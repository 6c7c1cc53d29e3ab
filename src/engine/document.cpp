#include "engine/document.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

#include "engine/catalogue.h"
#include "engine/config_text.h"
#include "engine/text_file.h"

namespace lmf {

std::optional<DocumentKind> DocumentKindOf(const PageControl &control) {
    switch (control.kind) {
    case ControlKind::Slider:
        return DocumentKind::ScrollBar;
    case ControlKind::NumberEdit:
        return DocumentKind::Spin;
    case ControlKind::Combo:
        return DocumentKind::ComboBox;
    case ControlKind::CheckBox:
    case ControlKind::RadioButton:
        return DocumentKind::CheckBox;
    case ControlKind::ColorButton:
        return DocumentKind::ColorButton;
    case ControlKind::FontButton:
        return DocumentKind::FontBox;
    case ControlKind::TextField:
        return DocumentKind::TextField;
    default:
        return std::nullopt;
    }
}

namespace {

int32_t Within(const ControlRange &range, int32_t value) {
    return std::clamp(value, range.min, range.max);
}

/// What the control shows of its setting's number.
int32_t ShownNumber(const PageControl &control, int32_t value) {
    if (control.kind == ControlKind::RadioButton) return value == control.pressedValue;
    if (control.kind == ControlKind::CheckBox) return value != 0;
    const int32_t number = Within(control.limits.Typed(), value);
    // The bar goes as near as it can; some have no reach of their own.
    const ControlRange bar = control.limits.Bar();
    return control.kind == ControlKind::Slider && bar.min <= bar.max ? Within(bar, number) : number;
}

} // namespace

DocumentControl StateOf(const PageControl &control, const FilterParameters &parameters) {
    DocumentControl state = {*DocumentKindOf(control), control.id, control.label};
    if (control.number != nullptr) state.number = ShownNumber(control, parameters.*control.number);
    if (control.text != nullptr) state.text = parameters.*control.text;
    return state;
}

void ApplyControl(const PageControl &control, const char *value, FilterParameters &parameters) {
    if (control.text != nullptr) {
        SettingText &text = parameters.*control.text;
        std::memset(text, 0, kTextSize);
        std::memcpy(text, value, std::min(std::strlen(value), kTextSize - 1));
        return;
    }
    if (control.number == nullptr) return;
    int32_t &number = parameters.*control.number;
    const int32_t given = ParseNumber(value);
    if (control.kind == ControlKind::RadioButton) {
        if (given != 0) number = control.pressedValue;
    } else if (control.kind == ControlKind::CheckBox) {
        number = given != 0;
    } else {
        number = Within(control.limits.Typed(), given);
    }
}

bool DocumentWrite(const char *path, int32_t row, const FilterParameters &parameters) {
    const auto write = [&] {
        if (row < 0 || row >= kFilterCount) return false;
        const FilterEntry &entry = FilterCatalogue[row];
        constexpr size_t kLinesAround = 4;
        LineWriter out(kLinesAround + entry.filter->page.size(), kDocumentLineSize);
        out.Add("%s", kDocumentHead);
        out.Add("%s", kDocumentStart);
        out.Add(kDocumentFilterForm, entry.name);
        for (const PageControl &control : entry.filter->page) {
            if (!control.IsSetting() || !DocumentKindOf(control)) continue;
            DocumentLine line;
            PrintDocumentControl(StateOf(control, parameters), line);
            out.Add("%s", line);
        }
        out.Add("%s", kDocumentEnd);
        return out.Whole() && ReplaceTextFile(path, out.Text());
    };
    const bool written = write();
    if (!written) RemoveFile(path);
    return written;
}

DocumentOutcome ReadDocument(std::string_view text, int32_t row, FilterParameters &parameters) {
    DocumentReader reader(text, FilterCatalogue[row].name);
    while (reader.Next()) {
        const ControlPlace *place = FindControl(reader.id);
        if (place != nullptr && place->control->IsSetting() && DocumentKindOf(*place->control) == reader.kind)
            ApplyControl(*place->control, reader.value, parameters);
    }
    return reader.outcome;
}

DocumentOutcome DocumentRead(const char *path, int32_t row, FilterParameters &parameters) {
    const TextFile file(path);
    return file.Exists() ? ReadDocument(file.Text(), row, parameters) : DocumentOutcome::NotOpened;
}

void DocumentExtension(const char *filter, char (&out)[kPathSize]) {
    std::snprintf(out, sizeof out, "%s", filter);
    std::replace(out, out + std::strlen(out), ' ', '_');
}

bool DocumentPath(uint32_t runFlags, const char *name, const char *filter, char (&out)[kPathSize]) {
    static constexpr struct {
        uint32_t runFlag;
        const char *folder;
    } kFolders[] = {
        {LMF_RUN_DAUBERY, "My Daubery 16 Tools"},
        {LMF_RUN_PAINT, "My Lumenfold 16 Documents"},
        {LMF_RUN_REELSMITH, "My Reelsmith 16 Documents"},
        {LMF_RUN_FRAMELOOM, "My Frameloom Professional 16 Documents"},
    };
    const char *folder = "My Lumenfold 16 Documents";
    for (const auto &host : kFolders) {
        if ((runFlags & host.runFlag) == 0) continue;
        folder = host.folder;
        break;
    }
    char extension[kPathSize], file[2 * kPathSize];
    DocumentExtension(filter, extension);
    std::snprintf(file, sizeof file, "%s.%s", name, extension);
    return FindDocumentsFile({folder, "savedfilters"}, file, out);
}

} // namespace lmf
