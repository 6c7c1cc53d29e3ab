// The picture record: a movable block that holds a packed device-independent bitmap, rows from the bottom up.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>
#include <utility>

#include "platform/memory.h"

namespace lmf {

/// A picture, or null for none. Whoever holds the handle owns it: a function that returns a new one gives it to its
/// caller and leaves its arguments alive.
using DibHandle = BlockHandle;
using DibOwner = BlockOwner;

/// 0x00BBGGRR. The pixels of a 32-bit picture are 0xAABBGGRR.
using Color = uint32_t;

struct DibHeader {
    int32_t biSize;
    int32_t biWidth;
    int32_t biHeight;
    uint16_t biPlanes;
    uint16_t biBitCount;
    uint32_t biCompression;
    uint32_t biSizeImage;
    int32_t biXPelsPerMeter;
    int32_t biYPelsPerMeter;
    uint32_t biClrUsed;
    uint32_t biClrImportant;
};
static_assert(sizeof(DibHeader) == 40);

/// What a picture is to the filters.
enum ImageMode : int32_t {
    kModeTrueColor = 0,
    kModeGrey = 1,    ///< 8 bits with a table that is exactly the identity ramp
    kModePalette = 2, ///< 2 to 8 bits, not grey
    kModeMono = 3,    ///< 1 bit, whatever its two colours are
    kModeUnreadable = 4
};

/// A palette in its working form: 256 triples of red, green, blue; unused entries are 0.
struct Palette768 {
    uint8_t rgb[768];

    Color At(uint32_t index) const { return rgb[index * 3] | rgb[index * 3 + 1] << 8 | rgb[index * 3 + 2] << 16; }
};

/// The colours of a mono picture where nothing else is asked for.
inline constexpr Palette768 kBlackAndWhite = {{0, 0, 0, 255, 255, 255}};

constexpr uint8_t RedOf(Color color) {
    return static_cast<uint8_t>(color);
}
constexpr uint8_t GreenOf(Color color) {
    return static_cast<uint8_t>(color >> 8);
}
constexpr uint8_t BlueOf(Color color) {
    return static_cast<uint8_t>(color >> 16);
}
constexpr uint8_t AlphaOf(Color color) {
    return static_cast<uint8_t>(color >> 24);
}
constexpr Color PackColor(uint32_t red, uint32_t green, uint32_t blue) {
    return red | green << 8 | blue << 16;
}
/// Writes the three bytes of a 24-bit pixel.
constexpr void StoreBgr(uint8_t *bgr, Color color) {
    bgr[0] = BlueOf(color);
    bgr[1] = GreenOf(color);
    bgr[2] = RedOf(color);
}

constexpr uint8_t ClampByte(int32_t value) {
    return static_cast<uint8_t>(std::clamp(value, 0, 255));
}

/// The library's usual luminance, 0 to 255. Three truncating divisions: a neutral 100 gives 98.
constexpr int32_t WeightedGrey(int32_t red, int32_t green, int32_t blue) {
    return red * 77 / 255 + green * 150 / 255 + blue * 28 / 255;
}
constexpr int32_t WeightedGrey(Color color) {
    return WeightedGrey(RedOf(color), GreenOf(color), BlueOf(color));
}

/// Entries of the colour table in a picture of this depth: 2^bits up to 8 bits, else 0.
constexpr uint32_t ColorTableEntries(uint32_t bits) {
    return bits <= 8 ? 1u << bits : 0;
}
/// Is this one of the depths that DibCreate makes and DibGetPixel reads? A copy of any other one would be a picture
/// that nobody can read.
constexpr bool CanReadPixels(uint32_t bits) {
    return bits == 1 || bits == 4 || bits == 8 || bits == 24 || bits == 32;
}
/// Are pixels of this depth whole bytes, so that code can work on rows of bytes?
constexpr bool HasBytePixels(uint32_t bits) {
    return bits == 8 || bits == 24 || bits == 32;
}
/// Bytes from the start of the block to the first pixel row.
constexpr uint32_t PixelOffset(uint32_t bits) {
    return 40 + 4 * ColorTableEntries(bits);
}
/// Bytes of a pixel row, a multiple of 4.
constexpr uint64_t RowStride(int32_t width, uint32_t bits) {
    return (static_cast<uint64_t>(width) * bits + 31) / 32 * 4;
}

/// A locked picture taken apart. It borrows the lock; it owns nothing.
template <typename Byte>
struct PictureView {
    int32_t width = 0;          ///< pixels
    int32_t height = 0;         ///< pixels
    uint32_t bits = 0;          ///< a pixel
    ptrdiff_t stride = 0;       ///< bytes of a row
    Byte *bottom = nullptr;     ///< the first row in memory, the picture's bottom row
    Byte *colorTable = nullptr; ///< blue, green, red, 0 an entry; of use up to 8 bits
    uint64_t blockSize = 0;     ///< bytes of the whole block, which starts with the header

