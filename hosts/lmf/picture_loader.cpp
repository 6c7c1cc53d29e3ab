#include "picture_loader.h"

#include <new>
#include <utility>

#include "progress.h"

namespace lmf::host {

namespace {

// The picture with its palette resolved and its alpha beside the colours.
LmfHandle WideBlock(const Picture &picture, Report &report) {
    const Layout layout = HasAlpha(picture) ? Layout::kColorAlpha : Layout::kColor;
    Bitmap wide;
    if (!MakeBitmap(wide, picture.image.width, picture.image.height, 8 * SamplesOf(layout), report)) return nullptr;
    for (int y = 0; y < wide.height; ++y) FillRow(picture, layout, Order::kBgr, y, wide.Row(y));
    LmfBlockUnlock(wide.block);
    return std::exchange(wide.block, nullptr);
}

} // namespace

LmfHandle LoadPicture(void *owner, const char *path) {
    const PictureLoader &loader = *static_cast<PictureLoader *>(owner);
    Report report;
    LmfHandle block = nullptr;
    try {
        Picture picture;
        if (ReadPicture(path, loader.limits, picture, report)) block = WideBlock(picture, report);
    } catch (const std::bad_alloc &) {
        report.error = "memory is too short for the picture";
    }
    for (const std::string &warning : report.warnings) loader.report.Warn(Printable(path) + ": " + warning);
    if (!block) loader.report.Warn(Printable(path) + ": " + report.error + "; it is left out");
    return block;
}

} // namespace lmf::host
