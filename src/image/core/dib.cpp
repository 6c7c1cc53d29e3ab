#include "image/core/dib.h"

#include <cstring>

namespace lmf {

namespace {

constexpr uint64_t kBlockLimit = uint64_t{1} << 32;

/// Does the block hold all that its header claims?
bool HoldsItsPicture(const void *image, uint64_t blockSize) {
    if (blockSize < sizeof(DibHeader)) return false;
    const auto *header = static_cast<const DibHeader *>(image);
    if (header->biWidth < 1 || header->biHeight < 1) return false;
    const uint64_t stride = RowStride(header->biWidth, header->biBitCount);
    const uint64_t rows = static_cast<uint32_t>(header->biHeight);
    const uint64_t room = blockSize - sizeof(DibHeader);
    const uint64_t table = PixelOffset(header->biBitCount) - sizeof(DibHeader);
    return table <= room && (stride == 0 || rows <= (room - table) / stride);
}

/// Takes a picture of `blockSize` bytes apart.
template <typename Byte>
PictureView<Byte> ViewOf(Byte *image, uint64_t blockSize) {
    const auto *header = reinterpret_cast<const DibHeader *>(image);
    PictureView<Byte> view;
    view.width = header->biWidth;
    view.height = header->biHeight;
    view.bits = header->biBitCount;
    view.stride = static_cast<ptrdiff_t>(RowStride(view.width, view.bits));
    view.bottom = image + PixelOffset(view.bits);
    view.colorTable = image + sizeof(DibHeader);
    view.blockSize = blockSize;
    return view;
}

} // namespace

template <typename View>
ScopedLock<View>::ScopedLock(DibHandle handle) {
    auto *image = static_cast<uint8_t *>(BlockLock(handle));
    if (image == nullptr) return;
    const uint64_t size = BlockSize(handle);
    if (!HoldsItsPicture(image, size)) {
        BlockUnlock(handle);
        return;
    }
    locked = handle;
    view = ViewOf(image, size);
}

template <typename View>
void ScopedLock<View>::Unlock() {
    if (locked != nullptr) BlockUnlock(std::exchange(locked, nullptr));
}

template struct ScopedLock<ReadView>;
template struct ScopedLock<WriteView>;

namespace {

uint32_t DepthForRequest(uint32_t request) {
    if (request == 0 || request > 24) return 32;
    if (request == 1) return 1;
    if (request <= 4) return 4;
    return request <= 8 ? 8 : 24;
}

} // namespace

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
    if (palette != nullptr) DibWritePalette(ViewOf(image, 0), *palette);
    BlockUnlock(block.handle);
    return block.Release();
}

DibHandle DibCreateLike(const ReadView &model, int32_t width, int32_t height) {
    Palette768 palette;
    DibReadPalette(model, &palette);
    return DibCreate(width, height, &palette, model.bits);
}

DibHandle DibCreateGrey(int32_t width, int32_t height) {
    return DibCreate(width, height, &GreyRamp(), 8);
}

DibHandle DibCreateSolid(int32_t width, int32_t height, Color color) {
    LockedDib solid(DibCreate(width, height, nullptr, 24));
    if (!solid) return nullptr;
    uint8_t *first = solid.View().bottom;
    for (int32_t x = 0; x < width; x++) StoreBgr(first + static_cast<ptrdiff_t>(x) * 3, color);
    for (int32_t y = 1; y < height; y++) std::memcpy(solid.View().MemoryRow(y), first, static_cast<size_t>(width) * 3);
    return solid.Release();
}

namespace {

DibHandle CloneBlock(const void *block, uint64_t size) {
    BlockOwner copy(BlockAlloc(size));
    void *to = BlockLock(copy.handle);
    if (to == nullptr) return nullptr;
    std::memcpy(to, block, size);
    BlockUnlock(copy.handle);
    return copy.Release();
}

} // namespace

DibHandle DibClone(const ReadView &source) {
    return CloneBlock(source.colorTable - sizeof(DibHeader), source.blockSize);
}

DibHandle DibClone(DibHandle source) {
    const void *block = BlockLock(source);
    if (block == nullptr) return nullptr;
    DibHandle copy = CloneBlock(block, BlockSize(source));
    BlockUnlock(source);
    return copy;
}

int32_t DibInfo(DibHandle source, int32_t *width, int32_t *height, uint32_t *bits, Palette768 *palette) {
    const DibReadLock lock(source);
    if (!lock) return 0;
    if (width != nullptr) *width = lock.view.width;
    if (height != nullptr) *height = lock.view.height;
    if (bits != nullptr) *bits = lock.view.bits;
    if (palette != nullptr) DibReadPalette(lock.view, palette);
    return 1;
}

uint32_t DibReadPalette(const ReadView &picture, Palette768 *palette) {
    const uint32_t entries = ColorTableEntries(picture.bits);
    std::memset(palette->rgb, 0, sizeof palette->rgb);
    for (uint32_t i = 0; i < entries; i++) {
        palette->rgb[i * 3] = picture.colorTable[i * 4 + 2];
        palette->rgb[i * 3 + 1] = picture.colorTable[i * 4 + 1];
        palette->rgb[i * 3 + 2] = picture.colorTable[i * 4];
    }
    return entries;
}

void DibWritePalette(const WriteView &picture, const Palette768 &palette) {
    const uint32_t entries = ColorTableEntries(picture.bits);
    for (uint32_t i = 0; i < entries; i++) {
        picture.colorTable[i * 4] = palette.rgb[i * 3 + 2];
        picture.colorTable[i * 4 + 1] = palette.rgb[i * 3 + 1];
        picture.colorTable[i * 4 + 2] = palette.rgb[i * 3];
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

ImageMode DibClassify(const ReadView &picture) {
    if (picture.bits == 1) return kModeMono;
    if (picture.bits < 2 || picture.bits > 8) return kModeTrueColor;
    if (picture.bits < 8) return kModePalette;
    Palette768 palette;
    DibReadPalette(picture, &palette);
    return std::memcmp(palette.rgb, GreyRamp().rgb, sizeof palette.rgb) == 0 ? kModeGrey : kModePalette;
}

ImageMode DibClassify(DibHandle source) {
    const DibReadLock lock(source);
    return lock ? DibClassify(lock.view) : kModeUnreadable;
}

} // namespace lmf
