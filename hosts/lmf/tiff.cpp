// TIFF through libtiff. Grey, palettes and RGB keep their depth; other color models become 24-bit.
#include <tiffio.h>
#include <unistd.h>

#include <algorithm>
#include <cstdarg>
#include <cstring>
#include <memory>

#include "picture.h"

namespace lmf::host {

namespace {

constexpr tmsize_t kLargestAllocation = tmsize_t{1} << 32;
constexpr tmsize_t kLargestTile = tmsize_t{128} << 20;
constexpr size_t kMostWarnings = 4;

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

struct TiffMessages {
    std::string error;
    std::vector<std::string> warnings;
};

// Keeps the first error: those after it follow from it.
int OnError(TIFF *, void *user, const char *, const char *format, va_list arguments) {
    std::string &error = static_cast<TiffMessages *>(user)->error;
    char text[256];
    std::vsnprintf(text, sizeof text, format, arguments);
    if (error.empty()) error = text;
    return 1;
}

// Tags that only other programs know are no damage.
int OnWarning(TIFF *, void *user, const char *, const char *format, va_list arguments) {
    std::vector<std::string> &warnings = static_cast<TiffMessages *>(user)->warnings;
    char text[256];
    std::vsnprintf(text, sizeof text, format, arguments);
    if (warnings.size() < kMostWarnings && !std::strstr(text, "Unknown field")) warnings.push_back(text);
    return 1;
}

std::unique_ptr<TIFFOpenOptions, TiffCloser> MakeOptions(TiffMessages &messages) {
    std::unique_ptr<TIFFOpenOptions, TiffCloser> options(TIFFOpenOptionsAlloc());
    if (!options) return options;
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), OnError, &messages);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), OnWarning, &messages);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), kLargestAllocation);
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

int PlanesOf(const TiffShape &shape) {
    return shape.planar == PLANARCONFIG_SEPARATE ? std::min<int>(shape.samples, shape.Colors() + 1) : 1;
}

// Reads row by row: a strip may be as long as the picture, and hold far more than is kept of it.
bool ReadRows(TIFF *tiff, const TiffShape &shape, Picture &picture) {
    const tmsize_t rowBytes = TIFFScanlineSize(tiff);
    if (rowBytes <= 0) return false;
    Bytes row(static_cast<size_t>(rowBytes));
    Bytes samples(size_t(shape.width) * (shape.planar == PLANARCONFIG_SEPARATE ? 1 : shape.samples));
    for (int plane = 0; plane < PlanesOf(shape); ++plane) {
        for (uint32_t y = 0; y < shape.height; ++y) {
            if (TIFFReadScanline(tiff, row.data(), y, uint16_t(plane)) != 1) return false;
            StoreRow(shape, picture, plane, int(y), 0, int(shape.width), row.data(), samples);
        }
    }
    return true;
}

