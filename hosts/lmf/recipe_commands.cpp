#include "recipe_commands.h"

#include "console.h"
#include "documents.h"
#include "files.h"
#include "picture_options.h"
#include "progress.h"
#include "recipes.h"
#include "sheet.h"

namespace lmf::host {

namespace {

constexpr std::string_view kAll = "all";

void TellWarnings(const std::string &path, const std::vector<std::string> &warnings) {
    for (const std::string &warning : warnings) Complain(Printable(path + ": warning: " + warning));
}

// Reads the recipes, complaining of what is wrong with them.
int TakeRecipes(const std::string &file, bool quiet, RecipeList &list) {
    Report report;
    if (!ReadRecipes(file, list, report)) {
        Complain(report.error);
        return kUnreadable;
    }
    if (!quiet) TellWarnings(list.path, list.warnings);
    return kDone;
}

/// What a sheet is to show.
struct SheetChoice {
    std::string recipes, filters, category;
};

/// What comes onto a sheet, and whether each of them was asked for by name.
struct SheetSteps {
    std::vector<std::string> labels;
    SettingsRequest settings;
    bool named = false;
    bool missing = false; // something that was asked for is not there

    void Add(const std::string &label, StepRequest step) {
        labels.push_back(label);
        settings.steps.push_back(std::move(step));
    }
};

int AddRecipes(const std::string &file, SheetSteps &steps) {
    RecipeList list;
    if (const int code = TakeRecipes(file, false, list); code != kDone) return code;
    steps.named = true;
    for (const Recipe &recipe : list.recipes) {
        if (recipe.filter) {
            steps.Add(recipe.name, {recipe.filter, recipe.values, {}, {}});
        } else {
            Complain(recipe.name + ": there is no filter \"" + recipe.source + "\"; it is left out");
            steps.missing = true;
        }
    }
    if (!steps.labels.empty()) return kDone;
    Complain(Printable(list.path) + ": the file has no recipes that can run");
    return kUnreadable;
}

int AddNamedFilters(const std::string &names, SheetSteps &steps) {
    steps.named = true;
    for (size_t start = 0; start <= names.size();) {
        const size_t end = std::min(names.find(',', start), names.size());
        const Json *filter = RequireFilter(names.substr(start, end - start));
        if (!filter) return kUsage;
        steps.Add((*filter)["name"], {filter, {}, {}, {}});
        start = end + 1;
    }
    return kDone;
}

// Adds the filters of a category, or all where it is empty.
int AddCategory(std::string category, SheetSteps &steps) {
    if (!category.empty() && !RequireCategory(category)) return kUsage;
    for (const Json &filter : Catalogue()["filters"])
        if (filter["available"] && (category.empty() || filter["category"] == category))
            steps.Add(filter["name"], {&filter, {}, {}, {}});
    return kDone;
}

int AddChosen(const SheetChoice &choice, SheetSteps &steps) {
    if (!choice.category.empty()) return AddCategory(choice.category, steps);
    if (Normalized(choice.filters) == kAll) return AddCategory("", steps);
    return choice.filters.empty() ? AddRecipes(choice.recipes, steps) : AddNamedFilters(choice.filters, steps);
}

} // namespace

void AddRecipeOptions(CLI::App &app, RecipeChoice &choice) {
    CLI::Option *name =
        app.add_option("--recipe", choice.name, "A recipe in place of the first filter (see lmf recipes)")
            ->type_name("NAME");
    app.add_option("--recipes", choice.file, "Take the recipe from this file")->type_name("FILE")->needs(name);
}

int TakeRecipe(const RecipeChoice &choice, bool quiet, StepRequest &step) {
    RecipeList list;
    if (const int code = TakeRecipes(choice.file, quiet, list); code != kDone) return code;
    Report report;
    const Recipe *recipe = FindRecipe(list, choice.name, report);
    if (!recipe) {
        Complain(report.error);
        return kUsage;
    }
    step.filter = recipe->filter;
    step.beginning = recipe->values;
    return kDone;
}

int RecipesCommand(const Arguments &arguments) {
    CLI::App app("Lists the recipes: filters with settings that make a look. lmf apply --recipe NAME runs one.",
                 "lmf recipes");
    std::string file;
    bool json = false;
    app.add_option("--recipes", file, "The recipes of this file, not those of the user")->type_name("FILE");
    app.add_flag("--json", json, "Print JSON");
    Arguments rest;
    int exitCode = kDone;
    if (!ParseOptions(app, arguments, rest, exitCode)) return exitCode;
    if (!rest.empty()) {
        Complain("lmf recipes takes no names; --recipes FILE names another file");
        return kUsage;
    }
    RecipeList list;
    if (exitCode = TakeRecipes(file, false, list); exitCode != kDone) return exitCode;
    Print(json ? Describe(list).dump(1, ' ', false, Json::error_handler_t::replace) + "\n" : ListText(list));
    return kDone;
}

int SaveCommand(const Arguments &arguments) {
    CLI::App app("Writes a document with the settings of a filter, for lmf apply --document and for the windows.\n"
                 "As FILE, - is standard output.",
                 "lmf save FILTER [--set NAME=VALUE]... FILE");
    SettingsRequest request;
    request.steps.resize(1);
    app.add_option("--set", request.steps[0].assignments, "A setting (see lmf show)")
        ->type_name("NAME=VALUE")
        ->allow_extra_args(false);
    app.add_option("--document", request.steps[0].document, "Begin with the settings of a document")->type_name("FILE");
    app.add_option("--settings-from", request.fromFile, "Begin with the settings of an ini file")->type_name("FILE");
    Arguments rest;
    int exitCode = kDone;
    if (!ParseOptions(app, arguments, rest, exitCode)) return exitCode;
    if (rest.size() != 2) {
        Complain("lmf save takes the name of a filter and that of a file");
        return kUsage;
    }
    request.steps[0].filter = RequireFilter(rest[0]);
    if (!request.steps[0].filter) return kUsage;
    Report report;
    std::vector<Step> steps;
    if (exitCode = MakeSteps(request, steps, report); exitCode != kDone) return exitCode;
    CleanUpOnSignals();
    if (!WriteDocument(rest[1], steps[0], report)) {
        Complain(Printable(rest[1] + ": " + report.error));
        exitCode = kUnwritable;
    }
    for (const std::string &warning : report.warnings) Complain(Printable("warning: " + warning));
    return exitCode;
}

int SheetCommand(const Arguments &arguments) {
    CLI::App app("Draws a sheet of small pictures, each with its name: what every recipe, or every filter with its\n"
                 "default settings, makes of the picture. The name of the sheet picks its format.",
                 "lmf sheet IN OUT.png");
    SheetChoice choice;
    SheetRequest request;
    CLI::Option *recipes =
        app.add_option("--recipes", choice.recipes, "The recipes of this file, not those of the user")
            ->type_name("FILE");
    CLI::Option *filters =
        app.add_option("--filters", choice.filters, "These filters, with commas between them, or all")
            ->type_name("A,B,...")
            ->excludes(recipes);
    app.add_option("--category", choice.category, "The filters of this category")
        ->type_name("NAME")
        ->excludes(recipes)
        ->excludes(filters);
    app.add_option("--columns", request.columns, "Pictures side by side (default: as many as look well)")
        ->check(CLI::Range(1, 1000).description(""))
        ->type_name("N");
    app.add_option("--side", request.side, "The longer side of each picture")
        ->check(CLI::Range(kLeastSide, kMostSide).description(""))
        ->type_name("PIXELS")
        ->capture_default_str();
    AddReadingOptions(app, request.limits);
    app.add_option("--library", request.library, "The filter library, if not the one beside this program")
        ->type_name("FILE");
    Arguments rest;
    int exitCode = kDone;
    if (!ParseOptions(app, arguments, rest, exitCode)) return exitCode;
    if (rest.size() != 2) {
        Complain("lmf sheet takes the name of a picture and that of the sheet");
        return kUsage;
    }
    request.input = rest[0];
    request.output = rest[1];
    if (!CodecForName(request.output)) {
        Complain("the name \"" + Printable(request.output) + "\" does not end in .png, .jpg, .tif, .webp or .bmp");
        return kUsage;
    }
    SheetSteps steps;
    if (exitCode = AddChosen(choice, steps); exitCode != kDone) return exitCode;
    Report report;
    std::vector<Step> made;
    if (exitCode = MakeSteps(steps.settings, made, report); exitCode != kDone) return exitCode;
    for (size_t i = 0; i < made.size(); ++i) request.cells.push_back({steps.labels[i], std::move(made[i])});
    CleanUpOnSignals();
    size_t failed = 0;
    exitCode = DrawSheet(request, failed);
    if (exitCode != kDone) return exitCode;
    return steps.missing || failed == request.cells.size() || (steps.named && failed > 0) ? kFilterFailed : kDone;
}

} // namespace lmf::host
