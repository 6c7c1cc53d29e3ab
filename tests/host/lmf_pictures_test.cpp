// Picture files through the built program: what is kept of depth, colours, alpha and metadata, and what damage does.
#include <sys/stat.h>
#include <tiffio.h>
#include <zlib.h>

#include <algorithm>
#include <chrono>
#include <filesystem>
#include <memory>
#include <string_view>
#include <tuple>

#include "host/lmf_program.h"

namespace lmf::testing {

namespace {

constexpr int kGrey = PNG_COLOR_TYPE_GRAY, kPalette = PNG_COLOR_TYPE_PALETTE, kColor = PNG_COLOR_TYPE_RGB;
constexpr int kGreyAlpha = PNG_COLOR_TYPE_GRAY_ALPHA, kColorAlpha = PNG_COLOR_TYPE_RGB_ALPHA;

struct LmfPictures : LmfProgram {};

Bytes Inverted(Bytes rgba) {
    for (size_t i = 0; i < rgba.size(); i++)
        if (i % 4 != 3) rgba[i] = 255 - rgba[i];
    return rgba;
}

/// A picture with every value of its depth in it, and a palette that is not grey.
PngFile MakePng(int type, int depth, int width = 19, int height = 14) {
    PngFile file;
    file.width = width;
    file.height = height;
    file.type = type;
    file.depth = depth;
    const int channels = (type & kColor) == kColor && type != kPalette ? 3 : 1;
    const int count = width * height * (type & PNG_COLOR_MASK_ALPHA ? channels + 1 : channels) * (depth == 16 ? 2 : 1);
    for (int i = 0; i < count; i++)
        file.samples.push_back(uint8_t((i * 37 + i / 19) & (depth < 8 ? (1 << depth) - 1 : 0xFF)));
    if (type == kPalette)
        for (int i = 0; i < 1 << depth; i++)
            file.palette.push_back({uint8_t(i * 7 + 3), uint8_t(255 - i), uint8_t(i * 5)});
    return file;
}

/// Appends the lowest bytes of a number.
void Put(Bytes &out, int bytes, int64_t value, bool big) {
    const size_t start = out.size();
    out.resize(start + size_t(bytes));
    for (int i = 0; i < bytes; i++) out[start + size_t(i)] = uint8_t(value >> 8 * (big ? bytes - 1 - i : i));
}

/// EXIF with a maker, orientation 6, an exposure of 1/50 s in the directory below, and a thumbnail of six bytes.
Bytes MakeExif(bool big) {
    Bytes out;
    const auto put = [&](int bytes, int value) { Put(out, bytes, value, big); };
    const auto text = [&](std::string_view letters) { out.insert(out.end(), letters.begin(), letters.end()); };
    const auto entry = [&](int tag, int type, int count, int value) {
        put(2, tag);
        put(2, type);
        put(4, count);
        put(4, type == 3 && big ? value << 16 : value); // 16 bits fill the first half
    };
    text(big ? "MM" : "II");
    put(2, 42);
    put(4, 8);
    put(2, 3); // at 8
    entry(271, 2, 6, 50);
    entry(274, 3, 1, 6);
    entry(34665, 4, 1, 56);
    put(4, 82);
    text({"Maker", 6}); // at 50
    put(2, 1);          // at 56
    entry(33434, 5, 1, 74);
    put(4, 0);
    put(4, 1); // at 74
    put(4, 50);
    put(2, 2); // at 82
    entry(513, 4, 1, 112);
    entry(514, 4, 1, 6);
    put(4, 0);
    text("secret"); // at 112
    return out;
}

/// EXIF data that ends inside the link to the thumbnail's directory, after so many of its four bytes.
Bytes MakeExifCutInLink(int linkBytes) {
    Bytes out = {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0};
    for (const int half : {274, 3, 1, 0, 6, 0}) Put(out, 2, half, false);
    Put(out, linkBytes, 0x080808, false);
    return out;
}

/// A profile of 512 bytes: a header that tells its colour space, and one tag.
Bytes MakeProfile(const char *space) {
    Bytes profile(512);
    for (size_t i = 144; i < profile.size(); i++) profile[i] = uint8_t(i * i >> 3);
    profile[2] = 2; // 512
    profile[8] = 4;
    const auto put = [&](int at, std::string_view text) { std::copy(text.begin(), text.end(), profile.begin() + at); };
    put(12, "mntr");
    put(16, space);
    put(20, "XYZ ");
    put(36, "acsp");
    put(68, {"\0\0\xF6\xD6\0\1\0\0\0\0\xD3\x2D", 12});  // white
    put(128, {"\0\0\0\1desc\0\0\0\x90\0\0\1\x70", 16}); // the list of tags
    return profile;
}

} // namespace

TEST_F(LmfPictures, PngOfEveryDepthIsInvertedAndKeepsDepthAndTransparency) {
    using Case = std::tuple<int, int, bool>; // type, depth and whether an index or a colour is clear
    std::vector<Case> cases = {
        {kGreyAlpha, 8, false}, {kGreyAlpha, 16, false}, {kColorAlpha, 8, false}, {kColorAlpha, 16, false}};
    for (const bool clear : {false, true}) {
        for (const int depth : {1, 2, 4, 8}) cases.push_back({kPalette, depth, clear});
        for (const int depth : {1, 2, 4, 8, 16}) cases.push_back({kGrey, depth, clear});
        for (const int depth : {8, 16}) cases.push_back({kColor, depth, clear});
    }
    for (const auto &[type, depth, clear] : cases) {
        SCOPED_TRACE("type " + std::to_string(type) + ", depth " + std::to_string(depth));
        PngFile source = MakePng(type, depth);
        if (clear && type == kPalette) source.alpha = {0, 128};
        if (clear && type != kPalette) {
            std::fill_n(&source.samples[30], 6, uint8_t{1});
            source.key = depth == 16 ? 0x0101 : 1;
        }
        const bool indexed = type == kPalette || (type == kGrey && depth < 8);
        for (const bool interlaced : {false, true}) {
            source.interlaced = interlaced;
            WritePng(In("in.png"), source);
            const ProgramRun run = Invert({"in.png", "out.png"});
            EXPECT_EQ(run.exitCode, 0);
            EXPECT_EQ(run.errors, depth == 16 ? "lmf: in.png: warning: 16 bits a channel become 8\n" : "");
            const PngFile output = ReadPng(In("out.png"));
            EXPECT_EQ(output.type, indexed ? kPalette : clear ? type | PNG_COLOR_MASK_ALPHA : type);
            EXPECT_EQ(output.depth, depth == 2 ? 4 : std::min(depth, 8));
            EXPECT_EQ(ReadRgba(In("out.png")), Inverted(ReadRgba(In("in.png"))));
        }
    }
}

// Each picture makes a round through the formats that hold it without loss, and is inverted at every step.
TEST_F(LmfPictures, LosslessFormatsKeepEveryPixel) {
    const std::tuple<int, std::vector<int>, Names> cases[] = {
        {kGrey, {1, 4, 8}, {"a.tif", "b.bmp", "c.png", "d.png"}},
        {kPalette, {4, 8}, {"a.bmp", "b.tif", "c.png", "d.png"}},
        {kColor, {8}, {"a.tif", "b.bmp", "c.webp", "d.png"}},
        {kGreyAlpha, {8}, {"a.tif", "d.png"}},
        {kColorAlpha, {8}, {"a.webp", "b.tif", "c.bmp", "d.png"}}};
    for (const auto &[type, depths, route] : cases) {
        for (const int depth : depths) {
            std::string from = "in.png";
            WritePng(In(from), MakePng(type, depth));
            for (const std::string &to : route) {
                ExpectSilence(Invert({from, to, "--lossless"}));
                from = to;
            }
            EXPECT_EQ(ReadPng(In("d.png")).depth, depth);
            EXPECT_EQ(ReadRgba(In("d.png")), ReadRgba(In("in.png"))) << "type " << type << ", depth " << depth;
        }
    }
}

TEST_F(LmfPictures, FormatsWithoutAlphaOrDepthTakeWhatTheyCan) {
    WritePng(In("alpha.png"), MakePng(kColorAlpha, 8));
    Expect(0, Invert({"alpha.png", "alpha.jpg"}), "warning: JPEG holds no alpha");
    WritePng(In("grey.png"), MakePng(kGrey, 8));
    ExpectSilence(Invert({"grey.png", "grey.jpg"}));
    EXPECT_TRUE(Has(Run({"info", "grey.jpg"}).output, "8 bits, grey"));
    WritePng(In("wide.png"), MakePng(kGrey, 1, 16384, 1));
    Expect(4, Invert({"wide.png", "wide.webp"}), "WebP holds at most 16383");
}

TEST_F(LmfPictures, ProfileAndExifTravelThroughAllFormats) {
    for (const bool big : {false, true}) {
        PngFile source = MakePng(kColor, 8);
        source.icc = MakeProfile("RGB ");
        source.exif = MakeExif(big);
        WritePng(In("in.png"), source);
        std::string from = "in.png";
        for (const std::string to : {"a.webp", "b.jpg", "c.png", "d.tif", "e.tif", "f.jpg", "g.webp", "out.png"}) {
            ExpectSilence(Invert({from, to}));
            EXPECT_TRUE(Has(Run({"info", to}).output, "ICC profile, EXIF, orientation 6")) << to;
            EXPECT_FALSE(Has(ReadText(In(to)), "secret")) << "the old thumbnail is still in " << to;
            from = to;
        }
        EXPECT_EQ(ReadPng(In("out.png")).icc, source.icc);
        const std::string written = ReadText(In("c.png"));
        EXPECT_EQ(written.find("eXIf"), written.rfind("eXIf")) << "the block is there twice";
        const Bytes exif = ReadPng(In("out.png")).exif;
        const std::string rebuilt(exif.begin(), exif.end());
        const std::string exposure("\x9a\x82\x05\0\x01\0\0\0", 8), fraction("\x01\0\0\0\x32\0\0\0", 8);
        EXPECT_TRUE(Has(rebuilt, "Maker") && Has(rebuilt, exposure) && Has(rebuilt, fraction));
    }
}

// A block of 24 bytes fills its heap block to the last byte: one more written is damage that shows without a sanitizer.
TEST_F(LmfPictures, ExifThatEndsInsideALinkKeepsWhatCanBeRead) {
    for (const std::string name : {"plain.jpg", "plain.webp"}) ExpectSilence(Invert({kPhotograph, name, "--strip"}));
    const std::string jpeg = ReadText(In("plain.jpg")), webp = ReadText(In("plain.webp"));
    for (const int linkBytes : {1, 2, 3}) {
        PngFile png = MakePng(kGrey, 8, 1, 1);
        png.exif = MakeExifCutInLink(linkBytes);
        WritePng(In("cut.png"), png);

        const std::string exif(png.exif.begin(), png.exif.end());
        const std::string mark("Exif\0\0", 6);
        const char length = char(2 + mark.size() + exif.size());
        WriteText(In("cut.jpg"), jpeg.substr(0, 2) + "\xFF\xE1" + '\0' + length + mark + exif + jpeg.substr(2));

        const auto chunk = [](const char *name, const Bytes &bytes) {
            Bytes out(name, name + 4);
            Put(out, 4, int64_t(bytes.size()), false);
            out.insert(out.end(), bytes.begin(), bytes.end());
            out.resize((out.size() + 1) & ~size_t{1});
            return std::string(out.begin(), out.end());
        };
        const std::string extended = chunk("VP8X", {8, 0, 0, 0, 194, 1, 0, 43, 1, 0}); // 451 x 300, has EXIF
        const std::string chunks = "WEBP" + extended + webp.substr(12) + chunk("EXIF", png.exif);
        WriteText(In("cut.webp"), chunk("RIFF", Bytes(chunks.begin(), chunks.end())));

        for (const std::string from : {"cut.png", "cut.jpg", "cut.webp"}) {
            SCOPED_TRACE(from + ", " + std::to_string(linkBytes) + " bytes of the link");
            EXPECT_TRUE(Has(Run({"info", from}).output, "EXIF, orientation 6"));
            Expect(0, Invert({from, "out.png"}), "warning: metadata: Directory Image: IFD exceeds data buffer");
            EXPECT_TRUE(Has(Run({"info", "out.png"}).output, "EXIF, orientation 6"));
        }
    }
}

TEST_F(LmfPictures, ExifWithRepeatedTagsMakesATiffThatCanBeRead) {
    PngFile png = MakePng(kGrey, 8, 1, 1);
    constexpr int kCopies = 5000; // libtiff takes 4096 entries at most
    png.exif = {'I', 'I', 42, 0, 8, 0, 0, 0};
    Put(png.exif, 2, kCopies, false);
    for (int i = 0; i < kCopies; i++)
        for (const int half : {270, 2, 2, 0, 97, 0}) Put(png.exif, 2, half, false);
    Put(png.exif, 4, 0, false);
    WritePng(In("many.png"), png);
    Expect(0, Invert({"many.png", "out.tif"}), "metadata: Directory Image with 5000 entries");
    const std::unique_ptr<TIFF, void (*)(TIFF *)> tiff(TIFFOpen(In("out.tif").c_str(), "rb"), TIFFClose);
    EXPECT_NE(tiff, nullptr);
}

// Directories that begin at every other place, each with more entries than the block has room for, and values that all
// lie in the same bytes: what they say takes no more time and memory than the block.
TEST_F(LmfPictures, ExifWithOverlappingDirectoriesCostsNoMoreThanItsSize) {
    PngFile png = MakePng(kGrey, 8, 1, 1);
    png.exif = {'I', 'I', 42, 0, 8, 0, 0, 0, 0xFF, 0xFF};
    for (int i = 0; i < 65535; i++) {
        for (const int half : {i % 2 ? 34665 : 34853, 4, 1, 0}) Put(png.exif, 2, half, false);
        Put(png.exif, 4, 10 + 12 * i, false);
    }
    WritePng(In("fan.png"), png);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(Run({"info", "fan.png"}).exitCode, 0);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(5)) << "it takes 27 s without limits";
}

