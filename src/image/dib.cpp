#include "image/dib.h"

#include <cstring>

namespace lmf {

static constexpr uint64_t kBlockLimit = uint64_t{1} << 32;

/// Does the block hold all that its header claims?
static bool HoldsItsPicture(const void *image, uint64_t blockSize) {
    if (blockSize < sizeof(DibHeader)) return false;
    const auto *header = static_cast<const DibHeader *>(image);
    if (header->biWidth < 1 || header->biHeight < 1) return false;
    const uint64_t stride = RowStride(header->biWidth, header->biBitCount);
    const uint64_t rows = static_cast<uint32_t>(header->biHeight);
    const uint64_t room = blockSize - sizeof(DibHeader);
    const uint64_t table = PixelOffset(header->biBitCount) - sizeof(DibHeader);
    return table <= room && (stride == 0 || rows <= (room - table) / stride);
}

DibView ViewOf(const void *image) {
    // Views of pictures that are only read share the type: whoever locked the picture knows whether it may write.
    auto *bytes = static_cast<uint8_t *>(const_cast<void *>(image));
    const auto *header = static_cast<const DibHeader *>(image);
    DibView view;
    view.width = header->biWidth;
    view.height = header->biHeight;
    view.bits = header->biBitCount;
    view.stride = static_cast<ptrdiff_t>(RowStride(view.width, view.bits));
    view.bottom = bytes + PixelOffset(view.bits);
    view.colorTable = bytes + sizeof(DibHeader);
    return view;
}

DibLock::DibLock(DibHandle handle) {
    auto *bytes = static_cast<uint8_t *>(BlockLock(handle));
    if (bytes == nullptr) return;
    if (!HoldsItsPicture(bytes, BlockSize(handle))) {
        BlockUnlock(handle);
        return;
    }
    locked = handle;
    image = bytes;
    view = ViewOf(bytes);
}

void DibLock::Unlock() {
    if (image == nullptr) return;
    BlockUnlock(locked);
    image = nullptr;
}

static uint32_t DepthForRequest(uint32_t request) {
    if (request == 0 || request > 24) return 32;
    if (request == 1) return 1;
    if (request <= 4) return 4;
    return request <= 8 ? 8 : 24;
}

DibHandle DibCreate(int32_t width, int32_t height, const Palette768 *palette, uint32_t depth) {
    if (width < 1 || height < 1) return nullptr;
    const uint32_t bits = DepthForRequest(depth);
    const uint64_t pixelBytes = RowStride(width, bits) * static_cast<uint64_t>(height);
    if (pixelBytes + PixelOffset(bits) >= kBlockLimit) return nullptr;

    BlockOwner block(BlockAlloc(pixelBytes + PixelOffset(bits)));
    auto *image = static_cast<uint8_t *>(BlockLock(block.handle));
    if (image == nullptr) return nullptr;
    auto *header = reinterpret_cast<DibHeader *>(image);
    header->biSize = sizeof(DibHeader);
    header->biWidth = width;
    header->biHeight = height;
    header->biPlanes = 1;
    header->biBitCount = static_cast<uint16_t>(bits);
    header->biSizeImage = static_cast<uint32_t>(pixelBytes);
    header->biClrUsed = header->biClrImportant = ColorTableEntries(bits);
    if (palette != nullptr) DibWritePalette(image, *palette);
    BlockUnlock(block.handle);
    return block.Release();
}

DibHandle DibCreateLike(const DibLock &source, int32_t width, int32_t height) {
    Palette768 palette;
    DibReadPalette(source.image, &palette);
    return DibCreate(width, height, &palette, source.view.bits);
}

DibHandle DibCreate32(int32_t width, int32_t height) {
    return DibCreate(width, height, nullptr, 32);
}

DibHandle DibCreateGrey(int32_t width, int32_t height) {
    return DibCreate(width, height, &GreyRamp(), 8);
}

DibHandle DibCreateSolid(int32_t width, int32_t height, Color color) {
    DibOwner solid(DibCreate(width, height, nullptr, 24));
    DibLock lock(solid.handle);
    if (!lock) return nullptr;
    uint8_t *first = lock.view.bottom;
    for (int32_t x = 0; x < width; x++) StoreBgr(first + static_cast<ptrdiff_t>(x) * 3, color);
    for (int32_t y = 1; y < height; y++) std::memcpy(lock.view.MemoryRow(y), first, static_cast<size_t>(width) * 3);
    lock.Unlock();
    return solid.Release();
}

DibHandle DibClone(DibHandle source) {
    const void *from = BlockLock(source);
    if (from == nullptr) return nullptr;
    const uint64_t size = BlockSize(source);
    BlockOwner copy(BlockAlloc(size));
    void *to = BlockLock(copy.handle);
    if (to != nullptr) {
        std::memcpy(to, from, size);
        BlockUnlock(copy.handle);
    }
    BlockUnlock(source);
    return to != nullptr ? copy.Release() : nullptr;
}

int32_t DibInfo(DibHandle source, int32_t *width, int32_t *height, uint32_t *bits, Palette768 *palette) {
    DibLock lock(source);
    if (!lock) return 0;
    if (width != nullptr) *width = lock.view.width;
    if (height != nullptr) *height = lock.view.height;
    if (bits != nullptr) *bits = lock.view.bits;
    if (palette != nullptr) DibReadPalette(lock.image, palette);
    return 1;
}

uint32_t DibReadPalette(const void *image, Palette768 *palette) {
    const DibView view = ViewOf(image);
    const uint32_t entries = ColorTableEntries(view.bits);
    std::memset(palette->rgb, 0, sizeof palette->rgb);
    for (uint32_t i = 0; i < entries; i++) {
        palette->rgb[i * 3] = view.colorTable[i * 4 + 2];
        palette->rgb[i * 3 + 1] = view.colorTable[i * 4 + 1];
        palette->rgb[i * 3 + 2] = view.colorTable[i * 4];
    }
    return entries;
}

void DibWritePalette(void *image, const Palette768 &palette) {
    const DibView view = ViewOf(image);
    const uint32_t entries = ColorTableEntries(view.bits);
    for (uint32_t i = 0; i < entries; i++) {
        view.colorTable[i * 4] = palette.rgb[i * 3 + 2];
        view.colorTable[i * 4 + 1] = palette.rgb[i * 3 + 1];
        view.colorTable[i * 4 + 2] = palette.rgb[i * 3];
    }
}

const Palette768 &GreyRamp() {
    static constexpr Palette768 kRamp = [] {
        Palette768 ramp{};
        for (int i = 0; i < 768; i++) ramp.rgb[i] = static_cast<uint8_t>(i / 3);
        return ramp;
    }();
    return kRamp;
}

ImageMode DibClassify(DibHandle source, const void *image) {
    if (source != nullptr) {
        DibLock lock(source);
        return lock ? DibClassify(nullptr, lock.image) : kModeUnreadable;
    }
    if (image == nullptr) return kModeUnreadable;
    const uint32_t bits = ViewOf(image).bits;
    if (bits == 1) return kModeMono;
    if (bits < 2 || bits > 8) return kModeTrueColor;
    if (bits < 8) return kModePalette;
    Palette768 palette;
    DibReadPalette(image, &palette);
    return std::memcmp(palette.rgb, GreyRamp().rgb, sizeof palette.rgb) == 0 ? kModeGrey : kModePalette;
}

} // namespace lmf
