#include "support/faces.h"

#include <cstring>

namespace lmf::testing {

BlockHandle MakeFaceList(const std::vector<FaceBox> &faces, const std::vector<FaceBox> &eyes, uint64_t missing) {
    std::vector<uint8_t> bytes(32 + 28 * (faces.size() + eyes.size()), 0xA5);
    const int32_t counts[] = {static_cast<int32_t>(faces.size()), static_cast<int32_t>(eyes.size())};
    std::memcpy(bytes.data(), counts, sizeof counts);
    size_t at = 32;
    for (const auto *boxes : {&faces, &eyes}) {
        for (const FaceBox &box : *boxes) {
            std::memcpy(&bytes[at], &box, sizeof box);
            at += 28;
        }
    }
    const BlockHandle list = BlockAlloc(bytes.size() - missing);
    if (void *to = BlockLock(list)) {
        std::memcpy(to, bytes.data(), bytes.size() - missing);
        BlockUnlock(list);
    }
    return list;
}

} // namespace lmf::testing
