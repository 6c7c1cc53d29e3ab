#include "engine/settings_files.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "engine/catalogue.h"
#include "engine/config_text.h"
#include "engine/do_image_filter.h"
#include "platform/files.h"
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
        ::setenv("SOURCE_DATE_EPOCH", "1000000000", 1); // files are compared with earlier ones
        Settings = kFactorySettings;
        for (const FilterEntry &entry : FilterCatalogue) keptFlags.push_back(entry.flags);
    }
    void TearDown() override {
        fs::remove_all(root);
        ::unsetenv("XDG_CONFIG_HOME");
        ::unsetenv("SOURCE_DATE_EPOCH");
        Settings = keptSettings;
        for (size_t row = 0; row < keptFlags.size(); row++) FilterCatalogue[row].flags = keptFlags[row];
    }
    void ReadIni(const std::string &text) {
        Put(folder / "LmfFiltr.ini", text);
        ReadSettings(0);
    }
    /// All files but the lock, which every writer makes.
    std::set<std::string> Files() const {
        std::set<std::string> names;
        for (const auto &file : fs::directory_iterator(folder)) names.insert(file.path().filename());
        names.erase("LmfFiltr.lock");
        return names;
    }
    /// What a call leaves that found the factory settings.
    std::string SavedIni() {
        WriteSettings(0, {kFactorySettings, true});
        return Contents(folder / "LmfFiltr.ini");
    }
    /// What stands there without being read: links and kinds of files are told, contents of plain files too.
    std::string Standing(const std::string &name) const {
        const fs::path path = folder / name;
        const fs::file_status status = fs::symlink_status(path);
        std::string text = std::to_string(static_cast<int>(status.type())) + " " +
                           std::to_string(static_cast<unsigned>(status.permissions()));
        if (fs::is_symlink(status)) return text + " to " + fs::read_symlink(path).string();
        return fs::is_regular_file(status) ? text + " " + Contents(path) : text;
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
    WriteSettings(0, ReadSettings(0));
    WriteEnableFile(1, nullptr);
    EXPECT_TRUE(IsFactory(Settings));
    EXPECT_FALSE(fs::exists(folder)) << "no folder is made";
    ::unsetenv("XDG_CONFIG_HOME");
    const std::string home = std::getenv("HOME") != nullptr ? std::getenv("HOME") : "";
    ::setenv("HOME", "", 1);
    EXPECT_STREQ(SettingsFile("x"), "");
    SavedIni();
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
    ::setenv("TZ", "UTC", 1);
    Settings.FilterContrast = -1;
    const std::string text = SavedIni();
    ::setenv("SOURCE_DATE_EPOCH", "67768036191676799", 1);
    EXPECT_NE(SavedIni().find("\n;Last updated Wed Dec 31 23:59:59 2147\n"), std::string::npos) << "cut, not wrapped";
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
    const auto saveWithLimit = [&](rlim_t bytes) {
        limit = {std::min(bytes, kept.rlim_max), kept.rlim_max};
        ::setrlimit(RLIMIT_FSIZE, &limit);
        SavedIni();
        ::setrlimit(RLIMIT_FSIZE, &kept);
    };
    saveWithLimit(1000);
    expectTheFour("when the disk is full");

    // The new file has room, a copy of the old one has not: the backup is the old file itself.
    const std::string old = saved[3] + std::string(20000, ';');
    Put(folder / "LmfFiltr.ini", old);
    saveWithLimit(15000);
    EXPECT_NE(Contents(folder / "LmfFiltr.ini").find("\nFilterContrast = 9\n"), std::string::npos);
    EXPECT_EQ(Contents(folder / "Backup of LmfFiltr.ini"), old);
    EXPECT_EQ(Contents(folder / "Backup of Backup of LmfFiltr.ini"), saved[2]);

    // A file that is kept in another file system has to be copied. Where that fails, the backups stay as a pair.
    const fs::path elsewhere = "/dev/shm/" + root.filename().string();
    Put(elsewhere, old);
    fs::remove(folder / "LmfFiltr.ini");
    fs::create_symlink(elsewhere, folder / "LmfFiltr.ini");
    saveWithLimit(15000);
    EXPECT_NE(Contents(elsewhere).find("\nFilterContrast = 9\n"), std::string::npos);
    EXPECT_EQ(Contents(folder / "Backup of Backup of LmfFiltr.ini"), saved[2]);
    const std::string present = Contents(elsewhere);
    saveWithLimit(RLIM_INFINITY);
    EXPECT_EQ(Contents(folder / "Backup of LmfFiltr.ini"), present);
    EXPECT_EQ(Contents(folder / "Backup of Backup of LmfFiltr.ini"), old);
    EXPECT_EQ(Files().size(), 3u);
    fs::remove(elsewhere);
}

