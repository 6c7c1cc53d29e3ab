#include "engine/settings_files.h"

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>
#include <sstream>
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

using testing::MakePicture;
namespace fs = std::filesystem;

std::string Contents(const fs::path &path) {
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
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

    void SetUp() override {
        fs::create_directories(folder);
        ::setenv("XDG_CONFIG_HOME", root.c_str(), 1);
        Settings = FactorySettings();
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
    std::string SavedIni() {
        WriteSettings(0);
        return Contents(folder / "LmfFiltr.ini");
    }
};

bool IsFactory(const SettingsStore &settings) {
    return std::memcmp(&settings, &FactorySettings(), sizeof settings) == 0;
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
    struct Case {
        const char *line;
        int32_t SettingsStore::*field;
        int32_t expected;
    };
    const Case cases[] = {
        {"FilterContrast=", &SettingsStore::FilterContrast, 0},
        {"FilterContrast = 7", &SettingsStore::FilterContrast, 7},
        {"FilterContrast==  7", &SettingsStore::FilterContrast, 7},
        {"FilterContrast 7", &SettingsStore::FilterContrast, 7},
        {"FilterContrast = +7x9", &SettingsStore::FilterContrast, 7},
        {"FilterContrast = x", &SettingsStore::FilterContrast, 0},
        {"FilterContrast = -12\r", &SettingsStore::FilterContrast, -12},
        {"FilterContrast = 4294967295", &SettingsStore::FilterContrast, INT32_MAX},
        {"FilterContrast = -99999999999999999999", &SettingsStore::FilterContrast, INT32_MIN},
        {"FilterContrast = 1\nFilterContrast = 2", &SettingsStore::FilterContrast, 2},
        {"Filter = 3", &SettingsStore::FilterAddAlphaOpacity, 3},
        {"filterContrast = 3", &SettingsStore::FilterContrast, 128},
        {" FilterContrast = 3", &SettingsStore::FilterContrast, 128},
        {"FilterContrastX = 3", &SettingsStore::FilterContrast, 128},
        {";FilterContrast = 3", &SettingsStore::FilterContrast, 128},
        {"[PlugIn]\nFilterContrast = 3", &SettingsStore::FilterContrast, 3},
    };
    for (const Case &c : cases) {
        Settings = FactorySettings();
        ReadIni(c.line);
        EXPECT_EQ(Settings.*c.field, c.expected) << c.line;
    }
}

TEST_F(SettingsFiles, KeylessLinesGoToTheFirstReadableRow) {
    ReadIni("Build = x\nBuildDate = x\n");
    EXPECT_TRUE(IsFactory(Settings)) << "the date of the build is never read";
    ReadIni("= a b \n");
    EXPECT_STREQ(Settings.ColourTableFile, "a b ");
    ReadIni("   c\n");
    EXPECT_STREQ(Settings.ColourTableFile, "c");
    ReadIni("PaperColor = 1\n\n");
    EXPECT_STREQ(Settings.ColourTableFile, "");
    EXPECT_EQ(Settings.PaperColor, 1);
}

TEST_F(SettingsFiles, LongLinesGoOnAsFurtherLines) {
    const std::string start = "FilterCaptionString = ";
    ReadIni(start + std::string(259 - start.size(), 'a') + "FilterContrast = 9\n");
    EXPECT_EQ(std::string(Settings.FilterCaptionString), std::string(259 - start.size(), 'a'));
    EXPECT_EQ(Settings.FilterContrast, 9);
}

TEST_F(SettingsFiles, WritesTheExactLines) {
    ::setenv("SOURCE_DATE_EPOCH", "1000000000", 1);
    ::setenv("TZ", "UTC", 1);
    Settings.FilterContrast = -1;
    const std::string text = SavedIni();
    ::unsetenv("SOURCE_DATE_EPOCH");
    ::unsetenv("TZ");
    std::istringstream lines(text);
    std::vector<std::string> all;
    for (std::string line; std::getline(lines, line);) all.push_back(line);
    ASSERT_EQ(all.size(), 5u + kConfigRows);
    EXPECT_EQ(all[0], ";LMFFILTR configuration file");
    EXPECT_EQ(all[1], ";Edit this at your own risk");
    EXPECT_EQ(all[2], ";Last updated Sun Sep 09 01:46:40 2001");
    EXPECT_EQ(all[3], ";");
    EXPECT_EQ(all[4], "[PlugIn]");
    EXPECT_EQ(all[5], std::string("BuildDate = ") + FactorySettings().BuildDate);
    EXPECT_EQ(all[6], "ColourTableFile = LMFFILTR.CCL");
    EXPECT_EQ(all[8], "DefaultFilterType = ");
    EXPECT_EQ(all.back(), "TrackFilterWindows = 1");
    EXPECT_NE(text.find("\nFilterContrast = 4294967295\n"), std::string::npos);
    EXPECT_NE(text.find("\nFilterCurlAntialias = 652\n"), std::string::npos);
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
    Settings = FactorySettings();
    ReadSettings(0);
    EXPECT_EQ(std::memcmp(&Settings, &saved, sizeof saved), 0);
    EXPECT_EQ(SavedIni(), first);
}

TEST_F(SettingsFiles, NoTextChangesAnotherSetting) {
    std::memset(Settings.FilterCaptionString, 'a', kTextSize - 1);
    std::memset(Settings.FilterWatermarkString, 'b', kTextSize); // not even a terminator
    std::strcpy(Settings.FilterPosonlyString, "one\r\nFilterContrast = 9");
    SavedIni();
    Settings = FactorySettings();
    ReadSettings(0);
    EXPECT_STREQ(Settings.FilterPosonlyString, "one");
    EXPECT_EQ(std::string(Settings.FilterCaptionString), std::string(255 - std::strlen("FilterCaptionString"), 'a'));
    SettingsStore expected = FactorySettings();
    for (auto field : {&FilterParameters::FilterCaptionString, &FilterParameters::FilterWatermarkString,
                       &FilterParameters::FilterPosonlyString})
        std::memcpy(expected.*field, Settings.*field, kTextSize);
    EXPECT_EQ(std::memcmp(&Settings, &expected, sizeof expected), 0);
}

TEST_F(SettingsFiles, ThreeSavesLeaveTwoBackups) {
    std::string saved[4];
    for (int32_t i = 0; i < 4; i++) {
        Settings.FilterContrast = i;
        saved[i] = SavedIni();
        const size_t files = static_cast<size_t>(std::distance(fs::directory_iterator(folder), {}));
        EXPECT_EQ(files, static_cast<size_t>(std::min(i + 1, 3)));
    }
    EXPECT_EQ(Contents(folder / "LmfFiltr.ini"), saved[3]);
    EXPECT_EQ(Contents(folder / "Backup of LmfFiltr.ini"), saved[2]);
    EXPECT_EQ(Contents(folder / "Backup of Backup of LmfFiltr.ini"), saved[1]);
}

TEST_F(SettingsFiles, FailedWriteLeavesTheOldFiles) {
    Settings.FilterContrast = 1;
    const std::string backup = SavedIni();
    Settings.FilterContrast = 2;
    const std::string old = SavedIni();
    const auto expectOldFiles = [&](const char *what) {
        Settings.FilterContrast = 9;
        EXPECT_EQ(SavedIni(), old) << what;
    };

    rlimit limit, kept;
    ::getrlimit(RLIMIT_FSIZE, &kept);
    limit = {1000, kept.rlim_max};
    const auto handler = std::signal(SIGXFSZ, SIG_IGN);
    ::setrlimit(RLIMIT_FSIZE, &limit);
    expectOldFiles("no room on the disk");
    ::setrlimit(RLIMIT_FSIZE, &kept);
    std::signal(SIGXFSZ, handler);
    EXPECT_EQ(Contents(folder / "Backup of LmfFiltr.ini"), backup);
    EXPECT_EQ(std::distance(fs::directory_iterator(folder), {}), 2) << "nothing half-written is left";

    fs::create_directories(folder / "LmfFiltr.ini.new" / "in the way");
    expectOldFiles("no file can be made");
}

TEST_F(SettingsFiles, FileSetFollowsTheHost) {
    const std::map<uint32_t, std::string> sets = {{0, "LmfFiltr"},          {1, "LmfFiltr"},
                                                  {4, "LmfFiltr"},          {32, "LmfFiltr"},
                                                  {2, "DauberyFiltr"},      {2 | 8 | 128, "DauberyFiltr"},
                                                  {128, "AnimationFilter"}, {256 | 8, "AnimationFilter"}};
    for (const auto &[runFlags, name] : sets) {
        const SettingsFileSet &files = SettingsFilesFor(runFlags);
        EXPECT_EQ(files.ini, name + ".ini") << runFlags;
        EXPECT_EQ(files.enable, name + "Enable.ini") << runFlags;
        EXPECT_EQ(files.list, name + "List.txt") << runFlags;
    }
    EXPECT_STREQ(SettingsFilesFor(8 | 4).ini, "LmfFiltrBatch.ini");
    EXPECT_STREQ(SettingsFilesFor(8).enable, "LmfFiltrEnableBatch.ini");
    EXPECT_STREQ(SettingsFilesFor(8).list, "LmfFiltrListBatch.txt");
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
    const auto enabled = [](const char *name) {
        for (const FilterEntry &entry : FilterCatalogue) {
            if (std::string(entry.name) == name) return (entry.flags & FilterEnabled) != 0;
        }
        ADD_FAILURE() << name;
        return false;
    };
    Put(folder / "LmfFiltrEnable.ini", "[Filter]\nadd_alpha=0\nWater Drops=0\nGamma = == 0\r\nFlip=no\nCrop\n;Tile=0\n"
                                       "\nRaise=0\nRaise=7\nred-EYE_reduction=0 \nMatt_=0\n=0\n");
    ReadEnableFile(1);
    EXPECT_FALSE(enabled("Add Alpha"));
    EXPECT_FALSE(enabled("Gamma"));
    EXPECT_FALSE(enabled("Red-eye Reduction"));
    int32_t off = 0;
    for (const FilterEntry &entry : FilterCatalogue) off += !(entry.flags & FilterEnabled);
    EXPECT_EQ(off, 3) << "no other line counts";

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
    std::vector<std::pair<std::string, int32_t>> lines;
    ReadListFile(
        1,
        [](void *target, const char *name, int32_t time) {
            static_cast<decltype(lines) *>(target)->emplace_back(name, time);
        },
        &lines);
    const decltype(lines) expected = {{"Gamma", 12}, {"Tile", -3}, {"Raise", INT32_MAX}};
    EXPECT_EQ(lines, expected);

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
    SettingText text = "Az\xFF";
    HexCodeText(text, true);
    EXPECT_EQ(std::string(text).substr(2), "417AFF");
    HexCodeText(text, false);
    EXPECT_STREQ(text, "Az\xFF");
    for (const char *same : {"", "A"}) {
        std::strcpy(text, same);
        HexCodeText(text, true);
        EXPECT_STREQ(text, same);
        HexCodeText(text, false);
        EXPECT_STREQ(text, same);
    }
    std::memset(text, 'q', kTextSize - 1);
    HexCodeText(text, true);
    EXPECT_EQ(std::strlen(text), 260u);
    HexCodeText(text, false);
    EXPECT_EQ(std::string(text), std::string(129, 'q'));
    std::strcpy(text, "004142zz43");
    HexCodeText(text, false);
    EXPECT_STREQ(text, "AB");

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

/// One direct or other call of the main entry on a small grey picture.
uint64_t Call(uint32_t runFlags, const char *filter, LmfValidation callback, bool picture = true) {
    DibOwner source = MakePicture(2, 2, 8);
    LmfHandle handle = picture ? source.handle : nullptr;
    LmfHandle second = nullptr;
    for (const FilterEntry &entry : FilterCatalogue) {
        if (std::string(entry.name) == filter) Settings.CurrentFilter = static_cast<int32_t>(&entry - FilterCatalogue);
    }
    const uint64_t done =
        DoImageFilter(nullptr, &handle, callback, &second, 0, 0, runFlags, nullptr, "", 0, 0, nullptr);
    if (done != 0) BlockFree(handle);
    return done;
}

TEST_F(SettingsFiles, CallReadsAndWritesTheFilesOfItsHost) {
    const LmfValidation callback = [](void *, const char *) { return 1; };
    const auto files = [&] {
        std::set<std::string> names;
        for (const auto &file : fs::directory_iterator(folder)) names.insert(file.path().filename());
        return names;
    };
    using Names = std::set<std::string>;

    // Calls that end before the run write nothing.
    Call(1, "Invert Colors", nullptr);
    Call(1, "Invert Colors", callback, false);
    EXPECT_EQ(files(), Names{});
    // A direct call writes the enable file alone, whether it succeeds or not.
    EXPECT_EQ(Call(4 | 8, "Invert Colors", callback), 1u);
    EXPECT_EQ(files(), Names{"LmfFiltrEnableBatch.ini"});
    EXPECT_EQ(Call(4, "Split channels", callback), 0u);
    EXPECT_EQ(files(), (Names{"LmfFiltrEnableBatch.ini", "LmfFiltrEnable.ini"}));
    // Any other call writes the ini file too, or it alone where there are no flags.
    fs::remove(folder / "LmfFiltrEnable.ini");
    Call(0, "Invert Colors", callback);
    Call(2, "Invert Colors", callback);
    EXPECT_EQ(files(),
              (Names{"LmfFiltrEnableBatch.ini", "LmfFiltr.ini", "DauberyFiltr.ini", "DauberyFiltrEnable.ini"}));
}

TEST_F(SettingsFiles, CallTakesSettingsLimitedAndStoresThem) {
    const LmfValidation callback = [](void *, const char *) { return 1; };
    Put(folder / "LmfFiltr.ini", "FilterGaussianRadius = 4294967295\nBuildDate = x\n");
    Put(folder / "LmfFiltrEnable.ini", "[Filter]\nGamma=0\n");
    Call(4, "Invert Colors", callback);
    EXPECT_EQ(Settings.FilterGaussianRadius, 990) << "limited on the way into the context and stored back";
    EXPECT_STREQ(Settings.BuildDate, FactorySettings().BuildDate);
    EXPECT_NE(Contents(folder / "LmfFiltrEnable.ini").find("\nGamma=1\n"), std::string::npos)
        << "a direct call does not read the enable file";
    Put(folder / "LmfFiltrEnable.ini", "[Filter]\nGamma=0\n");
    Call(4 | 1, "Invert Colors", callback);
    EXPECT_NE(Contents(folder / "LmfFiltrEnable.ini").find("\nGamma=0\n"), std::string::npos);
}

} // namespace
} // namespace lmf
