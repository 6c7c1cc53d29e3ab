// The built program at work: names of files, many pictures, exit codes, settings, and what it leaves behind.
#include <algorithm>
#include <csignal>
#include <filesystem>

#include "engine/catalogue.h"
#include "host/lmf_program.h"
#include "support/pictures.h"

namespace lmf::testing {

namespace fs = std::filesystem;

namespace {

struct LmfApply : LmfProgram {
    /// A small grey picture whose pixels are all `value`.
    void MakeGrey(const std::string &name, uint8_t value = 40) {
        PngFile file;
        file.samples.assign(16, value);
        WritePng(In(name), file);
    }

    /// Runs with the stand-in library, which then does what `wish` says.
    ProgramRun RunFake(const std::string &wish, const std::string &filter, const Names &options = {}) {
        Names arguments = {"apply", filter, "p.png", "out.png"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return Run(arguments, {{"LMF_LIBRARY", LMF_FAKE_LIBRARY_FILE}, {"LMF_FAKE", wish}});
    }

    /// Gives the value that the library would take for a key: that of the last line with it.
    std::string SeenSetting(const std::string &key) {
        const std::string text = ReadText(In("seen.ini"));
        const size_t at = text.rfind("\n" + key + " = ");
        if (at == std::string::npos) return "(none)";
        const size_t start = at + key.size() + 4;
        return text.substr(start, text.find('\n', start) - start);
    }
};

} // namespace

TEST_F(LmfApply, FileNamesAreOnlyBytes) {
    for (const std::string name :
         {"-v.png", "--json.png", "[a,b].png", "list.png", "\xff\xfe.png", "a b\n.png", "%%.png"}) {
        MakeGrey(name);
        ExpectSilence(Invert({"--json", "--", name, "out" + name}));
        EXPECT_TRUE(fs::exists(In("out" + name))) << name;
    }
    fs::create_directory(In("list"));
    Expect(0, Invert({"--out-dir", "list", "[a,b].png", "%%.png"}), "2 of 2 pictures written");
    EXPECT_TRUE(fs::exists(In("list/[a,b].png")) && fs::exists(In("list/%%.png")));
    EXPECT_EQ(Invert({"-v.png", "out.png"}).exitCode, 1);
}

TEST_F(LmfApply, WritesOverItsInputAndKeepsLinksAndPermissions) {
    MakeGrey("p.png");
    fs::permissions(In("p.png"), fs::perms(0640));
    fs::create_symlink("p.png", In("link.png"));
    ExpectSilence(Invert({"link.png", "link.png"}));
    EXPECT_TRUE(fs::is_symlink(In("link.png")));
    EXPECT_EQ(fs::status(In("p.png")).permissions(), fs::perms(0640));
    EXPECT_EQ(ReadPng(In("p.png")).samples, Bytes(16, 215));
    EXPECT_EQ(Files(), (Names{"link.png", "p.png"}));
}

TEST_F(LmfApply, WhatCannotBeWrittenLeavesEverythingAsItWas) {
    MakeGrey("p.png");
    fs::create_directory(In("folder.png"));
    EXPECT_EQ(Invert({"p.png", "no/such/folder/out.png"}).exitCode, 4);
    EXPECT_EQ(Invert({"p.png", "folder.png"}).exitCode, 4);
    EXPECT_EQ(Invert({"--out-dir", "p.png", "p.png"}).exitCode, 4);
    Expect(1, Invert({"p.png", "out.gif"}), "\"out.gif\" does not end in .png");
    EXPECT_EQ(Files(), Names{"p.png"});
}

TEST_F(LmfApply, ManyPicturesGoOnAfterABadOneAndSumUp) {
    MakeGrey("a.png", 1);
    MakeGrey("c.png", 3);
    WriteText(In("b.png"), "no");
    Expect(3, Run({"apply", "Hexagon", "--out-dir", "x/y", "a.png", "b.png"}), // the first failure counts
           "a.png: Hexagon: Unsupported function (it takes true color; this picture is grey)");
    const ProgramRun mixed = Invert({"--json", "--out-dir", "out", "a.png", "b.png", "missing.png", "c.png"});
    Expect(2, mixed, "lmf: 2 of 4 pictures written, 2 failed");
    EXPECT_TRUE(Has(mixed.output, "\"status\": \"failed\"") && Has(mixed.output, "\"exitCode\": 2"));
    EXPECT_EQ(ReadPng(In("out/a.png")).samples, Bytes(16, 254));
    MakeGrey("out/a.png", 77);
    fs::remove(In("out/c.png"));
    Expect(0, Invert({"--skip-existing", "--out-dir", "out", "a.png", "c.png"}), "1 of 2 pictures written, 1 skipped");
    EXPECT_EQ(ReadPng(In("out/a.png")).samples, Bytes(16, 77));
    EXPECT_EQ(ReadPng(In("out/c.png")).samples, Bytes(16, 252));
}

TEST_F(LmfApply, TwoInputsWithOneOutputAreRefusedBeforeAnythingIsDone) {
    fs::create_directories(In("x"));
    MakeGrey("a.png");
    MakeGrey("x/a.png");
    ExpectSilence(Invert({"a.png", "a.bmp"}));
    const Names before = Files();
    EXPECT_EQ(Invert({"--out-dir", "out", "a.png", "x/a.png"}).exitCode, 1);
    Expect(1, Invert({"--out-dir", "out", "--format", "tif", "a.png", "a.bmp"}),
           "a.png and a.bmp would both be written to out/a.tif");
    EXPECT_EQ(Files(), before);
}

TEST_F(LmfApply, WrongUsageSaysWhatIsRight) {
    const std::pair<Names, std::string> cases[] = {
        {{}, "lmf apply FILTER IN OUT"},
        {{"aply"}, "did you mean \"apply\"?"},
        {{"apply", "gausian blur", "a.png", "b.png"}, "did you mean \"Gaussian Blur\""},
        {{"apply", "Sepia", "a.png"}, "one input and one output"},
        {{"apply", "Sepia", "--out-dir", "x"}, "no pictures"},
        {{"apply", "Sepia", "a.png", "b.png", "--qualty", "5"}, "there is no option --qualty"},
        {{"apply", "Sepia", "a.png", "b.png", "--quality", "0"}, "--quality"},
        {{"apply", "Sepia", "--out-dir", "x", "--format", "gif", "a.png"}, "--format takes png"},
        {{"apply", "Sepia", "a.png", "b.png", "--paper", "12345"}, "give it as RRGGBB"},
        {{"show", "Swril"}, "did you mean \"Swirl\"?"},
        {{"list", "--category", "Colour"}, "Artistic, Blur, Color"},
    };
    for (const auto &[arguments, message] : cases) Expect(1, Run(arguments), message);
    EXPECT_EQ(Run({"apply", "--help"}).exitCode, 0);
}

TEST_F(LmfApply, FailuresOfTheLibraryAreToldAndWriteNothing) {
    MakeGrey("p.png");
    const std::pair<std::string, std::string> cases[] = {{"fail:6", "Sepia: Memory error"},
                                                         {"fail:12", "Sepia: Too many colors"},
                                                         {"fail:0", "Sepia: Library error"},
                                                         {"fail:99", "Sepia: Library error"},
                                                         {"lying header", "Sepia: Library error"}};
    for (const auto &[wish, message] : cases) Expect(3, RunFake(wish, "Sepia"), "p.png: " + message);
    Expect(3, Invert({"p.png", "out.png", "--library", "/no/such.so"}), "cannot be loaded");
    EXPECT_EQ(RunFake("interrupt", "Sepia").exitCode, 128 + SIGTERM);
    EXPECT_EQ(Files(), (Names{"p.png", "seen.ini"}));
}

TEST_F(LmfApply, AlphaOfAnotherSizeIsLeftOutWithAWarning) {
    PngFile file;
    file.type = PNG_COLOR_TYPE_RGB_ALPHA;
    file.samples.assign(64, 9);
    WritePng(In("p.png"), file);
    Expect(0, RunFake("other alpha", "Sepia"), "warning: the alpha no longer has the size");
    EXPECT_EQ(ReadPng(In("out.png")).type, PNG_COLOR_TYPE_RGB);
}

TEST_F(LmfApply, SettingsReachTheLibraryAsItsFileHasThem) {
    MakeGrey("p.png");
    struct Case {
        std::string filter, assignment, key, value;
    };
    const Case cases[] = {
        {"Gaussian Blur", "FilterGaussianRadius=100", "FilterGaussianRadius", "100"},
        {"gaussian blur", "filtergaussianradius=+990", "FilterGaussianRadius", "990"},
        {"Gaussian Blur", "Radius=0.4", "FilterGaussianRadius", "40"},
        {"Gaussian Blur", "radius=9.", "FilterGaussianRadius", "900"},
        {"Hexagon", "Size=30", "FilterHexagonSize", "30"},
        {"Hexagon", "LineSize=3", "FilterHexagonLineSize", "3"},
        {"Caption", "Bold=yes", "FilterCaptionBold", "1"},
        {"Caption", "Bold=False", "FilterCaptionBold", "0"},
        {"Caption", "TextColor=#102030", "FilterCaptionTextColor", "3153936"},
        {"Caption", "String=na\xc3\xafve \xe2\x82\xac = 5", "FilterCaptionString", "na\xefve \x80 = 5"},
        {"Caption", "String=na\xefve", "FilterCaptionString", "na\xefve"},
        {"Caption", "String=", "FilterCaptionString", ""},
        {"Fade", "Edge=south", "FilterFadeEdge", "2"},
        {"Fade", "Edge=3", "FilterFadeEdge", "3"},
    };
    for (const Case &c : cases) {
        ExpectSilence(RunFake("", c.filter, {"--set", c.assignment}));
        EXPECT_EQ(SeenSetting(c.key), c.value) << c.assignment;
    }
    RunFake("", "Sepia", {"--paper", "102030"});
    EXPECT_EQ(SeenSetting("PaperColor"), "3153936");
    EXPECT_EQ(SeenSetting("CurrentFilter"), "70");
    EXPECT_EQ(SeenSetting("FilterGaussianRadius"), "40") << "every key is stated, so that nothing is inherited";
}

TEST_F(LmfApply, WrongSettingsNameTheLegalOnes) {
    MakeGrey("p.png");
    struct Case {
        std::string filter, assignment, message;
    };
    const Case cases[] = {
        {"Gaussian Blur", "Radius", "not of the form KEY=VALUE"},
        {"Gaussian Blur", "Radios=5", "did you mean \"Radius\"?"},
        {"Gaussian Blur", "FilterGausianRadius=5", "did you mean \"FilterGaussianRadius\""},
        {"Gaussian Blur", "xyz=5", "Its settings: FilterGaussianSigma, FilterGaussianRadius"},
        {"Gaussian Blur", "Radius=9", "Legal: 10 to 990"},
        {"Gaussian Blur", "Radius=991", "Legal: 10 to 990"},
        {"Gaussian Blur", "Radius=0.123", "Legal: 10 to 990, or 0.10 to 9.90"},
        {"Gaussian Blur", "Radius=4-5", "Legal: 10 to 990"},
        {"Gaussian Blur", "Radius=99999999999999999999", "Legal: 10 to 990"},
        {"Fade", "Edge=Suoth", "did you mean \"South\"?"},
        {"Fade", "Edge=4", "\"North\", \"East\", \"South\", \"West\""},
        {"Caption", "Bold=perhaps", "Legal: true, false"},
        {"Caption", "TextColor=red", "a color as RRGGBB"},
        {"Caption", "String=one\ntwo", "control characters"},
        {"Caption", "String= padded", "cannot begin with a blank"},
        {"Caption", "String=" + std::string(300, 'x'), "at most 236 characters"},
        {"Caption", "String=\xd0\x96", "code page 1252"},
        {"Waves", "FilterWavesIntensity=5", "no settings file keeps it"},
        {"Social Media", "Size=5", "several settings that end in"},
        {"Invert Colors", "Radius=5", "has no settings"},
    };
    for (const Case &c : cases) {
        Expect(1, Run({"apply", c.filter, "p.png", "out.png", "--set", c.assignment}), c.message);
    }
    EXPECT_EQ(Files(), Names{"p.png"});
}

TEST_F(LmfApply, SettingsFileComesFirstAndAssignmentsWin) {
    MakeGrey("p.png");
    const std::string text = ";comment\nCurrentFilter = 3\nFilterGaussianRadius = 300\nFilterGaussianSigma = 33";
    WriteText(In("mine.ini"), text);
    ExpectSilence(RunFake("", "Gaussian Blur", {"--settings-from", "mine.ini", "--set", "FilterGaussianRadius=50"}));
    EXPECT_EQ(SeenSetting("FilterGaussianRadius"), "50");
    EXPECT_EQ(SeenSetting("FilterGaussianSigma"), "33");
    EXPECT_EQ(SeenSetting("CurrentFilter"), "31");
    WriteText(In("marked.ini"), "\xEF\xBB\xBF"
                                "FilterGaussianSigma = 34\n");
    ExpectSilence(RunFake("", "Gaussian Blur", {"--settings-from", "marked.ini"}));
    EXPECT_EQ(SeenSetting("FilterGaussianSigma"), "34") << "after the mark that some editors begin a file with";
    WriteText(In("long.ini"), std::string(1 << 20, ';'));
    Expect(2, Run({"apply", "Sepia", "p.png", "o.png", "--settings-from", "long.ini"}),
           "long.ini: the settings take more");
    EXPECT_EQ(Run({"apply", "Sepia", "p.png", "o.png", "--settings-from", "missing.ini"}).exitCode, 2);
    EXPECT_EQ(Run({"settings", "path"}, {{"XDG_CONFIG_HOME", "/c"}}).output, "/c/Quillon Works/LmfFiltr.ini\n");
}

// The library takes its defaults, and so another filter, where it does not accept the name of the settings folder.
TEST_F(LmfApply, TheSettingsAreFoundUnderEveryTmpdirOrNothingRuns) {
    MakeGrey("p.png", 10);
    const std::string deep(240, 'x');
    fs::create_directory(In(deep));
    ExpectSilence(Run({"apply", "Invert Colors", "p.png", "o.png"}, {{"TMPDIR", "."}}));
    EXPECT_EQ(ReadPng(In("o.png")).samples[0], 245);
    Expect(3, Run({"apply", "Invert Colors", "p.png", "none.png"}, {{"TMPDIR", In(deep)}}), "TMPDIR");
    EXPECT_FALSE(fs::exists(In("none.png")));
}

// The road through program, ini file and library gives what the kernel gives when it is called with the same values.
TEST_F(LmfApply, ResultIsTheKernelsAndDoesNotDependOnTheOtherPictures) {
    MakeGrey("a.png");
    PngFile file;
    file.width = file.height = 16;
    for (int i = 0; i < 256; i++) file.samples.push_back(uint8_t(i * i * 7));
    WritePng(In("b.png"), file);
    Names arguments = {"apply", "Gaussian Blur", "--set", "Radius=200", "--set", "Sigma=60"};
    arguments.insert(arguments.end(), {"--out-dir", "out", "a.png", "b.png"});
    Expect(0, Run(arguments), "2 of 2 pictures written");
    FilterContext context = MakeContext();
    context.FilterGaussianRadius = 200;
    context.FilterGaussianSigma = 60;
    const LockedDib source = MakePicture(16, 16, 8, {file.samples.begin(), file.samples.end()});
    const std::vector<uint32_t> expected = PixelsOf(RunKernel("Gaussian Blur", source, context));
    EXPECT_EQ(ReadPng(In("out/b.png")).samples, Bytes(expected.begin(), expected.end()));
}

} // namespace lmf::testing
