// The text of a filter document: the states of a page's controls, one a line, bound to its filter by the name. Nothing
// here knows the filters or where a file lies.
//
//     FilterType=Add noise
//     ScrBar210=16# (Level)
//     ChkBox212=1# (Colored noise)
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "common/text.h"

namespace lmf {

/// The kinds of controls, as six letters tell them.
enum class DocumentKind : uint8_t { FontBox, TextField, ColorButton, Spin, CheckBox, ComboBox, ScrollBar };
inline constexpr const char *kDocumentKinds[] = {"FntBox", "TxtFld", "ClrBtn", "SpnBtn", "ChkBox", "CmbBox", "ScrBar"};

/// Do controls of this kind hold a text? The others hold a number.
constexpr bool HoldsText(DocumentKind kind) {
    return kind == DocumentKind::FontBox || kind == DocumentKind::TextField;
}

/// A control and its state.
struct DocumentControl {
    DocumentKind kind;
    int32_t id;
    const char *label;     ///< what stands on or beside it
    int32_t number = 0;    ///< where it holds a number
    const char *text = ""; ///< where it holds a text
};

/// Room of one line that is written, with its terminator: the text of a control has at most 1024 characters.
inline constexpr size_t kDocumentLineSize = 1280;
using DocumentLine = char[kDocumentLineSize];

/// The lines of a document, in order and without their ends: the three of the head, one a control, the last.
inline constexpr const char *kDocumentHead =
    "#This is a document created by Lumenfold Studio by Quillon Works - do not edit.";
inline constexpr const char *kDocumentStart = "#Start of document";
inline constexpr const char *kDocumentFilterForm = "FilterType=%s";
inline constexpr const char *kDocumentEnd = "#End of document";

/// Prints the line of a control. A text is cut at its first line end.
void PrintDocumentControl(const DocumentControl &control, DocumentLine &line);

/// What came of reading a document.
enum class DocumentOutcome : uint8_t { Read, NotOpened, Damaged, OtherFilter };

/// What the user is told of it; an empty text where all went well.
[[nodiscard]] const char *DocumentMessage(DocumentOutcome outcome);

/// Gives a document control by control, in the order of its lines. Lines that name no control are passed over. It ends
/// at the end of the text, or where `outcome` says that the document is none, or another filter's.
struct DocumentReader {
    /// @param filterName  as it stands in the catalogue; kept, as the text is
    DocumentReader(std::string_view text, const char *filterName) : lines{text}, filter(filterName) {}

    DocumentOutcome outcome = DocumentOutcome::Read;
    // The control that a line is for, once Next gave true.
    DocumentKind kind = DocumentKind::FontBox;
    int32_t id = 0;
    const char *value = ""; ///< what follows the "=": numbers begin with their digits

    [[nodiscard]] bool Next();

private:
    [[nodiscard]] bool ReadControl(const char *text);

    LineReader lines;
    const char *filter;
    bool begun = false;
    char line[8192] = "";
};

} // namespace lmf
