// A host that plays the part of the clipboard: through the extended hooks of a call, and through `lmf --clipboard`.
#include <tuple>

#include <dlfcn.h>

#include "host/lmf_program.h"
#include "lmf16filter.h"
#include "support/pictures.h"

namespace lmf::testing {

namespace {

static_assert(offsetof(LmfExtendedHooks, size) == 552 && offsetof(LmfExtendedHooks, errorCode) == 556 &&
              offsetof(LmfExtendedHooks, settings) == 560 && offsetof(LmfExtendedHooks, clipboard) == 568 &&
              sizeof(LmfExtendedHooks) == 576);

int32_t Agree(void *, const char *) {
    return 1;
}

/// Calls the built library, and owns what it gives.
struct ExtendedRun {
    LmfExtendedHooks extended = {};
    uint64_t done = 0;
    LmfHandle picture = nullptr, second = nullptr;

    ExtendedRun(uint32_t filter, uint32_t runFlags, const LockedDib &source, const LockedDib &clipboard,
                uint32_t size = sizeof(LmfExtendedHooks), LmfValidation callback = Agree) {
        setenv("XDG_CONFIG_HOME", "/nonexistent", 1);
        void *library = dlopen(LMF_LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL);
        EXPECT_NE(library, nullptr) << dlerror();
        const auto doImageFilter =
            reinterpret_cast<decltype(&LMF16FILTERDoImageFilter)>(dlsym(library, "LMF16FILTERDoImageFilter"));
        extended.size = size;
        extended.errorCode = -1;
        extended.clipboard = clipboard.owner.handle;
        picture = source.owner.handle;
        HostRecord record{0, filter, 0, nullptr};
        done = doImageFilter(nullptr, &picture, callback, &second, 0, 0, runFlags, &record, nullptr, 0, 0,
                             &extended.hooks);
        if (done == 0) picture = nullptr;
        dlclose(library);
    }
    ~ExtendedRun() {
        LmfBlockFree(picture);
        LmfBlockFree(second);
    }
    ExtendedRun(ExtendedRun &&) = delete; // nor copies
};

constexpr uint32_t kExtendedRun = LMF_RUN_DIRECT | LMF_RUN_EXTENDED;

struct ClipboardProgram : LmfProgram {};

} // namespace

TEST(ExtendedCall, TheHostsPictureStandsForTheClipboards) {
    const LockedDib source = RandomPicture(5, 3, kModeTrueColor, 1), mask = RandomPicture(7, 2, kModeGrey, 2);
    const Pixels before = PixelsOf(mask);
    const ExtendedRun run(LMF_FILTER_ADD_ALPHA, kExtendedRun, source, mask);
    ASSERT_EQ(run.done, 1u);
    EXPECT_EQ(run.extended.errorCode, LMF_ERROR_OK);
    EXPECT_TRUE(SamePicture(DibReadLock(run.second).view, mask));
    EXPECT_EQ(PixelsOf(mask), before);
    EXPECT_NE(run.second, mask.owner.handle) << "the host's picture stays the host's";
}

TEST(ExtendedCall, OnlyItsFlagsAndItsSizeMakeItOne) {
    const LockedDib source = RandomPicture(5, 3, kModeTrueColor, 1), mask = RandomPicture(7, 2, kModeGrey, 2);
    const std::tuple<uint32_t, uint32_t, int32_t> cases[] = {
        {LMF_RUN_DIRECT, sizeof(LmfExtendedHooks), -1},
        {kExtendedRun, sizeof(HostHooks), -1},
        {kExtendedRun, offsetof(LmfExtendedHooks, clipboard) + 7, LMF_ERROR_OK}};
    for (const auto &[runFlags, size, errorCode] : cases) {
        const ExtendedRun run(LMF_FILTER_ADD_ALPHA, runFlags, source, mask, size);
        ASSERT_EQ(run.done, 1u);
        EXPECT_EQ(run.extended.errorCode, errorCode);
        EXPECT_EQ(DibReadLock(run.second).view.width, 5) << "a uniform mask, since the clipboard is empty";
    }
    const ExtendedRun dialog(LMF_FILTER_ADD_ALPHA, LMF_RUN_EXTENDED, source, mask);
    EXPECT_TRUE(dialog.done == 0 && dialog.extended.errorCode == -1);
}

TEST(ExtendedCall, TellsWhyNothingWasDone) {
    const LockedDib source = RandomPicture(5, 3, kModeMono, 1), none;
    const auto error = [&](const LockedDib &picture, LmfValidation callback) {
        const uint32_t size = sizeof(LmfExtendedHooks);
        return ExtendedRun(LMF_FILTER_GAMMA, kExtendedRun, picture, none, size, callback).extended.errorCode;
    };
    EXPECT_EQ(error(source, Agree), LMF_ERROR_UNSUPPORTED);
    EXPECT_EQ(error(none, Agree), LMF_ERROR_UNSUITABLE);
    EXPECT_EQ(error(source, nullptr), LMF_ERROR_INFORMATION);
}

TEST_F(ClipboardProgram, AFilePlaysItsPart) {
    PngFile mask, color;
    for (size_t i = 0; i < 16; i++) mask.samples.push_back(static_cast<uint8_t>(i * 16));
    WritePng(In("mask.png"), mask);
    WriteText(In("bad.png"), "no");
    color.type = PNG_COLOR_TYPE_RGB;
    color.samples.assign(48, 9);
    WritePng(In("c.png"), color);

    ExpectSilence(Run({"apply", "Add Alpha", "c.png", "out.png", "--clipboard", "mask.png"}));
    const Bytes rgba = ReadRgba(In("out.png"));
    for (size_t i = 0; i < 16; i++) EXPECT_EQ(rgba[i * 4 + 3], i * 16) << i;
    Expect(2, Run({"apply", "Add Alpha", "c.png", "no.png", "--clipboard", "bad.png"}), "bad.png: ");
    Expect(1, Run({"apply", "Stitch", "c.png", "no.png"}), "--clipboard PICTURE");
    Expect(0, Run({"apply", "Add Alpha", "c.png", "out2.png", "--clipboard", "out.png"}), "alpha is left out");
    EXPECT_EQ(Files(), (Names{"bad.png", "c.png", "mask.png", "out.png", "out2.png"}));
}

} // namespace lmf::testing
