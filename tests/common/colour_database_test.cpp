#include "common/colour_database.h"

#include <cstring>

#include "host/lmf_program.h"
#include "support/user_folders.h"

namespace lmf::testing {

using ColourDatabase = UserFolders;

namespace {

/// The colours of the database that counts, as lines.
std::string ReadBack() {
    ColourTable table;
    ColourDatabaseRead(&table);
    std::string text;
    for (const NamedColour &colour : table.Elements()) {
        char line[300];
        std::snprintf(line, sizeof line, "%s %06X\n", colour.name, static_cast<unsigned>(colour.color));
        text += line;
    }
    return text;
}

} // namespace

TEST_F(ColourDatabase, ReadsAndWritesTheOneThatCounts) {
    EXPECT_EQ(ReadBack(), "");
    const std::filesystem::path local = product / "LMFFILTR.CCL", global = folder / "colors.ccl";
    WriteText(
        local,
        "Red=255,0,0\r\nSea green = \b=46,,139,87\n=1,2,3\nno colour\ntwo=1,2\nthree=1,2,\na=b=1,300,-1\nlast=1,2,3x");
    EXPECT_EQ(ReadBack(), "Red 0000FF\nSea green  578B2E\na FF2C00\nlast 030201\n");

    ColourTable table;
    EXPECT_TRUE(ColourDatabaseRead(&table));
    ASSERT_TRUE(table.Add({"with = sign", 0x010203}));
    char path[kPathSize];
    ASSERT_TRUE(ColourDatabasePath(path));
    WriteText(local.string() + ".bak", "old");
    ColourDatabaseWrite(table, path);
    EXPECT_EQ(ReadText(local), "Red=255,0,0\nSea green =46,139,87\na=0,44,255\nlast=1,2,3\nwith = sign=3,2,1\n");
    EXPECT_FALSE(std::filesystem::exists(local.string() + ".bak"));
    EXPECT_TRUE(ReadBack().ends_with("last 030201\nwith  010200\n")); // a name ends at its first sign

    WriteText(global, "One=1,1,1\n");
    EXPECT_EQ(ReadBack(), "One 010101\n");
    std::filesystem::remove(global);
    EXPECT_TRUE(ReadBack().starts_with("Red"));
    std::strcpy(Settings.ColourTableFile, "new.CCL");
    EXPECT_EQ(ReadBack(), "");
}

} // namespace lmf::testing
