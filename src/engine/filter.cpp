#include "engine/filter.h"

#include <algorithm>
#include <cstring>

namespace lmf {

namespace {

void CopyText(FilterParameters &to, const FilterParameters &from, TextMember field) {
    std::memcpy(to.*field, from.*field, kTextSize);
}

} // namespace

// Radio buttons name their setting more than once, which does no harm.
void CopyPage(const Filter &filter, FilterParameters &to, const FilterParameters &from) {
    for (const PageControl &control : filter.page) {
        if (control.number != nullptr) to.*control.number = from.*control.number;
        if (control.text != nullptr) CopyText(to, from, control.text);
    }
}

namespace {

void StartWithPicture(const Filter &filter, FilterContext &context) {
    if (filter.hooks.startWithPicture != nullptr) filter.hooks.startWithPicture(context);
}

} // namespace

void LoadPage(const Filter &filter, FilterContext &context) {
    CopyPage(filter, context, Settings);
    LimitPage(filter, context);
    StartWithPicture(filter, context);
}

void StorePage(const Filter &filter, const FilterContext &context) {
    CopyPage(filter, Settings, context);
}

void ResetPage(const Filter &filter, FilterContext &context) {
    for (const PageControl &control : filter.page) {
        if (control.number != nullptr) context.*control.number = RestoreValueOf(control);
        if (control.text != nullptr) CopyText(context, kFactorySettings, control.text);
    }
    StartWithPicture(filter, context);
}

void LimitPage(const Filter &filter, FilterContext &context) {
    for (const PageControl &control : filter.page) {
        if (control.number == nullptr) continue;
        const ControlRange range = control.limits.Stored();
        int32_t &value = context.*control.number;
        value = std::clamp(value, range.min, range.max);
    }
}

} // namespace lmf
