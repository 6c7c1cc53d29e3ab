// What each filter costs, in nanoseconds a pixel and in "copies". One copy is a memcpy of the same picture into memory
// fresh from malloc, measured in turn with the filter, so that a ratio means the same on a busy machine. The kernel is
// timed, and the exported call with all that it does around the kernel. With --memory it tells the memory that each
// kernel takes at its peak instead, in pictures.
#include <algorithm>
#include <chrono>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <malloc.h>
#include <string>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

#include <CLI/CLI.hpp>

#include "engine/apply.h"
#include "engine/destinations_file.h"
#include "engine/do_image_filter.h"
#include "lmf16finder.h"
#include "platform/system.h"

namespace {

using namespace lmf;

struct Options {
    std::vector<std::string> filters;
    std::vector<std::string> settings;
    std::string size = "4000x3000";
    int repetitions = 7;
    bool onlyGrey = false;
    bool memory = false;
    bool json = false;
};

/// A scene with flat areas, gradients, edges and grain, the same on every run.
LockedDib MakeScene(int32_t width, int32_t height, uint32_t bits) {
    LockedDib scene(DibCreate(width, height, &GreyRamp(), bits));
    if (!scene) return scene;
    uint32_t noise = 1;
    for (int32_t y = 0; y < height; y++) {
        for (int32_t x = 0; x < width; x++) {
            noise = noise * 1664525u + 1013904223u;
            const double u = static_cast<double>(x) / width, v = static_cast<double>(y) / height;
            const double wave = std::sin(u * 40) * std::cos(v * 30) * 60;
            const bool inside = std::fmod(u * 8, 1.0) < 0.5 && std::fmod(v * 6, 1.0) < 0.4;
            const double base = inside ? 190 - 120 * v : 40 + 150 * u;
            const double grain = static_cast<double>(noise >> 28);
            const auto level = [&](double tint) {
                return static_cast<uint32_t>(std::clamp(base * tint + wave + grain, 0.0, 255.0));
            };
            DibSetPixel(scene.View(), x, y, PackColor(level(1.0), level(0.85), level(0.6)));
        }
    }
    return scene;
}

template <typename Work>
double Nanoseconds(Work work) {
    const auto start = std::chrono::steady_clock::now();
    work();
    return std::chrono::duration<double, std::nano>(std::chrono::steady_clock::now() - start).count();
}

double Median(std::vector<double> times) {
    std::sort(times.begin(), times.end());
    return times[times.size() / 2];
}

double TimeCopy(const ReadView &picture) {
    const auto size = static_cast<size_t>(picture.stride) * static_cast<size_t>(picture.height);
    void *fresh = nullptr;
    const double time = Nanoseconds([&] {
        fresh = std::malloc(size);
        if (fresh != nullptr) std::memcpy(fresh, picture.bottom, size);
        asm volatile("" : : "r"(fresh) : "memory");
    });
    std::free(fresh);
    return time;
}

/// Sets one of the process's settings, or the paper colour.
bool SetParameter(const std::string &assignment) {
    const size_t equals = std::min(assignment.find('='), assignment.size());
    const std::string key = assignment.substr(0, equals);
    int32_t value = 0;
    int length = 0;
    if (std::sscanf(assignment.c_str() + equals, "=%d%n", &value, &length) != 1 ||
        assignment[equals + length] != '\0') {
        std::fprintf(stderr, "lmf_bench: --set wants KEY=NUMBER, not %s\n", assignment.c_str());
        return false;
    }
    const ConfigEntry *parameter = FindParameter(key);
    if (key == "paper") {
        Settings.PaperColor = value;
    } else if (parameter != nullptr && parameter->number != nullptr) {
        parameter->Number() = value;
    } else {
        std::fprintf(stderr, "lmf_bench: %s: no setting of this name\n", key.c_str());
        return false;
    }
    return true;
}

/// Two faces and their eyes, spread over a picture of this size.
BlockHandle MakeFaceList(int32_t width, int32_t height) {
    struct {
        FaceList head;
        FaceRecord records[6];
    } list = {{2, 4, {}}, {}};
    for (int32_t i = 0; i < 6; i++) {
        const int32_t side = i < 2 ? height / 3 : height / 16, step = width / 8;
        list.records[i] = {step * (i + 1), step, step * (i + 1) + side, step + side, {}};
    }
    const BlockHandle block = BlockAlloc(sizeof list);
    if (void *bytes = BlockLock(block)) {
        std::memcpy(bytes, &list, sizeof list);
        BlockUnlock(block);
    }
    return block;
}

struct Measurement {
    double nsPerPixel; ///< of the kernel; negative when it failed
    double copies;     ///< of the kernel
    double callCopies; ///< of the exported call
};

/// The exported call, which reads no settings where there are no files.
bool Call(int32_t row, DibHandle picture, DibHandle second, DibHandle clipboard) {
    LmfExtendedHooks extended{};
    extended.size = sizeof extended;
    extended.clipboard = clipboard;
    HostRecord record = {0xFFFFFF, static_cast<uint32_t>(row), 0, nullptr};
    const auto pass = [](void *, const char *) -> int32_t { return 1; };
    if (!DoImageFilter({nullptr, &picture, pass, &second, 0, 0, LMF_RUN_DIRECT | LMF_RUN_EXTENDED, &record, nullptr, 0,
                        0, &extended.hooks}))
        return false;
    BlockFree(picture);
    BlockFree(second);
    return true;
}

/// Times the kernel and the exported call in turn with copies. A call that would look for faces is left out.
Measurement Measure(int32_t row, const LockedDib &picture, DibHandle second, FilterContext &context, int repetitions) {
    std::vector<double> runs, calls, copies;
    for (int i = 0; i < repetitions; i++) {
        copies.push_back(TimeCopy(picture));
        DibHandle result = nullptr;
        runs.push_back(Nanoseconds([&] { result = RunFilter(row, picture, context.mode, context); }));
        if (result == nullptr) return {-1, -1, -1};
        BlockFree(result);
        FreePictures(context);
        if (FilterCatalogue[row].filter->hooks.FilterPrepare != nullptr) {
            calls.push_back(runs.back());
            continue;
        }
        bool called = false;
        calls.push_back(Nanoseconds([&] { called = Call(row, picture.owner.handle, second, context.clipboard); }));
        if (!called) return {-1, -1, -1};
    }
    const double pixels = static_cast<double>(context.width) * context.height, copy = Median(copies);
    return {Median(runs) / pixels, Median(runs) / copy, Median(calls) / copy};
}

bool SameName(const std::string &wanted, const char *name) {
    return wanted.size() == std::strlen(name) && std::equal(wanted.begin(), wanted.end(), name, [](char a, char b) {
               return std::tolower(a) == std::tolower(b);
           });
}

bool IsBuilt(const FilterEntry &entry) {
    return entry.filter->FilterKernel != nullptr;
}

/// Is there a filter of this name that can run? Says so if not.
bool CheckName(const std::string &wanted) {
    for (const FilterEntry &entry : FilterCatalogue) {
        if (!SameName(wanted, entry.name)) continue;
        if (!IsBuilt(entry)) std::fprintf(stderr, "lmf_bench: %s: this version cannot run it\n", entry.name);
        return IsBuilt(entry);
    }
    std::fprintf(stderr, "lmf_bench: there is no filter \"%s\"\n", wanted.c_str());
    return false;
}

bool IsWanted(const Options &options, const FilterEntry &entry) {
    if (!IsBuilt(entry)) return false;
    return options.filters.empty() || std::any_of(options.filters.begin(), options.filters.end(),
                                                  [&](const auto &name) { return SameName(name, entry.name); });
}

/// A context for a run of this row, as the direct path fills it, with what a window would have asked for.
FilterContext MakeContext(int32_t row, ImageMode mode, const LockedDib &picture, DibHandle second, BlockHandle faces) {
    const FilterEntry &entry = FilterCatalogue[row];
    FilterContext context{};
    context.filterIndex = row;
    context.mode = mode;
    context.width = picture.View().width;
    context.height = picture.View().height;
    context.source = picture.owner.handle;
    if (entry.flags & FilterNeedsSecond) context.second = second;
    if (entry.flags & FilterNeedsClipboard) context.clipboard = picture.owner.handle;
    context.paperColor = static_cast<Color>(Settings.PaperColor);
    context.FaceDetectList = context.RedeyeList = faces;
    LoadAllSettings(context);
    (void)ChooseDestination(context);
    return context;
}

double PixelBytes(const ReadView &picture) {
    return static_cast<double>(picture.stride) * picture.height;
}

/// Bytes of this process that are in memory now.
double ResidentBytes() {
    std::ifstream statm("/proc/self/statm");
    double size = 0, resident = 0;
    statm >> size >> resident;
    return resident * static_cast<double>(sysconf(_SC_PAGESIZE));
}

/// Runs the kernel once in a process of its own.
/// @return what it took at its peak, its result included, in pictures of the size of its result, or of its source where
/// that is larger; negative when it failed
double PeakPictures(int32_t row, const LockedDib &picture, FilterContext &context) {
    int pipe[2];
    double peak = -1;
    if (::pipe(pipe) != 0) return peak;
    const pid_t child = fork();
    if (child == 0) {
        const double before = ResidentBytes();
        rusage usage{};
        const LockedDib result(RunFilter(row, picture, context.mode, context));
        if (result && getrusage(RUSAGE_SELF, &usage) == 0)
            peak = std::max(static_cast<double>(usage.ru_maxrss) * 1024 - before, 0.0) /
                   std::max(PixelBytes(picture), PixelBytes(result));
        _exit(write(pipe[1], &peak, sizeof peak) == sizeof peak ? 0 : 1);
    }
    close(pipe[1]);
    if (child > 0) {
        if (read(pipe[0], &peak, sizeof peak) != sizeof peak) peak = -1;
        waitpid(child, nullptr, 0);
    }
    close(pipe[0]);
    return peak;
}

/// @return false when a filter failed.
bool MeasureMemory(const Options &options, int32_t width, int32_t height, ImageMode mode) {
    const LockedDib picture = MakeScene(width, height, mode == kModeGrey ? 8 : 24), alpha = MakeScene(width, height, 8);
    if (!picture || !alpha) return false;
    const BlockOwner faces(MakeFaceList(width, height));
    bool good = true;
    for (int32_t row = 0; row < kFilterCount; row++) {
        const FilterEntry &entry = FilterCatalogue[row];
        if (!IsWanted(options, entry) || !FilterAccepts(entry, mode)) continue;
        FilterContext context = MakeContext(row, mode, picture, alpha.owner.handle, faces.handle);
        const double peak = PeakPictures(row, picture, context);
        good = good && peak >= 0;
        std::printf("%-28s %-6s %8.2f pictures\n", entry.name, mode == kModeGrey ? "grey" : "color", peak);
        std::fflush(stdout);
    }
    return good;
}

/// @return false when a setting or a filter failed.
bool BenchMode(const Options &options, int32_t width, int32_t height, ImageMode mode, bool *first) {
    const LockedDib picture = MakeScene(width, height, mode == kModeGrey ? 8 : 24), alpha = MakeScene(width, height, 8);
    if (!picture || !alpha) {
        std::fprintf(stderr, "lmf_bench: no memory for a picture of %s\n", options.size.c_str());
        return false;
    }
    const BlockOwner faces(MakeFaceList(width, height));
    bool good = true;
    for (int32_t row = 0; row < kFilterCount; row++) {
        const FilterEntry &entry = FilterCatalogue[row];
        if (!IsWanted(options, entry) || !FilterAccepts(entry, mode)) continue;
        FilterContext context = MakeContext(row, mode, picture, alpha.owner.handle, faces.handle);
        const Measurement measured = Measure(row, picture, context.second, context, options.repetitions);
        const char *depth = mode == kModeGrey ? "grey" : "color";
        if (measured.copies < 0) {
            std::fprintf(stderr, "lmf_bench: %s (%s) failed\n", entry.name, depth);
            good = false;
            continue;
        }
        if (options.json) {
            std::printf("%s  {\"filter\": \"%s\", \"picture\": \"%s\", \"ns_per_pixel\": %.4f, \"copies\": %.4f, "
                        "\"call_copies\": %.4f}",
                        *first ? "" : ",\n", entry.name, depth, measured.nsPerPixel, measured.copies,
                        measured.callCopies);
        } else {
            std::printf("%-28s %-6s %9.3f ns/pixel %8.2f copies, called %8.2f\n", entry.name, depth,
                        measured.nsPerPixel, measured.copies, measured.callCopies);
        }
        std::fflush(stdout);
        *first = false;
    }
    return good;
}

} // namespace

