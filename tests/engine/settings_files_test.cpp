#include "engine/settings_files.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <unistd.h>

#include "engine/catalogue.h"
#include "engine/do_image_filter.h"
#include "support/pictures.h"

namespace lmf {
namespace {

using testing::RowOf;
namespace fs = std::filesystem;

std::string Contents(const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(file), {});
}

void Put(const fs::path &path, const std::string &text) {
    std::ofstream(path, std::ios::binary) << text;
}

/// A private settings folder, with settings and enabled filters put back afterwards.
struct SettingsFiles : ::testing::Test {
    fs::path root = fs::temp_directory_path() / ("lmf_settings_" + std::to_string(::getpid()));
    fs::path folder = root / "Quillon Works";
    SettingsStore keptSettings = Settings;
    std::vector<uint32_t> keptFlags;
    using Names = std::set<std::string>;

    void SetUp() override {
        fs::create_directories(folder);
        ::setenv("XDG_CONFIG_HOME", root.c_str(), 1);
        Settings = kFactorySettings;
        for (const FilterEntry &entry : FilterCatalogue) keptFlags.push_back(entry.flags);
    }
    void TearDown() override {
        fs::remove_all(root);
        ::unsetenv("XDG_CONFIG_HOME");
        Settings = keptSettings;
        for (size_t row = 0; row < keptFlags.size(); row++) FilterCatalogue[row].flags = keptFlags[row];
    }
    void ReadIni(const std::string &text) {
        Put(folder / "LmfFiltr.ini", text);
        ReadSettings(0);
    }
    std::set<std::string> Files() const {
        std::set<std::string> names;
        for (const auto &file : fs::directory_iterator(folder)) names.insert(file.path().filename());
        return names;
    }
    std::string SavedIni() {
        WriteSettings(0);
        return Contents(folder / "LmfFiltr.ini");
    }
};

bool IsFactory(const SettingsStore &settings) {
    return std::memcmp(&settings, &kFactorySettings, sizeof settings) == 0;
}

TEST_F(SettingsFiles, MissingFileOrFolderLeavesDefaults) {
    ReadSettings(0);
    ReadEnableFile(0);
    EXPECT_TRUE(IsFactory(Settings));
    fs::remove_all(folder);
    ReadSettings(0);
    WriteSettings(0);
    WriteEnableFile(1);
    EXPECT_TRUE(IsFactory(Settings));
    EXPECT_FALSE(fs::exists(folder)) << "no folder is made";
    ::unsetenv("XDG_CONFIG_HOME");
    const std::string home = std::getenv("HOME") != nullptr ? std::getenv("HOME") : "";
    ::setenv("HOME", "", 1);
    EXPECT_STREQ(SettingsFile("x"), "");
    WriteSettings(0);
    ::setenv("HOME", home.c_str(), 1);
}

TEST_F(SettingsFiles, LinesOfTheIniFile) {
    const std::pair<const char *, int32_t> cases[] = {
        {"FilterContrast=", 0},
        {"FilterContrast = 7", 7},
        {"FilterContrast==  7", 7},
        {"FilterContrast 7", 7},
        {"FilterContrast = +7x9", 7},
        {"FilterContrast = x", 0},
        {"FilterContrast = -12\r", -12},
        {"FilterContrast = 4294967295", INT32_MAX},
        {"FilterContrast = -99999999999999999999", INT32_MIN},
        {"FilterContrast = 1\nFilterContrast = 2", 2},
        {"filterContrast = 3", 128},
        {" FilterContrast = 3", 128},
        {"FilterContrastX = 3", 128},
        {";FilterContrast = 3", 128},
        {"[PlugIn]\nFilterContrast = 3", 3},
    };
    for (const auto &[line, expected] : cases) {
        Settings = kFactorySettings;
        ReadIni(line);
        EXPECT_EQ(Settings.FilterContrast, expected) << line;
    }
    ReadIni("Filter = 3");
    EXPECT_EQ(Settings.FilterAddAlphaOpacity, 3) << "the first key that begins so";
}

TEST_F(SettingsFiles, KeylessAndLongLines) {
    ReadIni("Build = x\nBuildDate = x\n");
    EXPECT_TRUE(IsFactory(Settings)) << "the date of the build is never read";
    // Lines without a key go to the first row that is read.
    const std::pair<const char *, const char *> cases[] = {{"= a b \n", "a b "}, {"   c\n", "c"}, {"\n", ""}};
    for (const auto &[line, expected] : cases) {
        ReadIni(line);
        EXPECT_STREQ(Settings.ColourTableFile, expected);
    }
    // A long line goes on as a further line.
    const std::string start = "FilterCaptionString = ", text(259 - start.size(), 'a');
    ReadIni(start + text + "FilterContrast = 9\n");
    EXPECT_EQ(Settings.FilterCaptionString, text);
    EXPECT_EQ(Settings.FilterContrast, 9);
}

TEST_F(SettingsFiles, WritesTheExactLines) {
    ::setenv("SOURCE_DATE_EPOCH", "1000000000", 1);
    ::setenv("TZ", "UTC", 1);
    Settings.FilterContrast = -1;
    const std::string text = SavedIni();
    ::unsetenv("SOURCE_DATE_EPOCH");
    ::unsetenv("TZ");
    const std::string start = ";LMFFILTR configuration file\n;Edit this at your own risk\n"
                              ";Last updated Sun Sep 09 01:46:40 2001\n;\n[PlugIn]\nBuildDate = ";
    EXPECT_EQ(text.find(start + kFactorySettings.BuildDate + "\nColourTableFile = LMFFILTR.CCL\n"), 0u);
    for (const char *line : {"DefaultFilterType = ", "FilterContrast = 4294967295", "FilterCurlAntialias = 652"})
        EXPECT_NE(text.find(std::string("\n") + line + "\n"), std::string::npos) << line;
    EXPECT_TRUE(text.ends_with("\nTrackFilterWindows = 1\n"));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 5 + int64_t{kConfigRows});
}

