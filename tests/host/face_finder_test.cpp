// How faces come from the finder beside the library into the filters, with a stand-in and with the finder itself, and
// what a user is told where it is missing.
#include <filesystem>

#include <dlfcn.h>

#include "host/lmf_program.h"
#include "lmf16filter.h"
#include "lmf16finder.h"
#include "support/pictures.h"

namespace lmf::testing {

namespace fs = std::filesystem;

namespace {

/// A library in a folder of the test, with or without a finder beside it.
struct FaceFinder : LmfProgram {
    std::string library;

    void SetUp() override {
        LmfProgram::SetUp();
        library = In("lib/liblmf16filter.so");
        fs::create_directories(In("lib/cv"));
        fs::copy_file(LMF_LIBRARY_FILE, library);
    }
    /// @return the width of what Face Detection or Red-eye Reduction makes of a 9 x 7 picture, or less than 0: the
    /// error
    int32_t Call(uint32_t filter, uint32_t runFlags, const char *cascade = "haarcascade_frontalface_alt.xml") {
        setenv("XDG_CONFIG_HOME", "/nonexistent", 1);
        setenv("LMF_FAKE_CASCADE", cascade, 1);
        const LockedDib source = RandomPicture(9, 7, kModeTrueColor, 1);
        const auto agree = [](void *, const char *) { return 1; };
        void *loaded = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
        const auto run =
            reinterpret_cast<decltype(&LMF16FILTERDoImageFilter)>(dlsym(loaded, "LMF16FILTERDoImageFilter"));
        LmfHandle picture = source.owner.handle, second = nullptr;
        LmfExtendedHooks hooks{};
        hooks.size = sizeof hooks;
        hooks.settings = "FilterFaceDetectOption = 14";
        HostRecord record = {0, filter, 0, nullptr};
        const bool done = run(nullptr, &picture, agree, &second, 0, 0, runFlags, &record, nullptr, 0, 0, &hooks.hooks);
        dlclose(loaded);
        if (!done) return -hooks.errorCode;
        const LockedDib result(picture);
        return ReadView(result).width;
    }
};

constexpr uint32_t kExtended = LMF_RUN_DIRECT | LMF_RUN_EXTENDED;

} // namespace

TEST_F(FaceFinder, IsAskedInItsFolderByExtendedCallsAlone) {
    EXPECT_EQ(Call(LMF_FILTER_FACE_DETECTION, kExtended), -LMF_ERROR_MEMORY) << "no finder";
    fs::copy_file(LMF_FAKE_FINDER_FILE, In("lib/cv/libcv_x64.so"));
    const fs::path before = fs::current_path();
    EXPECT_EQ(Call(LMF_FILTER_FACE_DETECTION, kExtended), 1) << "the face that it found, cut out";
    EXPECT_EQ(Call(LMF_FILTER_RED_EYE_REDUCTION, kExtended), 9);
    EXPECT_EQ(Call(LMF_FILTER_FACE_DETECTION, kExtended, "other.xml"), -LMF_ERROR_MEMORY)
        << "it found nothing to work with";
    EXPECT_EQ(Call(LMF_FILTER_FACE_DETECTION, LMF_RUN_DIRECT), 0) << "nobody asked it";
    EXPECT_EQ(fs::current_path(), before);
}

TEST_F(FaceFinder, WhereItIsMissingLmfSaysHowToGetIt) {
    const Names run = {"apply", "Red-eye Reduction", kPhotograph, "out.png", "--library", library};
    Expect(3, Run(run), "scripts/setup --faces");
    fs::copy_file(LMF_FAKE_FINDER_FILE, In("lib/cv/libcv_x64.so"));
    Expect(3, Run(run, {{"LMF_FAKE_CASCADE", "other.xml"}}), "lib/cv");
    ExpectSilence(Run(run, {{"LMF_FAKE_CASCADE", "haarcascade_frontalface_alt.xml"}}));
}

TEST_F(FaceFinder, FindsTheFaceOfAPhotographAndItsEyes) {
    if (*LMF_FINDER_FILE == '\0') GTEST_SKIP() << "OpenCV is not installed";
    void *finder = dlopen(LMF_FINDER_FILE, RTLD_NOW | RTLD_LOCAL);
    const auto find = reinterpret_cast<decltype(&CV_FindFace)>(dlsym(finder, "CV_FindFace"));
    const std::string cascades = fs::path(LMF_FINDER_FILE).parent_path();
    const std::string faces = cascades + "/haarcascade_frontalface_alt.xml", eyes = cascades + "/haarcascade_eye.xml";

    const Bytes rgba = ReadRgba(kPortrait);
    const LockedDib astronaut(DibCreateSolid(512, 512, 0));
    ForEachPixel(astronaut, [&](int32_t x, int32_t y) {
        const uint8_t *pixel = &rgba[static_cast<size_t>(y * 512 + x) * 4];
        DibSetPixel(astronaut.View(), x, y, PackColor(pixel[0], pixel[1], pixel[2]));
    });
    const BlockOwner found(find(nullptr, astronaut.owner.handle, faces.c_str(), eyes.c_str(), 1));
    const auto *list = static_cast<const FaceList *>(BlockLock(found.handle));
    ASSERT_TRUE(list != nullptr && list->faces == 1 && list->eyes == 2);
    const auto *records = reinterpret_cast<const FaceRecord *>(list + 1);
    const auto holds = [](const FaceRecord &box, int32_t x, int32_t y) {
        return x >= box.left && x < box.right && y >= box.top && y < box.bottom;
    };
    EXPECT_TRUE(holds(records[0], 224, 115) && records[0].right - records[0].left < 150);
    EXPECT_TRUE(holds(records[1], 203, 108) != holds(records[2], 203, 108));
    EXPECT_TRUE(holds(records[1], 245, 108) != holds(records[2], 245, 108));
    BlockUnlock(found.handle);

    const LockedDib tiny(DibCreateSolid(1, 1, 0));
    const BlockOwner none(find(nullptr, tiny.owner.handle, faces.c_str(), "", 0));
    EXPECT_EQ(static_cast<const FaceList *>(BlockLock(none.handle))->faces, 0);
    BlockUnlock(none.handle);
    WriteText(In("broken.xml"), "<?xml version=\"1.0\"?><opencv_storage><cascade></opencv_storage>");
    for (const std::string &bad : {In("broken.xml"), In("missing.xml")})
        EXPECT_EQ(find(nullptr, astronaut.owner.handle, bad.c_str(), "", 0), nullptr);
    EXPECT_EQ(find(nullptr, nullptr, faces.c_str(), "", 0), nullptr);
}

} // namespace lmf::testing
