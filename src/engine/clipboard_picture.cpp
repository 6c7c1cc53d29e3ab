#include "engine/clipboard_picture.h"

#include "platform/clipboard.h"

namespace lmf {

bool HasClipboardPicture(const FilterContext &context) {
    return context.clipboard != nullptr || ClipboardHasPicture();
}

ClipboardLock::ClipboardLock(const FilterContext &context)
    : copy(context.clipboard == nullptr ? ClipboardPicture(context.ownerWindow) : nullptr),
      lock(copy ? copy.handle : context.clipboard) {}

DibHandle ClipboardLock::Take() {
    DibHandle taken = copy ? copy.Release() : DibClone(lock.view);
    lock.Unlock();
    return taken;
}

} // namespace lmf