TEST_F(SettingsFiles, RoundTripKeepsEverySetting) {
    EXPECT_NE(SavedIni(), "");
    ReadSettings(0);
    EXPECT_TRUE(IsFactory(Settings)) << "the file of a first run holds the factory settings";

    int32_t number = 1000;
    for (const ConfigEntry &row : ConfigTable) {
        if (!(row.type & kConfigText)) {
            row.Number() = number++;
        } else if (!(row.type & kConfigWriteOnly)) {
            std::memset(row.Text(), 0, kTextSize);
            std::snprintf(row.Text(), kTextSize, "= \x80\xFF;%s ", row.key);
        }
    }
    const SettingsStore saved = Settings;
    const std::string first = SavedIni();
    Settings = kFactorySettings;
    ReadSettings(0);
    EXPECT_EQ(std::memcmp(&Settings, &saved, sizeof saved), 0);
    EXPECT_EQ(SavedIni(), first);
}

TEST_F(SettingsFiles, NoTextChangesAnotherSetting) {
    std::memset(Settings.FilterCaptionString, 'a', kTextSize - 1);
    std::memset(Settings.FilterWatermarkString, 'b', kTextSize); // not even a terminator
    std::strcpy(Settings.FilterPosonlyString, "one\r\nFilterContrast = 9");
    SavedIni();
    Settings = kFactorySettings;
    ReadSettings(0);
    EXPECT_STREQ(Settings.FilterPosonlyString, "one");
    EXPECT_EQ(std::string(Settings.FilterCaptionString), std::string(255 - std::strlen("FilterCaptionString"), 'a'));
    SettingsStore expected = kFactorySettings;
    for (auto field : {&FilterParameters::FilterCaptionString, &FilterParameters::FilterWatermarkString,
                       &FilterParameters::FilterPosonlyString})
        std::memcpy(expected.*field, Settings.*field, kTextSize);
    EXPECT_EQ(std::memcmp(&Settings, &expected, sizeof expected), 0);
}

TEST_F(SettingsFiles, EachSaveMovesTheOldFilesAndAFailedOneLeavesThem) {
    std::string saved[4];
    for (int32_t i = 0; i < 4; i++) {
        Settings.FilterContrast = i;
        saved[i] = SavedIni();
    }
    const auto expectTheFour = [&](const char *when) {
        EXPECT_EQ(Contents(folder / "LmfFiltr.ini"), saved[3]) << when;
        EXPECT_EQ(Contents(folder / "Backup of LmfFiltr.ini"), saved[2]) << when;
        EXPECT_EQ(Contents(folder / "Backup of Backup of LmfFiltr.ini"), saved[1]) << when;
        EXPECT_EQ(Files().size(), 3u) << when;
    };
    expectTheFour("after four saves");

    Settings.FilterContrast = 9;
    rlimit limit, kept;
    ::getrlimit(RLIMIT_FSIZE, &kept);
    limit = {1000, kept.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &limit);
    WriteSettings(0);
    ::setrlimit(RLIMIT_FSIZE, &kept);
    std::signal(SIGXFSZ, handler);
    expectTheFour("when the disk is full");

    fs::create_directories(folder / "LmfFiltr.ini.new" / "in the way");
    EXPECT_EQ(SavedIni(), saved[3]) << "no file can be made";
}

