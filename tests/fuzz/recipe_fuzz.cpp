// Reads arbitrary bytes as a recipe file and as the Darkroom's profile, and runs through what was read. No reader may
// leave its buffers, and no recipe the settings' own room.
#include <cstdlib>
#include <cstring>

#include "darkroom/darkroom_settings.h"
#include "darkroom/recipe_file.h"

using namespace lmf;

static void Require(bool condition) {
    if (!condition) std::abort();
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    (void)ReadDarkroomProfile(text);
    RecipeList list;
    ReadRecipes(
        text, &list, [](void *, const char *told) { Require(std::strlen(told) > kRecipeText); }, nullptr);
    for (const RecipeEntry &entry : list.entries.Elements()) {
        Require(entry.name[0] != '\0' && std::strlen(entry.name) <= kRecipeText);
        for (const RecipeRecord &record : RecipeLock(entry.item.recipe).records) {
            Require(record.key[0] != '\0' && std::strlen(record.key) <= kRecipeText);
            Require(record.value[0] != '\0' && std::strlen(record.value) <= kRecipeText);
            Require(std::strpbrk(record.value, "\";\r\n") == nullptr);
        }
        Settings = kFactorySettings;
        Require(RecipeApplySettings(entry.item.recipe));
    }
    for (const ConfigEntry &row : ConfigTable)
        Require(!(row.type & kConfigText) || std::memchr(row.Text(), '\0', kTextSize) != nullptr);
    return 0;
}
