#include "recipes.h"

#include <algorithm>

#include "common/text_decoding.h"
#include "console.h"
#include "darkroom/recipe_text.h"
#include "product_file.h"
#include "progress.h"
#include "values.h"

namespace lmf::host {

namespace {

constexpr const char *kFiles[] = {"LMFPhotographyDarkroom.txt"};
constexpr size_t kColumnGap = 2;

// The settings file's entry for a key in any case; null where there is none.
const Json *FindKey(const char *key) {
    for (const Json &known : Catalogue()["keys"])
        if (SameIgnoringCase(known["key"].get_ref<const std::string &>().c_str(), key)) return &known;
    return nullptr;
}

uint32_t TypeOfKey(const char *key) {
    const Json *known = FindKey(key);
    if (!known) return 0;
    return (*known)["default"].is_string() ? kRecipeString : kRecipeNumber;
}

template <size_t N>
std::string Shown(const char (&text)[N]) {
    char utf8[3 * N + 1];
    const size_t length = TextToUtf8(text, utf8, sizeof utf8);
    return Printable(std::string(utf8, length));
}

// By its own name alone, as the library finds it.
const Json *FilterNamed(const char *name) {
    for (const Json &filter : Catalogue()["filters"])
        if (SameIgnoringCase(filter["name"].get_ref<const std::string &>().c_str(), name)) return &filter;
    return nullptr;
}

void TakeSetting(const RecipeRecord &record, Recipe &recipe, RecipeList &list) {
    const Json *known = StartsIgnoringCase(record.key, "Filter") ? FindKey(record.key) : nullptr;
    if (!known) return;
    const std::string key = (*known)["key"];
    Report report;
    if (!record.IsText()) {
        recipe.values[key] = std::to_string(record.number);
    } else if (FitsLine(key, record.value, report)) {
        recipe.values[key] = record.value;
    } else {
        list.warnings.push_back(recipe.name + ": " + report.error + "; it is left out");
    }
}

Recipe TakeRecipe(const RecipeText &text, RecipeList &list) {
    Recipe recipe;
    recipe.name = Shown(text.name);
    RecipeRecord record;
    for (RecipeFieldReader fields{{text.fields}, TypeOfKey}; fields.Next(&record);) {
        if (SameIgnoringCase(record.key, "Source") && recipe.source.empty()) {
            recipe.source = Shown(record.value);
            recipe.filter = FilterNamed(record.value);
        } else if (SameIgnoringCase(record.key, "Description") && recipe.description.empty()) {
            recipe.description = Shown(record.value);
        } else {
            TakeSetting(record, recipe, list);
        }
    }
    return recipe;
}

} // namespace

bool ReadRecipes(const std::string &path, RecipeList &list, Report &report) {
    list.path = path.empty() ? FindProductFile(kFiles, kFiles[0]) : path;
    std::string text;
    if (!ReadProductFile(list.path, text, report)) return report.Fail(Printable(list.path) + ": " + report.error);
    RecipeText recipe;
    for (RecipeReader reader{{text}}; reader.Next(&recipe);) {
        if (!recipe.nameIsTooLong)
            list.recipes.push_back(TakeRecipe(recipe, list));
        else
            list.warnings.push_back("a name of more than " + std::to_string(kRecipeText) + " characters (" +
                                    Shown(recipe.name).substr(0, 40) + "...); the recipe is left out");
    }
    return true;
}

const Recipe *FindRecipe(const RecipeList &list, const std::string &name, Report &report) {
    std::vector<std::string> names;
    for (const Recipe &recipe : list.recipes) names.push_back(recipe.name);
    // The exact name first: one that is all signs has no other.
    auto place = std::find(names.begin(), names.end(), name);
    if (place == names.end() && !Normalized(name).empty())
        place = std::find_if(names.begin(), names.end(),
                             [&](const std::string &known) { return Normalized(known) == Normalized(name); });
    if (place == names.end()) {
        report.error = Printable(list.path) + " has no recipe \"" + Printable(name) + "\"" + Suggestion(name, names) +
                       " \"lmf recipes\" lists them";
        return nullptr;
    }
    const Recipe &found = list.recipes[size_t(place - names.begin())];
    if (found.filter) return &found;
    report.error = "the recipe \"" + found.name + "\" names " +
                   (found.source.empty() ? "no filter" : "a filter that there is not: \"" + found.source + "\"");
    return nullptr;
}

std::string ListText(const RecipeList &list) {
    size_t nameWidth = 0, filterWidth = 0;
    for (const Recipe &recipe : list.recipes) {
        nameWidth = std::max(nameWidth, recipe.name.size() + kColumnGap);
        filterWidth = std::max(filterWidth, recipe.source.size() + kColumnGap);
    }
    std::string text;
    for (const Recipe &recipe : list.recipes) {
        text += Padded(recipe.name, nameWidth) + Padded(recipe.source, filterWidth) + recipe.description +
                (recipe.filter ? "" : " (no such filter)");
        text.erase(text.find_last_not_of(' ') + 1);
        text += "\n";
    }
    return text;
}

Json Describe(const RecipeList &list) {
    Json recipes = Json::array();
    for (const Recipe &recipe : list.recipes) {
        Json settings = Json::object();
        for (const auto &[key, value] : recipe.values) {
            const bool isText = (*FindKey(key.c_str()))["default"].is_string();
            settings[key] = isText ? Json(value) : Json(std::stoll(value));
        }
        recipes.push_back({{"name", recipe.name},
                           {"filter", recipe.source},
                           {"description", recipe.description},
                           {"available", recipe.filter && (*recipe.filter)["available"]},
                           {"settings", settings}});
    }
    return recipes;
}

} // namespace lmf::host