bool ReadTiles(TIFF *tiff, const TiffShape &shape, Picture &picture) {
    uint32_t tileWidth = 0;
    uint32_t tileHeight = 0;
    TIFFGetField(tiff, TIFFTAG_TILEWIDTH, &tileWidth);
    TIFFGetField(tiff, TIFFTAG_TILELENGTH, &tileHeight);
    const tmsize_t tileBytes = TIFFTileSize(tiff);
    const tmsize_t rowBytes = TIFFTileRowSize(tiff);
    if (tileWidth == 0 || tileHeight == 0 || tileBytes <= 0 || rowBytes <= 0) return false;
    Bytes tile(static_cast<size_t>(tileBytes));
    Bytes samples(size_t(std::min(tileWidth, shape.width)) *
                  (shape.planar == PLANARCONFIG_SEPARATE ? 1 : shape.samples));
    for (int plane = 0; plane < PlanesOf(shape); ++plane) {
        for (uint64_t top = 0; top < shape.height; top += tileHeight) {
            for (uint64_t left = 0; left < shape.width; left += tileWidth) {
                const uint32_t x = uint32_t(left);
                const uint32_t y = uint32_t(top);
                const uint32_t index = TIFFComputeTile(tiff, x, y, 0, uint16_t(plane));
                const uint32_t rows = std::min(tileHeight, shape.height - y);
                const uint32_t count = std::min(tileWidth, shape.width - x);
                if (TIFFReadEncodedTile(tiff, index, tile.data(), tileBytes) < tmsize_t(rows) * rowBytes) return false;
                for (uint32_t r = 0; r < rows; ++r)
                    StoreRow(shape, picture, plane, int(y + r), int(x), int(count),
                             tile.data() + tmsize_t(r) * rowBytes, samples);
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
    if (!(TIFFIsTiled(tiff) ? ReadTiles(tiff, shape, picture) : ReadRows(tiff, shape, picture))) return false;
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

// Whether the file has the inks in rows that a profile can convert.
bool HasInkRows(TIFF *tiff, const TiffShape &shape) {
    return shape.photometric == PHOTOMETRIC_SEPARATED && shape.samples == 4 && shape.bits == 8 &&
           shape.planar == PLANARCONFIG_CONTIG && !TIFFIsTiled(tiff);
}

bool ReadInks(TIFF *tiff, const TiffShape &shape, const InkConverter &inks, Picture &picture, Report &report) {
    if (!MakePicture(picture, int(shape.width), int(shape.height), 24, false, report)) return false;
    Bytes row(static_cast<size_t>(std::max<tmsize_t>(TIFFScanlineSize(tiff), 4 * tmsize_t(shape.width))));
    for (uint32_t y = 0; y < shape.height; ++y) {
        if (TIFFReadScanline(tiff, row.data(), y, 0) != 1) return false;
        inks.Convert(row.data(), int(shape.width), picture.image.Row(int(y)));
    }
    return true;
}

// A tile is read whole, and may be far larger than its picture. libtiff's own conversion does the same with strips.
bool CheckChunks(TIFF *tiff, const TiffShape &shape, Report &report) {
    const bool tiled = TIFFIsTiled(tiff);
    if (!tiled && IsPlain(shape)) return true;
    const tmsize_t bytes = tiled ? TIFFTileSize(tiff) : TIFFStripSize(tiff);
    const tmsize_t most = tiled ? kLargestTile : kLargestTile + 4 * tmsize_t(shape.width) * shape.height;
    if (bytes <= most) return true;
    return report.Fail((tiled ? "a tile of the file takes " : "a strip of the file takes ") +
                       std::to_string(bytes >> 20) + " MB; the limit is " + std::to_string(most >> 20));
}

// The data of a tag that is counted by 32 bits. What one item takes in memory is libtiff's affair, not the file's.
Bytes BytesOfTag(TIFF *tiff, uint32_t tag) {
    uint32_t count = 0;
    void *data = nullptr;
    const TIFFField *field = TIFFFindField(tiff, tag, TIFF_ANY);
    if (!field || !TIFFGetField(tiff, tag, &count, &data)) return {};
    const auto *bytes = static_cast<const uint8_t *>(data);
    return Bytes(bytes, bytes + size_t(count) * size_t(std::max(TIFFFieldSetGetSize(field), 1)));
}

// Whether the file tells more than the tags that this reader takes itself.
bool TellsMore(TIFF *tiff) {
    static constexpr uint32_t kOwn[] = {TIFFTAG_ICCPROFILE, TIFFTAG_XMLPACKET, TIFFTAG_RICHTIFFIPTC};
    uint16_t orientation = 0;
    if (TIFFGetField(tiff, TIFFTAG_ORIENTATION, &orientation)) return true;
    for (int i = 0; i < TIFFGetTagListCount(tiff); ++i)
        if (std::find(std::begin(kOwn), std::end(kOwn), TIFFGetTagListEntry(tiff, i)) == std::end(kOwn)) return true;
    return false;
}

// Exiv2 reads no BigTIFF file. Of its EXIF data this keeps what decides how the picture is looked at.
Bytes OrientationOnly(TIFF *tiff, Report &report) {
    uint16_t orientation = 0;
    uint64_t directory = 0;
    if (TIFFGetField(tiff, TIFFTAG_EXIFIFD, &directory) || TIFFGetField(tiff, TIFFTAG_GPSIFD, &directory))
        report.Warn("the EXIF data of a BigTIFF file is not read, but for the orientation");
    if (!TIFFGetField(tiff, TIFFTAG_ORIENTATION, &orientation)) return {};
    return {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 0x12, 1, 3, 0, 1, 0, 0, 0, uint8_t(orientation), 0, 0, 0, 0, 0, 0, 0};
}

void ReadMetadata(TIFF *tiff, ByteView file, Metadata &metadata, Report &report) {
    metadata.icc = BytesOfTag(tiff, TIFFTAG_ICCPROFILE);
    metadata.xmp = BytesOfTag(tiff, TIFFTAG_XMLPACKET);
    metadata.iptc = BytesOfTag(tiff, TIFFTAG_RICHTIFFIPTC);
    float x = 0, y = 0;
    uint16_t unit = RESUNIT_INCH;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_RESOLUTIONUNIT, &unit);
    if (TIFFGetField(tiff, TIFFTAG_XRESOLUTION, &x) && TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &y) && x > 0 && y > 0) {
        const double perMetre = unit == RESUNIT_INCH ? 1 / 0.0254 : unit == RESUNIT_CENTIMETER ? 100 : 1;
        metadata.density = {x * perMetre, y * perMetre, unit != RESUNIT_NONE};
    }
    if (!TellsMore(tiff)) return;
    const bool big = file[2] == 43 || file[3] == 43;
    metadata.exif = big ? OrientationOnly(tiff, report) : ExifOfTiff(file, report);
}

bool Read(ByteView file, const Limits &limits, Picture &picture, Report &report) {
    TiffMessages messages;
    MemoryFile memory{file};
    const auto options = MakeOptions(messages);
    const TiffPointer tiff(options ? TIFFClientOpenExt("picture", "r", &memory, MemoryRead, MemoryWrite, MemorySeek,
                                                       NoClose, MemorySize, MemoryMap, NoUnmap, options.get())
                                   : nullptr);
    const auto fail = [&] {
        if (!report.error.empty()) return false;
        return report.Fail(messages.error.empty() ? "the file is damaged" : messages.error);
    };
    if (!tiff) return fail();
    const TiffShape shape = ReadShape(tiff.get());
    if (!CheckSize(shape.width, shape.height, limits, report) || !CheckChunks(tiff.get(), shape, report)) return false;
    if (!TIFFLastDirectory(tiff.get())) report.Warn("the file has several pages; only the first is read");
    Metadata &metadata = picture.metadata;
    ReadMetadata(tiff.get(), file, metadata, report);
    InkConverter inks;
    if (shape.photometric == PHOTOMETRIC_SEPARATED) {
        const bool exact =
            HasInkRows(tiff.get(), shape) && !metadata.icc.empty() && inks.Open(metadata.icc, false, report);
        report.Warn(exact ? "the inks (CMYK) become sRGB colors, by the file's profile"
                          : "the inks (CMYK) become colors without a profile that tells them exactly");
        metadata.icc.clear();
    }
    const bool read = inks.IsOpen()    ? ReadInks(tiff.get(), shape, inks, picture, report)
                      : IsPlain(shape) ? ReadPlain(tiff.get(), shape, picture, report)
                                       : ReadConverted(tiff.get(), shape, picture, report);
    if (!read) return fail();
    if (shape.bits == 16) TellSixteenBits(picture, report);
    for (const std::string &warning : messages.warnings) report.WarnOfDamage(warning);
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

bool DescribePalette(TIFF *tiff, const Bitmap &image) {
    uint16_t map[3][256] = {};
    for (int i = 0; i < image.Colors(); ++i)
        for (int c = 0; c < 3; ++c) map[c][i] = uint16_t(image.Palette()[4 * i + 2 - c] * 257);
    return TIFFSetField(tiff, TIFFTAG_COLORMAP, map[0], map[1], map[2]) == 1;
}

// Sets the tags that tell how the rows are to be read. libtiff would write a file without a tag that it could not set.
bool SetLayout(TIFF *tiff, const Picture &picture, bool raw, Layout layout) {
    const Bitmap &image = picture.image;
    const bool ramp = HasGreyRamp(image);
    const bool grey = raw ? ramp : SamplesOf(layout) <= 2;
    const uint16_t alpha = EXTRASAMPLE_UNASSALPHA;
    return TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, uint32_t(image.width)) &&
           TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, uint32_t(image.height)) &&
           TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, raw ? image.bits : 8) &&
           TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, raw ? 1 : SamplesOf(layout)) &&
           TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG) &&
           TIFFSetField(tiff, TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE) &&
           TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC,
                        raw && !ramp ? PHOTOMETRIC_PALETTE
                        : grey       ? PHOTOMETRIC_MINISBLACK
                                     : PHOTOMETRIC_RGB) &&
           ((raw && !(ramp && image.bits == 8)) || TIFFSetField(tiff, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL)) &&
           (!raw || ramp || DescribePalette(tiff, image)) &&
           (raw || !HasAlpha(picture) || TIFFSetField(tiff, TIFFTAG_EXTRASAMPLES, 1, &alpha)) &&
           TIFFSetField(tiff, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tiff, 0));
}

