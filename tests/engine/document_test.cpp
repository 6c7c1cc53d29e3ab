#include "engine/document.h"

#include <cstring>

#include "engine/catalogue.h"
#include "host/lmf_program.h"
#include "support/pictures.h"
#include "support/user_folders.h"

namespace lmf::testing {

namespace {

const std::string kHead = "#This is a document created by Lumenfold Studio by Quillon Works - do not edit.\n"
                          "#Start of document\n";

/// What a document makes of the factory settings.
FilterParameters After(const std::string &filter, const std::string &text,
                       DocumentOutcome expected = DocumentOutcome::Read) {
    FilterParameters parameters = kFactorySettings;
    EXPECT_EQ(ReadDocument(text, RowOf(filter), parameters), expected) << text;
    return parameters;
}

} // namespace

using Documents = UserFolders;

TEST_F(Documents, HoldOneLineAControl) {
    char path[kPathSize];
    std::filesystem::create_directories(root / "My Reelsmith 16 Documents/savedfilters");
    ASSERT_TRUE(DocumentPath(LMF_RUN_REELSMITH, kUntitled, "Add noise", path));
    EXPECT_EQ(path, (root / "My Reelsmith 16 Documents/savedfilters/Untitled.Add_noise").string());
    FilterParameters parameters = kFactorySettings;
    parameters.FilterNoiseColour = 5;
    parameters.FilterFlipDirection = 1;
    parameters.FilterRotateAngle = 5000;
    std::strcpy(parameters.FilterWatermarkString, "two\r\nScrBar210=9");
    const struct {
        const char *filter, *lines;
    } kCases[] = {
        {"Add noise", "ScrBar210=16# (Intensity)\nCmbBox211=0# (Type)\nChkBox212=1# (Colored noise)\n"},
        {"Flip", "ChkBox460=0# (Horizontal)\nChkBox461=1# (Vertical)\n"},
        {"Neon", ""},
    };
    for (const auto &one : kCases) {
        EXPECT_TRUE(DocumentWrite(path, RowOf(one.filter), parameters));
        EXPECT_EQ(ReadText(path), kHead + "FilterType=" + one.filter + "\n" + one.lines + "#End of document\n");
    }
    EXPECT_TRUE(DocumentWrite(path, LMF_FILTER_WATERMARK, parameters));
    EXPECT_TRUE(Has(ReadText(path), "TxtFld1040=two\nFntBox1035="));
    EXPECT_TRUE(DocumentWrite(path, LMF_FILTER_ROTATE, parameters));
    EXPECT_TRUE(Has(ReadText(path), "SpnBtn800=3599# (Angle (degrees))\nChkBox801=1# ()\n"));
    EXPECT_EQ(DocumentRead(path, LMF_FILTER_ROTATE, parameters), DocumentOutcome::Read);
    EXPECT_FALSE(DocumentWrite(path, kFilterCount, parameters));
    EXPECT_FALSE(std::filesystem::exists(path)) << "a document that can't be written goes";
    EXPECT_EQ(DocumentRead(path, 0, parameters), DocumentOutcome::NotOpened);
}

TEST_F(Documents, BringEveryPageBack) {
    uint32_t seed = 3;
    const std::string path = root / "page";
    for (int32_t row = 0; row < kFilterCount; row++) {
        FilterParameters parameters = kFactorySettings;
        for (const PageControl &control : FilterCatalogue[row].filter->page) {
            if (control.kind == ControlKind::None) continue;
            if (control.text != nullptr) std::strncpy(parameters.*control.text, "text; # ", kTextSize);
            if (control.number == nullptr) continue;
            const ControlRange bar = control.limits.Bar(), typed = control.limits.Typed();
            const ControlRange range = bar.min > bar.max || control.kind == ControlKind::Combo ? typed : bar;
            const int64_t values = std::min<int64_t>(int64_t{range.max} - range.min, 99) + 1;
            parameters.*control.number = range.min + static_cast<int32_t>(TestRandom(&seed) % values);
        }
        FilterParameters read = kFactorySettings;
        ASSERT_TRUE(DocumentWrite(path.c_str(), row, parameters));
        EXPECT_EQ(DocumentRead(path.c_str(), row, read), DocumentOutcome::Read);
        EXPECT_EQ(std::memcmp(&read, &parameters, sizeof read), 0) << FilterCatalogue[row].name;
    }
}

TEST_F(Documents, AreReadLenientlyAndToldByTheirFilter) {
    EXPECT_EQ(After("Add noise", "").FilterNoiseLevel, 16);
    After("Add noise", "Quillon Works\n", DocumentOutcome::Damaged);
    EXPECT_EQ(
        After("Add noise", kHead + "FilterType=Gamma\nScrBar210=3\n", DocumentOutcome::OtherFilter).FilterNoiseLevel,
        16);
    EXPECT_STREQ(DocumentMessage(DocumentOutcome::OtherFilter),
                 "This object does not match the currently selected filter.");
    EXPECT_EQ(After("Channels", kHead + "FilterType=Invert Channels\nScrBar210=3").FilterNoiseLevel, 3);

    const struct {
        std::string line;
        int32_t level, type, colored;
    } kCases[] = {
        {"\t scrbar210 == 7x", 7, 0, 0},
        {";ScrBar210=7", 16, 0, 0},
        {"ScrBar210=99", 32, 0, 0},
        {"SpnBtn210=7\nScrBar211=1", 16, 0, 0},
        {"ScrBar=7\nScrBar-210=7", 16, 0, 0},
        {"ScrBar2107=7\nScrBar", 16, 0, 0},
        {"ScrBar210", 16, 0, 0},
        {"CmbBox211=2\rx", 16, 2, 0},
        {"CmbBox211=9", 16, 4, 0},
        {"ChkBox212=-1", 16, 0, 1},
        {"ScrBar210=", 1, 0, 0},
        {std::string(9000, '#') + "\nScrBar210=7", 7, 0, 0},
    };
    for (const auto &one : kCases) {
        const FilterParameters read = After("Add noise", kHead + one.line);
        EXPECT_EQ((std::vector{read.FilterNoiseLevel, read.FilterNoiseType, read.FilterNoiseColour}),
                  (std::vector{one.level, one.type, one.colored}))
            << one.line.substr(0, 40);
    }
    const std::string longText(2000, 't');
    EXPECT_EQ(After("Caption", kHead + "TxtFld294=" + longText).FilterCaptionString, longText.substr(0, 260));
}

} // namespace lmf::testing
