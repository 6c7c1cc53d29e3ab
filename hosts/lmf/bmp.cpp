// BMP, read and written here: uncompressed and run-length coded pictures of every depth from 1 to 32 bits.
#include <algorithm>
#include <bit>
#include <cstring>

#include "picture.h"

namespace lmf::host {

namespace {

constexpr size_t kFileHeader = 14;
constexpr uint32_t kV5Header = 124;
constexpr uint32_t kEmbeddedProfile = 0x4D424544; // "MBED"

enum Compression : uint32_t { kPlain = 0, kRle8 = 1, kRle4 = 2, kBitFields = 3, kAlphaBitFields = 6 };

uint32_t U16(ByteView bytes, size_t at) {
    return at + 2 <= bytes.size() ? bytes[at] | bytes[at + 1] << 8u : 0;
}
uint32_t U32(ByteView bytes, size_t at) {
    return U16(bytes, at) | U16(bytes, at + 2) << 16;
}

bool Recognises(ByteView start) {
    return start.size() >= 26 && start[0] == 'B' && start[1] == 'M';
}

struct BmpShape {
    int64_t width = 0;
    int64_t height = 0;
    bool topDown = false;
    uint32_t bits = 0;
    uint32_t compression = kPlain;
    uint32_t masks[4] = {}; // red, green, blue, alpha
    size_t palette = 0;     // offset of the colour table
    size_t entryBytes = 4;
    size_t colors = 0;
    size_t pixels = 0; // offset
    uint32_t headerBytes = 0;
};

bool ReadShape(ByteView file, BmpShape &shape, Report &report) {
    shape.headerBytes = U32(file, kFileHeader);
    shape.pixels = U32(file, 10);
    const bool old = shape.headerBytes == 12;
    if (!old && (shape.headerBytes < 40 || shape.headerBytes > 1024)) return report.Fail("the file is damaged");
    if (old) {
        shape.width = U16(file, 18);
        shape.height = U16(file, 20);
        shape.bits = U16(file, 24);
        shape.entryBytes = 3;
    } else {
        shape.width = int32_t(U32(file, 18));
        shape.height = int32_t(U32(file, 22));
        shape.bits = U16(file, 28);
        shape.compression = U32(file, 30);
        shape.colors = U32(file, 46);
    }
    if (shape.height < 0) {
        shape.topDown = true;
        shape.height = -shape.height;
    }
    shape.palette = kFileHeader + shape.headerBytes;
    static constexpr uint32_t kMasks16[] = {0x7C00, 0x3E0, 0x1F, 0};
    static constexpr uint32_t kMasks32[] = {0xFF0000, 0xFF00, 0xFF, 0};
    std::copy_n(shape.bits == 16 ? kMasks16 : kMasks32, 4, shape.masks);
    if (shape.compression == kBitFields || shape.compression == kAlphaBitFields) {
        const bool withAlpha = shape.compression == kAlphaBitFields || shape.headerBytes >= 56;
        for (size_t i = 0; i < (withAlpha ? 4u : 3u); ++i) shape.masks[i] = U32(file, 54 + 4 * i);
        shape.compression = kPlain;
        if (shape.bits != 16 && shape.bits != 32) return report.Fail("the file is damaged");
    }
    const bool known = shape.bits == 1 || shape.bits == 2 || shape.bits == 4 || shape.bits == 8 || shape.bits == 16 ||
                       shape.bits == 24 || shape.bits == 32;
    const bool fits = shape.compression == kPlain || (shape.compression == kRle8 && shape.bits == 8) ||
                      (shape.compression == kRle4 && shape.bits == 4);
    if (!known || !fits) return report.Fail("this kind of BMP is not supported");
    if (shape.bits <= 8 && (shape.colors == 0 || shape.colors > 1u << shape.bits)) shape.colors = 1u << shape.bits;
    return true;
}

void ReadPalette(ByteView file, const BmpShape &shape, Bitmap &image) {
    for (size_t i = 0; i < shape.colors; ++i) {
        const size_t at = shape.palette + i * shape.entryBytes;
        if (at + 3 > file.size() || at + 3 > shape.pixels) return;
        std::memcpy(image.Palette() + 4 * i, file.data() + at, 3);
    }
}

uint8_t Channel(uint32_t pixel, uint32_t mask) {
    if (mask == 0) return 0;
    const uint32_t highest = mask >> std::countr_zero(mask);
    return uint8_t((uint64_t(pixel & mask) >> std::countr_zero(mask)) * 255 / highest);
}

// Two bits a pixel become four.
void WidenRow(const uint8_t *in, int width, uint8_t *out) {
    for (int x = 0; x < width; ++x) {
        const int value = in[x >> 2] >> (6 - 2 * (x & 3)) & 3;
        out[x >> 1] = uint8_t(x & 1 ? out[x >> 1] | value : value << 4);
    }
}

bool ReadPlain(ByteView file, const BmpShape &shape, Picture &picture, Report &report) {
    const int width = picture.image.width;
    const int height = picture.image.height;
    const size_t stride = (size_t(width) * shape.bits + 31) / 32 * 4;
    if (shape.pixels > file.size() || file.size() - shape.pixels < stride * size_t(height))
        return report.Fail("the file ends too early");
    for (int i = 0; i < height; ++i) {
        const uint8_t *in = file.data() + shape.pixels + size_t(i) * stride;
        const int y = shape.topDown ? i : height - 1 - i;
        uint8_t *out = picture.image.Row(y);
        if (shape.bits == 2) {
            WidenRow(in, width, out);
        } else if (shape.bits != 16 && shape.bits != 32) {
            std::memcpy(out, in, stride);
        } else {
            for (int x = 0; x < width; ++x) {
                uint32_t pixel = 0;
                std::memcpy(&pixel, in + size_t(x) * shape.bits / 8, shape.bits / 8);
                for (int c = 0; c < 3; ++c) out[3 * x + c] = Channel(pixel, shape.masks[2 - c]);
                if (picture.alpha) picture.alpha.Row(y)[x] = Channel(pixel, shape.masks[3]);
            }
        }
    }
    return true;
}

// Run-length coded indices. What the runs skip keeps index 0.
bool ReadRuns(ByteView file, const BmpShape &shape, Bitmap &image, Report &report) {
    size_t at = shape.pixels;
    int64_t x = 0;
    int64_t y = image.height - 1;
    const auto put = [&](uint8_t index) {
        if (x < image.width) {
            uint8_t *row = image.Row(int(y));
            if (image.bits == 8) {
                row[x] = index;
            } else {
                row[x >> 1] = uint8_t(x & 1 ? (row[x >> 1] & 0xF0) | index : (row[x >> 1] & 15) | index << 4);
            }
        }
        ++x;
    };
    const auto indexAt = [&](size_t place, size_t i) {
        if (image.bits == 8) return file[place + i];
        return uint8_t(i & 1 ? file[place + i / 2] & 15 : file[place + i / 2] >> 4);
    };
    while (true) {
        if (at + 2 > file.size()) return report.Fail("the file ends too early");
        const unsigned count = file[at];
        const unsigned value = file[at + 1];
        if (count == 0 && value == 1) return true;
        if (count == 0 && value == 0) {
            x = 0;
            --y;
            at += 2;
            continue;
        }
        if (count == 0 && value == 2) {
            if (at + 4 > file.size()) return report.Fail("the file ends too early");
            x += file[at + 2];
            y -= file[at + 3];
            at += 4;
            continue;
        }
        if (y < 0) return report.Fail("the file is damaged");
        if (count > 0) {
            for (unsigned i = 0; i < count; ++i)
                put(image.bits == 8 ? uint8_t(value) : uint8_t(i & 1 ? value & 15 : value >> 4));
            at += 2;
            continue;
        }
        const size_t bytes = image.bits == 8 ? value : (value + 1) / 2;
        at += 2;
        if (bytes > file.size() - at) return report.Fail("the file ends too early");
        for (unsigned i = 0; i < value; ++i) put(indexAt(at, i));
        at += (bytes + 1) & ~size_t{1};
    }
}

bool Read(ByteView file, const Limits &limits, Picture &picture, Report &report) {
    BmpShape shape;
    if (!ReadShape(file, shape, report) || !CheckSize(shape.width, shape.height, limits, report)) return false;
    const int bits = shape.bits > 8 ? 24 : shape.bits == 2 ? 4 : int(shape.bits);
    const bool alpha = shape.bits > 8 && shape.masks[3] != 0;
    if (!MakePicture(picture, int(shape.width), int(shape.height), bits, alpha, report)) return false;
    if (bits <= 8) ReadPalette(file, shape, picture.image);
    const bool read = shape.compression == kPlain ? ReadPlain(file, shape, picture, report)
                                                  : ReadRuns(file, shape, picture.image, report);
    if (!read) return false;
    if (shape.headerBytes >= 40 && U32(file, 38) > 0)
        picture.metadata.density = {double(U32(file, 38)), double(U32(file, 42)), true};
    if (shape.headerBytes >= kV5Header && U32(file, kFileHeader + 56) == kEmbeddedProfile) {
        const size_t at = kFileHeader + size_t(U32(file, kFileHeader + 112));
        const size_t size = U32(file, kFileHeader + 116);
        if (at <= file.size() && size <= file.size() - at)
            picture.metadata.icc.assign(file.begin() + std::ptrdiff_t(at), file.begin() + std::ptrdiff_t(at + size));
    }
    return true;
}

void Put16(uint8_t *out, uint32_t value) {
    out[0] = uint8_t(value);
    out[1] = uint8_t(value >> 8);
}
void Put32(uint8_t *out, uint64_t value) {
    Put16(out, uint32_t(value));
    Put16(out + 2, uint32_t(value >> 16));
}

bool Write(std::FILE *file, const Picture &picture, const Metadata &metadata, const Encoding &, Report &report) {
    const Bitmap &image = picture.image;
    const Bytes &icc = metadata.icc;
    const bool alpha = HasAlpha(picture);
    const bool withProfile = CarriesProfile(metadata, HasGreyPalette(image), SIZE_MAX, report);
    const uint32_t bits = alpha ? 32 : uint32_t(image.bits);
    const uint32_t colors = alpha ? 0 : uint32_t(image.Colors());
    const uint32_t headerBytes = alpha || withProfile ? kV5Header : 40;
    const size_t stride = (size_t(image.width) * bits + 31) / 32 * 4;
    const uint64_t pixelBytes = uint64_t(stride) * unsigned(image.height);
    const uint32_t offset = uint32_t(kFileHeader) + headerBytes + 4 * colors;
    const uint64_t total = offset + pixelBytes + (withProfile ? icc.size() : 0);
    if (total > 0xFFFFFFFFu) return report.Fail("the result is larger than a BMP file can be");

    uint8_t head[kFileHeader + kV5Header] = {'B', 'M'};
    Put32(head + 2, total);
    Put32(head + 10, offset);
    uint8_t *info = head + kFileHeader;
    Put32(info, headerBytes);
    Put32(info + 4, uint32_t(image.width));
    Put32(info + 8, uint32_t(image.height));
    Put16(info + 12, 1);
    Put16(info + 14, bits);
    Put32(info + 16, alpha ? kBitFields : kPlain);
    Put32(info + 20, pixelBytes);
    if (metadata.density.absolute) {
        Put32(info + 24, uint64_t(metadata.density.x + 0.5));
        Put32(info + 28, uint64_t(metadata.density.y + 0.5));
    }
    Put32(info + 32, colors);
    Put32(info + 36, colors);
    if (alpha) {
        Put32(info + 40, 0xFF0000);
        Put32(info + 44, 0xFF00);
        Put32(info + 48, 0xFF);
        Put32(info + 52, 0xFF000000);
    }
    if (headerBytes == kV5Header) {
        static constexpr uint32_t kSrgb = 0x73524742; // "sRGB"
        Put32(info + 56, withProfile ? kEmbeddedProfile : kSrgb);
        Put32(info + 108, 4); // rendering intent: pictures
        Put32(info + 112, withProfile ? offset - kFileHeader + pixelBytes : 0);
        Put32(info + 116, withProfile ? icc.size() : 0);
    }
    bool written = std::fwrite(head, 1, kFileHeader + headerBytes, file) == kFileHeader + headerBytes;
    written = written && std::fwrite(image.Palette(), 4, colors, file) == colors;
    Bytes row(stride);
    for (int y = image.height - 1; y >= 0 && written; --y) {
        if (alpha) FillRow(picture, Layout::kColorAlpha, Order::kBgr, y, row.data());
        written = std::fwrite(alpha ? row.data() : image.Row(y), 1, stride, file) == stride;
    }
    if (withProfile) written = written && std::fwrite(icc.data(), 1, icc.size(), file) == icc.size();
    return written || report.Fail("the file could not be written");
}

} // namespace

const Codec kBmp = {"BMP", ";bmp;dib;", 0x7FFFFFFF, kHoldsDensity, kObeysLossless, Recognises, Read, Write};

} // namespace lmf::host
