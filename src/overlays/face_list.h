// The faces of a picture, and the eyes in them, as the face finder beside the library lists them.
#pragma once

#include <span>

#include "engine/filter_context.h"
#include "lmf16finder.h"

namespace lmf {

/// FilterPrepare for a filter that needs faces: asks the finder once, on the source, and frees what it gave at the end.
/// Where there is no finder, or it finds nothing to work with, the list stays null.
/// @param list      where the context keeps the block
/// @param findEyes  whether the finder looks for eyes too
void PrepareFaceList(FilterContext &context, uint32_t phase, BlockHandle FilterContext::*list, bool findEyes);

/// Holds a list locked for a scope and gives its records of one kind, as the finder left them: rectangles may lie
/// anywhere. False for a null list and for a block that is too short for the records that it announces.
class FaceRecords {
public:
    enum Kind { Faces, Eyes };

    FaceRecords(BlockHandle list, Kind kind);
    FaceRecords(const FaceRecords &) = delete;
    FaceRecords &operator=(const FaceRecords &) = delete;
    ~FaceRecords();

    explicit operator bool() const { return good; }
    std::span<const FaceRecord> Get() const { return records; }

private:
    BlockHandle locked;
    std::span<const FaceRecord> records;
    bool good = false;
};

} // namespace lmf
