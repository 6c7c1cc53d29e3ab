// The filter library, loaded at run time and called through its exports alone.
#pragma once

#include <string>

#include "lmf16filter.h"
#include "picture.h"

namespace lmf::host {

/// The loaded library. It stays loaded until the program ends.
struct Library {
    decltype(&LMF16FILTERDoImageFilter) doImageFilter = nullptr;

    /// Loads it from `path`; an empty path means the environment's LMF_LIBRARY or, without it, the `lib` folder
    /// beside this program's own.
    [[nodiscard]] bool Load(std::string path, Report &report);
};

/// What one call of a filter gave.
struct FilterOutcome {
    bool done = false;
    int errorCode = 0; // index of ErrorText
};

/// Gives the text of one of the library's error codes.
const char *ErrorText(int code);

/// Runs the filter that the settings in the private folder name, without a window. The picture is replaced by the
/// result; on failure it stays as it was. `clipboard` plays the part of the clipboard's picture unless it is empty.
/// Picture files that the filter asks for are read within `limits`. `report` takes warnings: an alpha that does not fit
/// the result, such a file that cannot be read.
[[nodiscard]] FilterOutcome ApplyFilter(const Library &library, Picture &picture, const Bitmap &clipboard,
                                        const Limits &limits, Report &report);

} // namespace lmf::host
