// Settings as a person types them and as files have them, on their way through the built program to the library.
#include <filesystem>

#include "engine/catalogue.h"
#include "engine/settings.h"
#include "host/lmf_program.h"

namespace lmf::testing {

namespace {

struct LmfSettings : LmfProgram {};

} // namespace

TEST_F(LmfSettings, SettingsReachTheLibraryAsItsFileHasThem) {
    MakeGrey("p.png");
    struct Case {
        std::string filter, assignment, key, value;
    };
    const Case cases[] = {
        {"Gaussian Blur", "FilterGaussianRadius=100", "FilterGaussianRadius", "100"},
        {"gaussian blur", "filtergaussianradius=+990", "FilterGaussianRadius", "990"},
        {"Gaussian Blur", "Radius=5", "FilterGaussianRadius", "50"},
        {"gauss", "radius=+9.", "FilterGaussianRadius", "90"},
        {"Median", "Radius=2.00", "FilterMedianRadius", "200"},
        {"Rotate", "Angle=45", "FilterRotateAngle", "450"},
        {"Rotate", "Angle (degrees)=.5", "FilterRotateAngle", "5"},
        {"Rotate", "Angle=-45", "FilterRotateAngle", "3150"},
        {"Rotate", "Angle=725.1", "FilterRotateAngle", "51"},
        {"Rotate", "FilterRotateAngle=450", "FilterRotateAngle", "450"},
        {"Rotate", "Direction=right", "FilterRotateDirection", "1"},
        {"Swirl", "Angle=90", "FilterSwirlDegrees", "1530"},
        {"Swirl", "degrees=-1440", "FilterSwirlDegrees", "0"},
        {"Shear", "DegreeX=10", "FilterShearDegreeX", "40"},
        {"hsb", "Hue=0", "FilterHSBHue", "180"},
        {"hue_saturation-brightness", "Saturation=-50", "FilterHSBSaturation", "50"},
        {"Gamma", "Level=1.25", "FilterGammaLevel", "125"},
        {"Zoom Blur", "Displacement=1", "FilterZoomBlurDisp", "100"},
        {"Torn Edges", "Linear dev=2.4", "FilterTornLinearDev", "12"},
        {"Film Grain", "Density=40", "FilterFilmgrainBlur", "40"},
        {"crop", "Left=70000", "FilterCropLeft", "4"}, // all that the picture has
        {"Waves", "Intensity=10", "FilterWavesIntensity", "10"},
        {"Waves", "FilterWavesHorizontal=on", "FilterWavesHorizontal", "1"},
        {"Unsharp Mask", "GaussianRadius=7", "FilterGaussianRadius", "70"},
        {"Sharpen", "FilterEmbossWidth=9", "FilterEmbossWidth", "9"},
        {"Hexagon", "Size=30", "FilterHexagonSize", "30"},
        {"Hexagon", "LineSize=3", "FilterHexagonLineSize", "3"},
        {"Caption", "Bold=yes", "FilterCaptionBold", "1"},
        {"Caption", "Bold=False", "FilterCaptionBold", "0"},
        {"Caption", "TextColor=#102030", "FilterCaptionTextColor", "3153936"},
        {"Caption", "Text color=Navy", "FilterCaptionTextColor", "8388608"},
        {"Caption", "FilterCaptionTextColor=102030", "FilterCaptionTextColor", "102030"},
        {"Caption", "Text=plain", "FilterCaptionString", "plain"},
        {"Caption", "String=na\xc3\xafve \xe2\x82\xac = 5", "FilterCaptionString", "na\xc3\xafve \xe2\x82\xac = 5"},
        {"Caption", "String=na\xefve", "FilterCaptionString", "na\xefve"},
        {"Caption", "String=", "FilterCaptionString", ""},
        {"Fade", "Edge=south", "FilterFadeEdge", "2"},
        {"Fade", "Edge=3", "FilterFadeEdge", "3"},
    };
    for (const Case &c : cases) {
        EXPECT_EQ(RunFake("", c.filter, {"--set", c.assignment}).exitCode, 0) << c.assignment;
        EXPECT_EQ(SeenSetting(c.key), c.value) << c.assignment;
    }
    ExpectSilence(RunFake("", "vintage", {"--paper", "102030"}));
    EXPECT_EQ(SeenSetting("PaperColor"), "3153936");
    EXPECT_EQ(SeenSetting("CurrentFilter"), "70");
}

TEST_F(LmfSettings, WrongSettingsNameTheLegalOnes) {
    MakeGrey("p.png");
    struct Case {
        std::string filter, assignment, message;
    };
    const Case cases[] = {
        {"Gaussian Blur", "Radius", "not of the form KEY=VALUE"},
        {"Gaussian Blur", "Radios=5", "did you mean \"Radius\"?"},
        {"Gaussian Blur", "FilterGausianRadius=5", "did you mean \"FilterGaussianRadius\""},
        {"Gaussian Blur", "xyz=5", "Its settings: Sigma, Radius"},
        {"Gaussian Blur", "Radius=0.9", "Legal: 1.0 to 99.0 pixels (FilterGaussianRadius=10 to 990, default 40)"},
        {"Gaussian Blur", "Radius=99.1", "Legal: 1.0 to 99.0 pixels"},
        {"Gaussian Blur", "Radius=4.55", "Legal: 1.0 to 99.0 pixels in steps of 0.1"},
        {"Gaussian Blur", "Radius=4-5", "Legal: 1.0"},
        {"Gaussian Blur", "Radius=", "Legal: 1.0"},
        {"Gaussian Blur", "Radius=-", "Legal: 1.0"},
        {"Gaussian Blur", "Radius=.", "Legal: 1.0"},
        {"Gaussian Blur", "Radius=99999999999999999999", "Legal: 1.0"},
        {"Gaussian Blur", "FilterGaussianRadius=991", "the stored integer, 10 to 990; Radius takes 1.0 to 99.0 pixels"},
        {"Gaussian Blur", "FilterGaussianRadius=5.0", "the stored integer"},
        {"Swirl", "Angle=1441", "Legal: -1440 to 1440 degrees"},
        {"Torn Edges", "Linear dev=2.5", "in steps of 0.2"},
        {"Fade", "Edge=Suoth", "did you mean \"South\"?"},
        {"Fade", "Edge=4", "\"North\", \"East\", \"South\", \"West\""},
        {"Caption", "Bold=perhaps", "Legal: true, false"},
        {"Caption", "TextColor=rouge", "give it as #RRGGBB, or as a name"},
        {"Caption", "String=one\ntwo", "control characters"},
        {"Caption", "String= padded", "cannot begin with a blank"},
        {"Caption", "String=" + std::string(300, 'x'), "at most 236 bytes"},
        {"Waves", "Intensity=17", "Legal: 2 to 16 pixels"},
        {"Social Media", "Size=5", "several settings that end in"},
        {"Invert Colors", "Radius=5", "has no settings"},
    };
    for (const Case &c : cases) {
        Expect(1, RunFake("", c.filter, {"--set", c.assignment}), c.message);
    }
    EXPECT_EQ(Files(), Names{"p.png"});
}

// A setting that does something only while another one has some value.
TEST_F(LmfSettings, ValuesSwitchOnWhatTheyNeedOrAreSaidToDoNothing) {
    MakeGrey("p.png");
    struct Case {
        std::string filter;
        Names assignments;
        std::string key, value, warning;
    };
    const Case cases[] = {
        {"Photo Fine-tune", {"Sat=50"}, "FilterPhotoAdjEnableSat", "1", ""},
        {"Photo Fine-tune",
         {"Sat=50", "EnableSat=no"},
         "FilterPhotoAdjEnableSat",
         "0",
         "Sat has no effect while EnableSat is off"},
        {"Resize", {"Width=300", "Interpolate=yes"}, "FilterResizeByDim", "1", ""},
        {"Resize", {"Vert=50"}, "FilterResizeConstant", "0", ""},
        {"Resize",
         {"Horizontal=50", "Width=300"},
         "FilterResizeByDim",
         "1",
         "Horizontal has no effect while ByDim is on"},
        {"Trim", {"Size=100"}, "FilterTrimMode", "1", ""},
        {"Trim", {"Percent=10"}, "FilterTrimMode", "2", ""},
        {"Trim",
         {"Size=9", "Trim mode=By color"},
         "FilterTrimMode",
         "0",
         "Size has no effect while Mode is \"By color\""},
        {"Matt", {"Depth=900"}, "FilterMattAbsolute", "1", ""},
        {"Convert to Mono", {"Threshold=99"}, "FilterConvertToMonoDither", "0", ""},
        {"Torn Edges", {"Shadow=off"}, "FilterTornAlpha", "(none)", ""},
        {"Reflection", {"Gradient start=9"}, "FilterReflectionGrad", "1", ""},
        {"Watermark", {"Image=logo.png"}, "FilterWatermarkImageUse", "1", ""},
        {"Sharpen", {"Radius=9"}, "FilterSharpenWidth", "9", "Radius has no effect; the filter works with EmbossWidth"},
        {"Unsharp Mask",
         {"Depth=9"},
         "FilterUnsharpSigma",
         "90",
         "Depth has no effect; the filter works with GaussianSigma"},
    };
    for (const Case &c : cases) {
        Names options;
        for (const std::string &assignment : c.assignments) options.insert(options.end(), {"--set", assignment});
        const ProgramRun run = RunFake("", c.filter, options);
        Expect(0, run, c.warning);
        EXPECT_EQ(run.errors.empty(), c.warning.empty()) << run.errors;
        EXPECT_EQ(SeenSetting(c.key), c.value) << c.filter << " " << c.assignments[0];
    }
}

TEST_F(LmfSettings, SeedsAreRepeatedAtWillAndDifferInABatch) {
    for (const char *name : {"a.png", "b.png"}) std::filesystem::copy_file(kPhotograph, In(name));
    const auto result = [&](const std::string &filter, const Names &options, const std::string &name) {
        Names arguments = {"apply", filter, "-q", "--out-dir", "out", "a.png", "b.png"};
        arguments.insert(arguments.end(), options.begin(), options.end());
        ExpectSilence(Run(arguments, {{"SOURCE_DATE_EPOCH", "77"}}));
        return ReadText(In("out/" + name));
    };
    for (const std::string filter : {"Add noise", "Water Drops", "Film Grain", "Shards"}) {
        const std::string five = result(filter, {"--seed", "5"}, "a.png");
        EXPECT_TRUE(ReadText(In("out/b.png")) == five) << filter;
        EXPECT_TRUE(result(filter, {"--seed", "5"}, "b.png") == five) << filter;
        EXPECT_FALSE(result(filter, {"--seed", "6"}, "a.png") == five) << filter;
        const std::string own = result(filter, {}, "a.png");
        EXPECT_FALSE(ReadText(In("out/b.png")) == own) << filter;
        ExpectSilence(Run({"apply", filter, "a.png", "alone.png"}, {{"SOURCE_DATE_EPOCH", "77"}}));
        EXPECT_TRUE(ReadText(In("alone.png")) == own) << filter << ": the first of a batch is as one alone";
    }
    const std::string set = result("Film Grain", {"--set", "Seed=2000"}, "a.png");
    EXPECT_TRUE(ReadText(In("out/b.png")) == set) << "what is set stays";
}

TEST_F(LmfSettings, FaultsOfASettingsFileAreAllNamed) {
    MakeGrey("p.png");
    WriteText(In("bad.ini"), "radius = 500\n\n; comment\nFilterGaussianRadius = 50000000\nhello\n"
                             "FilterGaussianSigma = 40\r\nFilterContr = 3\nFilterFadeEdge = -1\n = x\n"
                             "FilterGammaLevel = much\n\x01\nFilterCaptionString = " +
                                 std::string(300, 'x') + "\n");
    const ProgramRun run = RunFake("", "Sepia", {"--settings-from", "bad.ini"});
    for (const char *fault :
         {"bad.ini: line 1: there is no key \"radius\"",
          "line 4: FilterGaussianRadius = 50000000 would be limited to 990",
          "line 5: this is not of the form Key = value", "line 7: there is no key \"FilterContr\"; did you mean",
          "line 8: FilterFadeEdge = -1 would be limited to 0", "line 9: this is not",
          "line 10: FilterGammaLevel takes a number", "line 11: this line holds control characters",
          "line 12: a line has at most 258"})
        Expect(1, run, fault);
    EXPECT_FALSE(Has(run.errors, "line 6") || Has(run.errors, "line 2:") || Has(run.errors, "line 3:"));
    Expect(1, RunFake("", "Sepia", {"--settings-from", kPhotograph}), "more");
    EXPECT_EQ(Files(), (Names{"bad.ini", "p.png"}));
}

// A file that the library could have written, and no other filter's settings in the way of the run's own.
TEST_F(LmfSettings, EveryKeyAtItsDefaultIsAFileWithoutFault) {
    MakeGrey("p.png");
    std::string text = "BuildDate = Jan 1 2026\n";
    for (const ConfigEntry &row : ConfigTable) {
        if (row.type & kConfigWriteOnly) continue;
        text += std::string(row.key) + " = ";
        text += (row.type & kConfigText ? std::string(row.Text()) : std::to_string(row.Number())) + "\n";
    }
    WriteText(In("all.ini"), text);
    ExpectSilence(RunFake("", "Emboss", {"--settings-from", "all.ini"}));
    EXPECT_EQ(SeenSetting("FilterResizeDepth"), "600");
    EXPECT_EQ(SeenSetting("CurrentFilter"), "21");
}

// The library's own file in the user's folder plays no part, and none is written there.
TEST_F(LmfSettings, TheUsersFolderIsLeftAlone) {
    MakeGrey("p.png", 10);
    const std::string home = In("home/Quillon Works");
    std::filesystem::create_directories(home);
    WriteText(home + "/LmfFiltrBatch.ini", "FilterGaussianRadius = 990\nCurrentFilter = 3\n");
    const Names before = Files();
    ExpectSilence(Run({"apply", "Invert Colors", "p.png", "p.png"}, {{"XDG_CONFIG_HOME", In("home")}}));
    EXPECT_EQ(ReadPng(In("p.png")).samples[0], 245);
    EXPECT_EQ(Files(), before);
}

TEST_F(LmfSettings, SettingsFileComesFirstAndAssignmentsWin) {
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
    WriteText(In("long.ini"), std::string((1 << 20) + 1, ';'));
    Expect(2, Run({"apply", "Sepia", "p.png", "o.png", "--settings-from", "long.ini"}),
           "long.ini: the settings take more");
    EXPECT_EQ(Run({"apply", "Sepia", "p.png", "o.png", "--settings-from", "missing.ini"}).exitCode, 2);
    EXPECT_EQ(Run({"settings", "path"}, {{"XDG_CONFIG_HOME", "/c"}}).output, "/c/Quillon Works/LmfFiltr.ini\n");
}

} // namespace lmf::testing
