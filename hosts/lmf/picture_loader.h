// Picture files that the library asks its host for.
#pragma once

#include "picture.h"

namespace lmf::host {

/// What LoadPicture needs. It lies behind the owner that a call of the library is given.
struct PictureLoader {
    const Limits &limits;
    Report &report; // takes a warning where a file cannot be read
};

/// Reads a picture file for the library, which does without it where that fails.
/// @param owner  a PictureLoader
/// @return a new block of 32 bits a pixel where the picture has alpha, else of 24; or null
LmfHandle LoadPicture(void *owner, const char *path);

} // namespace lmf::host
