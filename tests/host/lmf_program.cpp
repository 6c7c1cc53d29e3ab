#include "host/lmf_program.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace lmf::testing {

namespace fs = std::filesystem;

const char *const kPhotograph = "/usr/lib/python3/dist-packages/imageio/resources/images/chelsea.png";
const char *const kPortrait = "/usr/lib/python3/dist-packages/imageio/resources/images/astronaut.png";

// Damage in what a test wrote itself is the end of the test run: libpng's own handler aborts.
void WritePng(const std::string &path, PngFile file) {
    std::FILE *out = std::fopen(path.c_str(), "wb");
    ASSERT_NE(out, nullptr) << path;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, out);
    png_set_IHDR(png, info, png_uint_32(file.width), png_uint_32(file.height), file.depth, file.type,
                 file.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    const png_uint_16 gray = png_uint_16(file.key);
    const png_color_16 key = {0, gray, gray, gray, gray};
    if (!file.palette.empty()) png_set_PLTE(png, info, file.palette.data(), int(file.palette.size()));
    if (!file.alpha.empty()) png_set_tRNS(png, info, file.alpha.data(), int(file.alpha.size()), nullptr);
    if (file.key >= 0) png_set_tRNS(png, info, nullptr, 0, &key);
    if (!file.icc.empty()) png_set_iCCP(png, info, "profile", 0, file.icc.data(), png_uint_32(file.icc.size()));
    if (!file.exif.empty()) png_set_eXIf_1(png, info, png_uint_32(file.exif.size()), file.exif.data());
    std::vector<png_bytep> rows;
    for (size_t y = 0; y < size_t(file.height); y++)
        rows.push_back(file.samples.data() + file.samples.size() / size_t(file.height) * y);
    png_write_info(png, info);
    png_set_packing(png);
    png_write_image(png, rows.data());
    png_write_end(png, nullptr);
    png_destroy_write_struct(&png, &info);
    std::fclose(out);
}

static PngFile ReadPngAs(const std::string &path, bool rgba) {
    PngFile file;
    std::FILE *in = std::fopen(path.c_str(), "rb");
    if (in == nullptr) {
        ADD_FAILURE() << "no file " << path;
        return file;
    }
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, in);
    if (rgba) png_set_add_alpha(png, 255, PNG_FILLER_AFTER);
    const int expand = PNG_TRANSFORM_EXPAND | PNG_TRANSFORM_GRAY_TO_RGB | PNG_TRANSFORM_SCALE_16;
    png_read_png(png, info, rgba ? expand : PNG_TRANSFORM_IDENTITY, nullptr);
    file.width = int(png_get_image_width(png, info));
    file.height = int(png_get_image_height(png, info));
    file.type = png_get_color_type(png, info);
    file.depth = png_get_bit_depth(png, info);
    for (int y = 0; y < file.height; y++) {
        const png_bytep row = png_get_rows(png, info)[y];
        file.samples.insert(file.samples.end(), row, row + png_get_rowbytes(png, info));
    }
    int compression = 0;
    png_charp name = nullptr;
    png_bytep data = nullptr;
    png_uint_32 size = 0;
    if (png_get_iCCP(png, info, &name, &compression, &data, &size)) file.icc.assign(data, data + size);
    if (png_get_eXIf_1(png, info, &size, &data)) file.exif.assign(data, data + size);
    png_destroy_read_struct(&png, &info, nullptr);
    std::fclose(in);
    return file;
}

PngFile ReadPng(const std::string &path) {
    return ReadPngAs(path, false);
}

Bytes ReadRgba(const std::string &path) {
    return ReadPngAs(path, true).samples;
}

std::string ReadText(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), {});
}

void WriteText(const std::string &path, const std::string &text) {
    ASSERT_TRUE(std::ofstream(path, std::ios::binary) << text) << path;
}

bool Has(const std::string &text, const std::string &part) {
    return text.find(part) != std::string::npos;
}

void Expect(int exitCode, const ProgramRun &run, const std::string &complaint) {
    EXPECT_EQ(run.exitCode, exitCode) << run.errors;
    EXPECT_TRUE(Has(run.errors, complaint)) << run.errors << "instead of: " << complaint;
}

void ExpectSilence(const ProgramRun &run) {
    EXPECT_EQ(run.exitCode, 0);
    EXPECT_EQ(run.errors, "");
}

void LmfProgram::SetUp() {
    folder = ::testing::TempDir() + "lmf-test-XXXXXX";
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    temporary = folder + ".tmp";
    fs::create_directory(temporary);
}

void LmfProgram::TearDown() {
    EXPECT_TRUE(fs::is_empty(temporary)) << "the program left something behind";
    fs::remove_all(folder);
    fs::remove_all(temporary);
}

ProgramRun LmfProgram::Run(const Names &arguments, const std::map<std::string, std::string> &environment) {
    const std::string output = temporary + "/output", errors = temporary + "/errors";
    std::vector<char *> words = {const_cast<char *>(LMF_PROGRAM_FILE)};
    for (const std::string &argument : arguments) words.push_back(const_cast<char *>(argument.c_str()));
    words.push_back(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        setenv("TMPDIR", temporary.c_str(), 1);
        setenv("XDG_CONFIG_HOME", (temporary + "/none").c_str(), 1);
        for (const auto &[name, value] : environment) setenv(name.c_str(), value.c_str(), 1);
        dup2(open(input.c_str(), O_RDONLY), 0);
        dup2(printed.empty() ? creat(output.c_str(), 0600) : open(printed.c_str(), O_WRONLY), 1);
        dup2(creat(errors.c_str(), 0600), 2);
        if (chdir(folder.c_str()) == 0) execv(words[0], words.data());
        _exit(127);
    }
    int status = 0;
    EXPECT_EQ(waitpid(child, &status, 0), child);
    const int exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    const ProgramRun run = {exitCode, ReadText(output), ReadText(errors)};
    fs::remove(output);
    fs::remove(errors);
    return run;
}

ProgramRun LmfProgram::Invert(Names arguments) {
    arguments.insert(arguments.begin(), {"apply", "Invert Colors"});
    return Run(arguments);
}

void LmfProgram::MakeGrey(const std::string &name, uint8_t value) {
    PngFile file;
    file.samples.assign(16, value);
    WritePng(In(name), file);
}

ProgramRun LmfProgram::RunFake(const std::string &wish, const std::string &filter, const Names &options) {
    Names arguments = {"apply", filter, "p.png", "out.png", "--strict-depth"};
    arguments.insert(arguments.end(), options.begin(), options.end());
    return Run(arguments, {{"LMF_LIBRARY", LMF_FAKE_LIBRARY_FILE}, {"LMF_FAKE", wish}});
}

std::string LmfProgram::SeenSetting(const std::string &key) const {
    const std::string text = ReadText(In("seen.ini"));
    const size_t at = text.rfind("\n" + key + " = ");
    if (at == std::string::npos) return "(none)";
    const size_t start = at + key.size() + 4;
    return text.substr(start, text.find('\n', start) - start);
}

Names LmfProgram::Files() const {
    Names names;
    for (const auto &entry : fs::recursive_directory_iterator(folder))
        if (!entry.is_directory()) names.push_back(entry.path().lexically_relative(folder));
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace lmf::testing
