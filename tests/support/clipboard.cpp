#include "support/clipboard.h"

#include "image/core/dib.h"
#include "platform/clipboard.h"

namespace lmf {

static BlockHandle onClipboard = nullptr;

void testing::PutOnClipboard(BlockHandle picture) {
    onClipboard = picture;
}

bool ClipboardHasPicture() {
    return onClipboard != nullptr;
}

BlockHandle ClipboardPicture(void *) {
    return DibClone(onClipboard);
}

} // namespace lmf
