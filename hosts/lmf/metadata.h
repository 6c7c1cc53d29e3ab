// What a picture file tells beside its pixels, and how it goes from one format to another. Blocks travel as they are
// stored; what has to look into them is done by Exiv2 and Little CMS, in a module that is loaded when first needed.
#pragma once

#include "report.h"

namespace lmf::host {

/// How close the pixels lie.
struct Density {
    double x = 0; // pixels per metre, or a mere proportion; 0: unknown
    double y = 0;
    bool absolute = false; // per metre
};

/// What PNG's small chunks tell of the colours.
struct ColorTags {
    double gamma = 0;      // of the file; 0: unknown
    double chroma[8] = {}; // x and y of white, red, green and blue; all 0: unknown
    int srgbIntent = -1;   // rendering intent of sRGB colours; -1: not said to be sRGB

    bool Known() const { return gamma > 0 || chroma[0] > 0 || srgbIntent >= 0; }
};

/// A text of a PNG file, as it is stored.
struct TextChunk {
    std::string type; // "tEXt", "zTXt" or "iTXt"
    Bytes data;

    /// Gives the name at the start of the data.
    std::string Keyword() const;
};

struct Metadata {
    Bytes icc;
    Bytes exif; // begins with its "II" or "MM"
    Bytes xmp;  // the packet
    Bytes iptc; // the records
    std::string comment;
    std::vector<TextChunk> texts;
    Density density;
    ColorTags colors;
};

/// What a format has a place for; of these a codec's `holds` is made. Every format has one for a profile.
enum Holds : unsigned {
    kHoldsExif = 1,
    kHoldsXmp = 2,
    kHoldsIptc = 4,
    kHoldsComment = 8,
    kHoldsTexts = 16,
    kHoldsDensity = 32,
    kHoldsColorTags = 64,
};

/// The picture that the metadata is to describe.
struct Described {
    int width = 0;
    int height = 0;
    bool resized = false; // since it was read
    bool grey = false;
};

/// Gives the metadata for a file in a format that `holds` so much: sizes corrected, the thumbnail gone (it would show
/// the picture as it was), what has no place put where there is one, or left out with a warning that begins with the
/// format's name.
Metadata FitMetadata(Metadata metadata, const Described &picture, unsigned holds, const char *format, Report &report);

/// Leaves the colours and the orientation alone, and drops everything else.
void StripMetadata(Metadata &metadata, Report &report);

/// Gives the orientation in an EXIF block, 1 to 8, or 0 if it has none.
int ExifOrientation(ByteView exif, Report &report);

/// Takes note that the picture was turned upright, in EXIF and XMP.
void SetUpright(Metadata &metadata, const Described &picture, Report &report);

/// Gives the block at the start of which there may be an "Exif" mark without the mark; empty if it is no EXIF at all.
Bytes ExifBlock(ByteView block);

/// Gives the IPTC records in the resources that an image editor keeps in a JPEG file; empty if there are none.
Bytes IptcOfResources(ByteView resources, Report &report);

/// Gives the EXIF data of a TIFF file.
Bytes ExifOfTiff(ByteView file, Report &report);

/// Gives a finished TIFF file with EXIF, XMP and IPTC added. Gives false if it cannot be done.
[[nodiscard]] bool AddToTiff(Bytes &file, const Metadata &metadata, Report &report);

/// Turns rows of inks into rows of blue, green and red, by the inks' profile.
class InkConverter {
public:
    InkConverter() = default;
    InkConverter(const InkConverter &) = delete;
    InkConverter &operator=(const InkConverter &) = delete;
    ~InkConverter();

    /// Prepares the conversion; `inverted` rows hold the complements. Fails if the profile is not one of four inks.
    [[nodiscard]] bool Open(ByteView profile, bool inverted, Report &report);
    bool IsOpen() const { return transform != nullptr; }
    /// Converts a row: four bytes a pixel become three.
    void Convert(const uint8_t *inks, int width, uint8_t *out) const;

private:
    void *transform = nullptr;
};

/// Turns inks into light without a profile: each channel is what its ink leaves, times what black leaves.
void InksToColor(const uint8_t *inks, int width, bool inverted, uint8_t *out);

} // namespace lmf::host
