// TIFF through libtiff. Grey, palettes and RGB keep their depth; other color models become 24-bit.
#include <tiffio.h>

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <memory>

#include "exif.h"
#include "picture.h"

namespace lmf::host {

namespace {

constexpr tmsize_t kLargestChunk = tmsize_t{1} << 32;

struct MemoryFile {
    ByteView bytes;
    uint64_t at = 0;
};

struct TiffCloser {
    void operator()(TIFF *tiff) const { TIFFClose(tiff); }
    void operator()(TIFFOpenOptions *options) const { TIFFOpenOptionsFree(options); }
    void operator()(TIFFRGBAImage *image) const { TIFFRGBAImageEnd(image); }
};
using TiffPointer = std::unique_ptr<TIFF, TiffCloser>;

tmsize_t MemoryRead(thandle_t handle, void *out, tmsize_t size) {
    auto *file = static_cast<MemoryFile *>(handle);
    if (file->at >= file->bytes.size() || size < 0) return 0;
    const size_t count = std::min(size_t(size), size_t(file->bytes.size() - file->at));
    std::memcpy(out, file->bytes.data() + file->at, count);
    file->at += count;
    return tmsize_t(count);
}
tmsize_t MemoryWrite(thandle_t, void *, tmsize_t) {
    return 0;
}
toff_t MemorySeek(thandle_t handle, toff_t offset, int whence) {
    auto *file = static_cast<MemoryFile *>(handle);
    file->at = whence == SEEK_SET ? offset : whence == SEEK_CUR ? file->at + offset : file->bytes.size() + offset;
    return file->at;
}
toff_t MemorySize(thandle_t handle) {
    return static_cast<MemoryFile *>(handle)->bytes.size();
}
int MemoryMap(thandle_t handle, void **base, toff_t *size) {
    auto *file = static_cast<MemoryFile *>(handle);
    *base = const_cast<uint8_t *>(file->bytes.data());
    *size = file->bytes.size();
    return 1;
}
void NoUnmap(thandle_t, void *, toff_t) {}
int NoClose(thandle_t) {
    return 0;
}

tmsize_t DiskRead(thandle_t handle, void *out, tmsize_t size) {
    return tmsize_t(std::fread(out, 1, size_t(size), static_cast<std::FILE *>(handle)));
}
tmsize_t DiskWrite(thandle_t handle, void *in, tmsize_t size) {
    return tmsize_t(std::fwrite(in, 1, size_t(size), static_cast<std::FILE *>(handle)));
}
toff_t DiskSeek(thandle_t handle, toff_t offset, int whence) {
    auto *file = static_cast<std::FILE *>(handle);
    return std::fseek(file, long(offset), whence) == 0 ? toff_t(std::ftell(file)) : toff_t(-1);
}
toff_t DiskSize(thandle_t handle) {
    auto *file = static_cast<std::FILE *>(handle);
    const long at = std::ftell(file);
    std::fseek(file, 0, SEEK_END);
    const long size = std::ftell(file);
    std::fseek(file, at, SEEK_SET);
    return toff_t(size);
}
int NoMap(thandle_t, void **, toff_t *) {
    return 0;
}

// Keeps the first error: those after it follow from it.
int OnError(TIFF *, void *user, const char *, const char *format, va_list arguments) {
    auto *error = static_cast<std::string *>(user);
    char text[256];
    std::vsnprintf(text, sizeof text, format, arguments);
    if (error->empty()) *error = text;
    return 1;
}
int OnWarning(TIFF *, void *, const char *, const char *, va_list) {
    return 1;
}

std::unique_ptr<TIFFOpenOptions, TiffCloser> MakeOptions(std::string &error) {
    std::unique_ptr<TIFFOpenOptions, TiffCloser> options(TIFFOpenOptionsAlloc());
    if (!options) return options;
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), OnError, &error);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), OnWarning, nullptr);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), kLargestChunk);
    return options;
}

bool Recognises(ByteView start) {
    static constexpr char kMarks[][5] = {"II*\0", "MM\0*", "II+\0", "MM\0+"};
    return start.size() >= 8 && std::any_of(std::begin(kMarks), std::end(kMarks),
                                            [&](const char *mark) { return std::memcmp(start.data(), mark, 4) == 0; });
}

