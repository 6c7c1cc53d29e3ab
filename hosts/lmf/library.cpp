#include "library.h"

#include <dlfcn.h>

#include <cstdlib>
#include <cstring>

#include "files.h"
#include "picture_loader.h"

namespace lmf::host {

namespace {

// The block of a batch host. The library writes the error code into it and leaves the rest alone.
struct BatchRecord {
    uint8_t before[LMF_BATCH_ERROR_OFFSET] = {};
    int32_t errorCode = 0;
    uint8_t after[64] = {};
};
static_assert(offsetof(BatchRecord, errorCode) == LMF_BATCH_ERROR_OFFSET);

int32_t Validate(void *, const char *) {
    return 1;
}

} // namespace

bool Library::Load(std::string path, Report &report) {
    const char *fromEnvironment = std::getenv("LMF_LIBRARY");
    if (path.empty() && fromEnvironment) path = fromEnvironment;
    if (path.empty()) path = ProgramFolder() + "/../lib/liblmf16filter.so";
    void *library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) return report.Fail(std::string("the filter library cannot be loaded: ") + dlerror());
    doImageFilter = reinterpret_cast<decltype(doImageFilter)>(dlsym(library, "LMF16FILTERDoImageFilter"));
    if (!doImageFilter) return report.Fail(path + " is not the filter library");
    return true;
}

const char *ErrorText(int code) {
    static const char *const kTexts[] = {
#define LMF_ERROR_TEXT(id, text) text,
        LMF_ERRORS(LMF_ERROR_TEXT)
#undef LMF_ERROR_TEXT
    };
    return code >= 0 && code < LMF_ERROR_COUNT ? kTexts[code] : kTexts[LMF_ERROR_LIBRARY];
}

FilterOutcome ApplyFilter(const Library &library, Picture &picture, const Bitmap &clipboard, const Limits &limits,
                          Report &report) {
    LmfHandle image = picture.image.block;
    LmfHandle second = picture.alpha.block;
    BatchRecord record;
    LmfExtendedHooks extended = {};
    extended.size = sizeof extended;
    extended.hooks.loadPicture = LoadPicture;
    PictureLoader loader = {limits, report};
    extended.clipboard = clipboard.block;
    constexpr uint32_t runFlags = LMF_RUN_DIRECT | LMF_RUN_BATCH | LMF_RUN_EXTENDED;
    const uint64_t done = library.doImageFilter(&loader, &image, Validate, &second, 0, 0, runFlags, &record, nullptr, 0,
                                                0, &extended.hooks);
    if (!done) return {false, record.errorCode == 0 ? LMF_ERROR_LIBRARY : record.errorCode};
    Bitmap result;
    Bitmap resultAlpha;
    const bool sound = AdoptBitmap(result, image);
    const bool soundAlpha = !second || (AdoptBitmap(resultAlpha, second) && resultAlpha.bits == 8);
    if (!sound || !soundAlpha) return {false, LMF_ERROR_LIBRARY};
    picture.image = std::move(result);
    picture.alpha = std::move(resultAlpha);
    const bool fits = picture.alpha.width == picture.image.width && picture.alpha.height == picture.image.height;
    if (picture.alpha && !fits) {
        report.Warn("the alpha no longer has the size of the result and is left out");
        picture.alpha = Bitmap();
    }
    return {true, 0};
}

} // namespace lmf::host
