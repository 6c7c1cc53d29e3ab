// The named colours that colour dialogs offer: text files of one `name=red,green,blue` a line. A global one serves all
// of the maker's programs; without it each host has its own, which the setting ColourTableFile names.
#pragma once

#include <string_view>

#include "engine/settings_paths.h"
#include "image/core/dib.h"
#include "platform/memory.h"

namespace lmf {

/// Room of a line of the file, and so of a name.
inline constexpr size_t kColourLineSize = 260;

struct NamedColour {
    char name[kColourLineSize];
    Color color;
};
using ColourTable = BlockList<NamedColour>;

/// The path of the database that counts: the global one where it exists, else the local.
/// @return false where there is no such path, or it is too long
[[nodiscard]] bool ColourDatabasePath(char (&out)[kPathSize]);
/// Is there a global database?
[[nodiscard]] bool HasGlobalColours();

/// Reads the colours of a text in their order; lines that are no colour are skipped.
/// @return false where memory ran short, with the colours before that
bool ReadColours(std::string_view text, ColourTable *table);

/// Reads the database of ColourDatabasePath into an emptied table. While the user has none, it is that of the same name
/// beside the library.
/// @return may the table be written back: it is all that the file holds, or there is none
bool ColourDatabaseRead(ColourTable *table);

/// Writes the table to a database, each entry in turn, and removes the ".bak" beside it. Nothing is reported; a file
/// that can't be replaced stays.
void ColourDatabaseWrite(const ColourTable &table, const char *path);

} // namespace lmf