struct TiffShape {
    uint32_t width = 0;
    uint32_t height = 0;
    uint16_t bits = 1;
    uint16_t samples = 1;
    uint16_t photometric = PHOTOMETRIC_MINISBLACK;
    uint16_t planar = PLANARCONFIG_CONTIG;
    uint16_t format = SAMPLEFORMAT_UINT;
    uint16_t compression = COMPRESSION_NONE;
    uint16_t alphaKind = EXTRASAMPLE_UNSPECIFIED;

    bool Grey() const { return photometric == PHOTOMETRIC_MINISBLACK || photometric == PHOTOMETRIC_MINISWHITE; }
    int Colors() const { return photometric == PHOTOMETRIC_RGB ? 3 : 1; }
    bool Alpha() const { return samples > Colors() && alphaKind != EXTRASAMPLE_UNSPECIFIED; }
};

TiffShape ReadShape(TIFF *tiff) {
    TiffShape shape;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &shape.width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &shape.height);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_BITSPERSAMPLE, &shape.bits);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLESPERPIXEL, &shape.samples);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_PLANARCONFIG, &shape.planar);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_SAMPLEFORMAT, &shape.format);
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &shape.compression);
    if (!TIFFGetField(tiff, TIFFTAG_PHOTOMETRIC, &shape.photometric) && shape.samples >= 3)
        shape.photometric = PHOTOMETRIC_RGB;
    uint16_t extras = 0;
    uint16_t *kinds = nullptr;
    if (TIFFGetField(tiff, TIFFTAG_EXTRASAMPLES, &extras, &kinds) && extras > 0) shape.alphaKind = kinds[0];
    if (shape.compression == COMPRESSION_JPEG && shape.photometric == PHOTOMETRIC_YCBCR &&
        shape.planar == PLANARCONFIG_CONTIG) {
        TIFFSetField(tiff, TIFFTAG_JPEGCOLORMODE, JPEGCOLORMODE_RGB);
        shape.photometric = PHOTOMETRIC_RGB;
    }
    return shape;
}

// Whether the samples can go into a bitmap as they are. The others go through libtiff's own conversion.
bool IsPlain(const TiffShape &shape) {
    if (shape.format != SAMPLEFORMAT_UINT || shape.samples > 16) return false;
    if (shape.photometric == PHOTOMETRIC_RGB) return shape.samples >= 3 && (shape.bits == 8 || shape.bits == 16);
    if (!shape.Grey() && shape.photometric != PHOTOMETRIC_PALETTE) return false;
    if (shape.bits == 8) return true;
    if (shape.bits == 16) return shape.Grey();
    return (shape.bits == 1 || shape.bits == 2 || shape.bits == 4) && shape.samples == 1;
}

// One byte a sample: small depths keep their values, 16 bits are rounded to 8.
void UnpackSamples(const uint8_t *in, int bits, size_t count, uint8_t *out) {
    if (bits == 16) {
        for (size_t i = 0; i < count; ++i) {
            uint16_t value;
            std::memcpy(&value, in + 2 * i, 2);
            out[i] = uint8_t((value * 255u + 32895u) >> 16);
        }
    } else if (bits == 8) {
        std::memcpy(out, in, count);
    } else {
        const unsigned mask = (1u << bits) - 1;
        for (size_t i = 0; i < count; ++i) {
            const size_t bit = i * unsigned(bits);
            out[i] = uint8_t(in[bit >> 3] >> (8 - unsigned(bits) - (bit & 7)) & mask);
        }
    }
}

// Stores `count` samples of one channel from pixel `x` on; `step` is the distance from one to the next. The channel
// after the colours is the alpha; any further is not kept.
void StoreSamples(const Picture &picture, int channel, int y, int x, int count, const uint8_t *in, int step) {
    const Bitmap &image = picture.image;
    const int colors = image.bits == 24 ? 3 : 1;
    uint8_t *row = image.Row(y);
    if (channel == colors) {
        uint8_t *alpha = picture.alpha ? picture.alpha.Row(y) + x : nullptr;
        for (int i = 0; alpha && i < count; ++i) alpha[i] = in[i * step];
    } else if (image.bits == 24 && channel < 3) {
        for (int i = 0; i < count; ++i) row[3 * (x + i) + 2 - channel] = in[i * step];
    } else if (image.bits == 8 && channel == 0) {
        for (int i = 0; i < count; ++i) row[x + i] = in[i * step];
    } else if (channel == 0) {
        const int perByte = 8 / image.bits;
        for (int i = x; i < x + count; ++i) {
            const int shift = 8 - image.bits * (i % perByte + 1);
            row[i / perByte] = uint8_t(row[i / perByte] | in[(i - x) * step] << shift);
        }
    }
}

