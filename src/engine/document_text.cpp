#include "engine/document_text.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <iterator>

namespace lmf {

namespace {

constexpr int kMostText = 1024;
constexpr std::string_view kProduct = "Lumenfold Studio", kMaker = "Quillon Works", kFilterType = "FilterType";
constexpr size_t kKindLength = 6;

/// The characters of a label that a document tells: those before its last colon, where the label stands beside the
/// control.
int LabelLength(const DocumentControl &control) {
    const bool isBeside = control.kind == DocumentKind::Spin || control.kind == DocumentKind::ComboBox ||
                          control.kind == DocumentKind::ScrollBar;
    const char *colon = isBeside ? std::strrchr(control.label, ':') : nullptr;
    return std::min(kMostText, static_cast<int>(colon ? colon - control.label : std::strlen(control.label)));
}

} // namespace

void PrintDocumentControl(const DocumentControl &control, DocumentLine &line) {
    const char *kind = kDocumentKinds[static_cast<size_t>(control.kind)];
    const int id = control.id;
    if (HoldsText(control.kind)) {
        const int length = std::min(kMostText, static_cast<int>(std::strcspn(control.text, "\r\n")));
        std::snprintf(line, sizeof line, "%s%d=%.*s", kind, id, length, control.text);
        return;
    }
    // A colour is a word without a sign.
    const bool isColor = control.kind == DocumentKind::ColorButton;
    const long long number = isColor ? int64_t{static_cast<uint32_t>(control.number)} : int64_t{control.number};
    std::snprintf(line, sizeof line, "%s%d=%lld# (%.*s)", kind, id, number, LabelLength(control), control.label);
}

const char *DocumentMessage(DocumentOutcome outcome) {
    static constexpr const char *kMessages[] = {"", "There has been an error opening the requested file.",
                                                "This file has been damaged.",
                                                "This object does not match the currently selected filter."};
    return kMessages[static_cast<size_t>(outcome)];
}

bool DocumentReader::ReadControl(const char *text) {
    if (std::strlen(text) <= kKindLength) return false;
    id = ParseNumber(text + kKindLength);
    const auto named =
        std::ranges::find_if(kDocumentKinds, [&](const char *letters) { return StartsIgnoringCase(text, letters); });
    const char *equals = std::strchr(text, '=');
    if (id < 1 || named == std::end(kDocumentKinds) || equals == nullptr) return false;
    kind = static_cast<DocumentKind>(named - kDocumentKinds);
    value = equals + std::strspn(equals, "= ");
    return true;
}

bool DocumentReader::Next() {
    while (outcome == DocumentOutcome::Read && lines.Next(line, sizeof line)) {
        if (!begun) {
            begun = true;
            const std::string_view head(line);
            if (head.find(kProduct) == head.npos || head.find(kMaker) == head.npos) outcome = DocumentOutcome::Damaged;
            continue;
        }
        CutLineEnd(line);
        const char *text = SkipToText(line);
        if (*text == ';') continue;
        if (std::string_view(text).starts_with(kFilterType)) {
            if (std::strstr(text, filter) == nullptr) outcome = DocumentOutcome::OtherFilter;
        } else if (ReadControl(text)) {
            return true;
        }
    }
    return false;
}

} // namespace lmf
