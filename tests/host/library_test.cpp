// The built library as a host meets it: loaded at run time and driven through the C interface alone.
#include "lmf16filter.h"

#include <array>
#include <cstddef>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <set>
#include <string>
#include <type_traits>
#include <vector>

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include "host/lmf_program.h"
#include "support/pictures.h"

#define AT(record, field, offset) (offsetof(record, field) == (offset))
// The two requests share their beginning.
#define AT_BOTH(field, offset) (AT(DarkroomRequest, field, offset) && AT(AdjustRequest, field, offset))
static_assert(AT(HostRestrictions, restrictA, 8) && AT(HostRestrictions, restrictB, 12));
static_assert(AT(HostRecord, filterIndex, 4) && AT(HostRecord, applyToDuplicate, 8) &&
              AT(HostRecord, restrictions, 16));
static_assert(AT(HostHooks, loadPicture, 8) && AT(HostHooks, folder, 24) && AT(HostHooks, extension, 285));
static_assert(AT_BOTH(flags, 4) && AT_BOTH(owner, 8) && AT_BOTH(picture, 16) && AT_BOTH(result, 32) &&
              AT_BOTH(title, 40) && AT_BOTH(validation, 304) && AT_BOTH(view, 312) && AT_BOTH(saveAs, 320) &&
              AT_BOTH(buttonStyle, 328) && AT_BOTH(gradientSliders, 332) && AT_BOTH(browserPath, 344) &&
              AT_BOTH(browserMask, 352));
static_assert(AT(DarkroomRequest, mask, 24) && AT(DarkroomRequest, changed, 336) &&
              AT(DarkroomRequest, paperColor, 340) && AT(DarkroomRequest, undo, 360) &&
              AT(DarkroomRequest, undoDepth, 368) && AT(DarkroomRequest, undoCount, 372) &&
              AT(DarkroomRequest, hostValue, 384) && AT(DarkroomRequest, tipTimer, 392) &&
              AT(DarkroomRequest, tipWindow, 400) && AT(DarkroomRequest, tipPoint, 408) &&
              AT(DarkroomRequest, hitItem, 416) && AT(DarkroomRequest, thumbBase, 424) &&
              AT(DarkroomRequest, thumbSource, 432));
static_assert(AT(AdjustRequest, second, 24) && AT(AdjustRequest, hostValue, 376) &&
              AT(AdjustRequest, previewBase, 384) && AT(AdjustRequest, previewOffset, 392) &&
              AT(AdjustRequest, dirty, 400) && AT(AdjustRequest, context, 408) && AT(AdjustRequest, fetch, 416) &&
              AT(AdjustRequest, store, 424) && AT(AdjustRequest, hostHandle, 432) && AT(AdjustRequest, count, 440));

// The types for dlsym are those of the functions.
#define SAME_TYPE(name) static_assert(std::is_same_v<Lmf##name, decltype(&LMF16FILTER##name)>)
SAME_TYPE(DoImageFilter);
SAME_TYPE(DoPhotographDarkroom);
SAME_TYPE(DoAdjust);
SAME_TYPE(GetMenu);
SAME_TYPE(EnableMenu);
SAME_TYPE(GetCount);
SAME_TYPE(GetVersion);
SAME_TYPE(GetCopyright);
SAME_TYPE(GetValidationString);
SAME_TYPE(SetValidation);

