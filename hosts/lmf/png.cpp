// PNG through libpng. Palettes and grey keep their depth, as far as a bitmap has it.
#include <png.h>
#include <zlib.h>

#include <algorithm>
#include <csetjmp>
#include <cstring>

#include "picture.h"

namespace lmf::host {

namespace {

constexpr size_t kMostWarnings = 4;
constexpr int kUsualCompression = 4;       // a third of the time of zlib's own 6, for a twentieth more bytes
constexpr size_t kLongestChunk = 64 << 20; // also of a profile when it is unpacked
constexpr size_t kLongestText = 16 << 20;  // unpacked
constexpr png_byte kOwnChunks[] = "tEXt\0zTXt\0iTXt\0acTL"; // five bytes each
constexpr char kXmpKeyword[] = "XML:com.adobe.xmp";
constexpr char kCommentKeyword[] = "Comment";

// libpng leaves by longjmp, so nothing with a destructor may live in the functions that call it: whatever needs
// one belongs to this structure, which the caller owns.
struct PngMessages {
    std::string error;
    std::vector<std::string> warnings;
};

struct PngReader {
    png_structp png = nullptr;
    png_infop info = nullptr;
    ByteView rest;
    PngMessages messages;
    Bytes scratch;
    std::vector<png_bytep> rows;
    std::vector<TextChunk> texts;
    bool animated = false;
    int depth = 0;

    ~PngReader() { png_destroy_read_struct(&png, &info, nullptr); }
};

struct PngWriter {
    png_structp png = nullptr;
    png_infop info = nullptr;
    PngMessages messages;
    Bytes row;
    std::vector<TextChunk> texts;

