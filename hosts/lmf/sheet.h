// Contact sheets: what many filters make of one picture, each on a small copy of it with its name below.
#pragma once

#include <string>
#include <vector>

#include "picture.h"
#include "settings.h"

namespace lmf::host {

inline constexpr int kLeastSide = 48, kMostSide = 1024;

/// One filter on a sheet.
struct SheetCell {
    std::string label; // in UTF-8 or code page 1252
    Step step;
};

struct SheetRequest {
    std::string input;
    std::string output;  // its ending names the format
    std::string library; // path of the filter library; empty: the one beside the program
    std::vector<SheetCell> cells;
    int columns = 0; // 0: as many as look well
    int side = 240;  // of the longer side of the small copy, in pixels
    Limits limits;
};

/// Draws the sheet, the picture itself first. Cells whose filter fails are left out and told on standard error;
/// `failed` is their number. Gives the exit code, which is kDone also where some are left out.
[[nodiscard]] int DrawSheet(const SheetRequest &request, size_t &failed);

} // namespace lmf::host
