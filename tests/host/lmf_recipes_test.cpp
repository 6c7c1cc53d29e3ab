// Looks that are kept: recipes, filter documents and contact sheets, through the built program.
#include <filesystem>

#include "engine/catalogue.h"
#include "engine/document.h"
#include "engine/settings.h"
#include "host/lmf_program.h"

namespace lmf::testing {

namespace fs = std::filesystem;

namespace {

struct LmfRecipes : LmfProgram {};

const std::string kHead = "#This is a document created by Lumenfold Studio by Quillon Works - do not edit.\n"
                          "#Start of document\n";

const char kByHand[] = "# mine\n"
                       "stray: \"7\";\n"
                       ":filter \"Soft; 50% soft\"; # a comment\n"
                       "\tsource: \"GAUSSIAN BLUR\";\n"
                       "Description: \"As through silk\xe9\";\n"
                       "filtergaussianradius: \"85\";\n"
                       "FilterNoSuchThing: \"3\";\n"
                       "PaperColor: \"5\";\n"
                       ":END;\n"
                       ":FILTER \"Lost\";\nSource: \"No Such Filter\";\n:END;\n"
                       ":FILTER \"Lines\"\nSource: \"Caption\"\nFilterCaptionString: \"one; two\"\n:END\n"
                       ":FILTER \"Caf\xc3\xa9\";\nSource: \"Invert Colors\";\n:END";

} // namespace

TEST_F(LmfRecipes, DocumentsAreWhatTheLibraryWrites) {
    for (int32_t row = 0; row < kFilterCount; row++) {
        const char *name = FilterCatalogue[row].name;
        // These begin with the picture, and a document without one leaves them out.
        const std::string unset = row == LMF_FILTER_CROP ? "Right" : row == LMF_FILTER_MATT ? "Depth" : "";
        ASSERT_TRUE(DocumentWrite(In("library.doc").c_str(), row, kFactorySettings));
        ExpectSilence(Run({"save", name, "lmf.doc"}));
        if (unset.empty()) {
            EXPECT_EQ(ReadText(In("lmf.doc")), ReadText(In("library.doc"))) << name;
        } else {
            EXPECT_FALSE(Has(ReadText(In("lmf.doc")), "(" + unset)) << name;
        }
    }
}

TEST_F(LmfRecipes, SettingsGoThroughADocumentAndBack) {
    MakeGrey("p.png");
    struct Case {
        std::string filter, assignment, key, value;
    };
    const Case cases[] = {
        {"Gaussian Blur", "Radius=8.5", "FilterGaussianRadius", "85"},
        {"Fade", "Edge=south", "FilterFadeEdge", "2"},
        {"Flip", "Direction=vertical", "FilterFlipDirection", "1"},
        {"Rotate", "Direction=right", "FilterRotateDirection", "1"},
        {"Trim", "Mode=By size", "FilterTrimMode", "1"},
        {"Caption", "TextColor=#102030", "FilterCaptionTextColor", "3153936"},
        {"Caption", "String=a#b; na\xefve", "FilterCaptionString", "a#b; na\xefve"},
        {"Caption", "String=", "FilterCaptionString", ""},
        {"Crop", "Right=2", "FilterCropRight", "2"},
        {"Crop", "Right=70000", "FilterCropRight", "4"}, // held to the picture
    };
    for (const Case &c : cases) {
        ExpectSilence(Run({"save", c.filter, "--set", c.assignment, "d"}));
        EXPECT_EQ(RunFake("", c.filter, {"--document", "d"}).exitCode, 0) << c.assignment;
        EXPECT_EQ(SeenSetting(c.key), c.value) << c.filter << " " << c.assignment;
    }
    ExpectSilence(Run({"save", "Film Grain", "--set", "Seed=7700", "d"}));
    ExpectSilence(Run({"save", "Film Grain", "--document", "d", "--set", "Strength=30", "e"}));
    fs::copy_file(kPhotograph, In("p.png"), fs::copy_options::overwrite_existing);
    ExpectSilence(Run({"apply", "Film Grain", "--document", "e", "-q", "p.png", "a.png"}));
    ExpectSilence(Run({"apply", "Film Grain", "--set", "Seed=7700", "--set", "Strength=30", "-q", "p.png", "b.png"}));
    EXPECT_TRUE(ReadText(In("a.png")) == ReadText(In("b.png")));
}

TEST_F(LmfRecipes, DocumentsOfAllKindsAreTakenAsFarAsTheySay) {
    MakeGrey("p.png");
    struct Case {
        std::string text, level;
        int exitCode;
        std::string complaint;
    };
    const std::string noise = kHead + "FilterType=Add noise\n";
    const Case cases[] = {
        {noise + "  scrbar210 =20\r\n", "20", 0, ""}, // any case, and no last line
        {noise + "ScrBar210=999999999999\nScrBar211=7\nnonsense\n\n" + std::string(20000, 'x'), "32", 0, ""},
        {noise + "ScrBar210=-5", "1", 0, ""},
        {noise + "; ScrBar210=30\nSpnBtn210=30\nScrBar9999=30", "(none)", 0, "the document sets nothing"},
        {"", "(none)", 0, "the document sets nothing"},
        {kHead + "FilterType=Fade\nScrBar210=20\n", "", 2, "a document of another filter"},
        {"ScrBar210=20\n", "", 2, "no filter document"},
        {std::string(3 << 20, 'x'), "", 2, "larger than 1 MiB"},
    };
    for (const Case &c : cases) {
        WriteText(In("d"), c.text);
        fs::remove(In("seen.ini"));
        Expect(c.exitCode, RunFake("", "Add noise", {"--document", "d"}), c.complaint);
        if (c.exitCode == 0) {
            EXPECT_EQ(SeenSetting("FilterNoiseLevel"), c.level) << c.text.substr(0, 200);
        }
    }
    Expect(2, RunFake("", "Add noise", {"--document", "missing"}), "missing: No such file");
    Expect(4, Run({"save", "Add noise", "no/such/folder/d"}), "No such file");
    Expect(1, Run({"save", "Add noise"}), "the name of a filter and that of a file");
}

TEST_F(LmfRecipes, AFileWrittenByHandRuns) {
    MakeGrey("p.png");
    WriteText(In("mine.txt"), kByHand);
    const ProgramRun list = Run({"recipes", "--recipes", "mine.txt"});
    ExpectSilence(list);
    EXPECT_EQ(list.output, "Soft; 50% soft  GAUSSIAN BLUR   As through silk\xc3\xa9\n"
                           "Lost            No Such Filter   (no such filter)\n"
                           "Lines           Caption\n"
                           "Caf\xc3\xa9           Invert Colors\n");
    EXPECT_TRUE(Has(Run({"recipes", "--json", "--recipes", "mine.txt"}).output, "\"FilterGaussianRadius\": 85"));
    const auto apply = [&](const std::string &name, Names more = {}) {
        more.insert(more.begin(),
                    {"apply", "--strict-depth", "--recipes", "mine.txt", "--recipe", name, "p.png", "o.png"});
        return Run(more, {{"LMF_LIBRARY", LMF_FAKE_LIBRARY_FILE}, {"LMF_FAKE", ""}});
    };
    ExpectSilence(apply("soft 50 SOFT"));
    EXPECT_EQ(SeenSetting("CurrentFilter"), std::to_string(LMF_FILTER_GAUSSIAN_BLUR));
    EXPECT_EQ(SeenSetting("FilterGaussianRadius"), "85");
    EXPECT_EQ(SeenSetting("PaperColor"), "(none)");
    ExpectSilence(apply("soft 50 soft", {"--set", "Radius=2"}));
    EXPECT_EQ(SeenSetting("FilterGaussianRadius"), "20");
    ExpectSilence(apply("lines"));
    EXPECT_EQ(SeenSetting("FilterCaptionString"), "one");
    Expect(1, apply("Lost"), "names a filter that there is not: \"No Such Filter\"");
    Expect(1, apply("Linse"), "mine.txt has no recipe \"Linse\"; did you mean \"Lines\"?");
    Expect(1, apply("??"), "no recipe \"??\"");
    WriteText(In("mine.txt"), ":FILTER \"" + std::string(300, 'n') + "\";\nSource: \"Sepia\";\n:END;\n" + kByHand);
    Expect(0, apply("Caf\xc3\xa9"), "a name of more than 260 characters");
    EXPECT_EQ(SeenSetting("CurrentFilter"), std::to_string(LMF_FILTER_INVERT_COLORS));
    EXPECT_EQ(Run({"recipes", "--recipes", "missing"}).exitCode, 2);
}

TEST_F(LmfRecipes, TheUsersFileTakesThePlaceOfTheOneBesideTheLibrary) {
    EXPECT_TRUE(Run({"recipes"}).output.starts_with("Golden hour "));
    fs::create_directories(In("home/Quillon Works/Lumenfold Studio 16"));
    WriteText(In("home/Quillon Works/Lumenfold Studio 16/LMFPhotographyDarkroom.txt"), kByHand);
    EXPECT_TRUE(Run({"recipes"}, {{"XDG_CONFIG_HOME", In("home")}}).output.starts_with("Soft; "));
}

TEST_F(LmfRecipes, AChainOfThreeReportsEveryPicture) {
    Names arguments = {"apply",      "--json", "--recipe", "sepia album", "--then",    "Fade",
                       "--document", "d",      "--then",   "Flip",        "--out-dir", "out"};
    ExpectSilence(Run({"save", "Fade", "--set", "Edge=South", "d"}));
    for (int i = 0; i < 5; i++) {
        arguments.push_back(std::to_string(i) + ".png");
        if (i != 2) fs::copy_file(kPhotograph, In(arguments.back()));
    }
    WriteText(In("2.png"), "no picture");
    const ProgramRun run = Run(arguments);
    Expect(2, run, "4 of 5 pictures written, 1 failed");
    EXPECT_TRUE(Has(run.output, "\"filters\":[\"Sepia\",\"Fade\",\"Flip\"],\"status\":\"done\",\"width\":451"));
    EXPECT_FALSE(fs::exists(In("out/2.png")));
    ExpectSilence(Run({"apply", "-q", "--recipe", "Sepia album", "0.png", "a.png"}));
    ExpectSilence(Run({"apply", "-q", "Fade", "--set", "Edge=South", "a.png", "b.png"}));
    ExpectSilence(Run({"apply", "-q", "Flip", "b.png", "c.png"}));
    EXPECT_TRUE(ReadRgba(In("out/4.png")) == ReadRgba(In("c.png")));
}

TEST_F(LmfRecipes, SheetsShowEveryCellWithItsLabel) {
    PngFile plain; // red, larger than what is shown
    plain.type = PNG_COLOR_TYPE_RGB;
    plain.width = plain.height = 300;
    for (int i = 0; i < 300 * 300; i++) plain.samples.insert(plain.samples.end(), {200, 10, 20});
    WritePng(In("p.png"), plain);
    ExpectSilence(
        Run({"sheet", "p.png", "s.png", "--side", "100", "--columns", "2", "--filters", "Invert Colors, negate"}));
    const PngFile sheet = ReadPng(In("s.png"));
    ASSERT_EQ(sheet.width, 230); // two of 100 and gaps of 10
    const auto at = [&](int x, int y) {
        const uint8_t *pixel = &sheet.samples[3 * (size_t(y) * 230 + size_t(x))];
        return std::vector<int>(pixel, pixel + 3);
    };
    const int down = (sheet.height - 10) / 2;
    EXPECT_EQ(at(60, 60), (std::vector<int>{200, 10, 20}));
    EXPECT_EQ(at(170, 60), (std::vector<int>{55, 245, 235}));
    EXPECT_EQ(at(10, down + 10), at(109, down + 109));
    EXPECT_NE(at(60, down + 60), at(60, 60));
    EXPECT_EQ(at(170, down + 60), at(5, 5)); // no fourth cell
    int darkest = 255;
    for (int x = 10; x < 110; x++)
        for (int y = 110; y < down; y++) darkest = std::min(darkest, at(x, y)[0]);
    EXPECT_LT(darkest, 120) << "no label";

    // What cannot run leaves no gap; a filter that was named is missed.
    Expect(3, Run({"sheet", "p.png", "t.png", "--side", "100", "--columns", "2", "--filters", "Remove Alpha,Flip"}),
           "Remove Alpha: Memory error (it takes pictures with alpha); it is left out");
    EXPECT_EQ(ReadPng(In("t.png")).height, 10 + down);
    Expect(0, Run({"sheet", "p.png", "t.jpg", "--side", "48", "--filters", "all"}), "Remove Alpha: Memory");
    ExpectSilence(Run({"sheet", "t.jpg", "u.png", "--side", "48"})); // the recipes, over a JPEG that is decoded smaller
    MakeGrey("tiny.png");
    ExpectSilence(Run({"sheet", "tiny.png", "u.png", "--category", "color"}));
    Expect(1, Run({"sheet", "p.png", "u.png", "--category", "colour"}), "The categories:");
    Expect(1, Run({"sheet", "p.png", "u.png", "--filters", "Flop,Nothing"}), "there is no filter \"Nothing\"");
    Expect(1, Run({"sheet", "p.png", "u.gif"}), "does not end in");
    Expect(2, Run({"sheet", "missing.png", "u.png"}), "missing.png: No such file");
    Expect(4, Run({"sheet", "p.png", "no/such/u.png", "--filters", "Flip"}), "No such file");
}

} // namespace lmf::testing
