#include "darkroom/recipe_file.h"

#include <cstdio>
#include <cstring>

#include "engine/config_text.h"
#include "engine/text_file.h"

namespace lmf {

RecipeList::~RecipeList() {
    for (const RecipeEntry &entry : entries.Elements()) {
        BlockFree(entry.item.thumbnail);
        BlockFree(entry.item.recipe);
    }
}

namespace {

constexpr uint64_t kLargestFile = uint64_t{16} << 20;

/// The flag that chooses the paint host's folder and file.
constexpr uint32_t kDauberyFlag = 2;

const char *RecipeFileName(uint32_t flags) {
    return flags & kDauberyFlag ? "DauberyPhotographyDarkroom.txt" : "LMFPhotographyDarkroom.txt";
}

/// Copies the factory file over the user's. Where that fails, what was there stays.
void RestoreFactoryFile(const char *path, uint32_t flags) {
    char factoryPath[kPathSize];
    if (!FindModuleFile(RecipeFileName(flags), factoryPath)) return;
    const TextFile factory(factoryPath, kLargestFile);
    if (factory.Exists()) ReplaceTextFile(path, factory.Bytes());
}

} // namespace

bool RecipeFilePath(const char *name, uint32_t flags, char (&out)[kPathSize]) {
    return FindMakerFile(flags & kDauberyFlag ? "Daubery 16" : kProductFolder, name, out);
}

void ReadRecipes(std::string_view text, RecipeList *list, RecipeMessage message, void *target) {
    RecipeText recipe;
    for (RecipeReader reader{{text}}; reader.Next(&recipe);) {
        if (recipe.nameIsTooLong) {
            char told[kRecipeText + 100];
            std::snprintf(told, sizeof told,
                          "A recipe was left out, since its name has more than %d characters: \"%s\"",
                          static_cast<int>(kRecipeText), recipe.name);
            if (message != nullptr) message(target, told);
            continue;
        }
        RecipeEntry entry = {};
        std::memcpy(entry.name, recipe.name, sizeof entry.name);
        BlockOwner made(RecipeMake(recipe));
        entry.item.recipe = made.handle;
        if (list->entries.Add(entry))
            (void)made.Release();
        else
            list->mayReplace = false;
    }
}

void RecipeFileRead(RecipeList *list, uint32_t flags, int32_t current, bool restoreFactory, RecipeMessage message,
                    void *target) {
    char path[kPathSize];
    list->mayReplace = RecipeFilePath(RecipeFileName(flags), flags, path);
    if (!list->mayReplace) return;
    if (restoreFactory || InputFile(path).state == FileState::kAbsent) RestoreFactoryFile(path, flags);
    const TextFile file(path, kLargestFile);
    list->mayReplace = !file.Failed();
    ReadRecipes(file.Text(), list, message, target);
    const auto count = static_cast<int32_t>(list->entries.Elements().size());
    list->selected = current >= 0 && current < count ? current : -1;
}

namespace {

void WriteRecipe(LineWriter &out, const char *name, std::span<const RecipeRecord> records) {
    out.Add(kRecipeHeaderForm, name);
    for (const RecipeRecord &record : records) {
        if (record.IsText())
            out.Add(kRecipeTextForm, record.key, record.value);
        else if (record.IsNumber())
            out.Add(kRecipeNumberForm, record.key, static_cast<int>(record.number));
    }
    out.Add(kRecipeEndForm);
    out.Add("%s", "");
}

} // namespace

void RecipeFileWrite(const RecipeList &list, uint32_t flags) {
    const char *name = RecipeFileName(flags);
    char path[kPathSize], backupName[kPathSize], backupPath[kPathSize];
    std::snprintf(backupName, sizeof backupName, "Backup of %s", name);
    if (!list.mayReplace || !RecipeFilePath(name, flags, path)) return;
    const TextFile present(path, kLargestFile);
    if (present.Failed()) return;

    constexpr size_t kLinesAround = 3, kLongestLine = 2 * kRecipeText + 16;
    size_t lines = 0;
    for (const RecipeEntry &entry : list.entries.Elements())
        lines += kLinesAround + RecipeLock(entry.item.recipe).records.size();
    LineWriter out(lines, kLongestLine);
    for (const RecipeEntry &entry : list.entries.Elements()) {
        const RecipeLock recipe(entry.item.recipe);
        if (recipe) WriteRecipe(out, entry.name, recipe.records);
    }

    // The backup moves only once the new file has its room on the disk.
    PendingFile file, backup;
    if (!out.Whole() || !file.Write(path, out.Text(), path)) return;
    if (present.Exists() && RecipeFilePath(backupName, flags, backupPath) &&
        BackUpFile(path, present, backupPath, &backup))
        (void)backup.TakePlace();
    if (file.TakePlace()) file.SyncFolder();
}

} // namespace lmf
