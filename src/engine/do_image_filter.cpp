#include "engine/do_image_filter.h"

#include <cstring>
#include <optional>
#include <string_view>
#include <utility>

#include "common/random.h"
#include "engine/apply.h"
#include "engine/catalogue.h"
#include "engine/config_text.h"
#include "engine/destinations_file.h"
#include "engine/settings_files.h"
#include "platform/system.h"

namespace lmf {

namespace {

/// Set, since no host check is part of this build.
constexpr bool kValidationState = true;

bool PassesHostFields(uint32_t runFlags) {
    return (runFlags & (LMF_RUN_DAUBERY | LMF_RUN_PAINT)) != 0;
}

/// The kinds of host that leave the choice of filters to the user; for others they stay as they are.
constexpr uint32_t kReadsEnableFile = LMF_RUN_STANDARD | LMF_RUN_DAUBERY | LMF_RUN_REELSMITH | LMF_RUN_FRAMELOOM;

/// What the settings files held at the start of a call.
struct FoundFiles {
    FoundSettings settings;
    std::optional<FoundSwitches> switches; ///< nothing where the call leaves the enable file unread
};

FoundFiles ReadFiles(uint32_t runFlags) {
    FoundFiles found = {ReadSettings(runFlags), {}};
    if (runFlags & kReadsEnableFile) found.switches = ReadEnableFile(runFlags);
    return found;
}

void WriteFiles(uint32_t runFlags, const FoundFiles &found) {
    if (runFlags != 0) WriteEnableFile(runFlags, found.switches ? &*found.switches : nullptr);
    if (!(runFlags & LMF_RUN_DIRECT)) WriteSettings(runFlags, found.settings);
}

/// The host's wishes before the run.
/// @param hostRecord  a HostRecord at any address, since a host may pack it into a block of its own; or null
/// @return the row to start with.
uint32_t ReadHostRecord(const void *hostRecord, uint32_t runFlags) {
    if (hostRecord == nullptr) return LMF_FILTER_LAST;
    HostRecord record;
    std::memcpy(&record, hostRecord, sizeof record);
    if (PassesHostFields(runFlags)) {
        Settings.PaperColor = static_cast<int32_t>(record.paperColor);
        Settings.FilterApplyToDuplicate = record.applyToDuplicate;
    }
    return record.filterIndex;
}

void WriteHostRecord(void *hostRecord, uint32_t runFlags, const FilterContext &context) {
    if (hostRecord == nullptr) return;
    HostRecord record;
    std::memcpy(&record, hostRecord, sizeof record);
    record.filterIndex = static_cast<uint32_t>(context.filterIndex);
    if (PassesHostFields(runFlags)) record.applyToDuplicate = Settings.FilterApplyToDuplicate;
    std::memcpy(hostRecord, &record, sizeof record);
}

/// A context that frees at the end of the scope what is still its own.
struct OwningContext : FilterContext {
    OwningContext() : FilterContext{} {}
    OwningContext(const OwningContext &) = delete;
    OwningContext &operator=(const OwningContext &) = delete;
    ~OwningContext() { FreePictures(*this); }
};

/// @return false where the source cannot be read.
bool FillContext(FilterContext &context, void *owner, DibHandle source, DibHandle second, uint32_t startIndex,
                 int32_t hostReserved) {
    context.ownerWindow = owner;
    context.time = SystemTime();
    context.source = source;
    context.second = second;
    context.filterIndex = startIndex == LMF_FILTER_LAST ? Settings.CurrentFilter : static_cast<int32_t>(startIndex);
    context.mode = DibClassify(source);
    context.paperColor = static_cast<Color>(Settings.PaperColor);
    context.ditherBrightness = Settings.DitherBrightness;
    context.ditherContrast = Settings.DitherContrast;
    context.hostReserved = hostReserved;
    std::memcpy(context.faceCascade, Settings.FaceDetectCascade, kTextSize);
    std::memcpy(context.eyesCascade, Settings.FaceEyesDetectCascade, kTextSize);
    if (!DibInfo(source, &context.width, &context.height, nullptr, nullptr)) return false;
    context.resultWidth = context.width;
    context.resultHeight = context.height;
    LoadAllSettings(context);
    return true;
}

/// Depths that other calls take too, but read as white.
bool HasKnownDepth(DibHandle picture) {
    uint32_t bits = 0;
    return DibInfo(picture, nullptr, nullptr, &bits, nullptr) && CanReadPixels(bits);
}

/// Until there is a window to open, only the direct path can run a filter.
uint32_t Run(uint32_t runFlags, FilterContext &context) {
    if (!(runFlags & LMF_RUN_DIRECT)) {
        context.errorCode = LMF_ERROR_UNSUPPORTED;
        return 0;
    }
    if (!(runFlags & LMF_RUN_EXTENDED)) return ApplyFilterDirect(&context);
    // What a window would ask for.
    context.errorCode = ChooseDestination(context);
    return context.errorCode == LMF_ERROR_OK ? ApplyFilterPrepared(&context) : 0;
}

/// An extended call's record as far as it goes; null where the host gives none, and for other calls.
struct ExtendedCall {
    static constexpr uint32_t kFlags = LMF_RUN_EXTENDED | LMF_RUN_DIRECT;
    bool isExtended;
    LmfExtendedHooks *record = nullptr;

