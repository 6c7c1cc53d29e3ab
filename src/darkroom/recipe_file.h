// The file of a user's recipes and the plain list that it is read into.
#pragma once

#include "darkroom/recipe.h"
#include "engine/settings_paths.h"
#include "platform/memory.h"

namespace lmf {

/// What belongs to one entry of the list.
struct RecipeItem {
    DibHandle thumbnail = nullptr; ///< null until it is made
    RecipeHandle recipe = nullptr; ///< null where memory was short; such an entry does nothing
};
static_assert(sizeof(RecipeItem) == 16);

struct RecipeEntry {
    char name[kRecipeText + 1];
    RecipeItem item;
};

/// The recipes in the order of their file. Owns what its items hold.
struct RecipeList {
    BlockList<RecipeEntry> entries;
    int32_t selected = -1;  ///< index of the selected entry, -1 for none
    bool mayReplace = true; ///< what was read may be written back: the file could be read, or there was none

    RecipeList() = default;
    RecipeList(const RecipeList &) = delete;
    RecipeList &operator=(const RecipeList &) = delete;
    ~RecipeList();
};

/// Takes what a reader has to tell its user.
using RecipeMessage = void (*)(void *target, const char *text);

/// The path of a file in the host's own folder, which DarkroomRequest.flags choose.
/// @return false where there is no such path, or it is too long
[[nodiscard]] bool RecipeFilePath(const char *name, uint32_t flags, char (&out)[kPathSize]);

/// Adds the recipes of a text to the list. Those with a name of more than kRecipeText characters are left out, which
/// `message`, where there is one, is told.
void ReadRecipes(std::string_view text, RecipeList *list, RecipeMessage message, void *target);

/// Reads the host's recipe file into an empty list, making it from the factory file beside the library where it is
/// missing. A file that can't be read leaves the list empty.
/// @param flags           those of the DarkroomRequest
/// @param current         index of the entry to select; beyond the list it selects none
/// @param restoreFactory  puts the factory file in the place of the user's first
void RecipeFileRead(RecipeList *list, uint32_t flags, int32_t current, bool restoreFactory, RecipeMessage message,
                    void *target);

/// Writes the list to the host's recipe file, keeping the file before it as "Backup of" it. Nothing is reported. Fields
/// that are no setting are written as numbers, so that a description goes back out as "0".
void RecipeFileWrite(const RecipeList &list, uint32_t flags);

} // namespace lmf
