#include "engine/destinations_file.h"

#include "engine/settings_paths.h"
#include "engine/text_file.h"
#include "lmf16filter.h"

namespace lmf {

namespace {

/// The list that counts: the first one that is there, readable or not.
TextFile FindList() {
    char path[kPathSize];
    for (const char *name : kDestinationFiles) {
        if (FindProductFile(name, path) && InputFile(path).state != FileState::kAbsent) return TextFile(path);
    }
    return TextFile(FindModuleFile(kDestinationFiles[1], path) ? path : nullptr);
}

} // namespace

bool SocialDestinationsLoad(const char *path,
                            void (*take)(void *target, int32_t index, const SocialDestination &destination),
                            void *target) {
    const TextFile list = path != nullptr ? TextFile(path) : FindList();
    if (!list.Exists()) return false;
    ReadDestinations(list.Bytes(), take, target);
    return true;
}

int32_t ChooseDestination(FilterContext &context) {
    if (context.filterIndex != LMF_FILTER_SOCIAL_MEDIA) return LMF_ERROR_OK;
    const auto take = [](void *target, int32_t index, const SocialDestination &destination) {
        auto *chosen = static_cast<FilterContext *>(target);
        if (index != chosen->FilterSocialMediaDestination) return;
        chosen->destinationWidth = destination.width;
        chosen->destinationDepth = destination.depth;
    };
    if (!SocialDestinationsLoad(context.destinations, take, &context)) return LMF_ERROR_OPEN;
    return context.destinationWidth > 0 && context.destinationDepth > 0 ? LMF_ERROR_OK : LMF_ERROR_CORRUPTED;
}

} // namespace lmf
