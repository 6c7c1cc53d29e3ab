#include "overlays/face_list.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "engine/filter.h"
#include "platform/module.h"
#include "platform/system.h"

namespace lmf {

static_assert(sizeof(FaceList) == 32 && offsetof(FaceList, eyes) == 4);
static_assert(sizeof(FaceRecord) == 28 && offsetof(FaceRecord, bottom) == 12);

namespace {

/// Asks the finder. @return its list, owned by the caller, or null
BlockHandle FindFaces(const FilterContext &context, bool findEyes) {
    if (*ModuleFolder() == '\0') return nullptr;
    char folder[kFolderSize];
    const int length = std::snprintf(folder, sizeof folder, "%scv%c", ModuleFolder(), kPathSeparator);
    if (length >= static_cast<int>(sizeof folder)) return nullptr;
    char faces[kFolderSize + kTextSize], eyes[kFolderSize + kTextSize] = "";
    std::snprintf(faces, sizeof faces, "%s%s", folder, context.faceCascade);
    if (findEyes) std::snprintf(eyes, sizeof eyes, "%s%s", folder, context.eyesCascade);

    // A finder may look for its own libraries in the current folder.
    const CurrentFolder inside(folder);
    void *module = LoadModule(folder, "cv_x64");
    const auto find = reinterpret_cast<decltype(&CV_FindFace)>(FindSymbol(module, "CV_FindFace"));
    BlockHandle list = find != nullptr ? find(nullptr, context.source, faces, eyes, findEyes ? 1 : 0) : nullptr;
    UnloadModule(module);
    return list;
}

} // namespace

void PrepareFaceList(FilterContext &context, uint32_t phase, BlockHandle FilterContext::*list, bool findEyes) {
    if ((phase & kPrepareSelected) && context.*list == nullptr) context.*list = FindFaces(context, findEyes);
    if (phase & kPrepareEnd) {
        BlockFree(context.*list);
        context.*list = nullptr;
    }
}

FaceRecords::FaceRecords(BlockHandle list, Kind kind) : locked(list) {
    const auto *bytes = static_cast<const uint8_t *>(BlockLock(list));
    if (bytes == nullptr) {
        locked = nullptr;
        return;
    }
    // A list without records needs no more than its counts.
    const uint64_t size = BlockSize(list);
    FaceList head{};
    std::memcpy(&head, bytes, std::min<uint64_t>(size, sizeof head));
    const auto faces = static_cast<uint64_t>(std::max(head.faces, 0)),
               eyes = static_cast<uint64_t>(std::max(head.eyes, 0));
    const uint64_t first = kind == Eyes ? faces : 0, count = kind == Eyes ? eyes : faces;
    good = count == 0 || sizeof head + (first + count) * sizeof(FaceRecord) <= size;
    if (good && count > 0) records = {reinterpret_cast<const FaceRecord *>(bytes + sizeof head) + first, count};
}

FaceRecords::~FaceRecords() {
    if (locked != nullptr) BlockUnlock(locked);
}

} // namespace lmf
