// The built program at work: names of files, many pictures, chains, streams, exit codes, and what it leaves behind.
#include <algorithm>
#include <csignal>
#include <filesystem>

#include "engine/catalogue.h"
#include "host/lmf_program.h"
#include "support/pictures.h"

namespace lmf::testing {

namespace fs = std::filesystem;

namespace {

struct LmfApply : LmfProgram {};

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
    Expect(
        3,
        Run({"apply", "Hexagon", "--strict-depth", "--out-dir", "x/y", "a.png", "b.png"}), // the first failure counts
        "a.png: Hexagon: Unsupported function (it takes true color; this picture is grey)");
    const ProgramRun mixed = Invert({"--json", "--out-dir", "out", "a.png", "b.png", "missing.png", "c.png"});
    Expect(2, mixed, "lmf: 2 of 4 pictures written, 2 failed");
    EXPECT_TRUE(Has(mixed.output, "\"status\":\"failed\"") && Has(mixed.output, "\"exitCode\":2"));
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
        {{}, "lmf apply FILTER [--set"},
        {{"aply"}, "did you mean \"apply\"?"},
        {{"apply", "gausian blur", "a.png", "b.png"}, "did you mean \"Gaussian Blur\""},
        {{"apply", "Sepia", "a.png"}, "one input and one output"},
        {{"apply", "Sepia", "--out-dir", "x"}, "no pictures"},
        {{"apply", "Sepia", "a.png", "b.png", "--qualty", "5"}, "there is no option --qualty"},
        {{"apply", "Sepia", "a.png", "b.png", "--quality", "0"}, "--quality"},
        {{"apply", "Sepia", "--out-dir", "x", "--format", "gif", "a.png"}, "--format takes png"},
        {{"apply", "Sepia", "a.png", "b.png", "--paper", "12345"}, "give it as #RRGGBB"},
        {{"apply", "Sepia", "--then", "Swril", "a.png", "b.png"}, "did you mean \"Swirl\"?"},
        {{"apply", "Sepia", "a.png", "b", "--then"}, "--then"},
        {{"apply", "Sepia", "--json", "a.png", "-"}, "both go to standard output"},
        {{"apply", "Sepia", "--out-dir", "x", "-"}, "no name for --out-dir"},
        {{"apply", "Invert Colors", "--then", "Stitch", "a.png", "b.png"}, "--clipboard PICTURE"},
        {{"list", "nosuchword"}, "no filter has these words"},
        {{"show", "Swril"}, "did you mean \"Swirl\"?"},
        {{"list", "--category", "Colour"}, "Artistic, Blur, Color"},
    };
    for (const auto &[arguments, message] : cases) Expect(1, Run(arguments), message);
    EXPECT_EQ(Run({"apply", "--help"}).exitCode, 0);
    for (const FilterEntry &entry : FilterCatalogue) {
        if (entry.filter->FilterKernel == nullptr)
            Expect(1, Run({"apply", entry.name, "a.png", "b.png"}), "is not in this version, which cannot run it");
    }
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

// The road through program, ini file and library gives what the kernel gives when it is called with the same values.
TEST_F(LmfApply, ResultIsTheKernelsAndDoesNotDependOnTheOtherPictures) {
    MakeGrey("a.png");
    PngFile file;
    file.width = file.height = 16;
    for (int i = 0; i < 256; i++) file.samples.push_back(uint8_t(i * i * 7));
    WritePng(In("b.png"), file);
    Names arguments = {"apply", "Gaussian Blur", "--set", "Radius=20", "--set", "Sigma=6"};
    arguments.insert(arguments.end(), {"--out-dir", "out", "a.png", "b.png"});
    Expect(0, Run(arguments), "2 of 2 pictures written");
    FilterContext context = MakeContext();
    context.FilterGaussianRadius = 200;
    context.FilterGaussianSigma = 60;
    const LockedDib source = MakePicture(16, 16, 8, {file.samples.begin(), file.samples.end()});
    const std::vector<uint32_t> expected = PixelsOf(RunKernel("Gaussian Blur", source, context));
    EXPECT_EQ(ReadPng(In("out/b.png")).samples, Bytes(expected.begin(), expected.end()));
}

// One decode and one encode: no JPEG lies between the filters, and each setting goes to the filter before it.
TEST_F(LmfApply, ChainsAreWhatTheirFiltersAreOneByOne) {
    ExpectSilence(Run({"apply", "Resize", kPhotograph, "a.png", "--set", "Horz=50"}));
    ExpectSilence(Run({"apply", "Gaussian Blur", "a.png", "b.png", "--set", "Radius=3"}));
    ExpectSilence(Run({"apply", "Emboss", "b.png", "c.png"}));
    const ProgramRun chain = Run({"apply", "Resize", "--set", "Horz=50", "--then", "blur", "--set", "Radius=3",
                                  "--then", "Emboss", kPhotograph, "chain.png", "--json"});
    ExpectSilence(chain);
    EXPECT_TRUE(ReadText(In("chain.png")) == ReadText(In("c.png")));
    EXPECT_TRUE(Has(chain.output, R"("filters":["Resize","Gaussian Blur","Emboss"],"status":"done","width":226)"));
    Expect(3, Run({"apply", "Convert to Mono", "--then", "Hexagon", "--strict-depth", kPhotograph, "no.png"}),
           "Hexagon: Unsupported function (it takes true color; this picture is mono)");
    Expect(1, Run({"apply", "Resize", "--then", "blur", "--set", "Horz=50", kPhotograph, "no.png"}),
           "no setting \"Horz\"");
    EXPECT_EQ(Files(), (Names{"a.png", "b.png", "c.png", "chain.png"}));
}

// The header is enough to see that a filter takes no such picture: this one has no pixels behind it.
TEST_F(LmfApply, PicturesThatTheFilterDoesNotTakeAreNotDecoded) {
    ExpectSilence(Run({"apply", "Flip", kPhotograph, "whole.bmp"}));
    WriteText(In("header.bmp"), ReadText(In("whole.bmp")).substr(0, 1000));
    Expect(3, Run({"apply", "Edge Trace and Fatten", "header.bmp", "o.png"}),
           "Unsupported function (it takes mono; this picture is true color)");
    EXPECT_EQ(Run({"apply", "Flip", "header.bmp", "o.png"}).exitCode, 2);
}

TEST_F(LmfApply, StandardStreamsAndFormats) {
    MakeGrey("p.png");
    WriteText(In("-"), "a file of this name is ./-");
    ExpectSilence(Invert({"p.png", "file.png"}));
    const std::string negative = ReadText(In("file.png"));
    // What is printed goes into a file, and comes back from it as standard input.
    const ProgramRun out = Invert({"p.png", "-"});
    ExpectSilence(out);
    EXPECT_TRUE(out.output == negative) << "in the format of the input";
    input = In("p.png");
    EXPECT_TRUE(Invert({"-", "-"}).output == negative);
    EXPECT_EQ(Invert({"-", "-", "--format", "jpg"}).output.substr(0, 3), "\xFF\xD8\xFF");
    ExpectSilence(Invert({"-", "named.png", "--format", "bmp"}));
    EXPECT_EQ(ReadText(In("named.png")).substr(0, 2), "BM");
    EXPECT_TRUE(Has(Run({"info", "-"}).output, "-: PNG, 4 x 4"));
    input = In("-");
    Expect(2, Invert({"-", "-"}), "standard input: this is not a PNG");
}

TEST_F(LmfApply, OutputThatCannotBePrintedIsTold) {
    MakeGrey("p.png");
    printed = "/dev/full";
    for (const Names &arguments :
         {Names{"list"}, Names{"show", "Sepia", "--json"}, Names{"--version"},
          Names{"apply", "Invert Colors", "p.png", "o.png", "--json"}, Names{"apply", "Invert Colors", "p.png", "-"}})
        Expect(4, Run(arguments), "standard output: No space left on device");
}

TEST_F(LmfApply, QuietLeavesErrorsOnly) {
    MakeGrey("a.png");
    MakeGrey("b.png");
    WriteText(In("bad.png"), "no");
    ExpectSilence(Invert({"-q", "--out-dir", "x", "a.png", "b.png"}));
    ExpectSilence(Run({"apply", "Unsharp Mask", "-q", "--set", "Radius=9", "a.png", "o.png"}));
    const ProgramRun mixed = Invert({"--quiet", "--out-dir", "x", "a.png", "bad.png"});
    EXPECT_EQ(mixed.errors, "lmf: bad.png: this is not a PNG, JPEG, TIFF, WebP or BMP picture\n");
    EXPECT_EQ(mixed.exitCode, 2);
}

} // namespace lmf::testing
