// Picture files through the built program: what is kept of depth, colours, alpha and metadata, and what damage does.
#include <png.h>
#include <tiffio.h>
#include <zlib.h>

#include <algorithm>
#include <cstring>
#include <filesystem>

#include "host/lmf_program.h"

namespace lmf::testing {

namespace {

using Rgba = std::array<int, 4>;

struct LmfPictures : LmfProgram {};

int ChannelCount(const PngFile &file) {
    static constexpr int kCounts[] = {1, 0, 3, 1, 2, 0, 4};
    return kCounts[file.type];
}

/// The colour of every pixel in 8 bits a channel, whatever the file's type.
std::vector<Rgba> ColorsOf(const PngFile &file) {
    const int channels = ChannelCount(file);
    const int bytes = file.depth == 16 ? 2 : 1;
    const int highest = (1 << file.depth) - 1;
    std::vector<Rgba> colors;
    const auto value = [&](size_t pixel, int channel) {
        const size_t at = (pixel * size_t(channels) + size_t(channel)) * size_t(bytes);
        return bytes == 2 ? file.samples[at] << 8 | file.samples[at + 1] : int(file.samples[at]);
    };
    const auto rounded = [&](int sample) { return (sample * 255 + highest / 2) / highest; };
    for (size_t i = 0; i < size_t(file.width) * size_t(file.height); i++) {
        const int first = value(i, 0);
        Rgba color = {rounded(first), rounded(first), rounded(first), first == file.key ? 0 : 255};
        if (file.type == PNG_COLOR_TYPE_PALETTE) {
            const auto index = size_t(first);
            for (size_t c = 0; c < 3; c++) color[c] = file.palette[index][c];
            color[3] = index < file.alpha.size() ? file.alpha[index] : 255;
        }
        if (channels >= 3)
            for (int c = 0; c < 3; c++) color[size_t(c)] = rounded(value(i, c));
        if (channels >= 3 && file.key >= 0)
            color[3] = value(i, 0) == file.key && value(i, 1) == file.key && value(i, 2) == file.key ? 0 : 255;
        if (channels == 2 || channels == 4) color[3] = rounded(value(i, channels - 1));
        colors.push_back(color);
    }
    return colors;
}

std::vector<Rgba> Inverted(std::vector<Rgba> colors) {
    for (Rgba &color : colors)
        for (size_t c = 0; c < 3; c++) color[c] = 255 - color[c];
    return colors;
}

/// A picture with every value of its depth in it, and a palette that is not grey.
PngFile MakePng(int type, int depth, int width = 19, int height = 14) {
    PngFile file;
    file.width = width;
    file.height = height;
    file.type = type;
    file.depth = depth;
    const size_t count = size_t(width) * size_t(height) * size_t(ChannelCount(file)) * (depth == 16 ? 2 : 1);
    for (size_t i = 0; i < count; i++)
        file.samples.push_back(uint8_t(i * 37 + i / 19) & (depth < 8 ? (1u << depth) - 1 : 0xFFu));
    if (type == PNG_COLOR_TYPE_PALETTE)
        for (int i = 0; i < 1 << depth; i++)
            file.palette.push_back({uint8_t(i * 7 + 3), uint8_t(255 - i), uint8_t(i * 5)});
    return file;
}

void Put16(Bytes &out, int value, bool big) {
    out.push_back(uint8_t(big ? value >> 8 : value));
    out.push_back(uint8_t(big ? value : value >> 8));
}

void Put32(Bytes &out, int value, bool big) {
    Put16(out, big ? value >> 16 : value & 0xFFFF, big);
    Put16(out, big ? value & 0xFFFF : value >> 16, big);
}

/// EXIF with a maker, orientation 6, an exposure of 1/50 s in the directory below, and a thumbnail of six bytes.
Bytes MakeExif(bool big) {
    Bytes out = big ? Bytes{'M', 'M', 0, 42, 0, 0, 0, 8} : Bytes{'I', 'I', 42, 0, 8, 0, 0, 0};
    const auto entry = [&](int tag, int type, int count, int value) {
        Put16(out, tag, big);
        Put16(out, type, big);
        Put32(out, count, big);
        if (type == 3) {
            Put16(out, value, big);
            Put16(out, 0, big);
        } else {
            Put32(out, value, big);
        }
    };
    Put16(out, 3, big); // at 8
    entry(271, 2, 6, 50);
    entry(274, 3, 1, 6);
    entry(34665, 4, 1, 56);
    Put32(out, 82, big);
    for (const char c : {'M', 'a', 'k', 'e', 'r', '\0'}) out.push_back(uint8_t(c)); // at 50
    Put16(out, 1, big);                                                             // at 56
    entry(33434, 5, 1, 74);
    Put32(out, 0, big);
    Put32(out, 1, big); // at 74
    Put32(out, 50, big);
    Put16(out, 2, big); // at 82
    entry(513, 4, 1, 112);
    entry(514, 4, 1, 6);
    Put32(out, 0, big);
    for (const char c : {'s', 'e', 'c', 'r', 'e', 't'}) out.push_back(uint8_t(c)); // at 112
    return out;
}

/// A profile of 512 bytes: a header that tells its colour space, and one tag.
Bytes MakeProfile(const char *space) {
    Bytes profile(512);
    for (size_t i = 144; i < profile.size(); i++) profile[i] = uint8_t(i * i >> 3);
    profile[2] = 2; // 512
    profile[8] = 4;
    std::memcpy(profile.data() + 12, "mntr", 4);
    std::memcpy(profile.data() + 16, space, 4);
    std::memcpy(profile.data() + 20, "XYZ ", 4);
    std::memcpy(profile.data() + 36, "acsp", 4);
    const uint8_t white[] = {0, 0, 0xF6, 0xD6, 0, 1, 0, 0, 0, 0, 0xD3, 0x2D};
    std::memcpy(profile.data() + 68, white, sizeof white);
    const uint8_t tags[] = {0, 0, 0, 1, 'd', 'e', 's', 'c', 0, 0, 0, 144, 0, 0, 1, 112};
    std::memcpy(profile.data() + 128, tags, sizeof tags);
    return profile;
}

bool Contains(const Bytes &bytes, const std::string &text) {
    const auto *raw = reinterpret_cast<const char *>(bytes.data());
    return std::string_view(raw, bytes.size()).find(text) != std::string_view::npos;
}

} // namespace

TEST_F(LmfPictures, PngOfEveryDepthIsInvertedAndKeepsItsDepth) {
    struct Case {
        int type, depth, resultType, resultDepth;
    };
    constexpr int kGrey = PNG_COLOR_TYPE_GRAY, kPalette = PNG_COLOR_TYPE_PALETTE, kColor = PNG_COLOR_TYPE_RGB;
    constexpr int kGreyAlpha = PNG_COLOR_TYPE_GRAY_ALPHA, kColorAlpha = PNG_COLOR_TYPE_RGB_ALPHA;
    for (const Case &c : {Case{kGrey, 1, kPalette, 1},
                          {kGrey, 2, kPalette, 4},
                          {kGrey, 4, kPalette, 4},
                          {kGrey, 8, kGrey, 8},
                          {kGrey, 16, kGrey, 8},
                          {kPalette, 1, kPalette, 1},
                          {kPalette, 2, kPalette, 4},
                          {kPalette, 4, kPalette, 4},
                          {kPalette, 8, kPalette, 8},
                          {kColor, 8, kColor, 8},
                          {kColor, 16, kColor, 8},
                          {kGreyAlpha, 8, kGreyAlpha, 8},
                          {kGreyAlpha, 16, kGreyAlpha, 8},
                          {kColorAlpha, 8, kColorAlpha, 8},
                          {kColorAlpha, 16, kColorAlpha, 8}}) {
        for (const bool interlaced : {false, true}) {
            PngFile input = MakePng(c.type, c.depth);
            input.interlaced = interlaced;
            WritePng(In("in.png"), input);
            const ProgramRun run = Run({"apply", "Invert Colors", "in.png", "out.png"});
            ASSERT_EQ(run.exitCode, 0) << run.errors;
            const PngFile output = ReadPng(In("out.png"));
            SCOPED_TRACE("type " + std::to_string(c.type) + ", depth " + std::to_string(c.depth));
            EXPECT_EQ(output.type, c.resultType);
            EXPECT_EQ(output.depth, c.resultDepth);
            EXPECT_EQ(ColorsOf(output), Inverted(ColorsOf(input)));
        }
    }
}

TEST_F(LmfPictures, TransparencyByIndexOrColorComesThrough) {
    PngFile palette = MakePng(PNG_COLOR_TYPE_PALETTE, 4);
    palette.alpha = {0, 128, 255, 7};
    PngFile mono = MakePng(PNG_COLOR_TYPE_GRAY, 1);
    mono.key = 1;
    PngFile quarter = MakePng(PNG_COLOR_TYPE_GRAY, 2);
    quarter.key = 2;
    PngFile grey = MakePng(PNG_COLOR_TYPE_GRAY, 8);
    grey.key = 74;
    PngFile color = MakePng(PNG_COLOR_TYPE_RGB, 8);
    color.key = 9;
    color.samples[30] = color.samples[31] = color.samples[32] = 9;
    const std::pair<PngFile, int> cases[] = {{palette, PNG_COLOR_TYPE_PALETTE},
                                             {mono, PNG_COLOR_TYPE_PALETTE},
                                             {quarter, PNG_COLOR_TYPE_PALETTE},
                                             {grey, PNG_COLOR_TYPE_GRAY_ALPHA},
                                             {color, PNG_COLOR_TYPE_RGB_ALPHA}};
    for (const auto &[input, type] : cases) {
        WritePng(In("in.png"), input);
        ASSERT_EQ(Run({"apply", "Invert Colors", "in.png", "out.png"}).exitCode, 0);
        const PngFile output = ReadPng(In("out.png"));
        EXPECT_EQ(output.type, type);
        EXPECT_EQ(ColorsOf(output), Inverted(ColorsOf(input)));
    }
}

// Each picture makes a round through the formats that hold it without loss, and is inverted at every step.
TEST_F(LmfPictures, LosslessFormatsKeepEveryPixel) {
    struct Case {
        int type, depth;
        std::vector<std::string> route;
    };
    const std::string tif = "a.tif", bmp = "b.bmp", webp = "c.webp", png = "d.png";
    for (const Case &c : {Case{PNG_COLOR_TYPE_GRAY, 1, {tif, bmp, png, png}},
                          {PNG_COLOR_TYPE_GRAY, 4, {tif, bmp, png, png}},
                          {PNG_COLOR_TYPE_GRAY, 8, {tif, bmp, png, png}},
                          {PNG_COLOR_TYPE_PALETTE, 4, {bmp, tif, png, png}},
                          {PNG_COLOR_TYPE_PALETTE, 8, {bmp, tif, png, png}},
                          {PNG_COLOR_TYPE_RGB, 8, {tif, bmp, webp, png}},
                          {PNG_COLOR_TYPE_GRAY_ALPHA, 8, {tif, png}},
                          {PNG_COLOR_TYPE_RGB_ALPHA, 8, {webp, tif, bmp, png}}}) {
        const PngFile input = MakePng(c.type, c.depth);
        std::string from = "in.png";
        WritePng(In(from), input);
        for (const std::string &to : c.route) {
            const ProgramRun run = Run({"apply", "invert colors", from, to, "--lossless"});
            ASSERT_EQ(run.exitCode, 0) << run.errors;
            EXPECT_EQ(run.errors, "");
            from = to;
        }
        const PngFile output = ReadPng(In(png));
        EXPECT_EQ(output.depth, c.depth);
        EXPECT_EQ(ColorsOf(output), ColorsOf(input)) << "type " << c.type << ", depth " << c.depth;
    }
}

TEST_F(LmfPictures, FormatsWithoutAlphaOrDepthTakeWhatTheyCan) {
    WritePng(In("alpha.png"), MakePng(PNG_COLOR_TYPE_RGB_ALPHA, 8));
    const ProgramRun run = Run({"apply", "Invert Colors", "alpha.png", "alpha.jpg"});
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_NE(run.errors.find("warning: JPEG holds no alpha"), std::string::npos) << run.errors;
    WritePng(In("grey.png"), MakePng(PNG_COLOR_TYPE_GRAY, 8));
    ASSERT_EQ(Run({"apply", "Invert Colors", "grey.png", "grey.jpg"}).exitCode, 0);
    EXPECT_NE(Run({"info", "grey.jpg"}).output.find("8 bits, grey"), std::string::npos);
    WritePng(In("wide.png"), MakePng(PNG_COLOR_TYPE_GRAY, 1, 16384, 1));
    const ProgramRun wide = Run({"apply", "Invert Colors", "wide.png", "wide.webp"});
    EXPECT_EQ(wide.exitCode, 4);
    EXPECT_NE(wide.errors.find("WebP holds at most 16383"), std::string::npos) << wide.errors;
}

TEST_F(LmfPictures, ProfileAndExifTravelThroughAllFormats) {
    for (const bool big : {false, true}) {
        PngFile input = MakePng(PNG_COLOR_TYPE_RGB, 8);
        input.icc = MakeProfile("RGB ");
        input.exif = MakeExif(big);
        WritePng(In("in.png"), input);
        std::string from = "in.png";
        for (const std::string to : {"a.webp", "b.jpg", "c.png", "d.tif", "e.tif", "f.jpg", "g.webp", "out.png"}) {
            const ProgramRun run = Run({"apply", "Invert Colors", from, to});
            ASSERT_EQ(run.exitCode, 0) << run.errors;
            EXPECT_EQ(run.errors, "");
            EXPECT_NE(Run({"info", to}).output.find("ICC profile, EXIF, orientation 6"), std::string::npos) << to;
            EXPECT_FALSE(Contains(ReadBytes(In(to)), "secret")) << "the old thumbnail is still in " << to;
            from = to;
        }
        EXPECT_EQ(ReadPng(In("out.png")).icc, input.icc);
        // Up to the TIFF file the block is as it was, but for the thumbnail and the link to it.
        Bytes expected = input.exif;
        std::fill(expected.begin() + 46, expected.begin() + 50, uint8_t{0});
        std::fill(expected.begin() + 112, expected.end(), uint8_t{0});
        EXPECT_EQ(ReadPng(In("c.png")).exif, expected);
        const Bytes rebuilt = ReadPng(In("out.png")).exif;
        const std::string exposure("\x9a\x82\x05\0\x01\0\0\0", 8);
        const std::string fraction("\x01\0\0\0\x32\0\0\0", 8);
        EXPECT_TRUE(Contains(rebuilt, "Maker") && Contains(rebuilt, exposure) && Contains(rebuilt, fraction));
    }
}

TEST_F(LmfPictures, ProfileThatDoesNotFitTheResultIsLeftOut) {
    PngFile input = MakePng(PNG_COLOR_TYPE_RGB, 8);
    input.icc = MakeProfile("RGB ");
    input.samples.assign(input.samples.size(), 90);
    WritePng(In("in.png"), input);
    ASSERT_EQ(Run({"apply", "Invert Colors", "in.png", "color.tif"}).exitCode, 0);
    PngFile grey = MakePng(PNG_COLOR_TYPE_GRAY, 8);
    grey.icc = MakeProfile("GRAY");
    WritePng(In("grey.png"), grey);
    ASSERT_EQ(Run({"apply", "Invert Colors", "grey.png", "same.png"}).errors, "");
    EXPECT_EQ(ReadPng(In("same.png")).icc, grey.icc);
    const ProgramRun run = Run({"apply", "Invert Colors", "grey.png", "color.webp"});
    EXPECT_NE(run.errors.find("profile does not fit"), std::string::npos) << run.errors;
    EXPECT_EQ(Run({"info", "color.webp"}).output.find("ICC"), std::string::npos);
}

TEST_F(LmfPictures, TruncatedAndDamagedFilesAreNamedAndLeaveNothing) {
    for (const std::string name : {"p.png", "p.jpg", "p.tif", "p.webp", "p.bmp"}) {
        ASSERT_EQ(Run({"apply", "Invert Colors", kPhotograph, name}).exitCode, 0);
        const Bytes whole = ReadBytes(In(name));
        for (const size_t length : {size_t{0}, size_t{10}, size_t{40}, whole.size() / 2, whole.size() * 9 / 10}) {
            WriteBytes(In(name), Bytes(whole.begin(), whole.begin() + std::ptrdiff_t(length)));
            const ProgramRun run = Run({"apply", "Invert Colors", name, "out.png"});
            EXPECT_EQ(run.exitCode, 2) << name << " of " << length << " bytes: " << run.errors;
            EXPECT_EQ(run.errors.rfind("lmf: " + name + ": ", 0), 0u) << run.errors;
        }
    }
    Bytes damaged = ReadBytes(kPhotograph);
    damaged[damaged.size() / 2] ^= 0x55;
    WriteBytes(In("damaged.png"), damaged);
    EXPECT_EQ(Run({"info", "damaged.png"}).exitCode, 2);
    EXPECT_EQ(Run({"info", "missing.png"}).exitCode, 2);
    EXPECT_EQ(Run({"info", "."}).exitCode, 2);
    EXPECT_FALSE(std::filesystem::exists(In("out.png")));
}

TEST_F(LmfPictures, LimitsAreTestedBeforeAnythingIsAllocated) {
    // A header that promises far more than memory holds, and no pixels behind it.
    WritePng(In("big.png"), MakePng(PNG_COLOR_TYPE_GRAY, 8, 2, 2));
    const auto runWithSize = [&](uint32_t width, uint32_t height, std::vector<std::string> options) {
        Bytes png = ReadBytes(In("big.png"));
        for (size_t i = 0; i < 4; i++) {
            png[16 + i] = uint8_t(width >> (24 - 8 * i));
            png[20 + i] = uint8_t(height >> (24 - 8 * i));
        }
        const uint32_t crc = uint32_t(crc32(0, png.data() + 12, 17));
        for (size_t i = 0; i < 4; i++) png[29 + i] = uint8_t(crc >> (24 - 8 * i));
        WriteBytes(In("lying.png"), png);
        options.insert(options.begin(), {"info", "lying.png"});
        const ProgramRun run = Run(options);
        EXPECT_EQ(run.exitCode, 2);
        return run.errors;
    };
    EXPECT_NE(runWithSize(100001, 1, {}).find("100001 x 1 pixels; the limit is 100000 a side (--max-side)"),
              std::string::npos);
    EXPECT_NE(runWithSize(90000, 90000, {}).find("the limit is 268402689 in all (--max-pixels)"), std::string::npos);
    EXPECT_NE(runWithSize(1, 100001, {"--max-side", "200000"}).find("lying.png: "), std::string::npos);
    EXPECT_EQ(runWithSize(1, 100001, {"--max-side", "200000"}).find("--max"), std::string::npos);
    const std::string size = "451 x 300 pixels; the limit is ";
    EXPECT_NE(Run({"info", kPhotograph, "--max-side", "450"}).errors.find(size + "450"), std::string::npos);
    EXPECT_NE(Run({"info", kPhotograph, "--max-pixels", "135299"}).errors.find(size + "135299"), std::string::npos);
    EXPECT_EQ(Run({"info", kPhotograph, "--max-pixels", "135300", "--max-side", "451"}).exitCode, 0);
}

// Files as other programs write them: each is 2 x 2, and its pixels are known by hand.
TEST_F(LmfPictures, BmpOfOlderAndRarerKinds) {
    const auto header = [](int height, int bits, int compression, int colors, int offset) {
        Bytes out = {'B', 'M', 0, 0, 0, 0, 0, 0, 0, 0};
        for (const int value : {offset, 40, 2, height, 1 | bits << 16, compression, 0, 0, 0, colors, 0})
            Put32(out, value, false);
        return out;
    };
    const Bytes colors = {1, 2, 3, 0, 10, 20, 30, 0, 100, 110, 120, 0};
    struct Case {
        Bytes head, rest;
        std::vector<Rgba> expected;
    };
    const Rgba first = {3, 2, 1, 255}, second = {30, 20, 10, 255}, third = {120, 110, 100, 255};
    const Case cases[] = {
        // rows from the top down
        {header(-2, 8, 0, 3, 66), {0, 1, 0, 0, 2, 0, 0, 0}, {first, second, third, first}},
        // run of two, end of line, three literal pixels (one beyond the edge) with padding, end
        {header(2, 8, 1, 3, 66), {2, 1, 0, 0, 0, 3, 0, 2, 0, 0, 0, 1}, {first, third, second, second}},
        // nibbles: run that alternates; a step to the right leaves color 0
        {header(2, 4, 2, 3, 66), {2, 0x12, 0, 0, 0, 2, 1, 0, 1, 0x20, 0, 1}, {first, third, second, third}},
        // five bits a channel
        {header(2, 16, 0, 0, 54),
         {0xFF, 0x7F, 0x00, 0x7C, 0xE0, 0x03, 0x1F, 0x00},
         {{0, 255, 0, 255}, {0, 0, 255, 255}, {255, 255, 255, 255}, {255, 0, 0, 255}}},
    };
    for (const Case &c : cases) {
        Bytes bytes = c.head;
        if (c.head[10] == 66) bytes.insert(bytes.end(), colors.begin(), colors.end());
        bytes.insert(bytes.end(), c.rest.begin(), c.rest.end());
        WriteBytes(In("in.bmp"), bytes);
        const ProgramRun run = Run({"apply", "Invert Colors", "in.bmp", "out.png"});
        ASSERT_EQ(run.exitCode, 0) << run.errors;
        EXPECT_EQ(ColorsOf(ReadPng(In("out.png"))), Inverted(c.expected)) << "depth " << int(c.head[28]);
    }
}

TEST_F(LmfPictures, TiffInTilesPlanesAndSixteenBits) {
    constexpr int kWidth = 21, kHeight = 18, kTile = 16;
    for (const bool separate : {false, true}) {
        TIFF *tiff = TIFFOpen(In("in.tif").c_str(), "wb");
        TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, kWidth);
        TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, kHeight);
        TIFFSetField(tiff, TIFFTAG_BITSPERSAMPLE, 16);
        TIFFSetField(tiff, TIFFTAG_SAMPLESPERPIXEL, 3);
        TIFFSetField(tiff, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
        TIFFSetField(tiff, TIFFTAG_PLANARCONFIG, separate ? PLANARCONFIG_SEPARATE : PLANARCONFIG_CONTIG);
        TIFFSetField(tiff, TIFFTAG_TILEWIDTH, kTile);
        TIFFSetField(tiff, TIFFTAG_TILELENGTH, kTile);
        const auto sample = [](int x, int y, int c) { return uint16_t(x * 3001 + y * 500 + c * 77); };
        const int planes = separate ? 3 : 1;
        for (int plane = 0; plane < planes; plane++)
            for (int top = 0; top < kHeight; top += kTile)
                for (int left = 0; left < kWidth; left += kTile) {
                    std::vector<uint16_t> tile;
                    for (int i = 0; i < kTile * kTile; i++)
                        for (int c = plane; c < (separate ? plane + 1 : 3); c++)
                            tile.push_back(sample(left + i % kTile, top + i / kTile, c));
                    TIFFWriteTile(tiff, tile.data(), uint32_t(left), uint32_t(top), 0, uint16_t(plane));
                }
        TIFFClose(tiff);
        ASSERT_EQ(Run({"apply", "Invert Colors", "in.tif", "out.png"}).exitCode, 0);
        std::vector<Rgba> expected;
        const auto eight = [&](int x, int y, int c) { return 255 - (sample(x, y, c) * 255 + 32767) / 65535; };
        for (int y = 0; y < kHeight; y++)
            for (int x = 0; x < kWidth; x++) expected.push_back({eight(x, y, 0), eight(x, y, 1), eight(x, y, 2), 255});
        EXPECT_EQ(ColorsOf(ReadPng(In("out.png"))), expected) << (separate ? "planes" : "pixels");
    }
}

TEST_F(LmfPictures, PhotographIsInvertedExactly) {
    ASSERT_EQ(Run({"apply", "Invert Colors", kPhotograph, "out.png"}).exitCode, 0);
    const PngFile input = ReadPng(kPhotograph);
    const PngFile output = ReadPng(In("out.png"));
    ASSERT_EQ(output.samples.size(), input.samples.size());
    for (size_t i = 0; i < input.samples.size(); i++)
        ASSERT_EQ(output.samples[i], 255 - input.samples[i]) << "sample " << i;
}

} // namespace lmf::testing
