// Recipes: named looks in a text file of the user's, each a filter with some of its settings.
#pragma once

#include <string>
#include <vector>

#include "catalogue.h"
#include "settings.h"

namespace lmf::host {

struct Recipe {
    std::string name;             // this, `source` and `description` in UTF-8, fit to be shown
    std::string source;           // the filter as the file names it
    std::string description;      // or empty
    const Json *filter = nullptr; // null where the catalogue has no filter of that name
    StoredValues values;          // of the settings that it names, whichever filter they belong to
};

struct RecipeList {
    std::string path;
    std::vector<Recipe> recipes;       // in the file's order
    std::vector<std::string> warnings; // of what could not be taken
};

/// Reads a recipe file; without a path, that of the user or else the one beside the library.
[[nodiscard]] bool ReadRecipes(const std::string &path, RecipeList &list, Report &report);

/// Finds a recipe by its name, where case, blanks and signs don't count; of several, the first. Null, with the near
/// names in `report`, if there is none or it names no filter.
const Recipe *FindRecipe(const RecipeList &list, const std::string &name, Report &report);

/// Gives one line a recipe: its name, its filter and what it is for.
std::string ListText(const RecipeList &list);

/// Gives the recipes as a list of objects: `name`, `filter`, `description`, `available` and `settings` by key.
Json Describe(const RecipeList &list);

} // namespace lmf::host
