#include "image/texture/textures.h"

#include <cstring>

#include "image/texture/cpx.h"

namespace lmf {

DibHandle CanvasTextures() {
    return ReadCpx(CanvasTextureContainer());
}

DibHandle JigsawRelief() {
    const std::span<const uint8_t> bitmap = JigsawReliefBitmap();
    DibOwner picture(BlockAlloc(bitmap.size()));
    void *bytes = BlockLock(picture.handle);
    if (bytes == nullptr) return nullptr;
    std::memcpy(bytes, bitmap.data(), bitmap.size());
    BlockUnlock(picture.handle);
    return picture.Release();
}

} // namespace lmf