bool SetMetadata(TIFF *tiff, const Metadata &metadata, bool withProfile) {
    const Density &density = metadata.density;
    const double perInch = density.absolute ? 0.0254 : 1;
    return (!withProfile ||
            TIFFSetField(tiff, TIFFTAG_ICCPROFILE, uint32_t(metadata.icc.size()), metadata.icc.data())) &&
           (density.x <= 0 ||
            (TIFFSetField(tiff, TIFFTAG_XRESOLUTION, density.x * perInch) &&
             TIFFSetField(tiff, TIFFTAG_YRESOLUTION, density.y * perInch) &&
             TIFFSetField(tiff, TIFFTAG_RESOLUTIONUNIT, density.absolute ? RESUNIT_INCH : RESUNIT_NONE)));
}

// Lets Exiv2 put the metadata into the finished file, in memory.
bool AddMetadata(std::FILE *file, const Metadata &metadata, Report &report) {
    if (metadata.exif.empty() && metadata.xmp.empty() && metadata.iptc.empty()) return true;
    if (std::fseek(file, 0, SEEK_END) != 0) return report.Fail("the file could not be written");
    Bytes bytes(static_cast<size_t>(std::max(std::ftell(file), 0L)));
    std::rewind(file);
    if (std::fread(bytes.data(), 1, bytes.size(), file) != bytes.size())
        return report.Fail("the file could not be written");
    if (!AddToTiff(bytes, metadata, report)) {
        report.Warn("EXIF, XMP and IPTC could not be put into the file");
        return true;
    }
    std::rewind(file);
    const bool written = std::fwrite(bytes.data(), 1, bytes.size(), file) == bytes.size() && std::fflush(file) == 0 &&
                         ftruncate(fileno(file), off_t(bytes.size())) == 0;
    return written || report.Fail("the file could not be written");
}