    /// Row y counted from the top of the picture.
    Byte *Row(int32_t y) const { return bottom + (height - 1 - static_cast<ptrdiff_t>(y)) * stride; }
    /// Row y counted as rows lie in memory, from the bottom of the picture.
    Byte *MemoryRow(int32_t y) const { return bottom + y * stride; }
    /// What may be written may be read.
    operator PictureView<const Byte>() const requires(!std::is_const_v<Byte>) {
        return {width, height, bits, stride, bottom, colorTable, blockSize};
    }
};

/// A picture to read. Every filter gets its source so: the compiler sees to it that no source is changed.
using ReadView = PictureView<const uint8_t>;
/// A picture to write.
using WriteView = PictureView<uint8_t>;

/// Holds the lock of a picture for a scope. False for a null handle, and for a block whose header, colour table and
/// rows do not fit inside it: such a block counts as one that cannot be locked.
template <typename View>
struct ScopedLock {
    View view;

    explicit ScopedLock(DibHandle handle);
    ScopedLock(ScopedLock &&other) noexcept : view(other.view), locked(std::exchange(other.locked, nullptr)) {}
    ScopedLock &operator=(ScopedLock &&other) noexcept {
        std::swap(view, other.view);
        std::swap(locked, other.locked);
        return *this;
    }
    ~ScopedLock() { Unlock(); }

    explicit operator bool() const { return locked != nullptr; }
    /// Ends the lock before the scope does.
    void Unlock();

private:
    DibHandle locked = nullptr;
};

/// The lock of a picture that is only read.
using DibReadLock = ScopedLock<ReadView>;
/// The lock of a picture that is written.
using DibLock = ScopedLock<WriteView>;

/// Owns a picture and holds it locked; false for null and for one that cannot be locked.
struct LockedDib {
    DibOwner owner;
    DibLock lock;

    /// Takes over `made`, which may be null.
    explicit LockedDib(DibHandle made = nullptr) : owner(made), lock(made) {}
    LockedDib(LockedDib &&) = default;
    LockedDib &operator=(LockedDib &&other) noexcept {
        std::swap(owner.handle, other.owner.handle);
        lock = std::move(other.lock);
        return *this;
    }
    ~LockedDib() { lock.Unlock(); }

