// WebP through libwebp: always 24-bit, with or without alpha.
#include <webp/decode.h>
#include <webp/encode.h>
#include <webp/mux.h>

#include <climits>
#include <cstring>

#include "picture.h"

namespace lmf::host {

namespace {

struct Mux {
    WebPMux *mux;
    ~Mux() { WebPMuxDelete(mux); }
};

struct MuxData {
    WebPData data{};
    ~MuxData() { WebPDataClear(&data); }
};

struct Encoder {
    WebPPicture picture{};
    WebPMemoryWriter output{};

    ~Encoder() {
        WebPPictureFree(&picture);
        WebPMemoryWriterClear(&output);
    }
};

bool Recognises(ByteView start) {
    return start.size() >= 12 && std::memcmp(start.data(), "RIFF", 4) == 0 &&
           std::memcmp(start.data() + 8, "WEBP", 4) == 0;
}

const char *StatusText(VP8StatusCode status) {
    switch (status) {
    case VP8_STATUS_OUT_OF_MEMORY:
        return "memory is too short for the picture";
    case VP8_STATUS_NOT_ENOUGH_DATA:
        return "the file ends too early";
    case VP8_STATUS_UNSUPPORTED_FEATURE:
        return "the file uses a feature that is not supported";
    default:
        return "the file is damaged";
    }
}

ByteView Chunk(const WebPMux *mux, const char *name) {
    WebPData data{};
    if (!mux || WebPMuxGetChunk(mux, name, &data) != WEBP_MUX_OK) return {};
    return {data.bytes, data.size};
}

bool Read(ByteView file, const Limits &limits, Picture &picture, Report &report) {
    WebPDecoderConfig config;
    if (!WebPInitDecoderConfig(&config)) return report.Fail("the installed libwebp is too old");
    VP8StatusCode status = WebPGetFeatures(file.data(), file.size(), &config.input);
    if (status != VP8_STATUS_OK) return report.Fail(StatusText(status));
    if (config.input.has_animation) return report.Fail("this is an animation; only still pictures are read");
    const int width = config.input.width;
    const int height = config.input.height;
    const bool alpha = config.input.has_alpha;
    if (!CheckSize(width, height, limits, report)) return false;
    if (!MakePicture(picture, width, height, 24, alpha, report)) return false;

    Bytes scratch;
    WebPRGBABuffer &target = config.output.u.RGBA;
    config.output.is_external_memory = 1;
    config.output.colorspace = alpha ? MODE_BGRA : MODE_BGR;
    if (alpha) {
        scratch.resize(4 * size_t(width) * size_t(height));
        target = {scratch.data(), 4 * width, scratch.size()};
    } else {
        // Bitmaps run from the bottom row up.
        config.options.flip = 1;
        target = {picture.image.Row(height - 1), int(picture.image.stride), picture.image.stride * size_t(height)};
    }
    status = WebPDecode(file.data(), file.size(), &config);
    if (status != VP8_STATUS_OK) return report.Fail(StatusText(status));
    if (alpha)
        for (int y = 0; y < height; ++y) SplitAlphaRow(picture, y, 4, scratch.data() + 4 * size_t(width) * size_t(y));

    const WebPData data = {file.data(), file.size()};
    const Mux mux{WebPMuxCreate(&data, 0)};
    const auto bytesOf = [&](const char *name) {
        const ByteView chunk = Chunk(mux.mux, name);
        return Bytes(chunk.begin(), chunk.end());
    };
    picture.metadata.icc = bytesOf("ICCP");
    picture.metadata.xmp = bytesOf("XMP ");
    picture.metadata.exif = ExifBlock(Chunk(mux.mux, "EXIF"));
    return true;
}

// Puts the metadata around the bare picture and gives the whole file.
bool Assemble(const WebPMemoryWriter &bare, const Metadata &metadata, bool withProfile, MuxData &whole) {
    const WebPData image = {bare.mem, bare.size};
    const Mux mux{WebPMuxNew()};
    const auto add = [&](const char *name, const Bytes &bytes, bool wanted) {
        const WebPData data = {bytes.data(), bytes.size()};
        return !wanted || WebPMuxSetChunk(mux.mux, name, &data, 0) == WEBP_MUX_OK;
    };
    return mux.mux && WebPMuxSetImage(mux.mux, &image, 0) == WEBP_MUX_OK && add("ICCP", metadata.icc, withProfile) &&
           add("EXIF", metadata.exif, !metadata.exif.empty()) && add("XMP ", metadata.xmp, !metadata.xmp.empty()) &&
           WebPMuxAssemble(mux.mux, &whole.data) == WEBP_MUX_OK;
}

bool Write(std::FILE *file, const Picture &picture, const Metadata &metadata, const Encoding &encoding,
           Report &report) {
    const Bitmap &image = picture.image;
    const bool alpha = HasAlpha(picture);
    const int samples = alpha ? 4 : 3;
    WebPConfig config;
    Encoder encoder;
    if (!WebPConfigInit(&config) || !WebPPictureInit(&encoder.picture))
        return report.Fail("the installed libwebp is too old");
    config.lossless = encoding.lossless;
    config.exact = encoding.lossless; // colours under full transparency are part of the result too
    if (!encoding.lossless) config.quality = float(QualityFor(picture, encoding));
    encoder.picture.use_argb = 1;
    encoder.picture.width = image.width;
    encoder.picture.height = image.height;
    WebPMemoryWriterInit(&encoder.output);
    encoder.picture.writer = WebPMemoryWrite;
    encoder.picture.custom_ptr = &encoder.output;

    Bytes pixels(size_t(samples) * size_t(image.width) * size_t(image.height));
    const size_t rowBytes = size_t(samples) * size_t(image.width);
    for (int y = 0; y < image.height; ++y)
        FillRow(picture, alpha ? Layout::kColorAlpha : Layout::kColor, Order::kBgr, y,
                pixels.data() + rowBytes * size_t(y));
    const bool imported = alpha ? WebPPictureImportBGRA(&encoder.picture, pixels.data(), int(rowBytes))
                                : WebPPictureImportBGR(&encoder.picture, pixels.data(), int(rowBytes));
    if (!imported || !WebPEncode(&config, &encoder.picture))
        return report.Fail("WebP cannot encode this picture (code " + std::to_string(encoder.picture.error_code) + ")");

    const bool withProfile = CarriesProfile(metadata, false, SIZE_MAX, report);
    ByteView output{encoder.output.mem, encoder.output.size};
    MuxData whole;
    if (withProfile || !metadata.exif.empty() || !metadata.xmp.empty()) {
        if (!Assemble(encoder.output, metadata, withProfile, whole))
            return report.Fail("WebP cannot hold the metadata");
        output = {whole.data.bytes, whole.data.size};
    }
    if (std::fwrite(output.data(), 1, output.size(), file) != output.size())
        return report.Fail("the file could not be written");
    return true;
}

constexpr unsigned kHolds = kHoldsExif | kHoldsXmp;

} // namespace

const Codec kWebp = {"WebP", ";webp;", WEBP_MAX_DIMENSION, kHolds, kObeysQuality | kObeysLossless, Recognises,
                     Read,   Write};

} // namespace lmf::host
