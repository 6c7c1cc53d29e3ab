// The functions of a catalogue row, and how a page table becomes ten of them.
#pragma once

#include <cstdint>
#include <span>

#include "engine/filter_context.h"
#include "engine/page.h"

namespace lmf {

struct FilterEntry;

using FilterKernelFunction = DibHandle (*)(DibHandle source, FilterContext *context);
using FilterPrepareFunction = void (*)(void *dialog, DibHandle source, FilterContext *context, uint32_t phase);
using SettingsFunction = uint32_t (*)(FilterContext *context);
using QueryFunction = uint32_t (*)(void *dialog, uint32_t code, uintptr_t a, uintptr_t b);

/// Requests of OnQuery, four characters each.
enum QueryCode : uint32_t {
    kQueryDestroy = 0x44545259,    ///< "DTRY": the dialog is being destroyed
    kQueryTrackStyle = 0x53434445, ///< "SCDE": a is a control id; the answer its track brush, or kNotMine
    kQueryUpdate = 0x56555044,     ///< "VUPD": a is the live context, b a saved one to copy the page's values from
    kQueryAdjust = 0x5641444A      ///< "VADJ": a is a scroll bar's id, b points to the number just typed
};
inline constexpr uint32_t kQueryUnknown = 0x3F3F3F3F; ///< "????": the filter does not handle the request
inline constexpr uint32_t kNotMine = 0xFFFFFFFF;

/// Everything that a filter supplies to the catalogue. Window slots join when a build has windows.
struct FilterSlots {
    FilterKernelFunction FilterKernel;
    SettingsFunction LoadSettings;  ///< copies the process's settings into the context, limited to their ranges
    SettingsFunction StoreSettings; ///< copies them back
    SettingsFunction ResetDefaults; ///< puts the factory values into the context
    QueryFunction OnQuery;
    std::span<const PageControl> page;
    FilterPrepareFunction FilterPrepare = nullptr;
};

/// The state of the licence exchange: set, since no host check is part of this build. Slots refuse while it is clear.
extern int32_t ValidationState;

/// The page's part of `Settings` into the context, each number limited to its control's stored range.
void LoadPage(std::span<const PageControl> page, FilterContext *context);
/// The page's part of the context into `Settings`.
void StorePage(std::span<const PageControl> page, const FilterContext *context);
/// The page's restore values into the context.
void ResetPage(std::span<const PageControl> page, FilterContext *context);
/// Answers a QueryCode from the table; see there for `a` and `b`. kQueryUnknown where the page has no answer.
uint32_t QueryPage(std::span<const PageControl> page, uint32_t code, uintptr_t a, uintptr_t b);

/// A kernel for rows whose arithmetic this build does not have: the run fails and nothing is touched.
DibHandle UnavailableKernel(DibHandle source, FilterContext *context);

/// The slots of a filter with the page table `Page`; a filter with special behaviour replaces a slot in the result.
template <const auto &Page>
constexpr FilterSlots MakeSlots(FilterKernelFunction kernel) {
    FilterSlots slots{};
    slots.FilterKernel = kernel;
    slots.LoadSettings = [](FilterContext *context) -> uint32_t {
        if (ValidationState == 0) return 0;
        LoadPage(Page, context);
        return 1;
    };
    slots.StoreSettings = [](FilterContext *context) -> uint32_t {
        if (ValidationState == 0) return 0;
        StorePage(Page, context);
        return 1;
    };
    slots.ResetDefaults = [](FilterContext *context) -> uint32_t {
        if (ValidationState == 0) return 0;
        ResetPage(Page, context);
        return 1;
    };
    slots.OnQuery = [](void *, uint32_t code, uintptr_t a, uintptr_t b) -> uint32_t {
        if (ValidationState == 0) return 0;
        return QueryPage(Page, code, a, b);
    };
    slots.page = Page;
    return slots;
}

inline constexpr std::span<const PageControl> kEmptyPage{};

/// The slots of a filter without parameters.
constexpr FilterSlots MakeSlots(FilterKernelFunction kernel) {
    return MakeSlots<kEmptyPage>(kernel);
}

} // namespace lmf
