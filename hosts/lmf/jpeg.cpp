// JPEG through libjpeg. Grey stays grey, everything else is 24-bit; there is no alpha.
#include <cstdio>
#include <cstdlib>

#include <jerror.h>
#include <jpeglib.h>

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <memory>
#include <string_view>

#include "picture.h"

namespace lmf::host {

namespace {

using namespace std::string_view_literals;

constexpr std::string_view kExifMark = "Exif\0\0"sv;
constexpr std::string_view kXmpMark = "http://ns.adobe.com/xap/1.0/\0"sv;
constexpr std::string_view kMoreXmpMark = "http://ns.adobe.com/xmp/extension/\0"sv;
constexpr std::string_view kResourcesMark = "Photoshop 3.0\0"sv;
constexpr int kResources = JPEG_APP0 + 13;
constexpr size_t kLargestSegment = 65533;
constexpr size_t kLargestProfile = 255 * (kLargestSegment - 14);
constexpr size_t kMostWarnings = 4;

// A scan may be empty, and the decoder goes through the whole picture for each: so many of them, and for large pictures
// so many times all pixels, have to do. Honest files have about ten.
constexpr int kMostScans = 500;
constexpr int kEnoughScans = 32;
constexpr int64_t kMostScannedPixels = 8000000000;

// libjpeg leaves by longjmp, so whatever has a destructor belongs to the reader or writer, which the caller owns.
struct JpegErrors {
    jpeg_error_mgr manager; // first, so that the library's pointer is also ours
    jmp_buf jump;
    char text[JMSG_LENGTH_MAX];
    std::vector<std::string> *warnings; // those about harmless damage
};

struct JpegReader {
    jpeg_decompress_struct jpeg{};
    JpegErrors errors{};
    jpeg_progress_mgr progress{};
    std::vector<std::string> warnings;
    InkConverter inks;
    Bytes row;

    ~JpegReader() { jpeg_destroy_decompress(&jpeg); }
};

struct JpegWriter {
    jpeg_compress_struct jpeg{};
    JpegErrors errors{};
    std::vector<std::string> warnings;
    Bytes row;
    Bytes resources;

