#include "darkroom/recipe_file.h"

#include "darkroom/darkroom_settings.h"
#include "darkroom/paper.h"
#include "host/lmf_program.h"
#include "image/core/dib_ops.h"
#include "platform/system.h"
#include "support/pictures.h"
#include "support/user_folders.h"

namespace lmf::testing {

namespace {

namespace fs = std::filesystem;

/// Every recipe of a text as `name{key=value/type/number ...}`, and what the reader had to tell.
std::string Dump(const std::string &text) {
    RecipeList list;
    std::string dump;
    ReadRecipes(
        text, &list, [](void *to, const char *) { *static_cast<std::string *>(to) += '!'; }, &dump);
    for (const RecipeEntry &entry : list.entries.Elements()) {
        dump += std::string(entry.name) + '{';
        for (const RecipeRecord &record : RecipeLock(entry.item.recipe).records)
            dump += std::string(record.key) + '=' + record.value + '/' + std::to_string(record.type) + '/' +
                    std::to_string(record.number) + ' ';
        dump += '}';
    }
    return dump;
}

const std::string kByHand = "# ours\n"
                            ":filter Night\t;\r\n"
                            "  source : \"moonlight\";\r\n"
                            "\n"
                            "Description: \"Dark; and blue\";\n"
                            "FILTERMOONLIGHTFACTOR: 12;\n"
                            ":end\n"
                            "loose: \"line\";\n"
                            ":FILTER \"Name; kept\"; rest\n"
                            "FilterCaptionString: \"a # b\";\n"
                            "Mine: \"7x\";\n"
                            ":END;";
const std::string kWritten = ":FILTER \"Night\t\";\n"
                             "source: \"moonlight\";\n"
                             "Description: \"0\";\n"
                             "FILTERMOONLIGHTFACTOR: \"12\";\n"
                             ":END;\n"
                             "\n"
                             ":FILTER \"Name; kept\";\n"
                             "FilterCaptionString: \"a \";\n"
                             "Mine: \"7\";\n"
                             ":END;\n"
                             "\n";

/// One recipe of these fields.
BlockOwner Make(const std::string &fields) {
    return BlockOwner(RecipeMake({"", false, fields}));
}

} // namespace

TEST(Recipes, AreReadAsTheyStand) {
    const std::string longName(260, 'n'), longText(300, 'x');
    const struct {
        std::string text, dump;
    } kCases[] = {
        {kByHand, "Night\t{source=moonlight/2/0 Description=Dark/4/0 FILTERMOONLIGHTFACTOR=12/4/12 }"
                  "Name; kept{FilterCaptionString=a /2/0 Mine=7x/4/7 }"},
        {"", ""},
        {":FILTER \"no end\";\nSource: \"Crop\";\n", ""},
        {":END;\n:FILTER \"\";\nSource: \"Crop\";\n:END;\n", ""},
        {":FILTER a;\nA: 1;\n:FILTER b;\nB: 2;\n:END;\nC: 3;\n:END;\n", "b{B=2/4/2 }"},
        {":FILTER x \"y z\" w;\nSource: \"\";\n: \"v\";\nkey\nA:::  : -5\n:END;", "x y z{A=-5/4/-5 }"},
        {":FILTER \"" + longName + "\";\n:END;", longName + "{}"},
        {":FILTER \"" + longName + "n\";\nA: 1;\n:END;\n:FILTER b;\n:END;", "!b{}"},
        {":FILTER a;\nA: " + longText + ";\n" + longText + ": 1\n:END;", "a{A=" + longText.substr(0, 260) + "/4/0 " +
                                                                             longText.substr(0, 260) + "=" +
                                                                             longText.substr(0, 40) + ": 1/4/0 }"},
        // A line goes on after 1023 characters, with whatever begins there.
        {":FILTER a;\n" + std::string(1023, ' ') + ":END;\n", "a{}"},
        {std::string(":FILTER \xE9\0;\nA: \xFF;\n:END;", 23), "\xE9{A=\xFF/4/0 }"},
    };
    for (const auto &one : kCases) EXPECT_EQ(Dump(one.text), one.dump) << one.text.substr(0, 80);
}

TEST(Recipes, ChangeWhatTheyMentionAndRun) {
    Settings = kFactorySettings;
    const BlockOwner night = Make("Source: \"moonLIGHT\";\nfiltermoonlightfactor: 1;\nFilterNone: 3;\nPaperColor: 5;\n"
                                  "FilterCaptionString: \"ours\";\nBuildDate: \"now\";\n");
    SettingText value = "";
    EXPECT_EQ(RecipeFind(night.handle, "SOURCE", value), 2u);
    EXPECT_STREQ(value, "moonLIGHT");
    EXPECT_EQ(RecipeFind(night.handle, "builddate", value), uint32_t{kConfigText | kConfigWriteOnly});
    EXPECT_EQ(RecipeFind(night.handle, "Sourc", value) + RecipeFind(nullptr, "Source", value), 0u);

    const LockedDib source = RandomPicture(9, 7, kModeTrueColor, 5);
    const LockedDib dark(RecipeRun(nullptr, source.owner.handle, night.handle));
    EXPECT_TRUE(SamePicture(dark, RunKernel("Moonlight", source, {{&P::FilterMoonlightFactor, 1}})));
    EXPECT_EQ(Settings.FilterMoonlightFactor, 1);
    EXPECT_STREQ(Settings.FilterCaptionString, "ours");
    EXPECT_EQ(Settings.PaperColor, kFactorySettings.PaperColor);
    Settings = kFactorySettings;

    const LockedDib grey(RecipeRun(nullptr, source.owner.handle, Make("Source: \"Convert to Grey\";").handle));
    EXPECT_TRUE(SamePicture(grey, LockedDib(DibToRgb(LockedDib(DibToGrey(source))))));
    for (const char *fields : {"Source: \"None\";", "FilterMoonlightFactor: 1;", ""})
        EXPECT_EQ(RecipeRun(nullptr, source.owner.handle, Make(fields).handle), nullptr) << fields;
    EXPECT_EQ(RecipeRun(nullptr, source.owner.handle, nullptr), nullptr);
}

TEST(Recipes, RunEveryFilterOnThePaperAndFreeWhatItLeaves) {
    const LockedDib source = RandomPicture(40, 30, kModeTrueColor, 6);
    const int64_t blocks = LiveBlocks();
    for (const FilterEntry &entry : FilterCatalogue) {
        Settings = kFactorySettings;
        const BlockOwner recipe = Make("Source: \"" + std::string(entry.name) + "\";");
        const LockedDib result(RecipeRun(nullptr, source.owner.handle, recipe.handle));
        EXPECT_TRUE(!result || result.View().bits >= 24) << entry.name;
    }
    EXPECT_EQ(LiveBlocks(), blocks);

    const LockedDib color = MakePicture(2, 1, 24, {0x123456, 0x654321}), mask = MakePicture(2, 1, 8, {0, 255});
    const LockedDib both(DibWithAlpha(color, mask));
    EXPECT_EQ(PixelsOf(both), (Pixels{0x00123456, 0xFF654321}));
    EXPECT_EQ(PixelsOf(LockedDib(DibFlattenOnPaper(both))), (Pixels{0xFFFFFF, 0x654321}));
    EXPECT_EQ(DibWithAlpha(mask, mask), nullptr);
}

using RecipeFiles = UserFolders;

TEST_F(RecipeFiles, BeginWithTheFactorysAndKeepABackup) {
    KeepModuleFolder(nullptr);
    const fs::path file = product / "LMFPhotographyDarkroom.txt";
    const fs::path factory = std::string(ModuleFolder()) + "DauberyPhotographyDarkroom.txt";
    const auto read = [](uint32_t flags, int32_t current, bool restore) {
        auto list = std::make_unique<RecipeList>();
        RecipeFileRead(list.get(), flags, current, restore, nullptr, nullptr);
        return list;
    };
    EXPECT_EQ(read(0, 0, false)->selected, -1); // neither file
    WriteText(file, kByHand);
    const auto list = read(0, 1, false);
    EXPECT_EQ(list->selected, 1);
    EXPECT_EQ(read(0, 2, false)->selected, -1);
    RecipeFileWrite(*list, 0);
    EXPECT_EQ(ReadText(file), kWritten);
    EXPECT_EQ(ReadText(product / "Backup of LMFPhotographyDarkroom.txt"), kByHand);

    fs::create_directories(folder / "Daubery 16");
    const fs::path daubery = folder / "Daubery 16/DauberyPhotographyDarkroom.txt";
    WriteText(factory, kWritten);
    EXPECT_EQ(read(2, 0, false)->entries.Elements().size(), 2u);
    WriteText(daubery, "");
    EXPECT_EQ(read(2, 0, false)->entries.Elements().size(), 0u);
    EXPECT_EQ(read(2, 0, true)->entries.Elements().size(), 2u);
    EXPECT_EQ(ReadText(daubery), kWritten);
    fs::remove(factory);

    // What could not be read is not replaced, and neither is anything while memory is short.
    fs::remove(file);
    fs::create_directories(file);
    RecipeFileWrite(*read(0, 0, false), 0);
    EXPECT_TRUE(fs::is_directory(file));
    bool complete = false;
    for (int64_t n = 0; !complete; n++) {
        WriteText(daubery, kWritten);
        FailAllocationAfter(n);
        RecipeFileWrite(*read(2, 0, false), 2);
        complete = FailedAllocations() == 0;
        FailAllocationAfter(-1);
        EXPECT_TRUE(ReadText(daubery) == kWritten ||
                    ReadText(folder / "Daubery 16/Backup of DauberyPhotographyDarkroom.txt") == kWritten)
            << n;
    }
    RecipeFileWrite(RecipeList(), 2);
    EXPECT_EQ(ReadText(daubery), "");
}

TEST_F(RecipeFiles, KeepFourNumbersAmongOthers) {
    EXPECT_EQ(ReadDarkroomSettings(1), DarkroomSettings());
    const DarkroomSettings mine = {7, 4, 0, 0x80FF};
    WriteDarkroomSettings(1, mine);
    const fs::path file = folder / "LMFPhotographyDarkroom.ini";
    const std::string section = "[Photography Darkroom]\nPDCurrentFilter=7\nPDDblClkOption=4\nPDPAlphaPrompt=0\n"
                                "PDPaperColor=33023\n";
    EXPECT_EQ(ReadText(file), section);
    WriteDarkroomSettings(0, mine);
    EXPECT_TRUE(fs::exists(folder / "DauberyPhotographyDarkroom.ini"));

    WriteText(file, "[Other]\nPDCurrentFilter=9\n[photography darkroom]\n;note\npddblclkoption = 3 \nPDPAlphaPrompt\n"
                    "PDDblClkOption=2\nPDDblClkOptions=1");
    EXPECT_EQ(ReadDarkroomSettings(1), (DarkroomSettings{0, 3, 1, 0xFFFFFF}));
    WriteDarkroomSettings(1, mine);
    EXPECT_EQ(ReadText(file), "[Other]\nPDCurrentFilter=9\n[photography darkroom]\n" + section.substr(23) +
                                  ";note\nPDPAlphaPrompt\nPDDblClkOptions=1\n");
    EXPECT_EQ(ReadDarkroomSettings(1), mine);
}

} // namespace lmf::testing