namespace lmf::testing {

static constexpr uint32_t kInvertColors = LMF_FILTER_INVERT_COLORS;
static constexpr uint32_t kGamma = LMF_FILTER_GAMMA;

static int32_t Agree(void *, const char *) {
    return 1;
}

class Library : public ::testing::Test {
protected:
    void SetUp() override {
        char folder[] = "/tmp/lmf-library-XXXXXX";
        ASSERT_NE(mkdtemp(folder), nullptr);
        home = folder;
        std::filesystem::create_directory(home / "Quillon Works");
        setenv("XDG_CONFIG_HOME", folder, 1);
        library = dlopen(LMF_LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        doImageFilter = Find<LmfDoImageFilter>("LMF16FILTERDoImageFilter");
    }
    void TearDown() override {
        if (library != nullptr) dlclose(library);
        std::filesystem::remove_all(home);
    }
    template <typename Function>
    Function Find(const char *name) {
        auto *function = reinterpret_cast<Function>(dlsym(library, name));
        EXPECT_NE(function, nullptr) << name;
        return function;
    }
    uint64_t Run(LmfHandle *picture, LmfHandle *second, uint32_t runFlags, void *record,
                 LmfValidation callback = Agree) {
        return doImageFilter(nullptr, picture, callback, second, 0, 0, runFlags, record, nullptr, 0, 0, nullptr);
    }
    static LockedDib NewPicture(uint32_t bits, uint32_t pixel) {
        return MakePicture(5, 3, bits, std::vector<uint32_t>(15, pixel));
    }

    std::filesystem::path home;
    void *library = nullptr;
    LmfDoImageFilter doImageFilter = nullptr;
};

TEST_F(Library, ExportsExactlyTheNamesOfTheListAndSaysWhatItIs) {
    std::set<std::string> wanted, found;
    std::ifstream list(LMF_SOURCE_FOLDER "/exports.txt");
    for (std::string name; std::getline(list, name);) wanted.insert(name);
    FILE *symbols = popen("nm -D --defined-only --format=posix " LMF_LIBRARY_FILE, "r");
    ASSERT_NE(symbols, nullptr);
    for (char line[512]; std::fgets(line, sizeof line, symbols) != nullptr;)
        found.insert(std::string(line, std::strcspn(line, " ")));
    pclose(symbols);
    EXPECT_EQ(wanted.size(), 11u);
    EXPECT_EQ(found, wanted);
    EXPECT_EQ(Find<int32_t (*)()>("LMF16FILTERGetCount")(), 95);
    EXPECT_EQ(Find<int32_t (*)()>("LMF16FILTERGetVersion")(), 0x101);
    EXPECT_STRNE(Find<const char *(*)()>("LMF16FILTERGetCopyright")(), "");
}

TEST_F(Library, IsCalledFromCAsTheExampleShows) {
    FILE *example = popen(LMF_EXAMPLE_FILE " " LMF_LIBRARY_FILE, "r");
    ASSERT_NE(example, nullptr);
    std::string output;
    for (char line[512]; std::fgets(line, sizeof line, example) != nullptr;) output += line;
    EXPECT_EQ(pclose(example), 0);
    EXPECT_TRUE(output.starts_with("1007 Artistic > Bump\n")) << output;
    EXPECT_TRUE(Has(output, "\n1020 Artistic > Edge Trace and Fatten (greyed)\n")) << output;
    EXPECT_TRUE(output.ends_with("\n64 x 48 became 80 x 80\n")) << output;
}

TEST_F(Library, HandsBackNewBlocksAndRemembersTheFilter) {
    const LockedDib source = NewPicture(24, 0x0A0A0A), alpha = NewPicture(8, 77), inverted = NewPicture(24, 0xF5F5F5);
    for (uint32_t filter : {kInvertColors, uint32_t{LMF_FILTER_LAST}}) {
        LmfHandle picture = source.owner.handle, second = alpha.owner.handle;
        HostRecord record{0, filter, 0, nullptr};
        // A host may keep its record at any address.
        alignas(HostRecord) uint8_t block[sizeof record + 1];
        std::memcpy(block + 1, &record, sizeof record);
        ASSERT_EQ(Run(&picture, &second, LMF_RUN_DIRECT, block + 1), 1u);
        std::memcpy(&record, block + 1, sizeof record);
        EXPECT_EQ(record.filterIndex, kInvertColors);
        EXPECT_NE(picture, source.owner.handle);
        EXPECT_NE(second, alpha.owner.handle);
        EXPECT_TRUE(SamePicture(DibReadLock(picture).view, inverted));
        EXPECT_TRUE(SamePicture(DibReadLock(second).view, alpha));
        EXPECT_EQ(PixelsOf(source)[0], 0x0A0A0Au);
        LmfBlockFree(picture);
        LmfBlockFree(second);
    }
}

TEST_F(Library, FailuresLeaveTheOutputsUntouched) {
    const LockedDib source = NewPicture(24, 10);
    const BlockOwner empty(LmfBlockAlloc(0)), cut(LmfBlockAlloc(41));
    LmfHandle second = empty.handle;
    const auto refuses = [&](LmfHandle given, LmfValidation callback, uint32_t runFlags, uint32_t filterIndex) {
        LmfHandle picture = given;
        HostRecord record{0, filterIndex, 0, nullptr};
        return Run(&picture, &second, runFlags, &record, callback) == 0 && picture == given && second == empty.handle;
    };
    LmfHandle picture = source.owner.handle;
    EXPECT_TRUE(refuses(picture, nullptr, LMF_RUN_DIRECT, kInvertColors));
    EXPECT_TRUE(refuses(picture, Agree, 0, kInvertColors));
    EXPECT_TRUE(refuses(picture, Agree, LMF_RUN_DIRECT, 95));
    for (const LmfHandle bad : {LmfHandle{}, empty.handle, cut.handle})
        EXPECT_TRUE(refuses(bad, Agree, LMF_RUN_DIRECT, kInvertColors));
    EXPECT_EQ(Run(&picture, nullptr, LMF_RUN_DIRECT, nullptr), 0u);
}

TEST_F(Library, ABatchCallWritesItsErrorCodeAndNothingElse) {
    // A batch host names the filter through the settings file.
    std::ofstream(home / "Quillon Works" / "LmfFiltrBatch.ini") << "CurrentFilter = " << kGamma << "\n";
    std::array<uint8_t, 600> block;
    block.fill(0xCC);
    auto expected = block;
    const LockedDib mono = NewPicture(1, 1);
    LmfHandle picture = mono.owner.handle, second = nullptr;
    EXPECT_EQ(Run(&picture, &second, LMF_RUN_DIRECT | LMF_RUN_BATCH, block.data()), 0u);
    const int32_t unsupported = 5;
    std::memcpy(expected.data() + LMF_BATCH_ERROR_OFFSET, &unsupported, sizeof unsupported);
    EXPECT_EQ(block, expected);
}

// Some hosts save all the time and change nothing, one changes a setting again and again and looks whether it lasts,
// and the test reads along.
TEST_F(Library, HostsThatSaveAtOnceLoseNothing) {
    constexpr int kSavers = 3, kSaves = 40;
    const std::filesystem::path folder = home / "Quillon Works", ini = folder / "LmfFiltr.ini";
    const auto contents = [&ini] { return ReadText(ini); };
    const auto save = [&](uint32_t paperColor, uint32_t runFlags) {
        const LockedDib source = NewPicture(8, 1);
        LmfHandle picture = source.owner.handle, second = nullptr;
        HostRecord record{paperColor, kInvertColors, 0, nullptr};
        Run(&picture, &second, runFlags, &record); // there is no window: it saves and gives 0
    };
    std::ofstream(ini) << "FilterContrast = 77\n";
    save(0, LMF_RUN_PAINT);
    std::vector<pid_t> children;
    for (int i = 0; i <= kSavers; i++) {
        children.push_back(fork());
        if (children.back() != 0) continue;
        int lost = 0;
        for (uint32_t n = 1; n <= kSaves; n++) {
            save(i == 0 ? n : 0, i == 0 ? LMF_RUN_PAINT : 0);
            lost += i == 0 && contents().find("\nPaperColor = " + std::to_string(n) + "\n") == std::string::npos;
        }
        _exit(lost);
    }
    int reads = 0, torn = 0;
    while (!children.empty()) {
        const std::string text = contents();
        reads++;
        torn +=
            text.find("\nFilterContrast = 77\n") == std::string::npos || !text.ends_with("\nTrackFilterWindows = 1\n");
        int status = 0;
        if (waitpid(children.back(), &status, WNOHANG) == 0) continue;
        EXPECT_TRUE(WIFEXITED(status));
        EXPECT_EQ(WEXITSTATUS(status), 0) << "changes of one host that another's save took back";
        children.pop_back();
    }
    EXPECT_EQ(torn, 0) << "of " << reads << " reads";
    EXPECT_NE(contents().find("\nPaperColor = " + std::to_string(kSaves) + "\n"), std::string::npos);
    std::set<std::string> files;
    for (const auto &file : std::filesystem::directory_iterator(folder)) files.insert(file.path().filename());
    EXPECT_EQ(files, (std::set<std::string>{"Backup of Backup of LmfFiltr.ini", "Backup of LmfFiltr.ini",
                                            "LmfFiltr.ini", "LmfFiltr.lock", "LmfFiltrEnable.ini"}));
}

TEST(Blocks, LockSizeAndGrow) {
    constexpr size_t kLarge = size_t{3} << 20;
    LmfHandle block = LmfBlockAlloc(3);
    std::memcpy(LmfBlockLock(block), "abc", 3);
    EXPECT_EQ(LmfBlockReAlloc(block, 8), nullptr) << "a locked block does not move";
    EXPECT_EQ(LmfBlockUnlock(block), 0);
    ASSERT_EQ(LmfBlockReAlloc(block, kLarge), block);
    const auto *bytes = static_cast<const uint8_t *>(LmfBlockLock(block));
    EXPECT_TRUE(std::memcmp(bytes, "abc\0", 4) == 0 && bytes[kLarge - 1] == 0);
    LmfBlockUnlock(block);
    ASSERT_EQ(LmfBlockReAlloc(block, 0), block);
    EXPECT_EQ(LmfBlockLock(block), nullptr);
    EXPECT_EQ(LmfBlockSize(block), 0u);
    LmfBlockFree(block);
    EXPECT_EQ(LmfBlockSize(nullptr), 0u);
}

} // namespace lmf::testing
