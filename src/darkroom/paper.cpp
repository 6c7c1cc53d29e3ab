#include "darkroom/paper.h"

#include "image/core/dib_ops.h"

namespace lmf {

Color DarkroomPaperColor = 0xFFFFFF;

DibHandle DibFlattenOnPaper(const ReadView &source) {
    return source.bits == 32 ? DibFlattenOnColor(source, DarkroomPaperColor) : nullptr;
}

} // namespace lmf
