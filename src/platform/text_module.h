// What the module that draws text gives to the library, which loads it when the first font is opened: so a host without
// fonts and their libraries never needs them, and one that draws no text does not wait for them.
#pragma once

#include "platform/text.h"

namespace lmf {

/// The functions of platform/text.h as the module has them.
struct TextModule {
    decltype(&OpenFont) openFont;
    decltype(&CloseFont) closeFont;
    decltype(&FontHeight) fontHeight;
    decltype(&MeasureRun) measureRun;
    decltype(&DrawRun) drawRun;
    decltype(&RunBounds) runBounds;
    decltype(&ForEachFontFamily) forEachFontFamily;
};

/// The one name that the module exports: a function that gives its table, which lasts as long as the module.
inline constexpr char kTextModuleEntry[] = "LmfTextModule";
using TextModuleEntry = const TextModule *(*)();

} // namespace lmf

extern "C" const lmf::TextModule *LmfTextModule();
