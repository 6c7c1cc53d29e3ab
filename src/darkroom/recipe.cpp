#include "darkroom/recipe.h"

#include <algorithm>
#include <cstring>

#include "darkroom/paper.h"
#include "engine/apply.h"
#include "engine/destinations_file.h"
#include "image/core/dib_ops.h"
#include "platform/system.h"

namespace lmf {

RecipeLock::RecipeLock(RecipeHandle recipe) : handle(recipe), count(static_cast<uint32_t *>(BlockLock(recipe))) {
    if (count != nullptr) records = {reinterpret_cast<RecipeRecord *>(count + 1), *count};
}

RecipeLock::~RecipeLock() {
    if (count != nullptr) BlockUnlock(handle);
}

namespace {

const ConfigEntry *FindSetting(const char *key) {
    const auto row =
        std::ranges::find_if(ConfigTable, [&](const ConfigEntry &e) { return SameIgnoringCase(e.key, key); });
    return row == std::end(ConfigTable) ? nullptr : row;
}

/// The setting that a record sets; null for a record that is none.
const ConfigEntry *SettingOf(const RecipeRecord &record) {
    return StartsIgnoringCase(record.key, "Filter") ? FindSetting(record.key) : nullptr;
}

uint32_t TypeOfKey(const char *key) {
    const ConfigEntry *row = FindSetting(key);
    return row == nullptr ? 0 : row->type;
}

} // namespace

RecipeHandle RecipeMake(const RecipeText &text) {
    RecipeRecord record;
    uint32_t count = 0;
    for (RecipeFieldReader fields{{text.fields}, TypeOfKey}; fields.Next(&record);) count++;
    BlockOwner block(BlockAlloc(sizeof count + uint64_t{count} * sizeof record));
    auto *bytes = static_cast<uint8_t *>(BlockLock(block.handle));
    if (bytes == nullptr) return nullptr;
    std::memcpy(bytes, &count, sizeof count);
    bytes += sizeof count;
    for (RecipeFieldReader fields{{text.fields}, TypeOfKey}; fields.Next(&record); bytes += sizeof record)
        std::memcpy(bytes, &record, sizeof record);
    BlockUnlock(block.handle);
    return block.Release();
}

uint32_t RecipeFind(RecipeHandle recipe, const char *key, SettingText &value) {
    const RecipeLock lock(recipe);
    for (const RecipeRecord &record : lock.records) {
        if (!SameIgnoringCase(record.key, key)) continue;
        std::memcpy(value, record.value, kTextSize);
        return record.type;
    }
    return 0;
}

bool RecipeApplySettings(RecipeHandle recipe) {
    const RecipeLock lock(recipe);
    for (const RecipeRecord &record : lock.records) {
        const ConfigEntry *row = SettingOf(record);
        if (row == nullptr) continue;
        if (row->type & kConfigText)
            std::memcpy(row->Text(), record.value, kTextSize);
        else
            row->Number() = record.number;
    }
    return bool{lock};
}

DibHandle RecipeRun(void *window, DibHandle picture, RecipeHandle recipe) {
    SettingText source;
    if (RecipeFind(recipe, "Source", source) == 0 || !RecipeApplySettings(recipe)) return nullptr;
    const auto entry =
        std::ranges::find_if(FilterCatalogue, [&](const FilterEntry &e) { return SameIgnoringCase(e.name, source); });
    const DibReadLock lock(picture);
    if (entry == std::end(FilterCatalogue) || !lock) return nullptr;

    FilterContext context{};
    context.ownerWindow = window;
    context.time = SystemTime();
    context.filterIndex = static_cast<int32_t>(entry - FilterCatalogue);
    LoadAllSettings(context);
    context.paperColor = DarkroomPaperColor;
    context.ditherBrightness = Settings.DitherBrightness;
    context.ditherContrast = Settings.DitherContrast;
    context.byteOffsets = ByteOffsets::Whole;
    std::memcpy(context.faceCascade, Settings.FaceDetectCascade, kTextSize);
    std::memcpy(context.eyesCascade, Settings.FaceEyesDetectCascade, kTextSize);
    (void)ChooseDestination(context); // without one the filter that needs it fails
    const auto prepare = entry->filter->hooks.FilterPrepare;
    if (prepare != nullptr) prepare(context, kPrepareListed);
    LockedDib result(RunFilter(context.filterIndex, lock.view, kModeTrueColor, context));
    if (prepare != nullptr) prepare(context, kPrepareEnd);
    FreePictures(context);
    if (result && result.View().bits < 24) {
        LockedDib widened(DibToRgb(result));
        if (widened) result = std::move(widened);
    }
    return result ? result.Release() : nullptr;
}

} // namespace lmf
