// What filters take for the clipboard's picture: one that the host gave with the call, or else the system's.
#pragma once

#include "engine/filter_context.h"

namespace lmf {

/// Is there a picture for this run to take?
[[nodiscard]] bool HasClipboardPicture(const FilterContext &context);

/// The clipboard's picture, locked for a scope; false where there is none, it cannot be read or memory is short.
class ClipboardLock {
public:
    explicit ClipboardLock(const FilterContext &context);

    explicit operator bool() const { return static_cast<bool>(lock); }
    const ReadView &View() const { return lock.view; }
    /// Ends the lock and gives the caller a picture to own; null if memory is short.
    [[nodiscard]] DibHandle Take();

private:
    DibOwner copy; ///< of the system's; null where the host gave the picture
    DibReadLock lock;
};

} // namespace lmf
