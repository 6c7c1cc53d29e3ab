// JPEG through libjpeg. Grey stays grey, everything else is 24-bit; there is no alpha.
#include <cstdio>
#include <cstdlib>

#include <jerror.h>
#include <jpeglib.h>

#include <csetjmp>
#include <cstring>

#include "exif.h"
#include "picture.h"

namespace lmf::host {

namespace {

constexpr char kExifMark[] = "Exif\0"; // with the closing zero, the six bytes that open an EXIF segment
constexpr size_t kLargestSegment = 65533;

// libjpeg leaves by longjmp, so whatever has a destructor belongs to the reader or writer, which the caller owns.
struct JpegErrors {
    jpeg_error_mgr manager; // first, so that the library's pointer is also ours
    jmp_buf jump;
    char text[JMSG_LENGTH_MAX];
};

struct JpegReader {
    jpeg_decompress_struct jpeg{};
    JpegErrors errors{};
    JOCTET *profile = nullptr;
    Bytes row;

    ~JpegReader() {
        jpeg_destroy_decompress(&jpeg);
        std::free(profile);
    }
};

struct JpegWriter {
    jpeg_compress_struct jpeg{};
    JpegErrors errors{};
    Bytes row;
    Bytes exif;

    ~JpegWriter() { jpeg_destroy_compress(&jpeg); }
};

[[noreturn]] void OnError(j_common_ptr jpeg) {
    auto *errors = reinterpret_cast<JpegErrors *>(jpeg->err);
    jpeg->err->format_message(jpeg, errors->text);
    longjmp(errors->jump, 1);
}

// The decoder goes on after damage and makes up what is missing; such a picture counts as unreadable. Its other
// warnings are about harmless oddities.
void OnMessage(j_common_ptr jpeg, int level) {
    if (level >= 0) return;
    switch (jpeg->err->msg_code) {
    case JWRN_HIT_MARKER:
    case JWRN_HUFF_BAD_CODE:
    case JWRN_JPEG_EOF:
    case JWRN_MUST_RESYNC:
    case JWRN_NOT_SEQUENTIAL:
        OnError(jpeg);
    default:
        break;
    }
}

jpeg_error_mgr *Prepare(JpegErrors &errors) {
    jpeg_error_mgr *manager = jpeg_std_error(&errors.manager);
    manager->error_exit = OnError;
    manager->emit_message = OnMessage;
    return manager;
}

bool Recognises(ByteView start) {
    return start.size() >= 3 && start[0] == 0xFF && start[1] == 0xD8 && start[2] == 0xFF;
}

void ReadExif(const jpeg_decompress_struct &jpeg, Picture &picture) {
    for (jpeg_saved_marker_ptr marker = jpeg.marker_list; marker; marker = marker->next) {
        if (marker->marker != JPEG_APP0 + 1 || marker->data_length <= sizeof kExifMark ||
            std::memcmp(marker->data, kExifMark, sizeof kExifMark) != 0)
            continue;
        SetExif(picture, ByteView(marker->data, marker->data_length).subspan(sizeof kExifMark));
        return;
    }
}

// Inks to light: each channel is what cyan, magenta or yellow leave, times what black leaves. Files of Adobe's kind
// store the complements.
void InksToColor(const uint8_t *inks, int width, bool inverted, uint8_t *out) {
    for (int x = 0; x < width; ++x, inks += 4, out += 3) {
        const int black = inverted ? inks[3] : 255 - inks[3];
        for (int c = 0; c < 3; ++c) {
            const int light = inverted ? inks[2 - c] : 255 - inks[2 - c];
            out[c] = uint8_t((light * black + 127) / 255);
        }
    }
}

bool Decode(JpegReader &reader, ByteView file, const Limits &limits, Picture &picture, Report &report) {
    jpeg_decompress_struct &jpeg = reader.jpeg;
    jpeg.err = Prepare(reader.errors);
    if (setjmp(reader.errors.jump)) return report.Fail(reader.errors.text);

    jpeg_create_decompress(&jpeg);
    jpeg_mem_src(&jpeg, file.data(), file.size());
    jpeg_save_markers(&jpeg, JPEG_APP0 + 1, 0xFFFF);
    jpeg_save_markers(&jpeg, JPEG_APP0 + 2, 0xFFFF);
    jpeg_read_header(&jpeg, TRUE);
    if (!CheckSize(jpeg.image_width, jpeg.image_height, limits, report)) return false;

    const int width = int(jpeg.image_width);
    const bool grey = jpeg.jpeg_color_space == JCS_GRAYSCALE;
    const bool inks = jpeg.jpeg_color_space == JCS_CMYK || jpeg.jpeg_color_space == JCS_YCCK;
    jpeg.out_color_space = grey ? JCS_GRAYSCALE : inks ? JCS_CMYK : JCS_EXT_BGR;
    if (!MakePicture(picture, width, int(jpeg.image_height), grey ? 8 : 24, false, report)) return false;
    SetGreyRamp(picture.image);
    if (inks) reader.row.resize(4 * size_t(width));
    jpeg_start_decompress(&jpeg);
    while (jpeg.output_scanline < jpeg.output_height) {
        uint8_t *target = picture.image.Row(int(jpeg.output_scanline));
        JSAMPROW row = inks ? reader.row.data() : target;
        jpeg_read_scanlines(&jpeg, &row, 1);
        if (inks) InksToColor(row, width, jpeg.saw_Adobe_marker, target);
    }
    unsigned profileBytes = 0;
    if (jpeg_read_icc_profile(&jpeg, &reader.profile, &profileBytes)) {
        if (inks) {
            report.Warn("the color profile is for inks and is left out");
        } else {
            picture.icc.assign(reader.profile, reader.profile + profileBytes);
        }
    }
    ReadExif(jpeg, picture);
    jpeg_finish_decompress(&jpeg);
    return true;
}

bool Read(ByteView file, const Limits &limits, Picture &picture, Report &report) {
    JpegReader reader;
    return Decode(reader, file, limits, picture, report);
}

bool Encode(JpegWriter &writer, std::FILE *file, const Picture &picture, bool grey, bool withProfile, int quality,
            Report &report) {
    jpeg_compress_struct &jpeg = writer.jpeg;
    jpeg.err = Prepare(writer.errors);
    if (setjmp(writer.errors.jump)) return report.Fail(writer.errors.text);

    jpeg_create_compress(&jpeg);
    jpeg_stdio_dest(&jpeg, file);
    jpeg.image_width = unsigned(picture.image.width);
    jpeg.image_height = unsigned(picture.image.height);
    jpeg.input_components = grey ? 1 : 3;
    jpeg.in_color_space = grey ? JCS_GRAYSCALE : JCS_EXT_BGR;
    jpeg_set_defaults(&jpeg);
    jpeg_set_quality(&jpeg, quality, TRUE);
    jpeg.optimize_coding = TRUE;
    // From here up, colours at half the resolution would be the larger loss.
    if (quality >= 90) jpeg.comp_info[0].h_samp_factor = jpeg.comp_info[0].v_samp_factor = 1;
    jpeg_start_compress(&jpeg, TRUE);
    if (!writer.exif.empty()) jpeg_write_marker(&jpeg, JPEG_APP0 + 1, writer.exif.data(), unsigned(writer.exif.size()));
    if (withProfile) jpeg_write_icc_profile(&jpeg, picture.icc.data(), unsigned(picture.icc.size()));
    while (jpeg.next_scanline < jpeg.image_height) {
        const int y = int(jpeg.next_scanline);
        JSAMPROW row = writer.row.data();
        if (picture.image.bits == 24) {
            row = picture.image.Row(y);
        } else {
            FillRow(picture, grey ? Layout::kGrey : Layout::kColor, Order::kBgr, y, row);
        }
        jpeg_write_scanlines(&jpeg, &row, 1);
    }
    jpeg_finish_compress(&jpeg);
    return true;
}

bool Write(std::FILE *file, const Picture &picture, const Encoding &encoding, Report &report) {
    if (HasAlpha(picture)) report.Warn("JPEG holds no alpha; it is left out");
    const bool grey = HasGreyPalette(picture.image);
    JpegWriter writer;
    writer.row.resize(3 * size_t(picture.image.width));
    if (picture.exif.size() + sizeof kExifMark > kLargestSegment) {
        report.Warn("the EXIF data is too long for JPEG and is left out");
    } else if (!picture.exif.empty()) {
        writer.exif.assign(kExifMark, kExifMark + sizeof kExifMark);
        writer.exif.insert(writer.exif.end(), picture.exif.begin(), picture.exif.end());
    }
    const bool withProfile = CarriesProfile(picture, grey, report);
    return Encode(writer, file, picture, grey, withProfile, encoding.quality, report);
}

} // namespace

const Codec kJpeg = {"JPEG", ";jpg;jpeg;jpe;jfif;", JPEG_MAX_DIMENSION, Recognises, Read, Write};

} // namespace lmf::host
