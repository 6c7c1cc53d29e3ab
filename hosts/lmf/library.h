// The filter library, loaded at run time and called through its exports alone.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "lmf16filter.h"
#include "picture.h"

namespace lmf::host {

/// The loaded library. It stays loaded until the program ends.
struct Library {
    LmfDoImageFilter doImageFilter = nullptr;
    std::string finderFolder; // where the library looks for the face finder, with a closing slash

    /// Loads it from `path`; an empty path means the environment's LMF_LIBRARY or, without it, the one that came
    /// with this program. From then on the library finds no settings files: a run depends on nothing but what
    /// it is given, and leaves nothing behind.
    [[nodiscard]] bool Load(std::string path, Report &report);
};

/// What one call of a filter gave.
struct FilterOutcome {
    bool done = false;
    int errorCode = 0; // index of ErrorText
};

/// Gives the text of one of the library's error codes.
const char *ErrorText(int code);

/// What a call is given beside the picture.
struct FilterCall {
    std::string lines;                // settings, "CurrentFilter" among them
    const Bitmap *clipboard;          // plays the part of the clipboard's picture unless it is empty
    const Limits *limits;             // of picture files that the library asks for
    std::string destinations;         // the file with the list for Social Media, or empty
    std::optional<int64_t> clockSeed; // stands for the clock, by which the library seeds its random numbers
};

/// Runs the filter that the call's settings name, without a window. The picture is replaced by the result; on failure
/// it stays as it was. `report` takes the warning about an alpha that does not fit the result.
[[nodiscard]] FilterOutcome ApplyFilter(const Library &library, const FilterCall &call, Picture &picture,
                                        Report &report);

} // namespace lmf::host