TEST_F(LmfPictures, ProfileThatDoesNotFitTheResultIsLeftOut) {
    PngFile grey = MakePng(kGrey, 8);
    grey.icc = MakeProfile("GRAY");
    WritePng(In("grey.png"), grey);
    ExpectSilence(Invert({"grey.png", "same.png"}));
    EXPECT_EQ(ReadPng(In("same.png")).icc, grey.icc);
    Expect(0, Invert({"grey.png", "color.webp"}), "profile does not fit");
    EXPECT_FALSE(Has(Run({"info", "color.webp"}).output, "ICC"));
}

TEST_F(LmfPictures, TruncatedAndDamagedFilesAreNamedAndLeaveNothing) {
    for (const std::string name : {"p.png", "p.jpg", "p.tif", "p.webp", "p.bmp"}) {
        ExpectSilence(Invert({kPhotograph, name}));
        const std::string whole = ReadText(In(name));
        for (const size_t length : {size_t{0}, size_t{10}, size_t{40}, whole.size() / 2, whole.size() * 9 / 10}) {
            WriteText(In(name), whole.substr(0, length));
            Expect(2, Invert({name, "out.png"}), "lmf: " + name + ": ");
        }
    }
    std::string damaged = ReadText(kPhotograph);
    damaged[damaged.size() / 2] ^= 0x55;
    WriteText(In("damaged.png"), damaged);
    for (const std::string name : {"damaged.png", "missing.png", "."})
        EXPECT_EQ(Run({"info", name}).exitCode, 2) << name;
    EXPECT_FALSE(std::filesystem::exists(In("out.png")));
}

