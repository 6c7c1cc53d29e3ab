// The CPX container: one packed picture, compressed. A header and then one zlib stream; numbers are little-endian.
#pragma once

#include <span>

#include "image/core/dib.h"

namespace lmf {

inline constexpr char kCpxMagic[] = "CPX_HEAD"; ///< without the zero at its end

struct CpxHeader {
    char magic[8];
    uint32_t pictureSize;    ///< bytes that the stream unpacks to
    uint32_t compressedSize; ///< bytes of the stream
    uint32_t one;            ///< 1; readers pass over it
    uint8_t reserved[32];    ///< 0; readers pass over it
};
static_assert(sizeof(CpxHeader) == 52 && sizeof kCpxMagic == sizeof CpxHeader::magic + 1);

/// Unpacks the picture of a container into a block of its own, which the caller owns. Bytes after the stream are passed
/// over. Null when the magic differs, a size does not agree with the data, the stream is damaged, what it holds is no
/// picture, or memory is short.
[[nodiscard]] DibHandle ReadCpx(std::span<const uint8_t> container);

} // namespace lmf