TEST_F(SettingsFiles, WhatCannotBeReadIsNeverReplaced) {
    const std::string ini = "LmfFiltr.ini", enable = "LmfFiltrEnable.ini", list = "LmfFiltrList.txt";
    const RecentFilter recent[] = {{"Flip", 1}};
    const std::pair<const char *, std::function<void(const fs::path &)>> kinds[] = {
        {"pipe", [](const fs::path &path) { ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0); }},
        {"folder", [](const fs::path &path) { fs::create_directory(path); }},
        {"endless", [](const fs::path &path) { fs::create_symlink("/dev/zero", path); }},
        {"circle", [](const fs::path &path) { fs::create_symlink(path, path); }},
        {"too long", [](const fs::path &path) { Put(path, std::string((1 << 20) + 1, ';')); }},
        {"no rights",
         [](const fs::path &path) {
             Put(path, "FilterContrast = 5\n");
             fs::permissions(path, fs::perms::none);
         }},
    };
    for (const auto &[kind, make] : kinds) {
        SCOPED_TRACE(kind);
        if (std::string(kind) == "no rights" && ::geteuid() == 0) continue; // root reads everything
        for (const std::string &name : {ini, enable, list}) make(folder / name);
        const std::string before[] = {Standing(ini), Standing(enable), Standing(list)};
        const FoundSettings found = ReadSettings(1);
        const FoundSwitches switches = ReadEnableFile(1);
        EXPECT_TRUE(IsFactory(Settings));
        for (int time = 0; time < 2; time++) {
            const bool changedMeanwhile = time == 1; // readable by now, but the call knows nothing of what it holds
            if (changedMeanwhile)
                for (const std::string &name : {ini, enable}) {
                    fs::remove(folder / name);
                    Put(folder / name, "FilterContrast = 6\nGamma=0\n");
                }
            const std::string standing[] = {Standing(ini), Standing(enable)};
            WriteSettings(1, found);
            WriteEnableFile(1, &switches);
            if (!changedMeanwhile) {
                WriteSettings(1, {kFactorySettings, true});
                WriteEnableFile(1, nullptr);
                WriteListFile(1, recent);
                EXPECT_EQ(Standing(ini), before[0]);
                EXPECT_EQ(Standing(enable), before[1]);
                EXPECT_EQ(Standing(list), before[2]);
            }
            EXPECT_EQ(Standing(ini), standing[0]);
            EXPECT_EQ(Standing(enable), standing[1]);
            EXPECT_EQ(Files(), (Names{ini, enable, list}));
        }
        for (const std::string &name : {ini, enable, list}) fs::remove(folder / name);

        // A backup of this kind stays too, and keeps no save from being made.
        const std::string backup = "Backup of " + ini;
        make(folder / backup);
        const std::string standing = Standing(backup);
        SavedIni();
        EXPECT_NE(SavedIni(), "");
        EXPECT_EQ(Standing(backup), standing);
        for (const std::string &name : {ini, backup}) fs::remove(folder / name);
    }
}

TEST_F(SettingsFiles, LinksAndRightsAreKept) {
    // Names that no writer may use, least of all through a link.
    Put(root / "document", "mine");
    fs::create_symlink(root / "document", folder / "LmfFiltr.ini.new");
    // A file that is kept elsewhere, through a link to a link; and one that is not there yet.
    Put(root / "kept.ini", "FilterContrast = 7\n");
    fs::permissions(root / "kept.ini", fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(root / "kept.ini", folder / "step");
    fs::create_symlink("step", folder / "LmfFiltr.ini");
    fs::create_symlink("../enabled.ini", folder / "LmfFiltrEnable.ini");
    WriteSettings(0, ReadSettings(0));
    WriteEnableFile(1, nullptr);
    EXPECT_TRUE(fs::is_symlink(folder / "LmfFiltr.ini") && fs::is_symlink(folder / "step"));
    EXPECT_TRUE(fs::is_symlink(folder / "LmfFiltrEnable.ini"));
    EXPECT_EQ(Contents(root / "document"), "mine");
    EXPECT_NE(Contents(root / "kept.ini").find("\nFilterContrast = 7\n"), std::string::npos);
    EXPECT_EQ(Contents(root / "enabled.ini").find(";LMFFILTR enable file\n"), 0u);
    for (const fs::path &path : {root / "kept.ini", folder / "Backup of LmfFiltr.ini"})
        EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write) << path;
    EXPECT_EQ(Contents(folder / "Backup of LmfFiltr.ini"), "FilterContrast = 7\n");
    Names others;
    for (const auto &file : fs::directory_iterator(root)) others.insert(file.path().filename());
    EXPECT_EQ(others, (Names{"Quillon Works", "document", "enabled.ini", "kept.ini"})) << "nothing left beside";
}