// Stores one row of a strip or tile: `count` pixels from (x, y) on, of one plane or with all samples of a pixel
// together.
void StoreRow(const TiffShape &shape, const Picture &picture, int plane, int y, int x, int count, const uint8_t *in,
              Bytes &samples) {
    const bool separate = shape.planar == PLANARCONFIG_SEPARATE;
    const int perPixel = separate ? 1 : shape.samples;
    const size_t total = size_t(count) * size_t(perPixel);
    UnpackSamples(in, shape.bits, total, samples.data());
    if (shape.Grey() && plane == 0) {
        const int highest = shape.bits >= 8 ? 255 : (1 << shape.bits) - 1;
        const int factor = shape.bits == 2 ? 5 : 1;
        const bool inverted = shape.photometric == PHOTOMETRIC_MINISWHITE;
        for (size_t i = 0; i < total; i += size_t(perPixel))
            samples[i] = uint8_t((inverted ? highest - samples[i] : samples[i]) * factor);
    }
    for (int s = 0; s < perPixel; ++s)
        StoreSamples(picture, separate ? plane : s, y, x, count, samples.data() + s, perPixel);
}

// Reads strips or tiles; a strip is a tile as wide as the picture.
bool ReadChunks(TIFF *tiff, const TiffShape &shape, Picture &picture) {
    const bool tiled = TIFFIsTiled(tiff);
    uint32_t chunkWidth = shape.width;
    uint32_t chunkHeight = 0;
    if (tiled) {
        TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &chunkWidth);
        TIFFGetField(tiff, TIFFTAG_TILELENGTH, &chunkHeight);
    } else {
        TIFFGetFieldDefaulted(tiff, TIFFTAG_ROWSPERSTRIP, &chunkHeight);
    }
    const tmsize_t chunkBytes = tiled ? TIFFTileSize(tiff) : TIFFStripSize(tiff);
    const tmsize_t rowBytes = tiled ? TIFFTileRowSize(tiff) : TIFFScanlineSize(tiff);
    if (chunkWidth == 0 || chunkHeight == 0 || chunkBytes <= 0 || rowBytes <= 0 || chunkBytes > kLargestChunk)
        return false;
    const bool separate = shape.planar == PLANARCONFIG_SEPARATE;
    const int perPixel = separate ? 1 : shape.samples;
    const int planes = separate ? std::min<int>(shape.samples, shape.Colors() + 1) : 1;
    Bytes chunk(static_cast<size_t>(chunkBytes));
    Bytes samples(size_t(std::min(chunkWidth, shape.width)) * size_t(perPixel));
    for (int plane = 0; plane < planes; ++plane) {
        for (uint64_t top = 0; top < shape.height; top += chunkHeight) {
            for (uint64_t left = 0; left < shape.width; left += chunkWidth) {
                const uint32_t x = uint32_t(left);
                const uint32_t y = uint32_t(top);
                const tmsize_t got = tiled ? TIFFReadEncodedTile(tiff, TIFFComputeTile(tiff, x, y, 0, uint16_t(plane)),
                                                                 chunk.data(), chunkBytes)
                                           : TIFFReadEncodedStrip(tiff, TIFFComputeStrip(tiff, y, uint16_t(plane)),
                                                                  chunk.data(), chunkBytes);
                const uint32_t rows = std::min(chunkHeight, shape.height - y);
                const uint32_t count = std::min(chunkWidth, shape.width - x);
                if (got < tmsize_t(rows) * rowBytes) return false;
                for (uint32_t r = 0; r < rows; ++r)
                    StoreRow(shape, picture, plane, int(y + r), int(x), int(count),
                             chunk.data() + tmsize_t(r) * rowBytes, samples);
            }
        }
    }
    return true;
}

// Colours that were stored multiplied by their alpha get their own strength back.
void UndoPremultiplication(Picture &picture) {
    const int colors = picture.image.bits / 8;
    for (int y = 0; y < picture.image.height; ++y) {
        uint8_t *row = picture.image.Row(y);
        const uint8_t *alpha = picture.alpha.Row(y);
        for (int x = 0; x < picture.image.width; ++x)
            for (int c = 0; c < colors && alpha[x] != 0; ++c)
                row[colors * x + c] = uint8_t(std::min(255, (row[colors * x + c] * 255 + alpha[x] / 2) / alpha[x]));
    }
}