    ~JpegWriter() { jpeg_destroy_compress(&jpeg); }
};

[[noreturn]] void OnError(j_common_ptr jpeg) {
    auto *errors = reinterpret_cast<JpegErrors *>(jpeg->err);
    jpeg->err->format_message(jpeg, errors->text);
    longjmp(errors->jump, 1);
}

// The decoder goes on after damage and makes up what is missing; such a picture counts as unreadable. Its other
// warnings are about damage that cost little.
void OnMessage(j_common_ptr jpeg, int level) {
    if (level >= 0) return;
    auto *errors = reinterpret_cast<JpegErrors *>(jpeg->err);
    switch (jpeg->err->msg_code) {
    case JWRN_HIT_MARKER:
    case JWRN_HUFF_BAD_CODE:
    case JWRN_JPEG_EOF:
    case JWRN_MUST_RESYNC:
    case JWRN_NOT_SEQUENTIAL:
        OnError(jpeg);
    case JWRN_ADOBE_XFORM:
    case JWRN_JFIF_MAJOR: // oddities of a header, no damage
        break;
    default:
        if (errors->warnings->size() >= kMostWarnings) break;
        jpeg->err->format_message(jpeg, errors->text);
        errors->warnings->push_back(errors->text);
    }
}

void OnProgress(j_common_ptr jpeg) {
    const auto *reader = reinterpret_cast<j_decompress_ptr>(jpeg);
    const int64_t pixels = int64_t{reader->image_width} * reader->image_height;
    const int64_t most = std::clamp<int64_t>(kMostScannedPixels / pixels, kEnoughScans, kMostScans);
    if (reader->input_scan_number <= most) return;
    auto *errors = reinterpret_cast<JpegErrors *>(jpeg->err);
    std::snprintf(errors->text, sizeof errors->text, "the file has more than %d scans", int(most));
    longjmp(errors->jump, 1);
}

jpeg_error_mgr *Prepare(JpegErrors &errors, std::vector<std::string> &warnings) {
    errors.warnings = &warnings;
    jpeg_error_mgr *manager = jpeg_std_error(&errors.manager);
    manager->error_exit = OnError;
    manager->emit_message = OnMessage;
    return manager;
}

bool Recognises(ByteView start) {
    return start.size() >= 3 && start[0] == 0xFF && start[1] == 0xD8 && start[2] == 0xFF;
}

// Gives what follows the mark in a segment, or nothing if the segment is of another kind.
ByteView After(jpeg_saved_marker_ptr marker, int kind, std::string_view mark) {
    const ByteView data(marker->data, marker->data_length);
    if (marker->marker != kind || data.size() <= mark.size() || std::memcmp(data.data(), mark.data(), mark.size()) != 0)
        return {};
    return data.subspan(mark.size());
}

void ReadMetadata(const jpeg_decompress_struct &jpeg, Metadata &metadata, Report &report) {
    Bytes resources; // may go on in further segments
    for (jpeg_saved_marker_ptr marker = jpeg.marker_list; marker; marker = marker->next) {
        const ByteView exif = After(marker, JPEG_APP0 + 1, kExifMark), xmp = After(marker, JPEG_APP0 + 1, kXmpMark);
        const ByteView part = After(marker, kResources, kResourcesMark);
        if (!exif.empty() && metadata.exif.empty()) metadata.exif = ExifBlock(exif);
        if (!xmp.empty() && metadata.xmp.empty()) metadata.xmp.assign(xmp.begin(), xmp.end());
        if (!After(marker, JPEG_APP0 + 1, kMoreXmpMark).empty())
            report.Warn("the part of the XMP data that did not fit into one segment is left out");
        resources.insert(resources.end(), part.begin(), part.end());
        if (marker->marker == JPEG_COM && metadata.comment.empty())
            metadata.comment.assign(marker->data, marker->data + marker->data_length);
    }
    while (!metadata.comment.empty() && metadata.comment.back() == 0) metadata.comment.pop_back();
    if (!resources.empty()) metadata.iptc = IptcOfResources(resources, report);
    const double perMetre = jpeg.density_unit == 1 ? 1 / 0.0254 : jpeg.density_unit == 2 ? 100 : 1;
    // Square pixels without a size say nothing.
    if (jpeg.saw_JFIF_marker && jpeg.X_density > 0 && (jpeg.density_unit > 0 || jpeg.X_density != jpeg.Y_density))
        metadata.density = {jpeg.X_density * perMetre, jpeg.Y_density * perMetre, jpeg.density_unit > 0};
}

// Finds the step of the usual scale of qualities whose tables are nearest.
int NearestQuality(const JpegStyle &style) {
    JpegWriter scale;
    scale.jpeg.err = jpeg_std_error(&scale.errors.manager);
    jpeg_create_compress(&scale.jpeg);
    scale.jpeg.in_color_space = JCS_RGB;
    scale.jpeg.input_components = 3;
    jpeg_set_defaults(&scale.jpeg);
    int nearest = 0;
    int64_t least = INT64_MAX;
    for (int quality = 1; quality <= 100; ++quality) {
        jpeg_set_quality(&scale.jpeg, quality, TRUE);
        int64_t distance = 0;
        for (int t = 0; t < style.tables; ++t)
            for (int i = 0; i < DCTSIZE2; ++i)
                distance += std::abs(style.steps[t][i] - scale.jpeg.quant_tbl_ptrs[t]->quantval[i]);
        if (distance < least) nearest = quality;
        least = std::min(least, distance);
    }
    return nearest;
}

void ReadStyle(const jpeg_decompress_struct &jpeg, JpegStyle &style) {
    if (jpeg.jpeg_color_space != JCS_GRAYSCALE && jpeg.jpeg_color_space != JCS_YCbCr) return;
    style.tables = std::min(jpeg.num_components, 2);
    for (int t = 0; t < style.tables; ++t) {
        // The table that the component's scan was read with; a file may change it under way.
        const JQUANT_TBL *table = jpeg.quant_tbl_ptrs[jpeg.comp_info[t].quant_tbl_no];
        if (!table) {
            style.tables = 0;
            return;
        }
        std::copy_n(table->quantval, DCTSIZE2, style.steps[t]);
    }
    if (jpeg.num_components == 3) {
        style.across = jpeg.max_h_samp_factor / jpeg.comp_info[1].h_samp_factor;
        style.down = jpeg.max_v_samp_factor / jpeg.comp_info[1].v_samp_factor;
    }
    style.quality = NearestQuality(style);
}

// Prepares the conversion of inks by the file's profile; leaves it closed where there is none that serves.
void OpenInks(JpegReader &reader, const Bytes &profile, Report &report) {
    if (!profile.empty() && reader.inks.Open(profile, reader.jpeg.saw_Adobe_marker, report)) {
        report.Warn("the inks (CMYK) become sRGB colors, by the file's profile");
    } else {
        report.Warn("the inks (CMYK) become colors without a profile that tells them exactly");
    }
}

Bytes ReadProfile(jpeg_decompress_struct &jpeg) {
    JOCTET *bytes = nullptr;
    unsigned size = 0;
    if (!jpeg_read_icc_profile(&jpeg, &bytes, &size)) return {};
    const std::unique_ptr<JOCTET, decltype(&std::free)> owner(bytes, &std::free);
    return Bytes(bytes, bytes + size);
}

bool Decode(JpegReader &reader, ByteView file, const Limits &limits, Picture &picture, Report &report) {
    jpeg_decompress_struct &jpeg = reader.jpeg;
    jpeg.err = Prepare(reader.errors, reader.warnings);
    if (setjmp(reader.errors.jump)) return report.Fail(reader.errors.text);

    jpeg_create_decompress(&jpeg);
    reader.progress.progress_monitor = OnProgress;
    jpeg.progress = &reader.progress;
    jpeg_mem_src(&jpeg, file.data(), file.size());
    for (const int marker : {JPEG_APP0 + 1, JPEG_APP0 + 2, kResources, JPEG_COM})
        jpeg_save_markers(&jpeg, marker, 0xFFFF);
    jpeg_read_header(&jpeg, TRUE);
    if (!CheckSize(jpeg.image_width, jpeg.image_height, limits, report)) return false;

    const int width = int(jpeg.image_width);
    const bool grey = jpeg.jpeg_color_space == JCS_GRAYSCALE;
    const bool inks = jpeg.jpeg_color_space == JCS_CMYK || jpeg.jpeg_color_space == JCS_YCCK;
    jpeg.out_color_space = grey ? JCS_GRAYSCALE : inks ? JCS_CMYK : JCS_EXT_BGR;
    if (!MakePicture(picture, width, int(jpeg.image_height), grey ? 8 : 24, false, report)) return false;
    SetGreyRamp(picture.image);
    picture.metadata.icc = ReadProfile(jpeg);
    if (inks) {
        reader.row.resize(4 * size_t(width));
        OpenInks(reader, picture.metadata.icc, report);
        picture.metadata.icc.clear();
    }
    jpeg_start_decompress(&jpeg);
    while (jpeg.output_scanline < jpeg.output_height) {
        uint8_t *target = picture.image.Row(int(jpeg.output_scanline));
        JSAMPROW row = inks ? reader.row.data() : target;
        jpeg_read_scanlines(&jpeg, &row, 1);
        if (reader.inks.IsOpen()) {
            reader.inks.Convert(row, width, target);
        } else if (inks) {
            InksToColor(row, width, jpeg.saw_Adobe_marker, target);
        }
    }
    ReadMetadata(jpeg, picture.metadata, report);
    ReadStyle(jpeg, picture.jpeg);
    jpeg_finish_decompress(&jpeg);
    return true;
}

bool Read(ByteView file, const Limits &limits, Picture &picture, Report &report) {
    JpegReader reader;
    if (!Decode(reader, file, limits, picture, report)) return false;
    for (const std::string &warning : reader.warnings) report.WarnOfDamage(warning);
    return true;
}

// Sets tables and sampling, as asked for or as the input had them.
void SetStyle(jpeg_compress_struct &jpeg, const Picture &picture, const Encoding &encoding) {
    const JpegStyle &style = picture.jpeg;
    const int quality = QualityFor(picture, encoding);
    jpeg_set_quality(&jpeg, quality, TRUE);
    for (int t = 0; encoding.quality == 0 && t < style.tables; ++t) {
        unsigned steps[DCTSIZE2];
        std::copy_n(style.steps[t], DCTSIZE2, steps);
        jpeg_add_quant_table(&jpeg, t, steps, 100, TRUE);
    }
    if (jpeg.num_components == 1) return;
    // From here up, colours at half the resolution would be the larger loss.
    constexpr int kFine = 90;
    int across = quality >= kFine ? 1 : 2;
    int down = across;
    if (encoding.chroma != Chroma::kKeep) {
        across = encoding.chroma == Chroma::k444 ? 1 : 2;
        down = encoding.chroma == Chroma::k420 ? 2 : 1;
    } else if (style.tables == 2) {
        across = std::min(style.across, 4);
        down = std::min(style.down, across == 4 ? 2 : 4);
    }
    jpeg.comp_info[0].h_samp_factor = across;
    jpeg.comp_info[0].v_samp_factor = down;
}

void WriteSegment(jpeg_compress_struct &jpeg, int kind, std::string_view mark, ByteView data) {
    if (data.empty()) return;
    jpeg_write_m_header(&jpeg, kind, unsigned(mark.size() + data.size()));
    for (const char byte : mark) jpeg_write_m_byte(&jpeg, uint8_t(byte));
    for (const uint8_t byte : data) jpeg_write_m_byte(&jpeg, byte);
}

ByteView View(const std::string &text) {
    return {reinterpret_cast<const uint8_t *>(text.data()), text.size()};
}

bool Encode(JpegWriter &writer, std::FILE *file, const Picture &picture, const Metadata &metadata, bool grey,
            bool withProfile, const Encoding &encoding, Report &report) {
    jpeg_compress_struct &jpeg = writer.jpeg;
    jpeg.err = Prepare(writer.errors, writer.warnings);
    if (setjmp(writer.errors.jump)) return report.Fail(writer.errors.text);

    jpeg_create_compress(&jpeg);
    jpeg_stdio_dest(&jpeg, file);
    jpeg.image_width = unsigned(picture.image.width);
    jpeg.image_height = unsigned(picture.image.height);
    jpeg.input_components = grey ? 1 : 3;
    jpeg.in_color_space = grey ? JCS_GRAYSCALE : JCS_EXT_BGR;
    jpeg_set_defaults(&jpeg);
    SetStyle(jpeg, picture, encoding);
    jpeg.optimize_coding = TRUE;
    if (encoding.progressive) jpeg_simple_progression(&jpeg);
    const Density &density = metadata.density;
    const double perInch = density.absolute ? 0.0254 : 1;
    if (density.x > 0 && density.x * perInch < 65535 && density.y * perInch < 65535) {
        jpeg.density_unit = density.absolute ? 1 : 0;
        jpeg.X_density = uint16_t(density.x * perInch + 0.5);
        jpeg.Y_density = uint16_t(density.y * perInch + 0.5);
    }
    jpeg_start_compress(&jpeg, TRUE);
    WriteSegment(jpeg, JPEG_APP0 + 1, kExifMark, metadata.exif);
    WriteSegment(jpeg, JPEG_APP0 + 1, kXmpMark, metadata.xmp);
    WriteSegment(jpeg, kResources, kResourcesMark, writer.resources);
    WriteSegment(jpeg, JPEG_COM, "", View(metadata.comment));
    if (withProfile) jpeg_write_icc_profile(&jpeg, metadata.icc.data(), unsigned(metadata.icc.size()));
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

// The IPTC records as the one resource of an image editor's block.
Bytes ResourcesOf(const Bytes &iptc) {
    if (iptc.empty()) return {};
    const uint32_t size = uint32_t(iptc.size());
    Bytes out = {'8',          'B', 'I', 'M', 4, 4, 0, 0, uint8_t(size >> 24), uint8_t(size >> 16), uint8_t(size >> 8),
                 uint8_t(size)};
    out.insert(out.end(), iptc.begin(), iptc.end());
    if (size & 1) out.push_back(0);
    return out;
}

// Leaves out, with a warning, what is too long for its one segment.
template <typename Part>
void Limit(Part &part, std::string_view mark, const char *name, Report &report) {
    if (part.size() + mark.size() <= kLargestSegment) return;
    report.Warn(std::string("the ") + name + " is too long for JPEG and is left out");
    part.clear();
}

bool Write(std::FILE *file, const Picture &picture, const Metadata &metadata, const Encoding &encoding,
           Report &report) {
    if (HasAlpha(picture)) report.Warn("JPEG holds no alpha; it is left out");
    const bool grey = HasGreyPalette(picture.image);
    JpegWriter writer;
    writer.row.resize(3 * size_t(picture.image.width));
    Metadata fitting = metadata;
    writer.resources = ResourcesOf(metadata.iptc);
    Limit(fitting.exif, kExifMark, "EXIF data", report);
    Limit(fitting.xmp, kXmpMark, "XMP data", report);
    Limit(writer.resources, kResourcesMark, "IPTC data", report);
    Limit(fitting.comment, "", "comment", report);
    const bool withProfile = CarriesProfile(metadata, grey, kLargestProfile, report);
    return Encode(writer, file, picture, fitting, grey, withProfile, encoding, report);
}

constexpr unsigned kHolds = kHoldsExif | kHoldsXmp | kHoldsIptc | kHoldsComment | kHoldsDensity;

} // namespace

const Codec kJpeg = {
    "JPEG", ";jpg;jpeg;jpe;jfif;", JPEG_MAX_DIMENSION, kHolds, kObeysQuality | kObeysJpeg, Recognises, Read, Write};

} // namespace lmf::host
