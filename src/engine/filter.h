// What a filter supplies to the catalogue, and what follows from its page table.
#pragma once

#include <cstdint>
#include <span>

#include "engine/filter_context.h"
#include "engine/page.h"

namespace lmf {

/// Makes the filtered picture. It reads its parameters from the context, which are within the limits of the page, and
/// leaves there what it makes beside its result.
/// @return a new picture that the caller owns; null on failure, with everything released
using FilterKernelFunction = DibHandle (*)(const ReadView &source, FilterContext &context);

/// When FilterPrepare is called: bits of its `phase`.
enum PreparePhase : uint32_t {
    kPrepareListed = 1,   ///< the filter was entered in a list
    kPrepareSelected = 2, ///< it was chosen, and may run from now on
    kPrepareEnd = 4       ///< it will not run again: what the other phases made is freed
};

/// What few filters do beside what their table says.
struct PageHooks {
    /// Sets what depends on the picture; called whenever the page's settings were loaded or restored.
    void (*startWithPicture)(FilterContext &context) = nullptr;
    /// Does what several runs on the same source share; leaves it in the context, or nothing where it fails.
    void (*FilterPrepare)(FilterContext &context, uint32_t phase) = nullptr;
};

/// A filter, as its source file ends with it.
struct Filter {
    FilterKernelFunction FilterKernel; ///< null where this version does not have the filter's arithmetic
    std::span<const PageControl> page;
    std::span<const EnableRule> rules;
    PageHooks hooks;
};

inline constexpr PageControl kNoPage[1] = {};
inline constexpr std::span<const EnableRule> kNoRules{};

/// A filter with the page table `Page` and the rules `Rules`; a table with a fault does not compile.
template <const auto &Page, const auto &Rules = kNoRules>
consteval Filter MakeFilter(FilterKernelFunction kernel, PageHooks hooks = {}) {
    constexpr std::span<const PageControl> page(Page);
    constexpr std::span<const EnableRule> rules(Rules);
    static_assert(FaultOf(page, rules).empty());
    return {kernel, page, rules, hooks};
}

/// A filter without parameters.
consteval Filter MakeFilter(FilterKernelFunction kernel) {
    return {kernel, {}, {}, {}};
}

/// Copies the page's values.
void CopyPage(const Filter &filter, FilterParameters &to, const FilterParameters &from);
/// The page's part of `Settings` into the context, each number limited to its stored range.
void LoadPage(const Filter &filter, FilterContext &context);
/// The page's part of the context into `Settings`.
void StorePage(const Filter &filter, const FilterContext &context);
/// The page's restore values into the context.
void ResetPage(const Filter &filter, FilterContext &context);
/// Limits the page's numbers in the context to their stored ranges.
void LimitPage(const Filter &filter, FilterContext &context);

/// What "Restore defaults" puts into the control's number.
[[nodiscard]] constexpr int32_t RestoreValueOf(const PageControl &control) {
    return control.restore.value_or(kFactorySettings.*control.number);
}

} // namespace lmf
