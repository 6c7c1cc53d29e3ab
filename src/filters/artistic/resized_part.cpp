#include "filters/artistic/resized_part.h"

#include "filters/geometry/resize.h"

namespace lmf {

DibHandle ResizePart(const ReadView &part, int32_t percent, FilterContext &context) {
    const ResizeParameters parameters{.horizontal = percent, .vertical = percent};
    context.FilterResizeInterpolate = parameters.interpolate;
    context.FilterResizeHorz = parameters.horizontal;
    context.FilterResizeVert = parameters.vertical;
    context.FilterResizeConstant = parameters.constant;
    context.FilterResizeFilter = parameters.windowIndex;
    return ResizePicture(part, context.mode, parameters);
}

} // namespace lmf
