#include "library.h"

#include <dlfcn.h>

#include <cstdlib>

#include "files.h"
#include "picture_loader.h"

namespace lmf::host {

namespace {

// Below this no folder can be, and so no settings file.
constexpr char kNoFolder[] = "/dev/null";

// Makes the library's clock stand still at a number, and lets it go on at the end of the scope.
class StoppedClock {
public:
    explicit StoppedClock(const std::optional<int64_t> &seconds) : stopped(seconds.has_value()) {
        if (!stopped) return;
        if (const char *set = std::getenv(kName)) before = set;
        setenv(kName, std::to_string(*seconds).c_str(), 1);
    }
    StoppedClock(const StoppedClock &) = delete;
    StoppedClock &operator=(const StoppedClock &) = delete;
    ~StoppedClock() {
        if (!stopped) return;
        if (before)
            setenv(kName, before->c_str(), 1);
        else
            unsetenv(kName);
    }

private:
    static constexpr char kName[] = "SOURCE_DATE_EPOCH";
    bool stopped;
    std::optional<std::string> before;
};

int32_t Validate(void *, const char *) {
    return 1;
}

} // namespace

bool Library::Load(std::string path, Report &report) {
    const char *fromEnvironment = std::getenv("LMF_LIBRARY");
    if (path.empty() && fromEnvironment) path = fromEnvironment;
    if (path.empty()) path = ProgramLibraryFolder() + "liblmf16filter.so.1";
    setenv("XDG_CONFIG_HOME", kNoFolder, 1);
    void *library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (!library) return report.Fail(std::string("the filter library cannot be loaded: ") + dlerror());
    doImageFilter = reinterpret_cast<decltype(doImageFilter)>(dlsym(library, "LMF16FILTERDoImageFilter"));
    if (!doImageFilter) return report.Fail(path + " is not the filter library");
    if (char *file = realpath(path.c_str(), nullptr)) {
        finderFolder = std::string(file, std::string_view(file).rfind('/')) + "/cv/";
        std::free(file);
    }
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

FilterOutcome ApplyFilter(const Library &library, const FilterCall &call, Picture &picture, Report &report) {
    constexpr uint32_t kRunFlags = LMF_RUN_DIRECT | LMF_RUN_BATCH | LMF_RUN_EXTENDED;
    const StoppedClock clock(call.clockSeed);
    LmfHandle image = picture.image.block;
    LmfHandle second = picture.alpha.block;
    LmfExtendedHooks extended = {};
    extended.size = sizeof extended;
    extended.hooks.loadPicture = LoadPicture;
    extended.settings = call.lines.c_str();
    extended.clipboard = call.clipboard->block;
    extended.destinations = call.destinations.empty() ? nullptr : call.destinations.c_str();
    PictureLoader loader = {*call.limits, report};
    const uint64_t done = library.doImageFilter(&loader, &image, Validate, &second, 0, 0, kRunFlags, nullptr, nullptr,
                                                0, 0, &extended.hooks);
    if (!done) return {false, extended.errorCode == LMF_ERROR_OK ? int(LMF_ERROR_LIBRARY) : extended.errorCode};
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
