// The built program as a user meets it: run in a folder of its own, with files that the tests write and read back.
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace lmf::testing {

using Bytes = std::vector<uint8_t>;

/// What one run of the program gave.
struct ProgramRun {
    int exitCode = -1; ///< 128 + signal if one ended it
    std::string output;
    std::string errors;
};

/// A PNG file as it is stored: nothing is converted on the way in or out.
struct PngFile {
    int width = 0;
    int height = 0;
    int type = 0; ///< PNG_COLOR_TYPE_...
    int depth = 8;
    std::vector<std::array<uint8_t, 3>> palette;
    Bytes alpha;   ///< tRNS of a palette
    int key = -1;  ///< tRNS of a grey or, for all three channels, a colour picture
    Bytes samples; ///< one byte a sample, two (high byte first) for depth 16, row by row
    Bytes icc;
    Bytes exif;
    bool interlaced = false;
};

void WritePng(const std::string &path, const PngFile &file);
PngFile ReadPng(const std::string &path);

Bytes ReadBytes(const std::string &path);
void WriteBytes(const std::string &path, const Bytes &bytes);

/// A file name that leads to a real photograph, 451 x 300 in 24 bits.
extern const char *const kPhotograph;

/// Gives every test an empty folder, from which the program is run, and checks that it leaves nothing elsewhere.
class LmfProgram : public ::testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    /// Runs `lmf` with these arguments in the folder of the test.
    ProgramRun Run(const std::vector<std::string> &arguments,
                   const std::map<std::string, std::string> &environment = {});

    /// Gives the full name of a file in the folder of the test.
    std::string In(const std::string &name) const { return folder + "/" + name; }

    /// Gives the names of all files in the folder of the test, sorted.
    std::vector<std::string> Files() const;

    std::string folder;
    std::string temporary; ///< where the program makes its private folders
};

} // namespace lmf::testing
