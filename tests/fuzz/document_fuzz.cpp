// Reads arbitrary bytes as a document of every kind of page. No number may leave what can be typed, and no text its
// room.
#include <cstdlib>
#include <cstring>

#include "engine/catalogue.h"
#include "engine/document.h"

using namespace lmf;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    const std::string_view text(reinterpret_cast<const char *>(data), size);
    FilterParameters parameters = kFactorySettings;
    for (const int32_t row : {LMF_FILTER_ADD_NOISE, LMF_FILTER_WATERMARK, LMF_FILTER_CHANNELS})
        (void)ReadDocument(text, row, parameters);
    for (const FilterEntry &entry : FilterCatalogue) {
        for (const PageControl &control : entry.filter->page) {
            if (control.text != nullptr && std::memchr(parameters.*control.text, '\0', kTextSize) == nullptr)
                std::abort();
            if (control.number == nullptr || control.kind == ControlKind::None) continue;
            const int32_t value = parameters.*control.number;
            if (!control.limits.Typed().Holds(value) && !control.limits.Stored().Holds(value)) std::abort();
        }
    }
    return 0;
}
