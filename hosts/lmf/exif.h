// EXIF data: a small TIFF file of its own, carried as it is wherever a format has a place for such a block.
#pragma once

#include "picture.h"

namespace lmf::host {

/// Gives the picture a block read from a file. A leading "Exif" mark is dropped, and so is the thumbnail: it would
/// show the picture as it was before the filter. A block that is not EXIF is ignored.
void SetExif(Picture &picture, ByteView block);

/// Gives the orientation tag, 1 to 8, or 0 if the block has none.
int ExifOrientation(ByteView exif);

/// Collects what a TIFF file says about its picture, with its EXIF and GPS directories. Empty if it says nothing.
Bytes ExifFromTiff(ByteView file);

/// Adds the tags of an EXIF block to the first directory of a finished TIFF file, except those that it has.
[[nodiscard]] bool AddExifToTiff(std::FILE *file, ByteView exif);

} // namespace lmf::host
