#include "engine/slots.h"

#include <algorithm>
#include <cstring>

namespace lmf {

int32_t ValidationState = 1;

static void CopyText(FilterParameters &to, const FilterParameters &from, TextFieldMember field) {
    std::memcpy(to.*field, from.*field, kTextSize);
}

/// Copies the page's values. Radio buttons name their setting more than once, which does no harm.
static void CopyPage(std::span<const PageControl> page, FilterParameters &to, const FilterParameters &from) {
    for (const PageControl &control : page) {
        if (control.number != nullptr) to.*control.number = from.*control.number;
        if (control.text != nullptr) CopyText(to, from, control.text);
    }
}

int32_t RestoreValueOf(const PageControl &control) {
    return control.restore.value_or(FactorySettings().*control.number);
}

void LoadPage(std::span<const PageControl> page, FilterContext *context) {
    CopyPage(page, *context, Settings);
    for (const PageControl &control : page) {
        if (control.number == nullptr) continue;
        int32_t &value = context->*control.number;
        value = std::clamp(value, control.stored.min, control.stored.max);
    }
}

void StorePage(std::span<const PageControl> page, const FilterContext *context) {
    CopyPage(page, Settings, *context);
}

void ResetPage(std::span<const PageControl> page, FilterContext *context) {
    for (const PageControl &control : page) {
        if (control.number != nullptr) context->*control.number = RestoreValueOf(control);
        if (control.text != nullptr) CopyText(*context, FactorySettings(), control.text);
    }
}

uint32_t QueryPage(std::span<const PageControl> page, uint32_t code, uintptr_t a, uintptr_t b) {
    switch (code) {
    case kQueryTrackStyle:
        for (const PageControl &control : page) {
            if (control.kind == ControlKind::Slider && control.id == static_cast<int32_t>(a))
                return static_cast<uint32_t>(control.trackStyle);
        }
        return kNotMine;
    case kQueryUpdate:
        if (page.empty()) return kQueryUnknown;
        CopyPage(page, *reinterpret_cast<FilterContext *>(a), *reinterpret_cast<const FilterContext *>(b));
        return code;
    default:
        return kQueryUnknown;
    }
}

DibHandle UnavailableKernel(DibHandle, FilterContext *) {
    return nullptr;
}

} // namespace lmf
