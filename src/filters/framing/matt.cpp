// Matt: mounts the picture on a larger sheet of the paper colour.
// Size is the border in percent of the picture's larger side; Horz. offset and Vert. offset move the picture on the
// sheet, 100 being the middle and 0 and 200 the sides. With Absolute on the sheet has the size of Width and Depth in
// pixels, which start at the picture's own size with every call and are kept in no file.
#include "engine/slots.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(570, "Size:", &FilterParameters::FilterMattSize, {1, 100}),
    Slider(571, "Horz. offset:", &FilterParameters::FilterMattXOffset, {0, 200}),
    Slider(572, "Vert. offset:", &FilterParameters::FilterMattYOffset, {0, 200}),
    CheckBox(573, "Absolute", &FilterParameters::FilterMattAbsolute),
    NumberEdit(574, "Width:", &FilterParameters::FilterMattWidth, {1, 32760}),
    NumberEdit(575, "Depth:", &FilterParameters::FilterMattDepth, {1, 32760}),
};
static constexpr FilterSlots kPageSlots = MakeSlots<kPage>(UnavailableKernel);

static void StartAtSourceSize(FilterContext *context) {
    context->FilterMattWidth = context->width;
    context->FilterMattDepth = context->height;
}

static uint32_t LoadSettings(FilterContext *context) {
    if (kPageSlots.LoadSettings(context) == 0) return 0;
    StartAtSourceSize(context);
    return 1;
}

static uint32_t ResetDefaults(FilterContext *context) {
    if (kPageSlots.ResetDefaults(context) == 0) return 0;
    StartAtSourceSize(context);
    return 1;
}

static constexpr FilterSlots MakeMattSlots() {
    FilterSlots slots = kPageSlots;
    slots.LoadSettings = LoadSettings;
    slots.ResetDefaults = ResetDefaults;
    return slots;
}
extern constexpr FilterSlots kMatt = MakeMattSlots();

} // namespace lmf
