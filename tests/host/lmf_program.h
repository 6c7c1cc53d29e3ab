// The built program as a user meets it: run in a folder of its own, with files that the tests write and read back.
#pragma once

#include <png.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace lmf::testing {

using Bytes = std::vector<uint8_t>;
using Names = std::vector<std::string>;

/// What one run of the program gave.
struct ProgramRun {
    int exitCode = -1; ///< 128 + signal if one ended it
    std::string output;
    std::string errors;
};

/// The run ended with this code and complained of this among other things.
void Expect(int exitCode, const ProgramRun &run, const std::string &complaint);
/// The run went well and had nothing to complain of.
void ExpectSilence(const ProgramRun &run);

/// A PNG file as it is stored: but for samples below 8 bits, nothing is converted on the way in or out.
struct PngFile {
    int width = 4;
    int height = 4;
    int type = PNG_COLOR_TYPE_GRAY;
    int depth = 8;
    std::vector<png_color> palette; ///< written, not read; the same holds for `alpha` and `key`
    Bytes alpha;                    ///< tRNS of a palette
    int key = -1;                   ///< tRNS of a grey or, for all three channels, a colour picture
    Bytes samples;                  ///< row by row, two bytes (high one first) for depth 16; written unpacked
    Bytes icc;
    Bytes exif;
    bool interlaced = false;
};

void WritePng(const std::string &path, PngFile file);
PngFile ReadPng(const std::string &path);

/// Gives red, green, blue and alpha of every pixel in 8 bits, whatever the type of the file.
Bytes ReadRgba(const std::string &path);

std::string ReadText(const std::string &path);
void WriteText(const std::string &path, const std::string &text);

bool Has(const std::string &text, const std::string &part);

/// A file name that leads to a real photograph, 451 x 300 in 24 bits.
extern const char *const kPhotograph;
/// A photograph with one face, which tells its colors by a profile and by a mark.
extern const char *const kPortrait;

/// Gives every test an empty folder, from which the program is run, and checks that it leaves nothing elsewhere.
class LmfProgram : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Runs `lmf` with these arguments in the folder of the test.
    ProgramRun Run(const Names &arguments, const std::map<std::string, std::string> &environment = {});

    /// Runs `lmf apply "Invert Colors"`, a filter that takes every picture.
    ProgramRun Invert(Names arguments);

    /// A small grey picture whose pixels are all `value`.
    void MakeGrey(const std::string &name, uint8_t value = 40);

    /// Runs `lmf apply FILTER p.png out.png` with the stand-in library, which then does what `wish` says.
    ProgramRun RunFake(const std::string &wish, const std::string &filter, const Names &options = {});

    /// Gives the value that the stand-in library would take for a key: that of the last line with it.
    std::string SeenSetting(const std::string &key) const;

    /// Gives the full name of a file in the folder of the test.
    std::string In(const std::string &name) const { return folder + "/" + name; }

    /// Gives the names of all files in the folder of the test, sorted.
    Names Files() const;

    std::string folder;
    std::string input = "/dev/null"; ///< what the program has for standard input
    std::string printed;             ///< where its standard output goes; empty: into ProgramRun
    std::string temporary;           ///< what the program has for TMPDIR, where it leaves nothing
};

} // namespace lmf::testing
