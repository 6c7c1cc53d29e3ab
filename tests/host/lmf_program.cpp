#include "host/lmf_program.h"

#include <fcntl.h>
#include <png.h>
#include <spawn.h>
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

static int ChannelsOf(int type) {
    return ((type & PNG_COLOR_MASK_COLOR) && type != PNG_COLOR_TYPE_PALETTE ? 3 : 1) +
           ((type & PNG_COLOR_MASK_ALPHA) ? 1 : 0);
}

// Damage in what a test wrote itself is the end of the test run: libpng's own handler aborts.
void WritePng(const std::string &path, const PngFile &file) {
    std::FILE *out = std::fopen(path.c_str(), "wb");
    ASSERT_NE(out, nullptr) << path;
    png_structp png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, out);
    png_set_IHDR(png, info, png_uint_32(file.width), png_uint_32(file.height), file.depth, file.type,
                 file.interlaced ? PNG_INTERLACE_ADAM7 : PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT,
                 PNG_FILTER_TYPE_DEFAULT);
    std::vector<png_color> colors;
    for (const auto &[red, green, blue] : file.palette) colors.push_back({red, green, blue});
    if (!colors.empty()) png_set_PLTE(png, info, colors.data(), int(colors.size()));
    const png_uint_16 gray = png_uint_16(file.key);
    const png_color_16 key = {0, gray, gray, gray, gray};
    if (!file.alpha.empty()) png_set_tRNS(png, info, file.alpha.data(), int(file.alpha.size()), nullptr);
    if (file.key >= 0) png_set_tRNS(png, info, nullptr, 0, &key);
    if (!file.icc.empty()) png_set_iCCP(png, info, "profile", 0, file.icc.data(), png_uint_32(file.icc.size()));
    if (!file.exif.empty())
        png_set_eXIf_1(png, info, png_uint_32(file.exif.size()), const_cast<png_bytep>(file.exif.data()));
    png_write_info(png, info);
    png_set_packing(png);
    Bytes samples = file.samples;
    const size_t row = samples.size() / size_t(file.height);
    std::vector<png_bytep> rows;
    for (int y = 0; y < file.height; y++) rows.push_back(samples.data() + row * size_t(y));
    png_write_image(png, rows.data());
    png_write_end(png, info);
    png_destroy_write_struct(&png, &info);
    std::fclose(out);
}

PngFile ReadPng(const std::string &path) {
    PngFile file;
    std::FILE *in = std::fopen(path.c_str(), "rb");
    if (in == nullptr) {
        ADD_FAILURE() << "no file " << path;
        return file;
    }
    png_structp png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, nullptr, nullptr);
    png_infop info = png_create_info_struct(png);
    png_init_io(png, in);
    png_read_info(png, info);
    file.width = int(png_get_image_width(png, info));
    file.height = int(png_get_image_height(png, info));
    file.type = png_get_color_type(png, info);
    file.depth = png_get_bit_depth(png, info);
    png_colorp colors = nullptr;
    int count = 0;
    if (png_get_PLTE(png, info, &colors, &count))
        for (int i = 0; i < count; i++) file.palette.push_back({colors[i].red, colors[i].green, colors[i].blue});
    png_bytep alpha = nullptr;
    if (png_get_tRNS(png, info, &alpha, &count, nullptr) && alpha) file.alpha.assign(alpha, alpha + count);
    png_charp name = nullptr;
    png_bytep data = nullptr;
    png_uint_32 size = 0;
    if (png_get_iCCP(png, info, &name, &count, &data, &size)) file.icc.assign(data, data + size);
    if (png_get_eXIf_1(png, info, &size, &data)) file.exif.assign(data, data + size);
    png_set_packing(png);
    png_read_update_info(png, info);
    const size_t row = size_t(file.width) * size_t(ChannelsOf(file.type)) * (file.depth == 16 ? 2 : 1);
    file.samples.resize(row * size_t(file.height));
    for (int y = 0; y < file.height; y++) png_read_row(png, file.samples.data() + row * size_t(y), nullptr);
    png_destroy_read_struct(&png, &info, nullptr);
    std::fclose(in);
    return file;
}

Bytes ReadBytes(const std::string &path) {
    std::ifstream in(path, std::ios::binary);
    return Bytes(std::istreambuf_iterator<char>(in), {});
}

void WriteBytes(const std::string &path, const Bytes &bytes) {
    std::ofstream out(path, std::ios::binary);
    out.write(reinterpret_cast<const char *>(bytes.data()), std::streamsize(bytes.size()));
    ASSERT_TRUE(out.good()) << path;
}

void LmfProgram::SetUp() {
    folder = ::testing::TempDir() + "lmf-test-XXXXXX";
    ASSERT_NE(mkdtemp(folder.data()), nullptr);
    temporary = folder + ".tmp";
    fs::create_directory(temporary);
}

void LmfProgram::TearDown() {
    EXPECT_TRUE(fs::is_empty(temporary)) << "a private folder stayed behind";
    fs::remove_all(folder);
    fs::remove_all(temporary);
}

ProgramRun LmfProgram::Run(const std::vector<std::string> &arguments,
                           const std::map<std::string, std::string> &environment) {
    const std::string output = temporary + "/output";
    const std::string errors = temporary + "/errors";
    std::vector<std::string> words = {LMF_PROGRAM_FILE};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::map<std::string, std::string> settings = {{"TMPDIR", temporary}, {"XDG_CONFIG_HOME", temporary + "/none"}};
    for (const auto &[name, value] : environment) settings[name] = value;
    for (char **entry = environ; *entry; entry++) {
        const std::string text = *entry;
        const size_t equals = text.find('=');
        settings.emplace(text.substr(0, equals), text.substr(equals + 1));
    }
    std::vector<std::string> assignments;
    for (const auto &[name, value] : settings) assignments.push_back(name + "=" + value);
    std::vector<char *> argv;
    std::vector<char *> envp;
    for (std::string &word : words) argv.push_back(word.data());
    for (std::string &assignment : assignments) envp.push_back(assignment.data());
    argv.push_back(nullptr);
    envp.push_back(nullptr);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_addchdir_np(&actions, folder.c_str());
    posix_spawn_file_actions_addopen(&actions, 1, output.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    posix_spawn_file_actions_addopen(&actions, 2, errors.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0600);
    pid_t child = 0;
    const int failed = posix_spawn(&child, LMF_PROGRAM_FILE, &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    ProgramRun run;
    if (failed) {
        ADD_FAILURE() << "cannot start " << LMF_PROGRAM_FILE;
        return run;
    }
    int status = 0;
    waitpid(child, &status, 0);
    run.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : 128 + WTERMSIG(status);
    const Bytes printed = ReadBytes(output);
    const Bytes complained = ReadBytes(errors);
    run.output.assign(printed.begin(), printed.end());
    run.errors.assign(complained.begin(), complained.end());
    fs::remove(output);
    fs::remove(errors);
    return run;
}

std::vector<std::string> LmfProgram::Files() const {
    std::vector<std::string> names;
    for (const auto &entry : fs::recursive_directory_iterator(folder))
        if (!entry.is_directory()) names.push_back(entry.path().lexically_relative(folder));
    std::sort(names.begin(), names.end());
    return names;
}

} // namespace lmf::testing
