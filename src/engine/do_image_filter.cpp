#include "engine/do_image_filter.h"

#include <cstring>
#include <optional>

#include "common/random.h"
#include "engine/apply.h"
#include "engine/catalogue.h"
#include "engine/settings_files.h"
#include "platform/system.h"

namespace lmf {

HostCall CurrentCall;

static void KeepCall(int32_t buttonStyle, int32_t gradientSliders, uint32_t runFlags, const char *browserPath,
                     uint32_t browserMask, const HostHooks *hooks) {
    CurrentCall = {};
    CurrentCall.hooks = hooks;
    CurrentCall.runFlags = runFlags;
    CurrentCall.buttonStyle = buttonStyle;
    CurrentCall.gradientSliders = gradientSliders;
    CurrentCall.browserMask = browserMask;
    if (browserPath != nullptr) std::strncpy(CurrentCall.browserPath, browserPath, sizeof CurrentCall.browserPath - 1);
}

static bool PassesHostFields(uint32_t runFlags) {
    return (runFlags & (kRunDaubery | kRunPaint)) != 0;
}

/// The kinds of host that leave the choice of filters to the user; for others they stay as they are.
static constexpr uint32_t kReadsEnableFile = kRunStandard | kRunDaubery | kRunReelsmith | kRunFrameloom;

/// What the settings files held at the start of a call.
struct FoundFiles {
    FoundSettings settings;
    std::optional<FoundSwitches> switches; ///< nothing where the call leaves the enable file unread
};

static FoundFiles ReadFiles() {
    FoundFiles found = {ReadSettings(CurrentCall.runFlags), {}};
    if (CurrentCall.runFlags & kReadsEnableFile) found.switches = ReadEnableFile(CurrentCall.runFlags);
    return found;
}

static void WriteFiles(const FoundFiles &found) {
    if (CurrentCall.runFlags != 0) WriteEnableFile(CurrentCall.runFlags, found.switches ? &*found.switches : nullptr);
    if (!(CurrentCall.runFlags & kRunDirect)) WriteSettings(CurrentCall.runFlags, found.settings);
}

/// The host's wishes before the run.
/// @param hostRecord  a HostRecord at any address, since a host may pack it into a block of its own; or null
/// @return the row to start with.
static uint32_t ReadHostRecord(const void *hostRecord) {
    if (hostRecord == nullptr) return LMF_FILTER_LAST;
    HostRecord record;
    std::memcpy(&record, hostRecord, sizeof record);
    if (PassesHostFields(CurrentCall.runFlags)) {
        Settings.PaperColor = static_cast<int32_t>(record.paperColor);
        Settings.FilterApplyToDuplicate = record.applyToDuplicate;
    }
    return record.filterIndex;
}

static void WriteHostRecord(void *hostRecord, const FilterContext &context) {
    if (hostRecord == nullptr) return;
    HostRecord record;
    std::memcpy(&record, hostRecord, sizeof record);
    record.filterIndex = static_cast<uint32_t>(context.filterIndex);
    if (PassesHostFields(CurrentCall.runFlags)) record.applyToDuplicate = Settings.FilterApplyToDuplicate;
    std::memcpy(hostRecord, &record, sizeof record);
}

/// Frees at the end of the scope what is still the context's own.
struct ContextOwner {
    FilterContext *context;

    explicit ContextOwner(FilterContext *owned) : context(owned) {}
    ContextOwner(const ContextOwner &) = delete;
    ContextOwner &operator=(const ContextOwner &) = delete;
    ~ContextOwner() {
        BlockFree(context->result);
        BlockFree(context->secondResult);
        BlockFree(context->auxImage);
    }
};

static void FillContext(FilterContext *context, void *owner, DibHandle source, DibHandle second, uint32_t startIndex,
                        int32_t hostReserved) {
    context->ownerWindow = owner;
    context->source = source;
    context->second = second;
    context->filterIndex = startIndex == LMF_FILTER_LAST ? Settings.CurrentFilter : static_cast<int32_t>(startIndex);
    context->zoomA = context->zoomB = 100;
    context->mode = DibClassify(source);
    context->result = DibClone(source);
    context->secondResult = DibClone(second);
    context->paperColor = static_cast<Color>(Settings.PaperColor);
    context->hostReserved = hostReserved;
}

/// Until there is a window to open, only the direct path can run a filter.
static uint32_t RunFilter(FilterContext *context) {
    if (CurrentCall.runFlags & kRunDirect) return ApplyFilterDirect(context);
    context->errorCode = kErrorUnsupported;
    return 0;
}

uint64_t DoImageFilter(void *owner, LmfHandle *picture, LmfValidation callback, LmfHandle *second, int32_t buttonStyle,
                       int32_t gradientSliders, uint32_t runFlags, void *hostRecord, const char *browserPath,
                       uint32_t browserMask, int32_t hostReserved, const HostHooks *hooks) {
    if (picture == nullptr || second == nullptr) return 0;
    SeedRandom(static_cast<uint32_t>(SystemTime()));
    KeepCall(buttonStyle, gradientSliders, runFlags, browserPath, browserMask, hooks);
    const FoundFiles found = ReadFiles();

    const bool batch = (runFlags & kRunBatch) != 0;
    void *record = batch ? nullptr : hostRecord;
    FilterContext context{};
    const ContextOwner contextOwner(&context);
    FillContext(&context, owner, *picture, *second, ReadHostRecord(record), hostReserved);
    if (ValidationState == 0 || !DibInfo(context.source, &context.width, &context.height, nullptr, nullptr) ||
        !DibInfo(context.result, &context.resultWidth, &context.resultHeight, nullptr, nullptr))
        return 0;
    LoadAllSettings(&context);
    if (callback == nullptr) return 0;

    const uint32_t done = RunFilter(&context);
    if (batch && hostRecord != nullptr)
        std::memcpy(static_cast<uint8_t *>(hostRecord) + LMF_BATCH_ERROR_OFFSET, &context.errorCode, sizeof(int32_t));
    if (done != 0) {
        Settings.CurrentFilter = context.filterIndex;
        Settings.PaperColor = static_cast<int32_t>(context.paperColor);
        *picture = context.result;
        *second = context.secondResult;
        context.result = context.secondResult = nullptr;
        WriteHostRecord(record, context);
    }
    StoreAllSettings(&context);
    WriteFiles(found);
    return done;
}

} // namespace lmf