    explicit operator bool() const { return static_cast<bool>(lock); }
    operator ReadView() const { return lock.view; }
    const WriteView &View() const { return lock.view; }
    /// Ends the lock and gives the picture to the caller; null if it could not be locked.
    [[nodiscard]] DibHandle Release() {
        if (!lock) return nullptr;
        lock.Unlock();
        return owner.Release();
    }
};

/// What a read outside the picture gives: white with full alpha, or index 255.
inline constexpr uint32_t kOutside = 0xFFFFFFFF;

/// Pixel (x, y) of a picture, y = 0 at the top: 0xAABBGGRR at 32 bits, 0x00BBGGRR at 24, the index below.
/// Outside the picture and at other depths kOutside.
inline uint32_t DibGetPixel(const ReadView &picture, int32_t x, int32_t y) {
    if (y < 0 || y >= picture.height || x < 0 || x >= picture.width) return kOutside;
    const uint8_t *row = picture.Row(y);
    const auto column = static_cast<size_t>(x);
    switch (picture.bits) {
    case 32:
        return row[column * 4 + 2] | row[column * 4 + 1] << 8 | row[column * 4] << 16 |
               static_cast<uint32_t>(row[column * 4 + 3]) << 24;
    case 24:
        return row[column * 3 + 2] | row[column * 3 + 1] << 8 | row[column * 3] << 16;
    case 8:
        return row[column];
    case 4:
        return x & 1 ? row[column / 2] & 15 : row[column / 2] >> 4;
    case 1:
        return row[column / 8] >> (7 - (x & 7)) & 1;
    default:
        return kOutside;
    }
}

/// Stores a value at (x, y) of a picture, y = 0 at the top; the bits that the depth does not hold are dropped
/// and neighbours in the same byte stay. Outside the picture and at other depths nothing happens.
inline void DibSetPixel(const WriteView &picture, int32_t x, int32_t y, uint32_t value) {
    if (y < 0 || y >= picture.height || x < 0 || x >= picture.width) return;
    uint8_t *row = picture.Row(y);
    const auto column = static_cast<size_t>(x);
    switch (picture.bits) {
    case 32:
        row[column * 4 + 3] = AlphaOf(value);
        row[column * 4 + 2] = RedOf(value);
        row[column * 4 + 1] = GreenOf(value);
        row[column * 4] = BlueOf(value);
        return;
    case 24:
        row[column * 3 + 2] = RedOf(value);
        row[column * 3 + 1] = GreenOf(value);
        row[column * 3] = BlueOf(value);
        return;
    case 8:
        row[column] = static_cast<uint8_t>(value);
        return;
    case 4: {
        uint8_t &pair = row[column / 2];
        pair = static_cast<uint8_t>(x & 1 ? (pair & 0xF0) | (value & 15) : (pair & 0x0F) | (value & 15) << 4);
        return;
    }
    case 1: {
        const uint8_t mask = static_cast<uint8_t>(0x80 >> (x & 7));
        uint8_t &byte = row[column / 8];
        byte = static_cast<uint8_t>(value & 1 ? byte | mask : byte & ~mask);
        return;
    }
    default:
        return;
    }
}

/// Blank picture, all pixels 0. `depth` 0 or above 24 gives 32 bits, 1 gives 1, 2 to 4 give 4, 5 to 8 give 8, 9 to 24
/// give 24. The table takes the palette's first colours, or stays black without one.
/// Null when a side is below 1, the block would reach 4 GiB or memory is short.
[[nodiscard]] DibHandle DibCreate(int32_t width, int32_t height, const Palette768 *palette, uint32_t depth);
/// Blank picture of this size with the depth and the palette of another; null as for DibCreate.
[[nodiscard]] DibHandle DibCreateLike(const ReadView &model, int32_t width, int32_t height);
/// 24-bit picture of one colour.
[[nodiscard]] DibHandle DibCreateSolid(int32_t width, int32_t height, Color color);
/// Blank 8-bit picture with the grey ramp as its table.
[[nodiscard]] DibHandle DibCreateGrey(int32_t width, int32_t height);
/// Byte for byte copy of the whole block; null if memory is short.
[[nodiscard]] DibHandle DibClone(const ReadView &source);
/// The same for a picture at rest; null also if it cannot be locked.
[[nodiscard]] DibHandle DibClone(DibHandle source);

/// Size, depth and palette of a picture at rest; each pointer may be null.
/// @return 1, or 0 if the picture cannot be locked.
int32_t DibInfo(DibHandle source, int32_t *width, int32_t *height, uint32_t *bits, Palette768 *palette);
/// Clears `palette` and copies the picture's table into it.
/// @return the number of entries copied; 0 for depths above 8.
uint32_t DibReadPalette(const ReadView &picture, Palette768 *palette);
/// Writes the first entries of `palette`, as many as the picture's table holds, into that table; the fourth byte of
/// each entry stays.
void DibWritePalette(const WriteView &picture, const Palette768 &palette);
/// The palette whose entry i is (i, i, i).
const Palette768 &GreyRamp();
/// What the picture is to the filters.
[[nodiscard]] ImageMode DibClassify(const ReadView &picture);
/// The same for a picture at rest; kModeUnreadable if it cannot be locked.
[[nodiscard]] ImageMode DibClassify(DibHandle source);

} // namespace lmf