    explicit ExtendedCall(const HostCall &call) : isExtended((call.runFlags & kFlags) == kFlags) {
        // The host knows that the library writes to a record of this kind.
        if (isExtended && call.hooks != nullptr)
            record = reinterpret_cast<LmfExtendedHooks *>(const_cast<HostHooks *>(call.hooks));
    }
    explicit operator bool() const { return isExtended; }
    /// Does the record hold the bytes before this offset?
    bool Reaches(size_t end) const { return record != nullptr && record->size >= end; }
    /// Lines of settings; empty where there are none.
    std::string_view Settings() const {
        constexpr size_t kEnd = offsetof(LmfExtendedHooks, settings) + sizeof(const char *);
        return Reaches(kEnd) && record->settings != nullptr ? record->settings : std::string_view();
    }
    DibHandle Clipboard() const {
        constexpr size_t kEnd = offsetof(LmfExtendedHooks, clipboard) + sizeof(LmfHandle);
        return Reaches(kEnd) ? record->clipboard : nullptr;
    }
    /// The function of the host's hooks, whatever kind of call it is.
    LmfLoadPicture LoadPicture(const HostHooks *hooks) const {
        constexpr size_t kEnd = offsetof(HostHooks, loadPicture) + sizeof(LmfLoadPicture);
        return hooks != nullptr && (record == nullptr || Reaches(kEnd)) ? hooks->loadPicture : nullptr;
    }
    const char *Destinations() const {
        constexpr size_t kEnd = offsetof(LmfExtendedHooks, destinations) + sizeof(const char *);
        return Reaches(kEnd) ? record->destinations : nullptr;
    }
    void SetErrorCode(int32_t code) const {
        constexpr size_t kEnd = offsetof(LmfExtendedHooks, errorCode) + sizeof(int32_t);
        if (Reaches(kEnd)) record->errorCode = code;
    }
};

/// Lines of settings that count for one call: whatever was there before comes back at the end of the scope.
class SettingsOfCall {
public:
    explicit SettingsOfCall(std::string_view given) : lines(given) {
        if (lines.empty()) return;
        before = Settings;
        ReadConfigLines(lines, ConfigTable);
    }
    SettingsOfCall(const SettingsOfCall &) = delete;
    SettingsOfCall &operator=(const SettingsOfCall &) = delete;
    ~SettingsOfCall() {
        if (before) Settings = *before;
    }

    /// Gives the context the parameters without a place in the files, which each picture starts anew.
    void LoadKeyless(FilterContext &context) const {
        if (lines.empty()) return;
        for (const ConfigEntry &row : kKeylessSettings) row.Number() = context.*row.number;
        ReadConfigLines(lines, kKeylessSettings);
        for (const ConfigEntry &row : kKeylessSettings) context.*row.number = row.Number();
    }
    /// Which filter ran last is no setting: it stays known.
    void KeepLastFilter(int32_t row) {
        Settings.CurrentFilter = row;
        if (before) before->CurrentFilter = row;
    }

private:
    std::string_view lines;
    std::optional<SettingsStore> before;
};

} // namespace

uint64_t DoImageFilter(const HostCall &call) {
    const ExtendedCall extended(call);
    extended.SetErrorCode(LMF_ERROR_INFORMATION);
    if (call.picture == nullptr || call.second == nullptr) return 0;
    SeedRandom(static_cast<uint32_t>(SystemTime()));
    const FoundFiles found = ReadFiles(call.runFlags);
    SettingsOfCall settings(extended.Settings());

    const bool batch = (call.runFlags & LMF_RUN_BATCH) != 0;
    void *record = batch ? nullptr : call.hostRecord;
    OwningContext context;
    const uint32_t startIndex = ReadHostRecord(record, call.runFlags);
    context.clipboard = extended.Clipboard();
    context.destinations = extended.Destinations();
    context.loadPicture = extended.LoadPicture(call.hooks);
    if (!kValidationState ||
        !FillContext(context, call.owner, *call.picture, *call.second, startIndex, call.hostReserved)) {
        extended.SetErrorCode(LMF_ERROR_UNSUITABLE);
        return 0;
    }
    if (call.callback == nullptr) return 0;
    if (extended) {
        if (!HasKnownDepth(context.source)) {
            extended.SetErrorCode(LMF_ERROR_FORMAT);
            return 0;
        }
        context.byteOffsets = ByteOffsets::Whole;
    }
    settings.LoadKeyless(context);

    const uint32_t done = Run(call.runFlags, context);
    extended.SetErrorCode(context.errorCode);
    if (batch && call.hostRecord != nullptr)
        std::memcpy(static_cast<uint8_t *>(call.hostRecord) + LMF_BATCH_ERROR_OFFSET, &context.errorCode,
                    sizeof(int32_t));
    if (done != 0) {
        settings.KeepLastFilter(context.filterIndex);
        Settings.PaperColor = static_cast<int32_t>(context.paperColor);
        *call.picture = std::exchange(context.result, nullptr);
        *call.second = std::exchange(context.secondResult, nullptr);
        WriteHostRecord(record, call.runFlags, context);
    }
    StoreAllSettings(context);
    WriteFiles(call.runFlags, found);
    return done;
}

} // namespace lmf