    ~PngWriter() { png_destroy_write_struct(&png, &info); }
};

[[noreturn]] void OnError(png_structp png, png_const_charp text) {
    static_cast<PngMessages *>(png_get_error_ptr(png))->error = text;
    png_longjmp(png, 1);
}

void OnWarning(png_structp png, png_const_charp text) {
    std::vector<std::string> &warnings = static_cast<PngMessages *>(png_get_error_ptr(png))->warnings;
    // This one is about profiles that half of all programs write, and that do no harm.
    if (warnings.size() < kMostWarnings && !std::strstr(text, "known incorrect sRGB profile")) warnings.push_back(text);
}

// Takes the chunks that libpng would unpack for nobody: any number of texts, each of which may hold a thousand times
// its size.
int OnChunk(png_structp png, png_unknown_chunkp chunk) {
    auto *reader = static_cast<PngReader *>(png_get_user_chunk_ptr(png));
    const std::string type(reinterpret_cast<const char *>(chunk->name));
    if (type == "acTL") {
        reader->animated = true;
    } else {
        reader->texts.push_back({type, Bytes(chunk->data, chunk->data + chunk->size)});
    }
    return 1;
}

void OnRead(png_structp png, png_bytep out, size_t count) {
    ByteView &rest = static_cast<PngReader *>(png_get_io_ptr(png))->rest;
    if (count > rest.size()) png_error(png, "the file ends too early");
    std::memcpy(out, rest.data(), count);
    rest = rest.subspan(count);
}

bool Recognises(ByteView start) {
    return start.size() >= 8 && png_sig_cmp(start.data(), 0, 8) == 0;
}

void ReadPalette(PngReader &reader, Bitmap &image) {
    png_colorp colors = nullptr;
    int count = 0;
    if (!png_get_PLTE(reader.png, reader.info, &colors, &count)) return;
    for (int i = 0; i < count && i < image.Colors(); ++i) {
        uint8_t *entry = image.Palette() + 4 * i;
        entry[0] = colors[i].blue;
        entry[1] = colors[i].green;
        entry[2] = colors[i].red;
    }
}

// The alpha of each index, for the pictures whose transparency hangs on the index.
void IndexAlpha(PngReader &reader, bool palette, uint8_t (&alpha)[256]) {
    std::memset(alpha, 255, sizeof alpha);
    png_bytep values = nullptr;
    int count = 0;
    png_color_16p key = nullptr;
    png_get_tRNS(reader.png, reader.info, &values, &count, &key);
    if (palette && values) std::memcpy(alpha, values, size_t(count < 256 ? count : 256));
    if (!palette && key && key->gray < 256) alpha[key->gray] = 0;
}

// Unpacks what a deflated text holds; nothing if it is damaged or too long.
Bytes Inflated(ByteView packed) {
    Bytes out;
    z_stream stream = {};
    if (inflateInit(&stream) != Z_OK) return out;
    stream.next_in = const_cast<uint8_t *>(packed.data());
    stream.avail_in = unsigned(packed.size());
    int status = Z_OK;
    while (status == Z_OK && out.size() < kLongestText) {
        const size_t filled = out.size();
        out.resize(filled + 65536);
        stream.next_out = out.data() + filled;
        stream.avail_out = 65536;
        status = inflate(&stream, Z_NO_FLUSH);
        out.resize(out.size() - stream.avail_out);
    }
    inflateEnd(&stream);
    if (status != Z_STREAM_END) out.clear();
    return out;
}

// Gives the bytes of a text without its keyword and what stands between.
Bytes TextOf(const TextChunk &chunk) {
    ByteView rest(chunk.data);
    const auto skipName = [&] {
        const void *end = rest.empty() ? nullptr : std::memchr(rest.data(), 0, rest.size());
        rest = end ? rest.subspan(size_t(static_cast<const uint8_t *>(end) - rest.data()) + 1) : ByteView();
    };
    skipName();
    bool packed = chunk.type == "zTXt";
    if (packed) {
        rest = rest.subspan(std::min<size_t>(1, rest.size()));
    } else if (chunk.type == "iTXt" && rest.size() >= 2) {
        packed = rest[0] != 0;
        rest = rest.subspan(2);
        skipName(); // the language
        skipName(); // the keyword in that language
    }
    return packed ? Inflated(rest) : Bytes(rest.begin(), rest.end());
}

void ReadMetadata(PngReader &reader, Metadata &metadata) {
    png_charp name = nullptr;
    int method = 0;
    png_bytep bytes = nullptr;
    png_uint_32 size = 0;
    if (png_get_iCCP(reader.png, reader.info, &name, &method, &bytes, &size)) metadata.icc.assign(bytes, bytes + size);
    if (png_get_eXIf_1(reader.png, reader.info, &size, &bytes)) metadata.exif = ExifBlock(ByteView(bytes, size));
    for (TextChunk &text : reader.texts) {
        const std::string keyword = text.Keyword();
        if (keyword == kXmpKeyword) {
            metadata.xmp = TextOf(text);
        } else if (keyword == kCommentKeyword && metadata.comment.empty()) {
            const Bytes comment = TextOf(text);
            metadata.comment.assign(comment.begin(), comment.end());
        } else {
            metadata.texts.push_back(std::move(text));
        }
    }
    png_uint_32 x = 0, y = 0;
    int unit = 0;
    if (png_get_pHYs(reader.png, reader.info, &x, &y, &unit))
        metadata.density = {double(x), double(y), unit == PNG_RESOLUTION_METER};
    ColorTags &colors = metadata.colors;
    double *chroma = colors.chroma;
    png_get_gAMA(reader.png, reader.info, &colors.gamma);
    png_get_cHRM(reader.png, reader.info, &chroma[0], &chroma[1], &chroma[2], &chroma[3], &chroma[4], &chroma[5],
                 &chroma[6], &chroma[7]);
    png_get_sRGB(reader.png, reader.info, &colors.srgbIntent);
}

// Two bits become four. A grey of two bits takes every fifth step of the sixteen.
void WidenRow(const uint8_t *in, int width, int factor, uint8_t *out) {
    for (int x = 0; x < width; ++x) {
        const int value = (in[x >> 2] >> (6 - 2 * (x & 3)) & 3) * factor;
        if (x & 1) {
            out[x >> 1] = uint8_t(out[x >> 1] | value);
        } else {
            out[x >> 1] = uint8_t(value << 4);
        }
    }
}

bool Decode(PngReader &reader, const Limits &limits, Picture &picture, Report &report) {
    png_structp png = reader.png;
    png_infop info = reader.info;
    if (setjmp(png_jmpbuf(png))) return report.Fail(reader.messages.error);

    png_set_user_limits(png, 0x7FFFFFFF, 0x7FFFFFFF);
    png_set_chunk_malloc_max(png, kLongestChunk);
    png_set_read_fn(png, &reader, OnRead);
    png_set_read_user_chunk_fn(png, &reader, OnChunk);
    png_set_keep_unknown_chunks(png, PNG_HANDLE_CHUNK_IF_SAFE, kOwnChunks, int(sizeof kOwnChunks / 5));
    png_read_info(png, info);
    const int width = int(png_get_image_width(png, info));
    const int height = int(png_get_image_height(png, info));
    if (!CheckSize(width, height, limits, report)) return false;

    const int type = png_get_color_type(png, info);
    const int depth = reader.depth = png_get_bit_depth(png, info);
    const bool transparent = png_get_valid(png, info, PNG_INFO_tRNS);
    const bool palette = type == PNG_COLOR_TYPE_PALETTE;
    const bool indexed = palette || (type == PNG_COLOR_TYPE_GRAY && depth <= 8);
    const bool grey = !(type & PNG_COLOR_MASK_COLOR);
    const bool alpha = (type & PNG_COLOR_MASK_ALPHA) || (transparent && !indexed);
    if (!indexed && transparent) png_set_tRNS_to_alpha(png);
    if (depth == 16) png_set_scale_16(png);
    if (!grey && !palette) png_set_bgr(png);
    const int passes = png_set_interlace_handling(png);
    png_read_update_info(png, info);

    const int bits = !grey && !palette ? 24 : !indexed || depth == 8 ? 8 : depth == 1 ? 1 : 4;
    if (!MakePicture(picture, width, height, bits, alpha || (indexed && transparent), report)) return false;
    if (palette) {
        ReadPalette(reader, picture.image);
    } else {
        SetGreyRamp(picture.image);
    }

    // Rows that are laid out as the bitmap's own are decoded in place.
    const bool inPlace = !alpha && depth != 2;
    const size_t rowBytes = png_get_rowbytes(png, info);
    const int samples = png_get_channels(png, info);
    if (!inPlace) reader.scratch.resize(rowBytes * (passes > 1 ? size_t(height) : 1));
    reader.rows.resize(size_t(height));
    for (int y = 0; y < height; ++y)
        reader.rows[size_t(y)] =
            inPlace ? picture.image.Row(y) : reader.scratch.data() + (passes > 1 ? rowBytes * size_t(y) : 0);
    if (passes > 1) png_read_image(png, reader.rows.data());
    for (int y = 0; y < height; ++y) {
        if (passes == 1) png_read_row(png, reader.rows[size_t(y)], nullptr);
        if (alpha) {
            SplitAlphaRow(picture, y, samples, reader.rows[size_t(y)]);
        } else if (!inPlace) {
            WidenRow(reader.rows[size_t(y)], width, grey ? 5 : 1, picture.image.Row(y));
        }
    }
    png_read_end(png, info);

    if (indexed && transparent) {
        uint8_t alphas[256];
        IndexAlpha(reader, palette, alphas);
        for (int y = 0; y < height; ++y) {
            uint8_t *row = picture.alpha.Row(y);
            IndexRow(picture.image, y, row);
            for (int x = 0; x < width; ++x) row[x] = alphas[depth == 2 && grey ? row[x] / 5 : row[x]];
        }
    }
    return true;
}

bool Read(ByteView file, const Limits &limits, Picture &picture, Report &report) {
    PngReader reader;
    reader.rest = file;
    reader.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &reader.messages, OnError, OnWarning);
    if (reader.png) reader.info = png_create_info_struct(reader.png);
    if (!reader.info) return report.Fail("memory is too short for the picture");
    if (!Decode(reader, limits, picture, report)) return false;
    ReadMetadata(reader, picture.metadata);
    for (const std::string &warning : reader.messages.warnings) report.WarnOfDamage(warning);
    if (reader.depth == 16) TellSixteenBits(picture, report);
    if (reader.animated) report.Warn("this is an animation; only its first picture is read");
    return true;
}

// What a PNG with a palette needs to know of the picture: how many entries are in use, and their alpha.
struct PaletteUse {
    int colors = 1;
    int alphas = 0; // entries up to the last that is not opaque
    uint8_t alpha[256];
    bool fits = true; // false: an index stands for two alphas, so that the palette cannot hold them
};

PaletteUse SurveyPalette(const Picture &picture) {
    PaletteUse use;
    std::memset(use.alpha, 255, sizeof use.alpha);
    bool seen[256] = {};
    Bytes indices(size_t(picture.image.width));
    for (int y = 0; y < picture.image.height; ++y) {
        IndexRow(picture.image, y, indices.data());
        const uint8_t *alpha = picture.alpha ? picture.alpha.Row(y) : nullptr;
        for (int x = 0; x < picture.image.width; ++x) {
            const uint8_t index = indices[size_t(x)];
            const uint8_t value = alpha ? alpha[x] : 255;
            if (seen[index] && use.alpha[index] != value) use.fits = false;
            seen[index] = true;
            use.alpha[index] = value;
        }
    }
    for (int i = 0; i < 256; ++i) {
        if (seen[i]) use.colors = i + 1;
        if (use.alpha[i] != 255) use.alphas = i + 1;
    }
    return use;
}

struct PngPlan {
    int type = PNG_COLOR_TYPE_RGB;
    int depth = 8;
    bool raw = false; // rows go out as the bitmap holds them
    Layout layout = Layout::kColor;
    PaletteUse use;
};

PngPlan PlanFor(const Picture &picture) {
    const Bitmap &image = picture.image;
    PngPlan plan;
    if (image.bits <= 8) {
        plan.raw = true;
        plan.depth = image.bits;
        if (HasGreyRamp(image) && !picture.alpha) {
            plan.type = PNG_COLOR_TYPE_GRAY;
            return plan;
        }
        plan.use = SurveyPalette(picture);
        plan.type = PNG_COLOR_TYPE_PALETTE;
        const bool greyAlpha = image.bits == 8 && HasGreyRamp(image);
        if (plan.use.fits && !greyAlpha) return plan;
    }
    static constexpr int kTypes[] = {PNG_COLOR_TYPE_GRAY, PNG_COLOR_TYPE_GRAY_ALPHA, PNG_COLOR_TYPE_RGB,
                                     PNG_COLOR_TYPE_RGB_ALPHA};
    plan.raw = false;
    plan.depth = 8;
    plan.layout = FullLayout(picture);
    plan.type = kTypes[int(plan.layout)];
    return plan;
}

void SetMetadata(png_structp png, png_infop info, const Metadata &metadata, bool withProfile) {
    if (withProfile) {
        // A profile that libpng knows as that of sRGB goes into the file all the same.
        png_set_option(png, PNG_SKIP_sRGB_CHECK_PROFILE, PNG_OPTION_ON);
        png_set_iCCP(png, info, "ICC profile", PNG_COMPRESSION_TYPE_BASE, metadata.icc.data(),
                     png_uint_32(metadata.icc.size()));
    }
    if (!metadata.exif.empty())
        png_set_eXIf_1(png, info, png_uint_32(metadata.exif.size()), const_cast<png_bytep>(metadata.exif.data()));
    const Density &density = metadata.density;
    if (density.x > 0)
        png_set_pHYs(png, info, png_uint_32(density.x + 0.5), png_uint_32(density.y + 0.5),
                     density.absolute ? PNG_RESOLUTION_METER : PNG_RESOLUTION_UNKNOWN);
    const double *chroma = metadata.colors.chroma;
    if (metadata.colors.srgbIntent >= 0 && !withProfile) png_set_sRGB(png, info, metadata.colors.srgbIntent);
    if (metadata.colors.gamma > 0) png_set_gAMA(png, info, metadata.colors.gamma);
    if (chroma[0] > 0)
        png_set_cHRM(png, info, chroma[0], chroma[1], chroma[2], chroma[3], chroma[4], chroma[5], chroma[6], chroma[7]);
}

// The texts as chunks: XMP has its own keyword, and so has a comment.
std::vector<TextChunk> TextsOf(const Metadata &metadata) {
    std::vector<TextChunk> texts = metadata.texts;
    const auto add = [&](const char *type, const std::string &start, const auto &text) {
        TextChunk chunk = {type, Bytes(start.size() + text.size())};
        std::copy(text.begin(), text.end(), std::copy(start.begin(), start.end(), chunk.data.begin()));
        texts.push_back(std::move(chunk));
    };
    if (!metadata.xmp.empty()) add("iTXt", kXmpKeyword + std::string(5, '\0'), metadata.xmp);
    if (!metadata.comment.empty()) {
        // Only the international kind may hold more than Latin letters.
        const bool plain = std::none_of(metadata.comment.begin(), metadata.comment.end(), [](char c) { return c < 0; });
        add(plain ? "tEXt" : "iTXt", kCommentKeyword + std::string(plain ? 1 : 5, '\0'), metadata.comment);
    }
    return texts;
}

bool Encode(PngWriter &writer, std::FILE *file, const Picture &picture, const PngPlan &plan, const Metadata &metadata,
            bool withProfile, int compression, Report &report) {
    png_structp png = writer.png;
    png_infop info = writer.info;
    const Bitmap &image = picture.image;
    if (setjmp(png_jmpbuf(png))) return report.Fail(writer.messages.error);

    png_init_io(png, file);
    png_set_user_limits(png, 0x7FFFFFFF, 0x7FFFFFFF);
    png_set_benign_errors(png, 1);
    png_set_compression_level(png, compression < 0 ? kUsualCompression : compression);
    png_set_IHDR(png, info, png_uint_32(image.width), png_uint_32(image.height), plan.depth, plan.type,
                 PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    if (plan.type == PNG_COLOR_TYPE_PALETTE) {
        png_color colors[256];
        for (int i = 0; i < plan.use.colors; ++i) {
            const uint8_t *entry = image.Palette() + 4 * i;
            colors[i] = {entry[2], entry[1], entry[0]};
        }
        png_set_PLTE(png, info, colors, plan.use.colors);
        if (plan.use.alphas > 0) png_set_tRNS(png, info, plan.use.alpha, plan.use.alphas, nullptr);
    }
    SetMetadata(png, info, metadata, withProfile);
    png_write_info(png, info);
    for (const TextChunk &text : writer.texts)
        png_write_chunk(png, reinterpret_cast<png_const_bytep>(text.type.c_str()), text.data.data(), text.data.size());
    if (!plan.raw) png_set_bgr(png);
    for (int y = 0; y < image.height; ++y) {
        if (plan.raw) {
            png_write_row(png, image.Row(y));
        } else {
            FillRow(picture, plan.layout, Order::kBgr, y, writer.row.data());
            png_write_row(png, writer.row.data());
        }
    }
    png_write_end(png, nullptr);
    return true;
}

bool Write(std::FILE *file, const Picture &picture, const Metadata &metadata, const Encoding &encoding,
           Report &report) {
    const PngPlan plan = PlanFor(picture);
    PngWriter writer;
    writer.row.resize(4 * size_t(picture.image.width));
    writer.texts = TextsOf(metadata);
    writer.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &writer.messages, OnError, OnWarning);
    if (writer.png) writer.info = png_create_info_struct(writer.png);
    if (!writer.info) return report.Fail("memory is too short to write the picture");
    const bool withProfile = CarriesProfile(metadata, !(plan.type & PNG_COLOR_MASK_COLOR), kLongestChunk, report);
    if (!Encode(writer, file, picture, plan, metadata, withProfile, encoding.compression, report)) return false;
    // What libpng warns of here it has left out.
    for (const std::string &warning : writer.messages.warnings) report.Warn("left out of the file: " + warning);
    return true;
}

} // namespace

constexpr unsigned kHolds = kHoldsExif | kHoldsXmp | kHoldsComment | kHoldsTexts | kHoldsDensity | kHoldsColorTags;

const Codec kPng = {"PNG", ";png;", 0x7FFFFFFF, kHolds, kObeysCompression | kObeysLossless, Recognises, Read, Write};

} // namespace lmf::host