TEST_F(SettingsFiles, ASaveKeepsWhatOthersChanged) {
    Put(folder / "LmfFiltr.ini", "FilterContrast = 1\nFilterRed = 1\nFilterGreen = 1\nFilterCaptionString = one\n");
    Put(folder / "LmfFiltrEnable.ini", "Gamma=0\nFlip=0\nTile=1\n");
    const FoundSettings found = ReadSettings(1);
    const FoundSwitches switches = ReadEnableFile(1);
    // Meanwhile another host saves, and its user edits by hand: with a mark of the encoding, and without other keys.
    Put(folder / "LmfFiltr.ini",
        "\xEF\xBB\xBF"
        "FilterContrast = 2\nFilterRed = 2\nFilterCaptionString = two\nFilterPosonlyString = new\n");
    Put(folder / "LmfFiltrEnable.ini", "\xEF\xBB\xBFGamma=1\nFlip=0\nTile=0\n");
    Settings.FilterRed = 3;
    Settings.FilterBlue = 3;
    FilterCatalogue[RowOf("Flip")].flags |= FilterEnabled;
    WriteSettings(1, found);
    WriteEnableFile(1, &switches);

    const std::string ini = Contents(folder / "LmfFiltr.ini"), enable = Contents(folder / "LmfFiltrEnable.ini");
    for (const char *line : {"FilterContrast = 2", "FilterRed = 3", "FilterGreen = 1", "FilterBlue = 3",
                             "FilterCaptionString = two", "FilterPosonlyString = new"})
        EXPECT_NE(ini.find(std::string("\n") + line + "\n"), std::string::npos) << line;
    for (const char *line : {"Gamma=1", "Flip=1", "Tile=0"})
        EXPECT_NE(enable.find(std::string("\n") + line + "\n"), std::string::npos) << line;
    EXPECT_EQ(Settings.FilterContrast, 2) << "the variables are what the file holds";
    EXPECT_STREQ(Settings.FilterPosonlyString, "new");
}

TEST_F(SettingsFiles, LeftoversOfEndedWritersGoAfterAWhile) {
    const Names keep = {"LmfFiltr.ini.0123abcd.new", "LmfFiltr.ini.0123abcde.new", "LmfFiltr.ini.new",
                        "x.0123abcd.new"};
    for (const std::string &name : keep) Put(folder / name, "");
    Put(folder / "LmfFiltr.ini.00000000.new", "");
    for (const auto &file : fs::directory_iterator(folder))
        if (file.path().filename() != *keep.begin())
            fs::last_write_time(file, fs::file_time_type::clock::now() - std::chrono::hours(2));
    SavedIni();
    Names expected = keep;
    expected.insert("LmfFiltr.ini");
    EXPECT_EQ(Files(), expected);
}

TEST_F(SettingsFiles, LockIsWaitedForAndFreedWithItsHolder) {
    const std::string path = folder / "lock";
    std::optional<FileLock> holder;
    holder.emplace(path.c_str(), 0);
    EXPECT_TRUE(holder->held);
    const auto start = std::chrono::steady_clock::now();
    const FileLock late(path.c_str(), 30);
    EXPECT_TRUE(late.busy && !late.held);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(25));
    std::thread release([&holder] { holder.reset(); });
    const FileLock next(path.c_str(), 10000);
    release.join();
    EXPECT_TRUE(next.held);
    const FileLock nowhere((folder / "missing" / "lock").c_str(), 10000);
    EXPECT_FALSE(nowhere.held || nowhere.busy);
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
    SavedIni();
}

TEST_F(SettingsFiles, EnableFile) {
    Put(folder / "LmfFiltrEnable.ini", "[Filter]\nadd_alpha=0\nWater Drops=0\nGamma = == 0\r\nFlip=no\nCrop\n;Tile=0\n"
                                       "\nRaise=0\nRaise=7\nred-EYE_reduction=0 \nMatt_=0\n=0\n");
    ReadEnableFile(1);
    Names off;
    for (const FilterEntry &entry : FilterCatalogue)
        if (!(entry.flags & FilterEnabled)) off.insert(entry.name);
    EXPECT_EQ(off, (Names{"Add Alpha", "Gamma", "Red-eye Reduction"})) << "no other line counts";

    WriteEnableFile(1, nullptr);
    const std::string text = Contents(folder / "LmfFiltrEnable.ini");
    EXPECT_EQ(text.find(";LMFFILTR enable file\n;Edit this at your own risk\n;Last updated "), 0u);
    EXPECT_NE(text.find("\n;\n[Filter]\nAdd_Alpha=0\nAdd_noise=1\n"), std::string::npos);
    EXPECT_NE(text.find("\nRed-eye_Reduction=0\n"), std::string::npos);
    EXPECT_EQ(text.substr(text.size() - 12), "Zoom_Blur=1\n");
    for (FilterEntry &entry : FilterCatalogue) entry.flags ^= FilterEnabled;
    ReadEnableFile(1);
    WriteEnableFile(1, nullptr);
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
    LineWriter out(1);
    WriteConfigLines(out, table);
    const std::string text(out.Text());
    EXPECT_EQ(text.find("Secret = "), 0u);
    EXPECT_EQ(text.find("pass"), std::string::npos);
    std::strcpy(secret, "lost");
    ReadConfigLines(text, table);
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
