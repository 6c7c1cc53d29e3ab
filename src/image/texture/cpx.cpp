#include "image/texture/cpx.h"

#include <cstring>

#include <zlib.h>

namespace lmf {
namespace {

/// Deflate spends a bit on each 129 bytes at best, so a header that promises more lies.
constexpr uint64_t kBestRatio = 1032;

} // namespace

DibHandle ReadCpx(std::span<const uint8_t> container) {
    CpxHeader header;
    if (container.size() < sizeof header) return nullptr;
    std::memcpy(&header, container.data(), sizeof header);
    if (std::memcmp(header.magic, kCpxMagic, sizeof header.magic) != 0) return nullptr;
    const std::span<const uint8_t> data = container.subspan(sizeof header);
    if (header.compressedSize > data.size()) return nullptr;
    if (header.pictureSize > header.compressedSize * kBestRatio) return nullptr;

    DibOwner picture(BlockAlloc(header.pictureSize));
    auto *bytes = static_cast<uint8_t *>(BlockLock(picture.handle));
    if (bytes == nullptr) return nullptr;
    uLongf unpacked = header.pictureSize;
    uLong used = header.compressedSize;
    const int state = uncompress2(bytes, &unpacked, data.data(), &used);
    BlockUnlock(picture.handle);
    const bool whole = state == Z_OK && unpacked == header.pictureSize && used == header.compressedSize;
    return whole && DibLock(picture.handle) ? picture.Release() : nullptr;
}

} // namespace lmf