bool ReadPlain(TIFF *tiff, const TiffShape &shape, Picture &picture, Report &report) {
    const int bits = shape.Colors() == 3 ? 24 : shape.bits == 1 ? 1 : shape.bits < 8 ? 4 : 8;
    if (!MakePicture(picture, int(shape.width), int(shape.height), bits, shape.Alpha(), report)) return false;
    uint16_t *map[3] = {};
    if (shape.photometric == PHOTOMETRIC_PALETTE) {
        if (!TIFFGetField(tiff, TIFFTAG_COLORMAP, &map[0], &map[1], &map[2])) return false;
        for (int i = 0; i < 1 << shape.bits; ++i)
            for (int c = 0; c < 3; ++c) picture.image.Palette()[4 * i + 2 - c] = uint8_t(map[c][i] >> 8);
    } else {
        SetGreyRamp(picture.image);
    }
    if (!ReadChunks(tiff, shape, picture)) return false;
    if (picture.alpha && shape.alphaKind == EXTRASAMPLE_ASSOCALPHA) UndoPremultiplication(picture);
    return true;
}

bool ReadConverted(TIFF *tiff, const TiffShape &shape, Picture &picture, Report &report) {
    TIFFRGBAImage image;
    char text[1024] = "";
    if (!TIFFRGBAImageOK(tiff, text) || !TIFFRGBAImageBegin(&image, tiff, 1, text)) return report.Fail(text);
    const std::unique_ptr<TIFFRGBAImage, TiffCloser> owner(&image);
    // Equal orientations: rows come as they are stored, and the tag goes its own way.
    image.orientation = image.req_orientation = ORIENTATION_TOPLEFT;
    const bool alpha = image.alpha != 0;
    if (!MakePicture(picture, int(shape.width), int(shape.height), 24, alpha, report)) return false;
    std::vector<uint32_t> raster(size_t(shape.width) * shape.height);
    if (!TIFFRGBAImageGet(&image, raster.data(), shape.width, shape.height)) return false;
    const uint32_t *pixel = raster.data();
    for (int y = 0; y < int(shape.height); ++y) {
        uint8_t *row = picture.image.Row(y);
        for (int x = 0; x < int(shape.width); ++x, ++pixel) {
            row[3 * x] = uint8_t(TIFFGetB(*pixel));
            row[3 * x + 1] = uint8_t(TIFFGetG(*pixel));
            row[3 * x + 2] = uint8_t(TIFFGetR(*pixel));
            if (alpha) picture.alpha.Row(y)[x] = uint8_t(TIFFGetA(*pixel));
        }
    }
    if (alpha) UndoPremultiplication(picture);
    return true;
}

// A tile may be larger than its picture, and is read whole.
bool CheckTiles(TIFF *tiff, const Limits &limits, Report &report) {
    uint32_t width = 0;
    uint32_t height = 0;
    if (!TIFFIsTiled(tiff) || !TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &width) ||
        !TIFFGetField(tiff, TIFFTAG_TILELENGTH, &height))
        return true;
    if (height == 0 || width <= limits.pixels / height) return true;
    return report.Fail("the tiles are " + std::to_string(width) + " x " + std::to_string(height) +
                       " pixels; the limit is " + std::to_string(limits.pixels) + " in all (--max-pixels)");
}

bool Read(ByteView file, const Limits &limits, Picture &picture, Report &report) {
    std::string error;
    MemoryFile memory{file};
    const auto options = MakeOptions(error);
    const TiffPointer tiff(options ? TIFFClientOpenExt("picture", "r", &memory, MemoryRead, MemoryWrite, MemorySeek,
                                                       NoClose, MemorySize, MemoryMap, NoUnmap, options.get())
                                   : nullptr);
    const auto fail = [&] {
        return report.error.empty() ? report.Fail(error.empty() ? "the file is damaged" : error) : false;
    };
    if (!tiff) return fail();
    const TiffShape shape = ReadShape(tiff.get());
    if (!CheckSize(shape.width, shape.height, limits, report) || !CheckTiles(tiff.get(), limits, report)) return false;
    if (!TIFFLastDirectory(tiff.get())) report.Warn("the file has several pages; only the first is read");
    const bool read = IsPlain(shape) ? ReadPlain(tiff.get(), shape, picture, report)
                                     : ReadConverted(tiff.get(), shape, picture, report);
    if (!read) return fail();
    uint32_t size = 0;
    void *profile = nullptr;
    if (TIFFGetField(tiff.get(), TIFFTAG_ICCPROFILE, &size, &profile)) {
        const auto *bytes = static_cast<const uint8_t *>(profile);
        picture.icc.assign(bytes, bytes + size);
    }
    picture.exif = ExifFromTiff(file);
    return true;
}

