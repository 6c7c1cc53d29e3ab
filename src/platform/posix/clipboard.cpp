// A system without a desktop: the clipboard is always empty.
#include "platform/clipboard.h"

namespace lmf {

bool ClipboardHasPicture() {
    return false;
}

BlockHandle ClipboardPicture(void *) {
    return nullptr;
}

} // namespace lmf
