// How the library comes to its fonts, in processes of their own: they are looked for once.
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include <dlfcn.h>
#include <gtest/gtest.h>

#include "support/shared_folder.h"

namespace lmf::testing {

class TextModule : public ::testing::Test {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }

    /// Ends the process with 0 if text can be drawn, else with 1.
    [[noreturn]] static void Probe(const std::string &file) {
        void *library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
        const auto probe = reinterpret_cast<int32_t (*)(int32_t)>(dlsym(library, "ProbeText"));
        std::exit(probe(100) > 100 ? 0 : 1);
    }

    SharedFolder folder;
};

TEST_F(TextModule, LiesBesideTheLibrary) {
    EXPECT_EXIT(Probe(LMF_TEXT_PROBE_FILE), ::testing::ExitedWithCode(0), "^$");
}

TEST_F(TextModule, IsMissedInOneLine) {
    const std::string moved = folder.path + "/probe.so";
    std::filesystem::copy_file(LMF_TEXT_PROBE_FILE, moved, std::filesystem::copy_options::skip_existing);
    EXPECT_EXIT(Probe(moved), ::testing::ExitedWithCode(1),
                "^lmf16filter: text cannot be drawn: [^\n]*liblmf16text.so: [^\n]*\n$");
}

TEST_F(TextModule, WithoutFontsNoneIsOpened) {
    const auto probeWithoutFonts = [&] {
        const std::string rules = folder.path + "/fonts.conf";
        std::ofstream(rules) << "<?xml version='1.0'?><fontconfig><cachedir>" << folder.path
                             << "</cachedir></fontconfig>";
        ::setenv("FONTCONFIG_FILE", rules.c_str(), 1);
        Probe(LMF_TEXT_PROBE_FILE);
    };
    EXPECT_EXIT(probeWithoutFonts(), ::testing::ExitedWithCode(1),
                "^lmf16filter: text cannot be drawn: no font can be opened\n$");
}

} // namespace lmf::testing
