// PNG through libpng. Palettes and grey keep their depth, as far as a bitmap has it.
#include <png.h>

#include <csetjmp>
#include <cstring>

#include "exif.h"
#include "picture.h"

namespace lmf::host {

namespace {

// libpng leaves by longjmp, so nothing with a destructor may live in the functions that call it: whatever needs
// one belongs to this structure, which the caller owns.
struct PngReader {
    png_structp png = nullptr;
    png_infop info = nullptr;
    ByteView rest;
    std::string error;
    Bytes scratch;
    std::vector<png_bytep> rows;

    ~PngReader() { png_destroy_read_struct(&png, &info, nullptr); }
};

struct PngWriter {
    png_structp png = nullptr;
    png_infop info = nullptr;
    std::string error;
    Bytes row;

    ~PngWriter() { png_destroy_write_struct(&png, &info); }
};

[[noreturn]] void OnError(png_structp png, png_const_charp text) {
    *static_cast<std::string *>(png_get_error_ptr(png)) = text;
    png_longjmp(png, 1);
}

void OnWarning(png_structp, png_const_charp) {}

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

void ReadMetadata(PngReader &reader, Picture &picture) {
    png_charp name = nullptr;
    int method = 0;
    png_bytep profile = nullptr;
    png_uint_32 size = 0;
    if (png_get_iCCP(reader.png, reader.info, &name, &method, &profile, &size))
        picture.icc.assign(profile, profile + size);
    png_bytep exif = nullptr;
    if (png_get_eXIf_1(reader.png, reader.info, &size, &exif)) SetExif(picture, ByteView(exif, size));
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
    if (setjmp(png_jmpbuf(png))) return report.Fail(reader.error);

    png_set_user_limits(png, 0x7FFFFFFF, 0x7FFFFFFF);
    png_set_chunk_malloc_max(png, 64 << 20);
    png_set_read_fn(png, &reader, OnRead);
    png_read_info(png, info);
    const int width = int(png_get_image_width(png, info));
    const int height = int(png_get_image_height(png, info));
    if (!CheckSize(width, height, limits, report)) return false;

    const int type = png_get_color_type(png, info);
    const int depth = png_get_bit_depth(png, info);
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
    ReadMetadata(reader, picture);
    return true;
}

bool Read(ByteView file, const Limits &limits, Picture &picture, Report &report) {
    PngReader reader;
    reader.rest = file;
    reader.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, &reader.error, OnError, OnWarning);
    if (reader.png) reader.info = png_create_info_struct(reader.png);
    if (!reader.info) return report.Fail("memory is too short for the picture");
    return Decode(reader, limits, picture, report);
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

bool Encode(PngWriter &writer, std::FILE *file, const Picture &picture, const PngPlan &plan, bool withProfile,
            Report &report) {
    png_structp png = writer.png;
    png_infop info = writer.info;
    const Bitmap &image = picture.image;
    if (setjmp(png_jmpbuf(png))) return report.Fail(writer.error);

    png_init_io(png, file);
    png_set_user_limits(png, 0x7FFFFFFF, 0x7FFFFFFF);
    png_set_benign_errors(png, 1);
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
    if (withProfile)
        png_set_iCCP(png, info, "ICC profile", PNG_COMPRESSION_TYPE_BASE, picture.icc.data(),
                     png_uint_32(picture.icc.size()));
    if (!picture.exif.empty())
        png_set_eXIf_1(png, info, png_uint_32(picture.exif.size()), const_cast<png_bytep>(picture.exif.data()));
    png_write_info(png, info);
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

bool Write(std::FILE *file, const Picture &picture, const Encoding &, Report &report) {
    const PngPlan plan = PlanFor(picture);
    PngWriter writer;
    writer.row.resize(4 * size_t(picture.image.width));
    writer.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, &writer.error, OnError, OnWarning);
    if (writer.png) writer.info = png_create_info_struct(writer.png);
    if (!writer.info) return report.Fail("memory is too short to write the picture");
    const bool withProfile = CarriesProfile(picture, !(plan.type & PNG_COLOR_MASK_COLOR), report);
    return Encode(writer, file, picture, plan, withProfile, report);
}

} // namespace

const Codec kPng = {"PNG", ";png;", 0x7FFFFFFF, Recognises, Read, Write};

} // namespace lmf::host
