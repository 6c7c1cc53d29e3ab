// The Filter menu of a host, as a block that it reads.
#pragma once

#include "lmf16filter.h"
#include "platform/memory.h"

namespace lmf {

/// Makes the menu that LMF16FILTERGetMenu describes.
/// @return a block with an LmfMenu and its items, owned by the caller; null when memory is short
[[nodiscard]] BlockHandle MakeHostMenu(uint32_t firstId, bool grouped);

/// Sets the enabled marks of a menu's items as LMF16FILTEREnableMenu describes.
/// @param restrictions  null counts as no picture
/// @return what the item of the last row was before: 0 enabled, 3 greyed, -1 without such an item
[[nodiscard]] int32_t EnableHostMenu(BlockHandle menu, uint32_t firstId, const HostRestrictions *restrictions);

} // namespace lmf
