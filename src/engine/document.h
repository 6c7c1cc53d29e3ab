// Filter documents: the settings of one filter's page, kept by the user in files of their own.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

#include "engine/document_text.h"
#include "engine/page.h"
#include "engine/settings_paths.h"

namespace lmf {

/// The kind that a document has for the control; nothing for one that holds no setting.
[[nodiscard]] std::optional<DocumentKind> DocumentKindOf(const PageControl &control);

/// The state of a control as a document tells it, with the parameters' values. The control holds a setting.
[[nodiscard]] DocumentControl StateOf(const PageControl &control, const FilterParameters &parameters);

/// Puts what a document says of a control into the parameters, as if the user had done it: numbers keep to what may be
/// typed, a text to its room, and a radio button counts when it is pressed.
/// @param value  as DocumentReader gives it
void ApplyControl(const PageControl &control, const char *value, FilterParameters &parameters);

/// Writes a document of the filter's page, one line a control.
/// @param row  of the catalogue
/// @return false where there is no such row or the file could not be written. The file is then removed, so that none is
///         left that says something else than the page
bool DocumentWrite(const char *path, int32_t row, const FilterParameters &parameters);

/// Applies the controls of a document to the parameters, whichever page they stand on, until its end or a line that
/// says that it is another filter's. Lines of controls that do not exist, or are of another kind, do nothing.
/// @param row  of the catalogue, 0 to 94
DocumentOutcome DocumentRead(const char *path, int32_t row, FilterParameters &parameters);
/// The same for a text.
DocumentOutcome ReadDocument(std::string_view text, int32_t row, FilterParameters &parameters);

/// The last ending of a document's name, without the point: the filter's name with underscores for its blanks.
void DocumentExtension(const char *filter, char (&out)[kPathSize]);
/// The path under which a host keeps the documents of a filter.
/// @param name  without folder and ending, such as kUntitled
/// @return false where there is no such path, or it is too long
[[nodiscard]] bool DocumentPath(uint32_t runFlags, const char *name, const char *filter, char (&out)[kPathSize]);
/// The name until the user gave one.
inline constexpr const char *kUntitled = "Untitled";

} // namespace lmf