TEST_F(SettingsFiles, FileSetFollowsTheHost) {
    struct Case {
        uint32_t runFlags;
        std::string name, variant;
    };
    const Case cases[] = {
        {0, "LmfFiltr", ""},          {1, "LmfFiltr", ""},
        {4, "LmfFiltr", ""},          {32, "LmfFiltr", ""},
        {8, "LmfFiltr", "Batch"},     {8 | 4, "LmfFiltr", "Batch"},
        {2, "DauberyFiltr", ""},      {2 | 8 | 128, "DauberyFiltr", ""},
        {128, "AnimationFilter", ""}, {256 | 8, "AnimationFilter", ""},
    };
    for (const auto &[runFlags, name, variant] : cases) {
        const SettingsFileSet &files = SettingsFilesFor(runFlags);
        EXPECT_EQ(files.ini, name + variant + ".ini") << runFlags;
        EXPECT_EQ(files.enable, name + "Enable" + variant + ".ini") << runFlags;
        EXPECT_EQ(files.list, name + "List" + variant + ".txt") << runFlags;
    }
}

TEST_F(SettingsFiles, PathsAreBuiltAndCut) {
    EXPECT_EQ(SettingsFile("a.ini"), (folder / "a.ini").string());
    EXPECT_EQ(ProductFile("a.ccl"), (folder / "Lumenfold Studio 16" / "a.ccl").string());
    ::setenv("XDG_DOCUMENTS_DIR", "/docs/", 1);
    EXPECT_STREQ(DocumentsFile("a.txt"), "/docs/a.txt");
    ::unsetenv("XDG_DOCUMENTS_DIR");
    const std::string longName(300, 'x');
    EXPECT_EQ(std::strlen(SettingsFile(longName.c_str())), 260u);
    ::setenv("XDG_CONFIG_HOME", ("/" + longName).c_str(), 1);
    char cut[kPathSize];
    EXPECT_TRUE(SettingsFolder(cut));
    EXPECT_EQ(std::strlen(cut), 260u);
    WriteSettings(0);
}

TEST_F(SettingsFiles, EnableFile) {
    Put(folder / "LmfFiltrEnable.ini", "[Filter]\nadd_alpha=0\nWater Drops=0\nGamma = == 0\r\nFlip=no\nCrop\n;Tile=0\n"
                                       "\nRaise=0\nRaise=7\nred-EYE_reduction=0 \nMatt_=0\n=0\n");
    ReadEnableFile(1);
    Names off;
    for (const FilterEntry &entry : FilterCatalogue)
        if (!(entry.flags & FilterEnabled)) off.insert(entry.name);
    EXPECT_EQ(off, (Names{"Add Alpha", "Gamma", "Red-eye Reduction"})) << "no other line counts";

    WriteEnableFile(1);
    const std::string text = Contents(folder / "LmfFiltrEnable.ini");
    EXPECT_EQ(text.find(";LMFFILTR enable file\n;Edit this at your own risk\n;Last updated "), 0u);
    EXPECT_NE(text.find("\n;\n[Filter]\nAdd_Alpha=0\nAdd_noise=1\n"), std::string::npos);
    EXPECT_NE(text.find("\nRed-eye_Reduction=0\n"), std::string::npos);
    EXPECT_EQ(text.substr(text.size() - 12), "Zoom_Blur=1\n");
    for (FilterEntry &entry : FilterCatalogue) entry.flags ^= FilterEnabled;
    ReadEnableFile(1);
    WriteEnableFile(1);
    EXPECT_EQ(Contents(folder / "LmfFiltrEnable.ini"), text);
}

TEST_F(SettingsFiles, ListFile) {
    Put(folder / "LmfFiltrList.txt",
        "Gamma,12\r\nno comma\n,5\nFlip,x\n\nTile, -3 and more\nA,B,9\nRaise,99999999999\n");
    std::string lines;
    const auto append = [](void *target, const char *name, int32_t time) {
        *static_cast<std::string *>(target) += std::string(name) + ":" + std::to_string(time) + " ";
    };
    ReadListFile(1, append, &lines);
    EXPECT_EQ(lines, "Gamma:12 Tile:-3 Raise:2147483647 ");

    const RecentFilter recent[] = {{"Torn Edges", 7}, {"Flip", -1}};
    WriteListFile(1, recent);
    EXPECT_EQ(Contents(folder / "LmfFiltrList.txt"), "Torn Edges,7\nFlip,-1\n");
    Settings.RememberFilterSave = 0;
    WriteListFile(1, std::span(recent).first(1));
    Settings.RememberFilterSave = 1;
    WriteListFile(1, {});
    EXPECT_EQ(Contents(folder / "LmfFiltrList.txt"), "Torn Edges,7\nFlip,-1\n") << "nothing to write";
}