int main(int argc, char **argv) {
    Options options;
    CLI::App app{"Times the filters on a generated picture", "lmf_bench"};
    app.add_option("--filter", options.filters, "only this filter; may be repeated");
    app.add_option("--set", options.settings, "KEY=NUMBER; may be repeated. paper=NUMBER sets the paper colour");
    app.add_option("--size", options.size, "WIDTHxHEIGHT of the picture")->capture_default_str();
    app.add_option("--repetitions", options.repetitions, "runs, of which the median counts")
        ->check(CLI::Range(5, 1000))
        ->capture_default_str();
    app.add_flag("--grey", options.onlyGrey, "only the 8-bit grey picture");
    app.add_flag("--memory", options.memory, "the memory that each kernel takes at its peak, beside the source");
    app.add_flag("--json", options.json, "an array of results");
    CLI11_PARSE(app, argc, argv);

    // No folder of settings: the factory values count, and what --set changes. What lies beside the library lies here.
    KeepModuleFolder(nullptr);
    setenv("XDG_CONFIG_HOME", "/nonexistent", 1);
    if (!std::all_of(options.filters.begin(), options.filters.end(), CheckName) ||
        !std::all_of(options.settings.begin(), options.settings.end(), SetParameter))
        return 1;
    int32_t width = 0, height = 0;
    int length = 0;
    if (std::sscanf(options.size.c_str(), "%dx%d%n", &width, &height, &length) != 2 ||
        static_cast<size_t>(length) != options.size.size() || width < 1 || height < 1) {
        std::fprintf(stderr, "lmf_bench: --size wants WIDTHxHEIGHT, not %s\n", options.size.c_str());
        return 1;
    }
    // Freed memory must go back to the system, or a copy would not be into fresh pages.
    mallopt(M_MMAP_THRESHOLD, 1 << 16);
    if (options.memory) {
        const bool color = options.onlyGrey || MeasureMemory(options, width, height, kModeTrueColor);
        return MeasureMemory(options, width, height, kModeGrey) && color ? 0 : 1;
    }
    bool first = true;
    if (options.json) std::printf("[\n");
    const bool color = options.onlyGrey || BenchMode(options, width, height, kModeTrueColor, &first);
    const bool grey = BenchMode(options, width, height, kModeGrey, &first);
    if (options.json) std::printf("%s]\n", first ? "" : "\n");
    return color && grey ? 0 : 1;
}