TEST_F(LmfPictures, LimitsAreTestedBeforeAnythingIsAllocated) {
    // Headers that promise far more than memory holds, and no pixels behind them.
    const std::tuple<int, int, Names, std::string> cases[] = {
        {100001, 1, {}, "100001 x 1 pixels; the limit is 100000 a side (--max-side)"},
        {90000, 90000, {}, "the limit is 268402689 in all (--max-pixels)"},
        {1, 100001, {"--max-side", "200000"}, "lying.png: "}};
    WritePng(In("small.png"), MakePng(kGrey, 8, 2, 2));
    const std::string png = ReadText(In("small.png"));
    for (const auto &[width, height, options, message] : cases) {
        Bytes header(png.begin() + 12, png.begin() + 16);
        Put(header, 4, width, true);
        Put(header, 4, height, true);
        header.insert(header.end(), png.begin() + 24, png.begin() + 29);
        Put(header, 4, int64_t(crc32(0, header.data(), 17)), true);
        WriteText(In("lying.png"), png.substr(0, 12) + std::string(header.begin(), header.end()) + png.substr(33));
        Names arguments = {"info", "lying.png"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        const ProgramRun run = Run(arguments);
        Expect(2, run, message);
        EXPECT_EQ(Has(run.errors, "--max"), options.empty()) << run.errors;
    }
    const std::string size = "451 x 300 pixels; the limit is ";
    Expect(2, Run({"info", kPhotograph, "--max-side", "450"}), size + "450");
    Expect(2, Run({"info", kPhotograph, "--max-pixels", "135299"}), size + "135299");
    EXPECT_EQ(Run({"info", kPhotograph, "--max-pixels", "135300", "--max-side", "451"}).exitCode, 0);
}

// Files as other programs write them: each is 2 x 2, and its pixels are known by hand.
TEST_F(LmfPictures, BmpOfOlderAndRarerKinds) {
    const Bytes palette = {1, 2, 3, 0, 10, 20, 30, 0, 100, 110, 120, 0};
    constexpr int64_t kFirst = 0x030201FF, kSecond = 0x1E140AFF, kThird = 0x786E64FF;
    const std::tuple<int, int, int, int, Bytes, std::vector<int64_t>> cases[] = {
        // rows from the top down
        {-2, 8, 0, 3, {0, 1, 0, 0, 2, 0, 0, 0}, {kFirst, kSecond, kThird, kFirst}},
        // run of two, end of line, three literal pixels (one beyond the edge) with padding, end
        {2, 8, 1, 3, {2, 1, 0, 0, 0, 3, 0, 2, 0, 0, 0, 1}, {kFirst, kThird, kSecond, kSecond}},
        // nibbles: run that alternates; a step to the right leaves color 0
        {2, 4, 2, 3, {2, 0x12, 0, 0, 0, 2, 1, 0, 1, 0x20, 0, 1}, {kFirst, kThird, kSecond, kThird}},
        // five bits a channel
        {2, 16, 0, 0, {0xFF, 0x7F, 0, 0x7C, 0xE0, 3, 0x1F, 0}, {0xFF00FF, 0xFFFF, 0xFFFFFFFF, 0xFF0000FF}},
    };
    for (const auto &[height, bits, compression, colors, rows, wanted] : cases) {
        Bytes file = {'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0};
        for (const int value : {54 + 4 * colors, 40, 2, height, 1 | bits << 16, compression, 0, 0, 0, colors, 0})
            Put(file, 4, value, false);
        file.insert(file.end(), palette.begin(), palette.begin() + 4 * colors);
        file.insert(file.end(), rows.begin(), rows.end());
        WriteText(In("in.bmp"), {file.begin(), file.end()});
        ExpectSilence(Invert({"in.bmp", "out.png"}));
        Bytes expected;
        for (const int64_t color : wanted) Put(expected, 4, color, true);
        EXPECT_EQ(ReadRgba(In("out.png")), Inverted(expected)) << "depth " << bits;
    }
}

TEST_F(LmfPictures, TiffInTilesPlanesAndSixteenBits) {
    constexpr int kWidth = 21, kHeight = 18, kTile = 16;
    for (const bool separate : {false, true}) {
        TIFF *tiff = TIFFOpen(In("in.tif").c_str(), "wb");
        const std::pair<uint32_t, int> tags[] = {
            {TIFFTAG_IMAGEWIDTH, kWidth},
            {TIFFTAG_IMAGELENGTH, kHeight},
            {TIFFTAG_BITSPERSAMPLE, 16},
            {TIFFTAG_SAMPLESPERPIXEL, 3},
            {TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB},
            {TIFFTAG_PLANARCONFIG, separate ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG},
            {TIFFTAG_TILEWIDTH, kTile},
            {TIFFTAG_TILELENGTH, kTile}};
        for (const auto &[tag, value] : tags) TIFFSetField(tiff, tag, value);
        const auto sample = [](int x, int y, int c) { return uint16_t(x * 3001 + y * 500 + c * 77); };
        for (int plane = 0; plane < (separate ? 3 : 1); plane++)
            for (int top = 0; top < kHeight; top += kTile)
                for (int left = 0; left < kWidth; left += kTile) {
                    std::vector<uint16_t> tile;
                    for (int i = 0; i < kTile * kTile; i++)
                        for (int c = plane; c < (separate ? plane + 1 : 3); c++)
                            tile.push_back(sample(left + i % kTile, top + i / kTile, c));
                    TIFFWriteTile(tiff, tile.data(), uint32_t(left), uint32_t(top), 0, uint16_t(plane));
                }
        TIFFClose(tiff);
        Expect(0, Invert({"in.tif", "out.png"}), "warning: 16 bits a channel become 8");
        EXPECT_TRUE(Has(Run({"info", "in.tif"}).output, "(16 bits a channel in the file)"));
        Bytes expected;
        for (int i = 0; i < kWidth * kHeight; i++) {
            for (int c = 0; c < 3; c++)
                expected.push_back(uint8_t((sample(i % kWidth, i / kWidth, c) * 255 + 32767) / 65535));
            expected.push_back(255);
        }
        EXPECT_EQ(ReadRgba(In("out.png")), Inverted(expected)) << (separate ? "planes" : "pixels");
    }
}

namespace {

std::string Text(const Bytes &bytes) {
    return {bytes.begin(), bytes.end()};
}

/// A JPEG segment with its length.
std::string Segment(int kind, const std::string &data) {
    const size_t size = data.size() + 2;
    return std::string{'\xFF', char(kind), char(size >> 8), char(size)} + data;
}

std::string Chunk(const std::string &typeAndData) {
    Bytes out;
    Put(out, 4, int64_t(typeAndData.size()) - 4, true);
    out.insert(out.end(), typeAndData.begin(), typeAndData.end());
    Put(out, 4, int64_t(crc32(0, out.data() + 4, unsigned(typeAndData.size()))), true);
    return Text(out);
}

/// The PNG file with chunks before its pixels.
std::string WithChunks(const std::string &png, const std::string &chunks) {
    const size_t at = png.find("IDAT") - 4;
    return png.substr(0, at) + chunks + png.substr(at);
}

/// A JPEG photograph of quality 77 with EXIF, XMP, IPTC, a comment and 300 pixels to the inch.
std::string RichJpeg(const std::string &plain, const Bytes &exif) {
    const std::string xmp =
        "<x:xmpmeta xmlns:x='adobe:ns:meta/'><rdf:RDF "
        "xmlns:rdf='http://www.w3.org/1999/02/22-rdf-syntax-ns#'><rdf:Description rdf:about='' "
        "xmlns:xmp='http://ns.adobe.com/xap/1.0/' xmp:Rating='5' "
        "xmlns:exif='http://ns.adobe.com/exif/1.0/' exif:PixelXDimension='451'/></rdf:RDF></x:xmpmeta>";
    const std::string iptc("\x1C\2\5\0\5Title", 10), resource("8BIM\4\4\0\0\0\0\0\x0A", 12);
    return plain.substr(0, 2) + Segment(0xE0, std::string("JFIF\0\1\1\1\1\x2C\1\x2C\0\0", 14)) +
           Segment(0xE1, std::string("Exif\0\0", 6) + Text(exif)) +
           Segment(0xE1, std::string("http://ns.adobe.com/xap/1.0/\0", 29) + xmp) +
           Segment(0xED, std::string("Photoshop 3.0\0", 14) + resource + iptc) + Segment(0xFE, "a comment") +
           plain.substr(20); // behind its own JFIF segment
}

} // namespace

TEST_F(LmfPictures, MetadataTravelsAsFarAsTheFormatHoldsIt) {
    ExpectSilence(Invert({kPhotograph, "plain.jpg", "--quality", "77", "--chroma", "420", "--strip"}));
    WriteText(In("in.jpg"), RichJpeg(ReadText(In("plain.jpg")), MakeExif(false)));
    const std::string all = "EXIF, XMP, IPTC, orientation 6";
    const std::tuple<std::string, std::string, std::string> cases[] = {
        {"a.jpg", all, ""},
        {"a.tif", all, "TIFF has no place for this, which is left out: comment"},
        {"a.png", "EXIF, XMP, orientation 6", ""}, // the IPTC records are among the XMP then
        {"a.webp", "EXIF, XMP, orientation 6", "WebP has no place for this, which is left out: comment"},
        {"a.bmp", "true color\n", "BMP has no place for this, which is left out: EXIF, XMP, IPTC, comment"}};
    for (const auto &[name, held, warning] : cases) {
        const ProgramRun run = Invert({"in.jpg", name});
        EXPECT_EQ(run.errors, warning.empty() ? "" : "lmf: in.jpg: warning: " + warning + "\n");
        EXPECT_TRUE(Has(Run({"info", name}).output, held)) << Run({"info", name}).output;
        const std::string file = ReadText(In(name));
        EXPECT_EQ(Has(file, "Rating"), name != "a.bmp") << name;
        EXPECT_EQ(Has(file, "a comment"), warning.empty()) << name;
        EXPECT_EQ(Has(file, "Title"), name != "a.bmp") << name;
        ExpectSilence(Invert({name, "stripped.png", "--strip"}));
        const std::string stripped = ReadText(In("stripped.png"));
        EXPECT_FALSE(Has(stripped, "Rating") || Has(stripped, "Title") || Has(stripped, "Maker"));
        EXPECT_EQ(Has(Run({"info", "stripped.png"}).output, "EXIF, orientation 6"), name != "a.bmp") << name;
    }
    // Of the way back nothing is lost, and the tables of the JPEG file are its own.
    const std::string back = ReadText(In("a.jpg"));
    EXPECT_TRUE(Has(back, std::string("JFIF\0\1\1\1\1\x2C\1\x2C", 12)));
    ExpectSilence(Run({"apply", "Resize", "in.jpg", "half.jpg", "--set", "Horz=50"}));
    EXPECT_TRUE(Has(ReadText(In("half.jpg")), "exif:PixelXDimension=\"226\""));
    ExpectSilence(Invert({"in.jpg", "up.png", "--auto-orient"}));
    const std::string upright = Run({"info", "up.png"}).output;
    EXPECT_TRUE(Has(upright, "300 x 451") && Has(upright, "orientation 1")) << upright;
}

TEST_F(LmfPictures, UprightPicturesAreTurnedAsTheirOrientationTells) {
    // Where the four pixels of a 2 x 2 picture are after each of the eight.
    const char *const expected[] = {"abcd", "badc", "dcba", "cdab", "acbd", "cadb", "dbca", "bdac"};
    for (const int depth : {1, 8}) {
        for (int orientation = 1; orientation <= 8; orientation++) {
            PngFile file = MakePng(kPalette, depth, 2, 2);
            file.samples = depth == 8 ? Bytes{0, 1, 2, 3} : Bytes{0, 0, 0, 1};
            file.exif = {'I', 'I', 42, 0, 8, 0, 0, 0, 1, 0, 18, 1, 3, 0, 1, 0, 0, 0, uint8_t(orientation),
                         0,   0,   0,  0, 0, 0, 0};
            WritePng(In("in.png"), file);
            ExpectSilence(Invert({"in.png", "out.png", "--auto-orient"}));
            Bytes turned;
            for (int i = 0; i < 4; i++) turned.push_back(file.samples[size_t(expected[orientation - 1][i] - 'a')]);
            file.samples = turned;
            WritePng(In("turned.png"), file);
            EXPECT_EQ(ReadRgba(In("out.png")), Inverted(ReadRgba(In("turned.png")))) << orientation;
        }
    }
}

TEST_F(LmfPictures, PngTextsColorsAndAnimationsAreKeptOrTold) {
    // A photograph that tells its colors by a profile known as that of sRGB.
    ExpectSilence(Run({"apply", "Invert Colors", kPortrait, "a.png"}));
    EXPECT_TRUE(Has(ReadText(In("a.png")), "iCCP"));
    WritePng(In("plain.png"), MakePng(kColor, 8));
    const std::string plain = ReadText(In("plain.png"));
    const std::string text = Chunk(std::string("tEXtTitle\0of it", 15)),
                      gamma = Chunk(std::string("gAMA\0\1\x86\xA0", 8));
    WriteText(In("in.png"), WithChunks(plain, gamma + text + Chunk(std::string("acTL\0\0\0\2\0\0\0\0", 12))));
    Expect(0, Invert({"in.png", "out.png"}), "only its first picture is read");
    const std::string kept = ReadText(In("out.png"));
    EXPECT_TRUE(Has(kept, text) && Has(kept, gamma));
    Expect(0, Invert({"out.png", "out.jpg"}), "JPEG has no place for this, which is left out: text");
    EXPECT_TRUE(Has(Run({"info", "out.jpg"}).output, "ICC profile")) << "a profile tells the gamma";
    WriteText(In("broken.png"), WithChunks(plain, gamma.substr(0, 12) + "gAMA")); // the wrong sum
    Expect(0, Invert({"broken.png", "out.png"}), "warning: the file is damaged: gAMA: CRC error");
    Expect(2, Invert({"broken.png", "out.png", "--strict"}), "the file is damaged");
}

TEST_F(LmfPictures, EncodersDoAsTheyAreToldAndSayWhenTheyCannot) {
    ExpectSilence(Invert({kPhotograph, "in.jpg", "--quality", "35", "--chroma", "422"}));
    const auto tables = [&](const std::string &name) { // from the first table to the end of the frame header
        const std::string file = ReadText(In(name));
        const size_t start = file.find("\xFF\xDB"), end = file.find("\xFF\xC4");
        return file.substr(start, end - start);
    };
    ExpectSilence(Invert({"in.jpg", "kept.jpg"}));
    EXPECT_EQ(tables("kept.jpg"), tables("in.jpg"));
    for (const Names &options : {Names{"--quality", "36"}, {"--chroma", "444"}, {"--progressive"}}) {
        Names arguments = {"in.jpg", "other.jpg"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        ExpectSilence(Invert(arguments));
        EXPECT_NE(tables("other.jpg"), tables("in.jpg")) << options[0];
    }
    Expect(0, Invert({"in.jpg", "o.png", "--quality", "5"}), "--quality has no effect on PNG");
    Expect(0, Invert({"in.jpg", "o.jpg", "--lossless"}), "--lossless has no effect on JPEG");
    Expect(1, Invert({"in.jpg", "o.jpg", "--quality", "keen"}), "takes keep, or 1 to 100");
    for (const std::string level : {"0", "9"})
        ExpectSilence(Invert({"in.jpg", level + ".png", "--compression", level}));
    EXPECT_GT(std::filesystem::file_size(In("0.png")), 2 * std::filesystem::file_size(In("9.png")));
}

// Small files that ask for much: each is refused, or read without what nobody needs.
TEST_F(LmfPictures, SmallFilesCostLittle) {
    WritePng(In("small.png"), MakePng(kGrey, 8, 2, 2));
    Bytes zeros(64 << 20), packed(compressBound(zeros.size()));
    uLongf size = packed.size();
    compress(packed.data(), &size, zeros.data(), zeros.size());
    std::string texts;
    for (int i = 0; i < 50; i++)
        texts +=
            Chunk(std::string("zTXtk\0\0", 7) + std::string(packed.begin(), packed.begin() + std::ptrdiff_t(size)));
    WriteText(In("texts.png"), WithChunks(ReadText(In("small.png")), texts));

    TIFF *tiff = TIFFOpen(In("tile.tif").c_str(), "wb");
    const std::pair<uint32_t, int> tags[] = {{TIFFTAG_IMAGEWIDTH, 1},
                                             {TIFFTAG_IMAGELENGTH, 1},
                                             {TIFFTAG_BITSPERSAMPLE, 8},
                                             {TIFFTAG_SAMPLESPERPIXEL, 16},
                                             {TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK},
                                             {TIFFTAG_TILEWIDTH, 16384},
                                             {TIFFTAG_TILELENGTH, 16384},
                                             {TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE}};
    for (const auto &[tag, value] : tags) TIFFSetField(tiff, tag, value);
    TIFFWriteRawTile(tiff, 0, packed.data(), 100);
    TIFFClose(tiff);

    ExpectSilence(Invert({kPhotograph, "scans.jpg", "--progressive"}));
    const std::string jpeg = ReadText(In("scans.jpg"));
    const size_t scan = jpeg.find("\xFF\xDA"), next = jpeg.find("\xFF\xC4", scan);
    std::string scans = jpeg.substr(0, next);
    for (int i = 0; i < 600; i++) scans += jpeg.substr(scan, next - scan);
    WriteText(In("scans.jpg"), scans + jpeg.substr(next));

    const std::tuple<std::string, int, std::string> cases[] = {{"texts.png", 0, ""},
                                                               {"tile.tif", 2, "a tile of the file takes 4096 MB"},
                                                               {"scans.jpg", 2, "more than 500 scans"}};
    for (const auto &[name, code, message] : cases) {
        const auto start = std::chrono::steady_clock::now();
        Expect(code, Run({"info", name}), message);
        EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(3)) << name;
    }
    ASSERT_EQ(mkfifo(In("pipe.png").c_str(), 0600), 0);
    Expect(2, Invert({"--out-dir", "out", "pipe.png", "small.png"}), "pipe.png: this is no regular file");
}

TEST_F(LmfPictures, TransparencyGoesWhereThePictureGoes) {
    // A yellow block in the middle of what is clear, and black where nobody sees it.
    PngFile logo = MakePng(kColorAlpha, 8, 40, 30);
    logo.samples.assign(40 * 30 * 4, 0);
    for (int i = 0; i < 40 * 30; i++)
        if (i % 40 >= 12 && i % 40 < 25 && i / 40 >= 8 && i / 40 < 21)
            for (const auto &[c, value] : {std::pair{0, 250}, {1, 220}, {2, 20}, {3, 255}})
                logo.samples[size_t(4 * i + c)] = uint8_t(value);
    WritePng(In("logo.png"), logo);
    const std::tuple<std::string, Names, bool> cases[] = {
        {"Gaussian Blur", {}, true},
        {"Motion Blur", {}, true},
        {"Rotate", {"--set", "Angle=20"}, true},
        {"Shear", {}, true},
        {"Matt", {"--set", "Size=30"}, true},
        {"Swirl", {}, true},
        {"Rotate", {"--set", "Angle=20", "--paper", "FFFFFF"}, false}};
    for (const auto &[filter, options, clear] : cases) {
        Names arguments = {"apply", filter, "logo.png", "out.png"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        ExpectSilence(Run(arguments));
        const Bytes pixels = ReadRgba(In("out.png"));
        EXPECT_EQ(pixels[3] == 0, clear) << filter;
        for (size_t i = 0; clear && i < pixels.size(); i += 4)
            if (pixels[i + 3] > 8) {
                ASSERT_NEAR(pixels[i], 250, 6) << filter << " leaves a fringe";
            }
    }
    ExpectSilence(Run({"apply", "Trim", "logo.png", "out.png"}));
    const PngFile trimmed = ReadPng(In("out.png"));
    EXPECT_EQ(std::pair(trimmed.width, trimmed.height), std::pair(13, 13));
    for (size_t i = 3; i < trimmed.samples.size(); i += 4) ASSERT_EQ(trimmed.samples[i], 255);
    ExpectSilence(Run({"apply", "Rotate", kPhotograph, "out.png", "--set", "Angle=20", "--paper", "transparent"}));
    EXPECT_EQ(ReadPng(In("out.png")).type, kColorAlpha);
}

TEST_F(LmfPictures, PicturesOfFewColorsAreRaisedForFiltersThatTakeNoLess) {
    WritePng(In("grey.png"), MakePng(kGrey, 8));
    WritePng(In("pal.png"), MakePng(kPalette, 4));
    const Names bySize = {"--set", "Interpolate=on", "--set", "ByDim=on", "--set", "Width=64"};
    const std::tuple<std::string, std::string, Names> cases[] = {
        {"Sepia", "grey.png", {}}, {"Gaussian Blur", "pal.png", {}}, {"Resize", "pal.png", bySize}};
    for (const auto &[filter, from, options] : cases) {
        Names arguments = {"apply", filter, from, "out.png"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        Expect(0, Run(arguments), "picture becomes true color, since " + filter + " takes no");
        EXPECT_EQ(ReadPng(In("out.png")).type, kColor);
        arguments.push_back("--strict-depth");
        Expect(3, Run(arguments), "Unsupported function");
    }
}

TEST_F(LmfPictures, OutputsFollowLinksAndTellWhatTheyPart) {
    WritePng(In("in.png"), MakePng(kGrey, 8));
    std::filesystem::create_symlink("target.png", In("dangling.png"));
    ExpectSilence(Invert({"in.png", "dangling.png"}));
    EXPECT_TRUE(std::filesystem::is_symlink(In("dangling.png")) && std::filesystem::exists(In("target.png")));
    std::filesystem::create_symlink("loop.png", In("loop.png"));
    Expect(4, Invert({"in.png", "loop.png"}), "symbolic links");
    std::filesystem::create_hard_link(In("target.png"), In("second.png"));
    Expect(0, Invert({"in.png", "target.png"}), "the file's other names keep the old picture");
}

} // namespace lmf::testing
