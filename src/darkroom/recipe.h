// Recipes in memory: what one says, what it does to the settings, and how it runs on a picture.
#pragma once

#include <span>

#include "darkroom/recipe_text.h"
#include "engine/settings.h"
#include "image/core/dib.h"

namespace lmf {

/// Owner of a recipe: a block that holds a 32-bit count and so many RecipeRecord entries.
using RecipeHandle = BlockHandle;

/// A recipe that is locked while this lives.
struct RecipeLock {
    RecipeHandle handle;
    std::span<RecipeRecord> records; ///< empty where there is no recipe

    /// @param recipe  may be null
    explicit RecipeLock(RecipeHandle recipe);
    RecipeLock(const RecipeLock &) = delete;
    RecipeLock &operator=(const RecipeLock &) = delete;
    ~RecipeLock();

    explicit operator bool() const { return count != nullptr; }

private:
    uint32_t *count;
};

/// Makes a recipe of the fields of a text.
/// @return the recipe, which the caller owns; null where memory is short
[[nodiscard]] RecipeHandle RecipeMake(const RecipeText &text);

/// Finds a record by its key in any case and copies its value.
/// @return the record's type; 0 where there is none
uint32_t RecipeFind(RecipeHandle recipe, const char *key, SettingText &value);

/// Stores the recipe's settings in `Settings`. What it doesn't mention stays: a recipe changes the settings that it
/// meets, and leaves them changed.
/// @return false where there is no recipe
[[nodiscard]] bool RecipeApplySettings(RecipeHandle recipe);

/// Runs the recipe's filter as one of true colour, on the Darkroom's paper, with the settings as the recipe leaves
/// them.
/// @param window   owner of what the filter may open; may be null
/// @param picture  of 24 or 32 bits; stays as it is
/// @return a new picture of at least 24 bits (fewer only where it could not be widened), which the caller owns; null
///         where the recipe names no filter of the catalogue or the filter fails
[[nodiscard]] DibHandle RecipeRun(void *window, DibHandle picture, RecipeHandle recipe);

} // namespace lmf
