// Matt: mounts the picture on a larger sheet of the paper colour.
// Size is the border in percent of the picture's larger side; Horz. offset and Vert. offset move the picture on the
// sheet, 100 being the middle and 0 and 200 the sides. With Absolute on the sheet has the size of Width and Depth in
// pixels, which start at the picture's own size with every call and are kept in no file.
#include "engine/filter.h"

namespace lmf {

static constexpr PageControl kPage[] = {
    Slider(570, "Size:", &P::FilterMattSize, {1, 100}),
    Slider(571, "Horz. offset:", &P::FilterMattXOffset, {0, 200}),
    Slider(572, "Vert. offset:", &P::FilterMattYOffset, {0, 200}),
    CheckBox(573, "Absolute", &P::FilterMattAbsolute),
    NumberEdit(574, "Width:", &P::FilterMattWidth, {1, 32760}).Stored(1, INT32_MAX),
    NumberEdit(575, "Depth:", &P::FilterMattDepth, {1, 32760}).Stored(1, INT32_MAX),
};

static void StartAtSourceSize(FilterContext &context) {
    context.FilterMattWidth = context.width;
    context.FilterMattDepth = context.height;
}

extern constexpr Filter kMatt = MakeFilter<kPage>(nullptr, {.startWithPicture = StartAtSourceSize});

} // namespace lmf