bool Write(std::FILE *file, const Picture &picture, const Metadata &metadata, const Encoding &, Report &report) {
    const Bitmap &image = picture.image;
    TiffMessages messages;
    const auto options = MakeOptions(messages);
    const auto fail = [&] {
        return report.Fail(messages.error.empty() ? "memory is too short to write the picture" : messages.error);
    };
    TiffPointer tiff(options ? TIFFClientOpenExt("picture", "wl", file, DiskRead, DiskWrite, DiskSeek, NoClose,
                                                 DiskSize, NoMap, NoUnmap, options.get())
                             : nullptr);
    if (!tiff) return fail();
    const bool raw = image.bits <= 8 && !picture.alpha;
    const Layout layout = FullLayout(picture);
    const bool grey = raw ? HasGreyRamp(image) : SamplesOf(layout) <= 2;
    const bool withProfile = CarriesProfile(metadata, grey, SIZE_MAX, report);
    if (!SetLayout(tiff.get(), picture, raw, layout) || !SetMetadata(tiff.get(), metadata, withProfile) ||
        !WriteRows(tiff.get(), picture, raw, layout) || !TIFFFlush(tiff.get()))
        return fail();
    tiff.reset();
    if (!messages.error.empty()) return fail();
    return AddMetadata(file, metadata, report);
}

constexpr unsigned kHolds = kHoldsExif | kHoldsXmp | kHoldsIptc | kHoldsDensity;

} // namespace

const Codec kTiff = {"TIFF", ";tif;tiff;", 0x7FFFFFFF, kHolds, kObeysLossless, Recognises, Read, Write};

} // namespace lmf::host
