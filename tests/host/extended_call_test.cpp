// Calls with extended hooks: settings of one call, a host that plays the part of the clipboard, and the error code. And
// `lmf --clipboard`, which uses them.
#include <dlfcn.h>

#include <filesystem>

#include "host/lmf_program.h"
#include "image/core/dib_ops.h"
#include "lmf16filter.h"
#include "support/pictures.h"

namespace lmf::testing {

namespace {

namespace fs = std::filesystem;

static_assert(offsetof(LmfExtendedHooks, size) == 552 && offsetof(LmfExtendedHooks, errorCode) == 556 &&
              offsetof(LmfExtendedHooks, settings) == 560 && offsetof(LmfExtendedHooks, clipboard) == 568 &&
              offsetof(LmfExtendedHooks, destinations) == 576 && sizeof(LmfExtendedHooks) == 584);

int32_t Agree(void *, const char *) {
    return 1;
}

/// Calls the built library, and owns what it gives.
struct ExtendedRun {
    LmfExtendedHooks extended = {};
    uint64_t done = 0;
    LmfHandle picture = nullptr, second = nullptr;

    ExtendedRun(uint32_t filter, uint32_t runFlags, const LockedDib &source, const LockedDib &clipboard,
                uint32_t size = sizeof(LmfExtendedHooks), LmfValidation callback = Agree,
                const char *settings = nullptr) {
        setenv("XDG_CONFIG_HOME", "/nonexistent", 1);
        void *library = dlopen(LMF_LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL);
        EXPECT_NE(library, nullptr) << dlerror();
        const auto doImageFilter =
            reinterpret_cast<decltype(&LMF16FILTERDoImageFilter)>(dlsym(library, "LMF16FILTERDoImageFilter"));
        extended.size = size;
        extended.errorCode = -1;
        extended.settings = settings;
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
    ExtendedRun(const ExtendedRun &) = delete;
    ExtendedRun &operator=(const ExtendedRun &) = delete;
};

constexpr uint32_t kExtendedRun = LMF_RUN_DIRECT | LMF_RUN_EXTENDED;

struct ExtendedProgram : LmfProgram {};

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
    struct Case {
        uint32_t runFlags, size;
        int32_t errorCode;
    };
    const Case cases[] = {
        {LMF_RUN_DIRECT, sizeof(LmfExtendedHooks), -1},
        {kExtendedRun, sizeof(HostHooks), -1},
        {kExtendedRun, offsetof(LmfExtendedHooks, clipboard) + 7, LMF_ERROR_OK},
    };
    for (const Case &each : cases) {
        const ExtendedRun run(LMF_FILTER_ADD_ALPHA, each.runFlags, source, mask, each.size);
        ASSERT_EQ(run.done, 1u);
        EXPECT_EQ(run.extended.errorCode, each.errorCode);
        EXPECT_EQ(DibReadLock(run.second).view.width, 5) << "a uniform mask, since the clipboard is empty";
    }
    const ExtendedRun dialog(LMF_FILTER_ADD_ALPHA, LMF_RUN_EXTENDED, source, mask);
    EXPECT_EQ(dialog.done, 0u);
    EXPECT_EQ(dialog.extended.errorCode, -1);
}

TEST(ExtendedCall, SettingsCountForOneCall) {
    const LockedDib source = RandomPicture(9, 7, kModeTrueColor, 1), none;
    void *kept = dlopen(LMF_LIBRARY_FILE, RTLD_NOW | RTLD_LOCAL);
    const auto run = [&](uint32_t filter, const char *settings, uint32_t size = sizeof(LmfExtendedHooks)) {
        const ExtendedRun made(filter, kExtendedRun, source, none, size, Agree, settings);
        EXPECT_EQ(made.done, 1u);
        return LockedDib(DibClone(DibReadLock(made.second != nullptr ? made.second : made.picture).view));
    };
    const auto opacity = [&](const char *settings, uint32_t size = sizeof(LmfExtendedHooks)) {
        return DibGetPixel(run(LMF_FILTER_ADD_ALPHA, settings, size), 0, 0);
    };
    const char *lines = "; comment\nNoSuchKey = 1\nFilterAddAlphaOpacity = 7\nFilterAddAlphaUseCBD = 0";
    EXPECT_EQ(opacity(lines), 7u);
    EXPECT_EQ(opacity(nullptr), 255u) << "the settings of the last call are gone";
    EXPECT_EQ(opacity(lines, offsetof(LmfExtendedHooks, settings)), 255u);
    EXPECT_EQ(opacity("FilterAddAlphaOpacity = 9999\r\n"), 255u) << "held to the range of the page";

    // Parameters that no file keeps start with the picture: those that no line names are its own.
    const LockedDib cropped = run(LMF_FILTER_CROP, "FilterCropLeft = 4\nFilterCropBottom = 3");
    EXPECT_TRUE(SamePicture(cropped, LockedDib(DibCropRect(source, 4, 0, 8, 3))));
    EXPECT_EQ(ReadView(run(LMF_FILTER_CROP, nullptr)).width, 8);

    // The filter that ran last stays known, whatever the lines of its call said.
    EXPECT_EQ(ReadView(run(LMF_FILTER_CROP, "CurrentFilter = 3")).width, 8);
    EXPECT_EQ(ReadView(run(LMF_FILTER_LAST, nullptr)).width, 8);
    EXPECT_EQ(DibGetPixel(run(LMF_FILTER_LAST, "CurrentFilter = 39"), 0, 0), DibGetPixel(source, 0, 0) ^ 0xFFFFFF);
    dlclose(kept);
}

TEST(ExtendedCall, TellsWhyNothingWasDone) {
    const LockedDib source = RandomPicture(5, 3, kModeMono, 1), none;
    EXPECT_EQ(ExtendedRun(LMF_FILTER_GAMMA, kExtendedRun, source, none).extended.errorCode, LMF_ERROR_UNSUPPORTED);
    EXPECT_EQ(ExtendedRun(LMF_FILTER_GAMMA, kExtendedRun, none, none).extended.errorCode, LMF_ERROR_UNSUITABLE);
    EXPECT_EQ(
        ExtendedRun(LMF_FILTER_GAMMA, kExtendedRun, source, none, sizeof(LmfExtendedHooks), nullptr).extended.errorCode,
        LMF_ERROR_INFORMATION);
}

TEST(ExtendedCall, WidePicturesAreNotMixedUp) {
    const LockedDib wide = RandomPicture(6000, 9, kModeTrueColor, 3);
    const LockedDib right(DibCropRect(wide, 5000, 0, 6000, 9));
    const ExtendedRun whole(LMF_FILTER_AVERAGE, kExtendedRun, wide, LockedDib()),
        part(LMF_FILTER_AVERAGE, kExtendedRun, right, LockedDib());
    const ExtendedRun old(LMF_FILTER_AVERAGE, LMF_RUN_DIRECT, wide, LockedDib());
    ASSERT_TRUE(whole.done && part.done && old.done);
    const LockedDib of(DibCropRect(DibReadLock(whole.picture).view, 5002, 0, 6000, 9));
    EXPECT_TRUE(SamePicture(of, LockedDib(DibCropRect(DibReadLock(part.picture).view, 2, 0, 1000, 9))));
    EXPECT_FALSE(SamePicture(DibReadLock(old.picture).view, DibReadLock(whole.picture).view)) << "hosts know it so";
}

TEST(ExtendedCall, OtherDepthsAreRefused) {
    LockedDib odd = RandomPicture(4, 4, kModeTrueColor, 4);
    odd.View().bottom[14 - 40] = 16;
    const ExtendedRun run(LMF_FILTER_INVERT_COLORS, kExtendedRun, odd, LockedDib());
    EXPECT_EQ(run.done, 0u);
    EXPECT_EQ(run.extended.errorCode, LMF_ERROR_FORMAT);
    EXPECT_EQ(ExtendedRun(LMF_FILTER_INVERT_COLORS, LMF_RUN_DIRECT, odd, LockedDib()).done, 1u);
}

TEST(ExtendedCall, SocialMediaTakesItsDestinationFromTheList) {
    const LockedDib source = RandomPicture(9, 7, kModeTrueColor, 1), none;
    const auto run = [&](uint32_t runFlags, const char *settings) {
        const ExtendedRun made(LMF_FILTER_SOCIAL_MEDIA, runFlags, source, none, sizeof(LmfExtendedHooks), Agree,
                               settings);
        const int32_t width = made.done != 0 ? DibReadLock(made.picture).view.width : 0;
        return std::pair{made.extended.errorCode, width};
    };
    EXPECT_EQ(run(kExtendedRun, "FilterSocialMediaDestination = 4"), (std::pair<int32_t, int32_t>(LMF_ERROR_OK, 1500)));
    EXPECT_EQ(run(kExtendedRun, "FilterSocialMediaDestination = 999"),
              (std::pair<int32_t, int32_t>(LMF_ERROR_CORRUPTED, 0)));
    EXPECT_EQ(run(LMF_RUN_DIRECT, nullptr), (std::pair<int32_t, int32_t>(-1, 0)))
        << "without the flag only a dialog can choose";
}

TEST_F(ExtendedProgram, ADestinationHasANameAndANumber) {
    PngFile color;
    color.type = PNG_COLOR_TYPE_RGB;
    color.samples.assign(48, 9);
    WritePng(In("c.png"), color);
    const auto apply = [&](const std::string &destination, const std::map<std::string, std::string> &environment = {}) {
        return Run({"apply", "Social Media", "c.png", "o.png", "--set", "Destination=" + destination}, environment);
    };
    EXPECT_TRUE(Has(Run({"show", "Social Media"}).output, "4 Banner 1500 x 500\n"));
    ExpectSilence(apply("banner 1500 X 500"));
    EXPECT_EQ(ReadPng(In("o.png")).width, 1500);
    ExpectSilence(apply("0"));
    EXPECT_EQ(ReadPng(In("o.png")).width, 400);
    ExpectSilence(apply("Banner 1500x500"));
    Expect(1, apply("Banner 1501 x 500"), "\"Banner 1500 x 500\"");
    Expect(1, apply("999"), "Legal: 0 to ");

    // The user's own list takes the place of ours, even where nothing can be made of it.
    const std::map<std::string, std::string> own = {{"XDG_CONFIG_HOME", folder}};
    const std::string place = In("Quillon Works/Lumenfold Studio 16");
    fs::create_directories(place);
    WriteText(place + "/SocialMediaDestinations.txt", "\nname=\"my own\" width=31 depth=17\nname=flat width=5\n");
    ExpectSilence(apply("my own", own));
    EXPECT_EQ(ReadPng(In("o.png")).width, 31);
    Expect(3, apply("flat", own), "without width and depth");
    fs::create_directory(place + "/MySocialMediaDestinations.txt");
    Expect(3, apply("1", own), "MySocialMediaDestinations.txt: this is a folder");
    EXPECT_TRUE(Has(Run({"show", "Social Media"}, own).output, "No list can be read: "));
    fs::remove_all(In("Quillon Works"));
}

TEST_F(ExtendedProgram, AFilePlaysItsPart) {
    PngFile white;
    white.width = white.height = 4;
    white.samples.assign(16, 255);
    PngFile mask = white;
    for (size_t i = 0; i < 16; i++) mask.samples[i] = static_cast<uint8_t>(i * 16);
    WritePng(In("mask.png"), mask);
    WriteText(In("bad.png"), "no");
    PngFile color;
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
