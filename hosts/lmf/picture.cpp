#include "picture.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

#include "files.h"

namespace lmf::host {

namespace {

constexpr size_t kHeaderBytes = 40;
constexpr uint64_t kBlockLimit = 0xFFFFFFFFu;
const Codec *const kCodecs[] = {&kPng, &kJpeg, &kTiff, &kWebp, &kBmp};

uint64_t StrideOf(int64_t width, int bits) {
    return (uint64_t(width) * unsigned(bits) + 31) / 32 * 4;
}

size_t PixelOffset(int bits) {
    return kHeaderBytes + (bits <= 8 ? size_t{4} << bits : 0);
}

uint8_t AlphaAt(const Picture &picture, const uint8_t *imageRow, const uint8_t *alphaRow, int x) {
    if (alphaRow) return alphaRow[x];
    return picture.image.bits == 32 ? imageRow[4 * x + 3] : 255;
}

// Says which of the wishes the format has no ear for.
void TellUnheard(const Encoding &encoding, const Codec &codec, Report &report) {
    const auto tell = [&](bool asked, unsigned kind, const char *option) {
        if (asked && !(codec.obeys & kind)) report.Warn(std::string(option) + " has no effect on " + codec.name);
    };
    tell(encoding.quality > 0, kObeysQuality, "--quality");
    tell(encoding.chroma != Chroma::kKeep, kObeysJpeg, "--chroma");
    tell(encoding.progressive, kObeysJpeg, "--progressive");
    tell(encoding.lossless, kObeysLossless, "--lossless");
    tell(encoding.compression >= 0, kObeysCompression, "--compression");
}

// Reads a picture of any format.
bool ReadWhole(const std::string &path, const Limits &limits, Picture &picture, Report &report) {
    Bytes file;
    const Codec *codec = nullptr;
    const auto recognise = [&](ByteView start) {
        for (const Codec *candidate : kCodecs)
            if (!codec && candidate->recognises(start)) codec = candidate;
        return codec != nullptr;
    };
    if (!ReadFile(path, recognise, file, report, limits.regularOnly)) return false;
    picture.codec = codec;
    if (!codec->read(file, limits, picture, report)) return false;
    if (limits.undamaged && !report.damage.empty()) return report.Fail("the file is damaged: " + report.damage);
    picture.readWidth = picture.image.width;
    picture.readHeight = picture.image.height;
    return true;
}

} // namespace

void Report::WarnOfDamage(const std::string &text) {
    if (damage.empty()) damage = text;
    Warn("the file is damaged: " + text);
}

bool Report::Fail(std::string text) {
    error = std::move(text);
    return false;
}

void Report::Warn(std::string text) {
    if (std::find(warnings.begin(), warnings.end(), text) == warnings.end()) warnings.push_back(std::move(text));
}

Bitmap::Bitmap(Bitmap &&other) noexcept {
    *this = std::move(other);
}

Bitmap &Bitmap::operator=(Bitmap &&other) noexcept {
    std::swap(block, other.block);
    std::swap(bytes, other.bytes);
    std::swap(width, other.width);
    std::swap(height, other.height);
    std::swap(bits, other.bits);
    std::swap(stride, other.stride);
    return *this;
}

Bitmap::~Bitmap() {
    if (!block) return;
    LmfBlockUnlock(block);
    LmfBlockFree(block);
}

uint8_t *Bitmap::Row(int y) const {
    return bytes + PixelOffset(bits) + size_t(height - 1 - y) * stride;
}

bool MakeBitmap(Bitmap &bitmap, int width, int height, int bits, Report &report) {
    if (width < 1 || height < 1) return report.Fail("the picture has no pixels");
    const uint64_t stride = StrideOf(width, bits);
    const uint64_t pixelBytes = stride * uint64_t(height);
    if (PixelOffset(bits) + pixelBytes > kBlockLimit) return report.Fail("the picture is larger than a block can be");
    Bitmap made;
    made.block = LmfBlockAlloc(PixelOffset(bits) + pixelBytes);
    made.bytes = static_cast<uint8_t *>(LmfBlockLock(made.block));
    if (!made.bytes) return report.Fail("memory is too short for the picture");
    const uint32_t colors = bits <= 8 ? 1u << bits : 0;
    const uint32_t header[10] = {
        kHeaderBytes, uint32_t(width), uint32_t(height), 1u | unsigned(bits) << 16, 0, uint32_t(pixelBytes), 0, 0,
        colors,       colors};
    std::memcpy(made.bytes, header, sizeof header);
    made.width = width;
    made.height = height;
    made.bits = bits;
    made.stride = stride;
    bitmap = std::move(made);
    return true;
}

bool AdoptBitmap(Bitmap &bitmap, LmfHandle block) {
    Bitmap made;
    made.block = block;
    made.bytes = static_cast<uint8_t *>(LmfBlockLock(block));
    const size_t size = LmfBlockSize(block);
    if (!made.bytes || size < kHeaderBytes) return false;
    uint32_t header[10];
    std::memcpy(header, made.bytes, sizeof header);
    made.width = int(header[1]);
    made.height = int(header[2]);
    made.bits = int(header[3] >> 16);
    const bool known = made.bits == 1 || made.bits == 4 || made.bits == 8 || made.bits == 24 || made.bits == 32;
    if (!known || made.width < 1 || made.height < 1) return false;
    made.stride = StrideOf(made.width, made.bits);
    if ((size - kHeaderBytes) / made.stride < unsigned(made.height)) return false;
    if (PixelOffset(made.bits) + made.stride * unsigned(made.height) > size) return false;
    bitmap = std::move(made);
    return true;
}

void SetGreyRamp(Bitmap &bitmap) {
    const int colors = bitmap.Colors();
    for (int i = 0; i < colors; ++i) std::memset(bitmap.Palette() + 4 * i, i * 255 / (colors - 1), 3);
}

bool HasGreyRamp(const Bitmap &bitmap) {
    if (!HasGreyPalette(bitmap)) return false;
    const int colors = bitmap.Colors();
    for (int i = 0; i < colors; ++i)
        if (bitmap.Palette()[4 * i] != i * 255 / (colors - 1)) return false;
    return true;
}

bool HasGreyPalette(const Bitmap &bitmap) {
    const uint8_t *entry = bitmap.Palette();
    for (int i = 0; i < bitmap.Colors(); ++i, entry += 4)
        if (entry[0] != entry[1] || entry[1] != entry[2]) return false;
    return bitmap.bits <= 8;
}

const char *ModeName(const Bitmap &bitmap) {
    if (bitmap.bits > 8) return "true color";
    if (bitmap.bits == 1) return "mono";
    return bitmap.bits == 8 && HasGreyRamp(bitmap) ? "grey" : "palette";
}

void IndexRow(const Bitmap &bitmap, int y, uint8_t *out) {
    const uint8_t *row = bitmap.Row(y);
    const int width = bitmap.width;
    if (bitmap.bits == 8) {
        std::memcpy(out, row, size_t(width));
    } else if (bitmap.bits == 4) {
        for (int x = 0; x < width; ++x) out[x] = x & 1 ? row[x >> 1] & 15 : row[x >> 1] >> 4;
    } else {
        for (int x = 0; x < width; ++x) out[x] = row[x >> 3] >> (7 - (x & 7)) & 1;
    }
}

bool HasAlpha(const Picture &picture) {
    return picture.alpha || picture.image.bits == 32;
}

Layout FullLayout(const Picture &picture) {
    if (HasGreyPalette(picture.image)) return HasAlpha(picture) ? Layout::kGreyAlpha : Layout::kGrey;
    return HasAlpha(picture) ? Layout::kColorAlpha : Layout::kColor;
}

int SamplesOf(Layout layout) {
    return int(layout) + 1;
}

void FillRow(const Picture &picture, Layout layout, Order order, int y, uint8_t *out) {
    const Bitmap &image = picture.image;
    const uint8_t *row = image.Row(y);
    const uint8_t *alpha = picture.alpha ? picture.alpha.Row(y) : nullptr;
    const int samples = SamplesOf(layout);
    const bool withAlpha = layout == Layout::kGreyAlpha || layout == Layout::kColorAlpha;
    const int first = order == Order::kBgr ? 0 : 2;
    std::vector<uint8_t> indices;
    if (image.bits <= 8) {
        indices.resize(size_t(image.width));
        IndexRow(image, y, indices.data());
    }
    const int step = image.bits / 8;
    for (int x = 0; x < image.width; ++x, out += samples) {
        const uint8_t *color = image.bits <= 8 ? image.Palette() + 4 * indices[size_t(x)] : row + step * x;
        out[0] = color[samples > 2 ? first : 0];
        if (samples > 2) {
            out[1] = color[1];
            out[2] = color[2 - first];
        }
        if (withAlpha) out[samples - 1] = AlphaAt(picture, row, alpha, x);
    }
}

void SplitAlphaRow(Picture &picture, int y, int samples, const uint8_t *row) {
    uint8_t *image = picture.image.Row(y);
    uint8_t *alpha = picture.alpha.Row(y);
    const int colors = samples - 1;
    for (int x = 0; x < picture.image.width; ++x, image += colors, row += samples) {
        for (int c = 0; c < colors; ++c) image[c] = row[c];
        alpha[x] = row[colors];
    }
}

bool MakePicture(Picture &picture, int width, int height, int bits, bool alpha, Report &report) {
    if (picture.accepts && !picture.accepts(bits, report)) return false;
    if (!MakeBitmap(picture.image, width, height, bits, report)) return false;
    if (!alpha) return true;
    if (!MakeBitmap(picture.alpha, width, height, 8, report)) return false;
    SetGreyRamp(picture.alpha);
    return true;
}

bool CheckSize(int64_t width, int64_t height, const Limits &limits, Report &report) {
    if (width < 1 || height < 1) return report.Fail("the picture has no pixels");
    const std::string size = "the picture is " + std::to_string(width) + " x " + std::to_string(height) + " pixels; ";
    if (width > limits.side || height > limits.side)
        return report.Fail(size + "the limit is " + std::to_string(limits.side) + " a side (--max-side)");
    if (width > limits.pixels / height)
        return report.Fail(size + "the limit is " + std::to_string(limits.pixels) + " in all (--max-pixels)");
    return true;
}

bool CarriesProfile(const Metadata &metadata, bool grey, size_t longest, Report &report) {
    const Bytes &icc = metadata.icc;
    if (icc.empty()) return false;
    // Bytes 16 to 19 of a profile name its colour space.
    const bool fits = icc.size() >= 128 && std::memcmp(icc.data() + 16, grey ? "GRAY" : "RGB ", 4) == 0;
    if (fits && icc.size() <= longest) return true;
    report.Warn(fits ? "the color profile is too long for this format and is left out"
                     : "the color profile does not fit the result and is left out");
    return false;
}

int QualityFor(const Picture &picture, const Encoding &encoding) {
    constexpr int kUsual = 92;
    if (encoding.quality > 0) return encoding.quality;
    return picture.jpeg.quality > 0 ? picture.jpeg.quality : kUsual;
}

void TellSixteenBits(Picture &picture, Report &report) {
    picture.fileBits = 16;
    report.Warn("16 bits a channel become 8");
}

const Codec *CodecForName(const std::string &path) {
    const size_t dot = path.rfind('.');
    if (dot == std::string::npos || path.find('/', dot) != std::string::npos) return nullptr;
    std::string extension = path.substr(dot) + ";";
    extension[0] = ';';
    for (char &c : extension)
        if (c >= 'A' && c <= 'Z') c = char(c + 'a' - 'A');
    for (const Codec *codec : kCodecs)
        if (std::strstr(codec->extensions, extension.c_str())) return codec;
    return nullptr;
}

// Memory may also end in a codec or a container.
bool ReadPicture(const std::string &path, const Limits &limits, Picture &picture, Report &report) {
    try {
        return ReadWhole(path, limits, picture, report);
    } catch (const std::bad_alloc &) {
        picture = {};
        return report.Fail("memory is too short for the picture");
    }
}

bool WritePicture(const std::string &path, const Codec *codec, const Picture &picture, const Encoding &encoding,
                  Report &report) {
    if (!codec) codec = CodecForName(path);
    if (!codec) codec = picture.codec;
    const int side = std::max(picture.image.width, picture.image.height);
    if (side > codec->longestSide)
        return report.Fail(std::string(codec->name) + " holds at most " + std::to_string(codec->longestSide) +
                           " pixels a side, and the result has " + std::to_string(side));
    TellUnheard(encoding, *codec, report);
    Metadata metadata = picture.metadata;
    if (encoding.strip) StripMetadata(metadata, report);
    const Bitmap &image = picture.image;
    const bool resized = image.width != picture.readWidth || image.height != picture.readHeight;
    const Described described = {image.width, image.height, resized, HasGreyPalette(image)};
    metadata = FitMetadata(std::move(metadata), described, codec->holds, codec->name, report);
    OutputFile output;
    if (!output.Open(path, report) || !codec->write(output.file, picture, metadata, encoding, report)) return false;
    return output.Commit(report);
}

} // namespace lmf::host
