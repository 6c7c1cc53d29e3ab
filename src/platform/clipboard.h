// Pictures on the system's clipboard.
#pragma once

#include "platform/memory.h"

namespace lmf {

/// Does the clipboard hold a picture? Never where there is no desktop.
[[nodiscard]] bool ClipboardHasPicture();

/// A copy of the clipboard's picture as a device-independent bitmap, owned by the caller; null when there is none or
/// memory is short. The clipboard is held only while it is copied.
/// @param owner  the window that opens the clipboard; may be null
[[nodiscard]] BlockHandle ClipboardPicture(void *owner);

} // namespace lmf
