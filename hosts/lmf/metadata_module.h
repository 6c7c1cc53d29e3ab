// What the program asks of the module that holds Exiv2 and Little CMS. They are linked to it alone: loading Exiv2
// takes as long as the rest of the program's start, and most pictures need neither.
#pragma once

#include "metadata.h"

namespace lmf::host {

/// What to change in metadata.
struct MetadataChange {
    Described picture;
    bool upright = false;          // the pixels were turned as the orientation tells
    bool onlyOrientation = false;  // drop all other EXIF data
    bool densityIntoExif = false;  // the format tells the density nowhere else
    bool iptcIntoXmp = false;      // the format has no place for IPTC
    bool colorTagsIntoIcc = false; // the format has no place for gamma and primaries
};

/// The module's functions. Texts in `complaints` are about data that was left out. None of them throws anything but
/// std::bad_alloc.
struct MetadataModule {
    using Complaints = std::vector<std::string>;

    /// Gives the orientation in an EXIF block, or 0.
    int (*orientation)(ByteView exif);
    /// Changes EXIF, XMP and profile.
    void (*change)(Metadata &metadata, const MetadataChange &change, Complaints &complaints);
    Bytes (*iptcOfResources)(ByteView resources);
    Bytes (*exifOfTiff)(ByteView file, Complaints &complaints);
    /// Gives false, and leaves the file alone, when it cannot be done.
    bool (*addToTiff)(Bytes &file, const Metadata &metadata, Complaints &complaints);
    /// Gives a transform of rows for `convert`, or null.
    void *(*openInks)(ByteView profile, bool inverted);
    void (*convertInks)(void *transform, const uint8_t *inks, int width, uint8_t *out);
    void (*closeInks)(void *transform);
};

/// The one name that the module exports.
extern "C" const MetadataModule *LmfMetadataModule();

} // namespace lmf::host