bool WriteRows(TIFF *tiff, const Picture &picture, bool raw, Layout layout) {
    // libtiff may work in the row that it is given, so it always gets a copy.
    Bytes row(std::max(picture.image.stride, 4 * size_t(picture.image.width)));
    for (int y = 0; y < picture.image.height; ++y) {
        if (raw) {
            std::memcpy(row.data(), picture.image.Row(y), picture.image.stride);
        } else {
            FillRow(picture, layout, Order::kRgb, y, row.data());
        }
        if (TIFFWriteScanline(tiff, row.data(), uint32_t(y), 0) != 1) return false;
    }
    return true;
}

void DescribePalette(TIFF *tiff, const Bitmap &image) {
    uint16_t map[3][256] = {};
    for (int i = 0; i < image.Colors(); ++i)
        for (int c = 0; c < 3; ++c) map[c][i] = uint16_t(image.Palette()[4 * i + 2 - c] * 257);
    TIFFSetField(tiff, TIFFTAG_COLORMAP, map[0], map[1], map[2]);
}

bool Write(std::FILE *file, const Picture &picture, const Encoding &, Report &report) {
    const Bitmap &image = picture.image;
    std::string error;
    const auto options = MakeOptions(error);
    TiffPointer tiff(options ? TIFFClientOpenExt("picture", "wl", file, DiskRead, DiskWrite, DiskSeek, NoClose,
                                                 DiskSize, NoMap, NoUnmap, options.get())
                             : nullptr);
    if (!tiff) return report.Fail(error);

    const bool ramp = HasGreyRamp(image);
    const bool raw = image.bits <= 8 && !picture.alpha;
    const Layout layout = FullLayout(picture);
    const bool grey = raw ? ramp : SamplesOf(layout) <= 2;
    const int samples = raw ? 1 : SamplesOf(layout);
    TIFFSetField(tiff.get(), TIFFTAG_IMAGEWIDTH, uint32_t(image.width));
    TIFFSetField(tiff.get(), TIFFTAG_IMAGELENGTH, uint32_t(image.height));
    TIFFSetField(tiff.get(), TIFFTAG_BITSPERSAMPLE, raw ? image.bits : 8);
    TIFFSetField(tiff.get(), TIFFTAG_SAMPLESPERPIXEL, samples);
    TIFFSetField(tiff.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tiff.get(), TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE);
    TIFFSetField(tiff.get(), TIFFTAG_PHOTOMETRIC,
                 raw && !ramp ? PHOTOMETRIC_PALETTE
                 : grey       ? PHOTOMETRIC_MINISBLACK
                              : PHOTOMETRIC_RGB);
    if (!raw || (ramp && image.bits == 8)) TIFFSetField(tiff.get(), TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    if (raw && !ramp) DescribePalette(tiff.get(), image);
    if (!raw && HasAlpha(picture)) {
        const uint16_t kind = EXTRASAMPLE_UNASSALPHA;
        TIFFSetField(tiff.get(), TIFFTAG_EXTRASAMPLES, 1, &kind);
    }
    if (CarriesProfile(picture, grey, report))
        TIFFSetField(tiff.get(), TIFFTAG_ICCPROFILE, uint32_t(picture.icc.size()), picture.icc.data());
    TIFFSetField(tiff.get(), TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff.get(), 0));
    if (!WriteRows(tiff.get(), picture, raw, layout) || !TIFFFlush(tiff.get())) return report.Fail(error);
    tiff.reset();
    if (!error.empty()) return report.Fail(error);
    if (!picture.exif.empty() && !AddExifToTiff(file, picture.exif))
        return report.Fail("the EXIF data could not be written");
    return true;
}

} // namespace

const Codec kTiff = {"TIFF", ";tif;tiff;", 0x7FFFFFFF, Recognises, Read, Write};

} // namespace lmf::host
