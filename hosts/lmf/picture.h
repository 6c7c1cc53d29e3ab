// A decoded picture as the host keeps it, and the picture files that it reads and writes.
#pragma once

#include <cstdint>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

#include "lmf16block.h"
#include "metadata.h"
#include "report.h"

namespace lmf::host {

/// What a picture may be at most. Tested with the size in the file's header, before anything is allocated.
struct Limits {
    int64_t side = 100000;
    int64_t pixels = 268402689;
    bool undamaged = false;   // damage that a decoder can mend is a failure
    bool regularOnly = false; // what is no regular file is refused: a pipe may keep its reader waiting for ever
};

/// How finely a JPEG file keeps the colours beside the brightness: every pixel's, every second column's, or every
/// second column's and row's.
enum class Chroma { kKeep, k444, k422, k420 };

/// How a format writes what it leaves to the writer.
struct Encoding {
    int quality = 0; // 1 to 100; 0: as the input where that is a JPEG file, else 92
    Chroma chroma = Chroma::kKeep;
    bool progressive = false; // JPEG only
    bool lossless = false;    // WebP only
    int compression = -1;     // PNG only, 0 to 9; -1: the usual
    bool strip = false;       // no metadata but colours and orientation
};

/// What a format may let be chosen; of these a codec's `obeys` is made.
enum Obeys : unsigned { kObeysQuality = 1, kObeysJpeg = 2, kObeysLossless = 4, kObeysCompression = 8 };

/// Owns one packed bitmap block (see lmf16filter.h) and keeps it locked while it lives.
struct Bitmap {
    LmfHandle block = nullptr;
    uint8_t *bytes = nullptr; // the locked block
    int width = 0;
    int height = 0;
    int bits = 0; // 1, 4, 8, 24 or 32
    size_t stride = 0;

    Bitmap() = default;
    Bitmap(Bitmap &&other) noexcept;
    Bitmap &operator=(Bitmap &&other) noexcept;
    ~Bitmap();

    explicit operator bool() const { return block != nullptr; }

    /// Gives the blue, green, red, 0 entries of the colour table; meaningful for depths up to 8.
    uint8_t *Palette() const { return bytes + 40; }
    /// Gives the number of its entries; 0 for depths above 8.
    int Colors() const { return bits <= 8 ? 1 << bits : 0; }

    /// Gives row `y`, counted from the top of the picture.
    uint8_t *Row(int y) const;
};

/// Makes a black bitmap with an empty colour table. Fails for a size below 1, or when memory is short.
[[nodiscard]] bool MakeBitmap(Bitmap &bitmap, int width, int height, int bits, Report &report);

/// Takes ownership of a block that the library made. Fails if the header does not describe what the block holds.
[[nodiscard]] bool AdoptBitmap(Bitmap &bitmap, LmfHandle block);

/// Fills the colour table with even steps of grey, from black to white.
void SetGreyRamp(Bitmap &bitmap);

/// Whether the colour table is exactly what SetGreyRamp makes.
[[nodiscard]] bool HasGreyRamp(const Bitmap &bitmap);

/// Whether every entry of the colour table is a grey; false for depths above 8.
[[nodiscard]] bool HasGreyPalette(const Bitmap &bitmap);

/// Gives what the filters take the bitmap for: "true color", "grey", "palette" or "mono".
const char *ModeName(const Bitmap &bitmap);

/// Unpacks row `y` of a bitmap of up to 8 bits into one index a byte.
void IndexRow(const Bitmap &bitmap, int y, uint8_t *out);

struct Codec;

/// How a JPEG file was compressed.
struct JpegStyle {
    int quality = 0;            // nearest step of the usual scale; 0: there was no such file
    int tables = 0;             // 1, or 2 with one for the colours
    uint16_t steps[2][64] = {}; // the tables, in natural order
    int across = 1, down = 1;   // pixels to a sample of colour
};

struct Picture {
    Bitmap image;
    Bitmap alpha; // 8-bit grey of the image's size, or empty
    Metadata metadata;
    JpegStyle jpeg;
    const Codec *codec = nullptr; // of the file that it was read from
    /// Asked, if set, by MakePicture whether a picture of so many bits is of any use, before its pixels are decoded.
    std::function<bool(int bits, Report &report)> accepts;
    int fileBits = 0; // a channel, where the file has more than the bitmap can; else 0
    int readWidth = 0, readHeight = 0;
};

/// How a file lays out its pixels when it does not store the indices of a palette.
enum class Layout { kGrey, kGreyAlpha, kColor, kColorAlpha };
enum class Order { kBgr, kRgb };

/// Whether the picture has alpha, in its second plane or in 32-bit pixels.
[[nodiscard]] bool HasAlpha(const Picture &picture);

/// Gives the layout that holds everything in the picture.
[[nodiscard]] Layout FullLayout(const Picture &picture);
/// Gives the number of samples of a pixel, 1 to 4.
[[nodiscard]] int SamplesOf(Layout layout);

/// Writes row `y` in a layout, one byte a sample. The grey layouts are for pictures with a grey palette.
void FillRow(const Picture &picture, Layout layout, Order order, int y, uint8_t *out);

/// Splits rows that a decoder gave with alpha: `samples` is 2 (grey, alpha) or 4 (blue, green, red, alpha).
void SplitAlphaRow(Picture &picture, int y, int samples, const uint8_t *row);

/// Makes the image and, if `alpha`, the plane beside it. Fails where the picture is not accepted.
[[nodiscard]] bool MakePicture(Picture &picture, int width, int height, int bits, bool alpha, Report &report);

/// Fails when a size from a file's header is not positive or beyond the limits.
[[nodiscard]] bool CheckSize(int64_t width, int64_t height, const Limits &limits, Report &report);

/// Whether there is a profile that a file in grey or in colour can carry, of at most `longest` bytes; warns when it has
/// to be left out.
[[nodiscard]] bool CarriesProfile(const Metadata &metadata, bool grey, size_t longest, Report &report);

/// Gives the quality to write with, 1 to 100.
int QualityFor(const Picture &picture, const Encoding &encoding);

/// Says that the 16 bits of a channel have become 8.
void TellSixteenBits(Picture &picture, Report &report);

/// One picture file format.
struct Codec {
    const char *name;
    const char *extensions; // each with a leading and a closing semicolon, small letters
    int longestSide;        // that the format can hold
    unsigned holds;         // of metadata, see Holds
    unsigned obeys;         // of what an Encoding asks for, see Obeys
    bool (*recognises)(ByteView start);
    bool (*read)(ByteView file, const Limits &limits, Picture &picture, Report &report);
    /// `metadata` is what the format can hold of the picture's.
    bool (*write)(std::FILE *file, const Picture &picture, const Metadata &metadata, const Encoding &encoding,
                  Report &report);
};

extern const Codec kPng;
extern const Codec kJpeg;
extern const Codec kTiff;
extern const Codec kWebp;
extern const Codec kBmp;

/// Finds the format of a file name's extension, in any case; null if there is none.
const Codec *CodecForName(const std::string &path);

/// Reads a picture file of any format; the content decides which. "-" is standard input.
[[nodiscard]] bool ReadPicture(const std::string &path, const Limits &limits, Picture &picture, Report &report);

/// Writes beside `path` and renames, so that the file appears whole or not at all; "-" is standard output. Without a
/// `codec` the extension picks the format; a name without one takes the format that the picture was read from.
[[nodiscard]] bool WritePicture(const std::string &path, const Codec *codec, const Picture &picture,
                                const Encoding &encoding, Report &report);

} // namespace lmf::host
