#include "engine/settings_files.h"

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <functional>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <tuple>
#include <vector>

#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include "engine/catalogue.h"
#include "engine/config_text.h"
#include "engine/do_image_filter.h"
#include "host/lmf_program.h"
#include "platform/files.h"
#include "support/pictures.h"

namespace lmf {
namespace {

using testing::ReadText;
using testing::RowOf;
using testing::WriteText;
namespace fs = std::filesystem;

void ExpectLines(const std::string &text, const std::vector<std::string> &lines) {
    for (const std::string &line : lines) EXPECT_NE(text.find("\n" + line + "\n"), std::string::npos) << line;
}

std::set<std::string> FilesOf(const fs::path &folder) {
    std::set<std::string> names;
    for (const auto &file : fs::directory_iterator(folder)) names.insert(file.path().filename());
    return names;
}

/// A private settings folder, with settings and enabled filters put back afterwards.
struct SettingsFiles : ::testing::Test {
    fs::path root = fs::temp_directory_path() / ("lmf_settings_" + std::to_string(::getpid()));
    fs::path folder = root / "Quillon Works";
    fs::path ini = folder / "LmfFiltr.ini", enable = folder / "LmfFiltrEnable.ini", list = folder / "LmfFiltrList.txt";
    fs::path backup = folder / "Backup of LmfFiltr.ini", older = folder / "Backup of Backup of LmfFiltr.ini";
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
        WriteText(ini, text);
        ReadSettings(0);
    }
    /// All files but the lock, which every writer makes.
    Names Files() const {
        Names names = FilesOf(folder);
        names.erase("LmfFiltr.lock");
        return names;
    }
    /// What a call leaves that found the factory settings.
    std::string SavedIni() {
        WriteSettings(0, {kFactorySettings, true});
        return ReadText(ini);
    }
    /// What stands there without being read: links and kinds of files are told, contents of plain files too.
    static std::string Standing(const fs::path &path) {
        const fs::file_status status = fs::symlink_status(path);
        const std::string kind = std::to_string(static_cast<int>(status.type())) + " " +
                                 std::to_string(static_cast<unsigned>(status.permissions()));
        if (fs::is_symlink(status)) return kind + " to " + fs::read_symlink(path).string();
        return fs::is_regular_file(status) ? kind + " " + ReadText(path) : kind;
    }
};

bool IsFactory(const SettingsStore &settings) {
    return std::memcmp(&settings, &kFactorySettings, sizeof settings) == 0;
}

TEST_F(SettingsFiles, MissingFileOrFolderLeavesDefaults) {
    fs::remove_all(folder);
    WriteSettings(0, ReadSettings(0));
    WriteEnableFile(1, nullptr);
    EXPECT_TRUE(IsFactory(Settings));
    EXPECT_FALSE(fs::exists(folder)) << "no folder is made";
    ::unsetenv("XDG_CONFIG_HOME");
    const char *home = std::getenv("HOME");
    const std::string kept = home != nullptr ? home : "";
    ::setenv("HOME", "", 1);
    EXPECT_STREQ(SettingsFile("x"), "");
    SavedIni();
    ::setenv("HOME", kept.c_str(), 1);
}

TEST_F(SettingsFiles, LinesOfTheIniFile) {
    const std::pair<const char *, int32_t> cases[] = {{"=", 0},
                                                      {"==  7", 7},
                                                      {" 7", 7},
                                                      {" = +7x9", 7},
                                                      {" = x", 0},
                                                      {" = -12\r", -12},
                                                      {" = 4294967295", INT32_MAX},
                                                      {" = -9999999999", INT32_MIN},
                                                      {"X = 3", 128}};
    for (const auto &[rest, expected] : cases) {
        Settings = kFactorySettings;
        ReadIni(std::string("FilterContrast") + rest);
        EXPECT_EQ(Settings.FilterContrast, expected) << rest;
    }
    Settings = kFactorySettings;
    ReadIni("Build = x\nBuildDate = x\nfilterContrast = 3\n;FilterContrast = 3");
    EXPECT_TRUE(IsFactory(Settings)) << "the date of the build is never read";
    ReadIni(" FilterContrast = 3"); // without a key, as below
    EXPECT_EQ(Settings.FilterContrast, 128);
    ReadIni("Filter = 2\nFilter = 3");
    EXPECT_EQ(Settings.FilterAddAlphaOpacity, 3) << "the first key that begins so, the last line of it";
    // Lines without a key go to the first row that is read.
    for (const auto &[line, expected] : {std::pair{"= a b \n", "a b "}, {"   c\n", "c"}, {"\n", ""}}) {
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
    ExpectLines(SavedIni(), {";Last updated Wed Dec 31 23:59:59 2147"}); // cut, not wrapped
    ::unsetenv("TZ");
    const std::string start = ";LMFFILTR configuration file\n;Edit this at your own risk\n"
                              ";Last updated Sun Sep 09 01:46:40 2001\n;\n[PlugIn]\nBuildDate = ";
    EXPECT_EQ(text.find(start + kFactorySettings.BuildDate + "\nColourTableFile = LMFFILTR.CCL\n"), 0u);
    ExpectLines(text, {"DefaultFilterType = ", "FilterContrast = 4294967295", "FilterCurlAntialias = 652"});
    EXPECT_TRUE(text.ends_with("\nTrackFilterWindows = 1\n"));
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 5 + int64_t{kConfigRows});
}

TEST_F(SettingsFiles, RoundTripKeepsEverySetting) {
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
    for (auto field : {&FilterParameters::FilterCaptionString, &FilterParameters::FilterWatermarkString,
                       &FilterParameters::FilterPosonlyString})
        std::memcpy(Settings.*field, kFactorySettings.*field, kTextSize);
    EXPECT_TRUE(IsFactory(Settings));
}

TEST_F(SettingsFiles, EachSaveMovesTheOldFilesAndAFailedOneLeavesThem) {
    std::string saved[4];
    for (int32_t i = 0; i < 4; i++) {
        Settings.FilterContrast = i;
        saved[i] = SavedIni();
    }
    const auto expectTheFour = [&](const char *when) {
        EXPECT_TRUE(ReadText(ini) == saved[3] && ReadText(backup) == saved[2] && ReadText(older) == saved[1]) << when;
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
    WriteText(ini, old);
    saveWithLimit(15000);
    ExpectLines(ReadText(ini), {"FilterContrast = 9"});
    EXPECT_EQ(ReadText(backup), old);
    EXPECT_EQ(ReadText(older), saved[2]);

    // A file that is kept in another file system has to be copied. Where that fails, the backups stay as a pair.
    const fs::path elsewhere = "/dev/shm/" + root.filename().string();
    WriteText(elsewhere, old);
    fs::remove(ini);
    fs::create_symlink(elsewhere, ini);
    saveWithLimit(15000);
    const std::string present = ReadText(elsewhere);
    ExpectLines(present, {"FilterContrast = 9"});
    EXPECT_EQ(ReadText(older), saved[2]);
    saveWithLimit(RLIM_INFINITY);
    EXPECT_EQ(ReadText(backup), present);
    EXPECT_EQ(ReadText(older), old);
    EXPECT_EQ(Files().size(), 3u);
    fs::remove(elsewhere);
}

TEST_F(SettingsFiles, WhatCannotBeReadIsNeverReplaced) {
    const Names names = {"LmfFiltr.ini", "LmfFiltrEnable.ini", "LmfFiltrList.txt"};
    const RecentFilter recent[] = {{"Flip", 1}};
    const std::pair<const char *, std::function<void(const fs::path &)>> kinds[] = {
        {"pipe", [](const fs::path &path) { ASSERT_EQ(::mkfifo(path.c_str(), 0600), 0); }},
        {"folder", [](const fs::path &path) { fs::create_directory(path); }},
        {"endless", [](const fs::path &path) { fs::create_symlink("/dev/zero", path); }},
        {"circle", [](const fs::path &path) { fs::create_symlink(path, path); }},
        {"too long", [](const fs::path &path) { WriteText(path, std::string((1 << 20) + 1, ';')); }},
        {"no rights",
         [](const fs::path &path) {
             WriteText(path, "FilterContrast = 5\n");
             fs::permissions(path, fs::perms::none);
         }},
    };
    for (const auto &[kind, make] : kinds) {
        SCOPED_TRACE(kind);
        if (std::string(kind) == "no rights" && ::geteuid() == 0) continue; // root reads everything
        for (const fs::path &path : {ini, enable, list}) make(path);
        const auto standing = [&] { return Standing(ini) + "|" + Standing(enable) + "|" + Standing(list); };
        const std::string before = standing();
        const FoundSettings found = ReadSettings(1);
        const FoundSwitches switches = ReadEnableFile(1);
        EXPECT_TRUE(IsFactory(Settings));
        WriteSettings(1, found);
        WriteSettings(1, {kFactorySettings, true});
        WriteEnableFile(1, &switches);
        WriteEnableFile(1, nullptr);
        WriteListFile(1, recent);
        EXPECT_EQ(standing(), before);
        EXPECT_EQ(Files(), names);
        // Readable by now, but the call knows nothing of what the files hold.
        for (const fs::path &path : {ini, enable}) {
            fs::remove(path);
            WriteText(path, "FilterContrast = 6\nGamma=0\n");
        }
        const std::string readable = standing();
        WriteSettings(1, found);
        WriteEnableFile(1, &switches);
        EXPECT_EQ(standing(), readable);
        EXPECT_EQ(Files(), names);
        for (const fs::path &path : {ini, enable, list}) fs::remove(path);

        // A backup of this kind stays too, and keeps no save from being made.
        make(backup);
        const std::string old = Standing(backup);
        SavedIni();
        EXPECT_NE(SavedIni(), "");
        EXPECT_EQ(Standing(backup), old);
        for (const fs::path &path : {ini, backup}) fs::remove(path);
    }
}

TEST_F(SettingsFiles, LinksAndRightsAreKept) {
    // Names that no writer may use, least of all through a link.
    WriteText(root / "document", "mine");
    fs::create_symlink(root / "document", folder / "LmfFiltr.ini.new");
    // A file that is kept elsewhere, through a link to a link; and one that is not there yet.
    WriteText(root / "kept.ini", "FilterContrast = 7\n");
    fs::permissions(root / "kept.ini", fs::perms::owner_read | fs::perms::owner_write);
    fs::create_symlink(root / "kept.ini", folder / "step");
    fs::create_symlink("step", ini);
    fs::create_symlink("../enabled.ini", enable);
    WriteSettings(0, ReadSettings(0));
    WriteEnableFile(1, nullptr);
    for (const fs::path &path : {ini, folder / "step", enable}) EXPECT_TRUE(fs::is_symlink(path)) << path;
    EXPECT_EQ(ReadText(root / "document"), "mine");
    ExpectLines(ReadText(root / "kept.ini"), {"FilterContrast = 7"});
    EXPECT_EQ(ReadText(root / "enabled.ini").find(";LMFFILTR enable file\n"), 0u);
    for (const fs::path &path : {root / "kept.ini", backup})
        EXPECT_EQ(fs::status(path).permissions(), fs::perms::owner_read | fs::perms::owner_write) << path;
    EXPECT_EQ(ReadText(backup), "FilterContrast = 7\n");
    EXPECT_EQ(FilesOf(root), (Names{"Quillon Works", "document", "enabled.ini", "kept.ini"})) << "nothing left beside";
}

TEST_F(SettingsFiles, ASaveKeepsWhatOthersChanged) {
    WriteText(ini, "FilterContrast = 1\nFilterRed = 1\nFilterGreen = 1\nFilterCaptionString = one\n");
    WriteText(enable, "Gamma=0\nFlip=0\nTile=1\n");
    const FoundSettings found = ReadSettings(1);
    const FoundSwitches switches = ReadEnableFile(1);
    // Meanwhile another host saves, and its user edits by hand: with a mark of the encoding, and without other keys.
    WriteText(ini, "\xEF\xBB\xBF"
                   "FilterContrast = 2\nFilterRed = 2\nFilterCaptionString = two\nFilterPosonlyString = new\n");
    WriteText(enable, "\xEF\xBB\xBFGamma=1\nFlip=0\nTile=0\n");
    Settings.FilterRed = 3;
    Settings.FilterBlue = 3;
    FilterCatalogue[RowOf("Flip")].flags |= FilterEnabled;
    WriteSettings(1, found);
    WriteEnableFile(1, &switches);

    ExpectLines(ReadText(ini), {"FilterContrast = 2", "FilterRed = 3", "FilterGreen = 1", "FilterBlue = 3",
                                "FilterCaptionString = two", "FilterPosonlyString = new"});
    ExpectLines(ReadText(enable), {"Gamma=1", "Flip=1", "Tile=0"});
    EXPECT_EQ(Settings.FilterContrast, 2) << "the variables are what the file holds";
    EXPECT_STREQ(Settings.FilterPosonlyString, "new");
}

TEST_F(SettingsFiles, LeftoversOfEndedWritersGoAfterAWhile) {
    const Names keep = {"LmfFiltr.ini.0123abcd.new", "LmfFiltr.ini.0123abcde.new", "LmfFiltr.ini.new",
                        "x.0123abcd.new"};
    for (const std::string &name : keep) WriteText(folder / name, "");
    WriteText(folder / "LmfFiltr.ini.00000000.new", "");
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
    const std::tuple<uint32_t, std::string, std::string> cases[] = {
        {0, "LmfFiltr", ""},          {1, "LmfFiltr", ""},
        {4, "LmfFiltr", ""},          {32, "LmfFiltr", ""},
        {8, "LmfFiltr", "Batch"},     {8 | 4, "LmfFiltr", "Batch"},
        {2, "DauberyFiltr", ""},      {2 | 8 | 128, "DauberyFiltr", ""},
        {128, "AnimationFilter", ""}, {256 | 8, "AnimationFilter", ""}};
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
    WriteText(enable, "[Filter]\nadd_alpha=0\nWater Drops=0\nGamma = == 0\r\nFlip=no\nCrop\n;Tile=0\n"
                      "\nRaise=0\nRaise=7\nred-EYE_reduction=0 \nMatt_=0\n=0\n");
    ReadEnableFile(1);
    Names off;
    for (const FilterEntry &entry : FilterCatalogue)
        if (!(entry.flags & FilterEnabled)) off.insert(entry.name);
    EXPECT_EQ(off, (Names{"Add Alpha", "Gamma", "Red-eye Reduction"})) << "no other line counts";

    WriteEnableFile(1, nullptr);
    const std::string text = ReadText(enable);
    EXPECT_EQ(text.find(";LMFFILTR enable file\n;Edit this at your own risk\n;Last updated "), 0u);
    EXPECT_NE(text.find("\n;\n[Filter]\nAdd_Alpha=0\nAdd_noise=1\n"), std::string::npos);
    ExpectLines(text, {"Red-eye_Reduction=0"});
    EXPECT_TRUE(text.ends_with("\nZoom_Blur=1\n"));
    for (FilterEntry &entry : FilterCatalogue) entry.flags ^= FilterEnabled;
    ReadEnableFile(1);
    WriteEnableFile(1, nullptr);
    EXPECT_EQ(ReadText(enable), text);
}

TEST_F(SettingsFiles, ListFile) {
    WriteText(list, "Gamma,12\r\nno comma\n,5\nFlip,x\n\nTile, -3 and more\nA,B,9\nRaise,99999999999\n");
    std::string lines;
    const auto append = [](void *target, const char *name, int32_t time) {
        *static_cast<std::string *>(target) += std::string(name) + ":" + std::to_string(time) + " ";
    };
    ReadListFile(1, append, &lines);
    EXPECT_EQ(lines, "Gamma:12 Tile:-3 Raise:2147483647 ");

    const RecentFilter recent[] = {{"Torn Edges", 7}, {"Flip", -1}};
    WriteListFile(1, recent);
    Settings.RememberFilterSave = 0;
    WriteListFile(1, std::span(recent).first(1));
    Settings.RememberFilterSave = 1;
    WriteListFile(1, {});
    EXPECT_EQ(ReadText(list), "Torn Edges,7\nFlip,-1\n") << "nothing to write";
}

TEST_F(SettingsFiles, HexCodedText) {
    for (const std::string &plain : {std::string(), std::string("Az\xFF"), std::string(259, 'q')}) {
        SettingText text = "";
        plain.copy(text, kTextSize);
        HexCodeText(text, true);
        EXPECT_TRUE(plain.size() != 3 || std::string(text).ends_with("417AFF")) << text;
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
    EXPECT_TRUE(text.starts_with("Secret = ") && text.find("pass") == std::string::npos) << text;
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
    Call(1, "Invert Colors", nullptr);
    Call(1, "Invert Colors", Agree, false);
    EXPECT_EQ(Files(), Names{}) << "calls that end before the run write nothing";
    // A direct call writes the enable file alone, whether it succeeds or not.
    EXPECT_EQ(Call(4 | 8, "Invert Colors"), 1u);
    EXPECT_EQ(Files(), Names{"LmfFiltrEnableBatch.ini"});
    EXPECT_EQ(Call(4, "Split channels"), 0u);
    EXPECT_EQ(Files(), (Names{"LmfFiltrEnableBatch.ini", "LmfFiltrEnable.ini"}));
    // Any other call writes the ini file too, or it alone where there are no flags.
    fs::remove(enable);
    Call(0, "Invert Colors");
    Call(2, "Invert Colors");
    EXPECT_EQ(Files(),
              (Names{"LmfFiltrEnableBatch.ini", "LmfFiltr.ini", "DauberyFiltr.ini", "DauberyFiltrEnable.ini"}));
}

TEST_F(SettingsFiles, CallTakesSettingsLimitedAndStoresThem) {
    WriteText(ini, "FilterGaussianRadius = 4294967295\nBuildDate = x\n");
    WriteText(enable, "[Filter]\nGamma=0\n");
    Call(4, "Invert Colors");
    EXPECT_EQ(Settings.FilterGaussianRadius, 990) << "limited on the way into the context and stored back";
    EXPECT_STREQ(Settings.BuildDate, kFactorySettings.BuildDate);
    ExpectLines(ReadText(enable), {"Gamma=1"}); // a direct call does not read the enable file
    WriteText(enable, "[Filter]\nGamma=0\n");
    Call(4 | 1, "Invert Colors");
    ExpectLines(ReadText(enable), {"Gamma=0"});
}

} // namespace
} // namespace lmf
