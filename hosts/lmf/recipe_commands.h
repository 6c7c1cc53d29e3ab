// The commands for looks that are kept: recipes, documents, and sheets of what they make of a picture.
#pragma once

#include <string>

#include "command_line.h"
#include "settings.h"

namespace lmf::host {

/// A recipe as it was asked for.
struct RecipeChoice {
    std::string name;
    std::string file; // or empty: the user's
};

/// Adds --recipe and --recipes to a command's options.
void AddRecipeOptions(CLI::App &app, RecipeChoice &choice);

/// Makes a step of the chosen recipe. Gives kDone, or what the program ends with after it has complained.
[[nodiscard]] int TakeRecipe(const RecipeChoice &choice, bool quiet, StepRequest &step);

int RecipesCommand(const Arguments &arguments);
int SaveCommand(const Arguments &arguments);
int SheetCommand(const Arguments &arguments);

} // namespace lmf::host