TEST_F(SettingsFiles, HexCodedText) {
    const std::pair<std::string, size_t> cases[] = {{"", 0}, {"A", 1}, {"Az\xFF", 8}, {std::string(259, 'q'), 260}};
    for (const auto &[plain, length] : cases) {
        SettingText text = "";
        plain.copy(text, kTextSize);
        HexCodeText(text, true);
        EXPECT_EQ(std::strlen(text), length);
        EXPECT_TRUE(length != 8 || std::string(text).ends_with("417AFF")) << text;
        HexCodeText(text, false);
        EXPECT_EQ(text, plain.substr(0, 129));
    }
    SettingText broken = "004142zz43";
    HexCodeText(broken, false);
    EXPECT_STREQ(broken, "AB");

    // A row of this kind is coded in the file and plain in memory.
    SettingText secret = "pass=word";
    const ConfigEntry table[] = {{"Secret", secret, kConfigText | kConfigHexCoded}};
    const std::string path = (folder / "coded").string();
    std::FILE *file = std::fopen(path.c_str(), "w+");
    ASSERT_NE(file, nullptr);
    WriteIniLines(file, table);
    EXPECT_NE(Contents(path).find("Secret = "), 0u);
    std::rewind(file);
    std::strcpy(secret, "lost");
    ReadIniLines(file, table);
    std::fclose(file);
    EXPECT_EQ(Contents(path).find("pass"), std::string::npos);
    EXPECT_STREQ(secret, "pass=word");
}

int32_t Agree(void *, const char *) {
    return 1;
}

/// One direct or other call of the main entry on a small grey picture.
uint64_t Call(uint32_t runFlags, const char *filter, LmfValidation callback = Agree, bool picture = true) {
    const LockedDib source = testing::MakePicture(2, 2, 8);
    LmfHandle handle = picture ? source.owner.handle : nullptr;
    LmfHandle second = nullptr;
    Settings.CurrentFilter = RowOf(filter);
    const uint64_t done =
        DoImageFilter({nullptr, &handle, callback, &second, 0, 0, runFlags, nullptr, "", 0, 0, nullptr});
    if (done != 0) BlockFree(handle);
    return done;
}

TEST_F(SettingsFiles, CallReadsAndWritesTheFilesOfItsHost) {
    // Calls that end before the run write nothing.
    Call(1, "Invert Colors", nullptr);
    Call(1, "Invert Colors", Agree, false);
    EXPECT_EQ(Files(), Names{});
    // A direct call writes the enable file alone, whether it succeeds or not.
    EXPECT_EQ(Call(4 | 8, "Invert Colors"), 1u);
    EXPECT_EQ(Files(), Names{"LmfFiltrEnableBatch.ini"});
    EXPECT_EQ(Call(4, "Split channels"), 0u);
    EXPECT_EQ(Files(), (Names{"LmfFiltrEnableBatch.ini", "LmfFiltrEnable.ini"}));
    // Any other call writes the ini file too, or it alone where there are no flags.
    fs::remove(folder / "LmfFiltrEnable.ini");
    Call(0, "Invert Colors");
    Call(2, "Invert Colors");
    EXPECT_EQ(Files(),
              (Names{"LmfFiltrEnableBatch.ini", "LmfFiltr.ini", "DauberyFiltr.ini", "DauberyFiltrEnable.ini"}));
}

TEST_F(SettingsFiles, CallTakesSettingsLimitedAndStoresThem) {
    Put(folder / "LmfFiltr.ini", "FilterGaussianRadius = 4294967295\nBuildDate = x\n");
    Put(folder / "LmfFiltrEnable.ini", "[Filter]\nGamma=0\n");
    Call(4, "Invert Colors");
    EXPECT_EQ(Settings.FilterGaussianRadius, 990) << "limited on the way into the context and stored back";
    EXPECT_STREQ(Settings.BuildDate, kFactorySettings.BuildDate);
    EXPECT_NE(Contents(folder / "LmfFiltrEnable.ini").find("\nGamma=1\n"), std::string::npos)
        << "a direct call does not read the enable file";
    Put(folder / "LmfFiltrEnable.ini", "[Filter]\nGamma=0\n");
    Call(4 | 1, "Invert Colors");
    EXPECT_NE(Contents(folder / "LmfFiltrEnable.ini").find("\nGamma=0\n"), std::string::npos);
}

} // namespace
} // namespace lmf
