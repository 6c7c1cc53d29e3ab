// The text of a recipe file: named blocks of `key: "value";`, each a filter and some of its settings. Nothing here
// knows the filters, where a file lies, or what keeps the recipes.
//
//     :FILTER "Warm print";
//     Source: "Sepia";
//     FilterSepiaBlend: "60";
//     :END;
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "common/text.h"

namespace lmf {

/// Most characters of a recipe's name, of a key and of a value.
inline constexpr size_t kRecipeText = 260;

/// Bits of RecipeRecord.type, those of a setting's type in the settings' own table.
enum RecipeType : uint32_t { kRecipeBool = 1, kRecipeString = 2, kRecipeNumber = 4 };

/// One field of a recipe.
struct RecipeRecord {
    uint32_t type; ///< RecipeType bits: text for "Source", a setting's own type, and a number for all else
    char key[kRecipeText + 1];
    char value[kRecipeText + 3];
    int32_t number; ///< of the value, where the type is one of a number; else 0

    [[nodiscard]] bool IsText() const { return (type & kRecipeString) != 0; }
    [[nodiscard]] bool IsNumber() const { return (type & (kRecipeBool | kRecipeNumber)) != 0; }
};
static_assert(sizeof(RecipeRecord) == 532);

/// The type of the setting with this key in any case, 0 where there is none.
using RecipeKeyType = uint32_t (*)(const char *key);

/// One recipe as it stands in a text.
struct RecipeText {
    char name[kRecipeText + 1];
    bool nameIsTooLong;      ///< `name` is but its beginning, and there are no fields
    std::string_view fields; ///< the lines below the header
};

/// Gives a text recipe by recipe. Lines between recipes, recipes without a name and headers that another one follows
/// before their end are passed over.
struct RecipeReader {
    LineReader lines;

    /// @return false at the end of the text. A name beyond kRecipeText characters ends the reading of that recipe,
    /// which
    ///         is for the caller to tell
    [[nodiscard]] bool Next(RecipeText *recipe);
};

/// Gives the fields of a recipe, leaving out those without a key or a value.
struct RecipeFieldReader {
    LineReader lines;
    RecipeKeyType typeOf;

    [[nodiscard]] bool Next(RecipeRecord *record);
};

/// The form that the writer gives to each part.
inline constexpr const char *kRecipeHeaderForm = ":FILTER \"%s\";";
inline constexpr const char *kRecipeTextForm = "%s: \"%s\";";
inline constexpr const char *kRecipeNumberForm = "%s: \"%d\";";
inline constexpr const char *kRecipeEndForm = ":END;";

} // namespace lmf
